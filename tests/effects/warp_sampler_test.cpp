// The sampler every reverse-mapping warp goes through: clamping to the
// rectangle, rounding, the axes, and what no warp may do to pixels outside
// its rectangle.
#include "geometry_fixture.h"

#include <cmath>
#include <limits>
#include <string>

namespace lumiran::testing {
namespace {

struct SampleCase {
    const char* what;
    std::uint8_t axes;
    double mappedX;
    double mappedY;
    SourcePlace expected;
};

class WarpSampler : public GeometryFixture, public ::testing::WithParamInterface<SampleCase> {};

TEST_P(WarpSampler, TakesTheClampedRoundedSourcePixel) {
    const SampleCase& c = GetParam();
    // The rectangle lies inside the picture on every side.
    const Surface result =
        warp(positionPicture(40, 30), [&](Class_Geometry& e, const ProcessRect&) {
            e.WarpSample(c.axes, 15, 12, c.mappedX, c.mappedY, 10, 8, 30, 20);
        });
    EXPECT_EQ(placeOf(result.at(15, 12)), c.expected) << c.what;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, WarpSampler,
    ::testing::Values(SampleCase{"left of the rectangle", 2, -100, 12, {10, 12}},
                      SampleCase{"right of it", 2, 1e300, 12, {29, 12}},
                      SampleCase{"above it", 2, 15, -5.5, {15, 8}},
                      SampleCase{"below it", 2, 15, 20.4, {15, 19}},
                      SampleCase{
                          "an infinity", 2, -std::numeric_limits<double>::infinity(), 9, {10, 9}},
                      SampleCase{"half rounds to even, down", 2, 12.5, 10.5, {12, 10}},
                      SampleCase{"half rounds to even, up", 2, 13.5, 11.5, {14, 12}},
                      SampleCase{"axes 0 keeps the row", 0, 25, 99, {25, 12}},
                      SampleCase{"axes 1 keeps the column", 1, 99, 3, {15, 8}},
                      SampleCase{"axes 3 writes nothing", 3, 20, 9, {15, 12}}));

TEST_F(GeometryFixture, SamplerClampsToThePictureWhereTheRectangleReachesBeyondIt) {
    const Surface result = warp(positionPicture(8, 6), [](Class_Geometry& e, const ProcessRect&) {
        e.WarpSample(2, 3, 2, 50, -50, -5, -5, 100, 100);
    });
    EXPECT_EQ(placeOf(result.at(3, 2)), (SourcePlace{7, 0}));
    EXPECT_EQ(cancel, 0);
}

TEST_F(GeometryFixture, APositionThatIsNotANumberEndsTheRunAsOverflow) {
    const Surface picture = positionPicture(4, 4);
    warp(picture, [](Class_Geometry& e, const ProcessRect&) {
        e.WarpSample(0, 1, 1, 2, std::nan(""), 0, 0, 4, 4);
    });
    EXPECT_TRUE(failedWithOverflow());
}

// Warps with settings that throw positions far off (tan, small radii) on a
// rectangle inside the picture: the outside keeps its pixels, and nothing
// of the outside is read.
struct Harsh {
    const char* warp;
    GeometryFixture::Call call;
};

constexpr std::int16_t L = 6, T = 5, Rt = 34, B = 27;
const Pixel Outside = makePixel(255, 0, 255);

class Warps : public GeometryFixture, public ::testing::WithParamInterface<Harsh> {};

TEST_P(Warps, StayInsideTheirRectangle) {
    Surface picture(40, 32, Outside);
    for (int y = T; y < B; ++y)
        for (int x = L; x < Rt; ++x)
            picture.at(x, y) = makePixel(x, y, 7);
    const Surface result = warp(picture, {L, T, Rt, B}, GetParam().call);
    EXPECT_EQ(cancel, 0) << GetParam().warp;
    for (int y = 0; y < 32; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= L && x < Rt && y >= T && y < B;
            if (inside) {
                ASSERT_NE(result.at(x, y), Outside) << GetParam().warp << " at " << x << "," << y;
            } else {
                ASSERT_EQ(result.at(x, y), picture.at(x, y)) << GetParam().warp;
            }
        }
    }
}

using G = Class_Geometry;

INSTANTIATE_TEST_SUITE_P(
    Harshly, Warps,
    ::testing::Values(
        Harsh{
            "PowerHole",
            [](G& e, auto r) { e.PowerHole(0.3, 2, 2, r.left, r.top, r.right, r.bottom, 10, 90); }},
        Harsh{"FishEye",
              [](G& e, auto r) {
                  e.Wave_FishEye(-9, 2, 1, r.left, r.top, r.right, r.bottom, 0, 100);
              }},
        Harsh{"Suck",
              [](G& e, auto r) { e.Wave_Suck(1, 2, 2, r.left, r.top, r.right, r.bottom, 100, 0); }},
        Harsh{"Whirlpool",
              [](G& e, auto r) { e.Whirlpool(-200, 2, r.left, r.top, r.right, r.bottom, 50, 50); }},
        Harsh{"Vortex",
              [](G& e, auto r) {
                  e.Wave_Circle(0.5, 2, 1, r.left, r.top, r.right, r.bottom, 30, 70);
              }},
        Harsh{"SeaWave",
              [](G& e, auto r) {
                  e.Wave_Sea(2, 2, 100, 0, r.left, r.top, r.right, r.bottom, 4, 0, 0);
              }},
        Harsh{"Sway1",
              [](G& e, auto r) { e.Sway1(2, 7, 128, 10, r.left, r.top, r.right, r.bottom, 3); }},
        Harsh{"Sway2",
              [](G& e, auto r) { e.Sway2(2, 2, 128, 10, r.left, r.top, r.right, r.bottom, 3); }},
        Harsh{"Sphere",
              [](G& e, auto r) { e.Sphere(r.left, r.top, r.right, r.bottom, 3, 20, 80, 12); }},
        Harsh{"Ripploid",
              [](G& e, auto r) { e.Ripploid(3, r.left, r.top, r.right, r.bottom, 2, 50, 50, 2); }},
        Harsh{"Eddying",
              [](G& e, auto r) {
                  e.EddyingCurrent(2, 100, r.left, r.top, r.right, r.bottom, 0, 0, 2);
              }},
        Harsh{"Ripple",
              [](G& e, auto r) {
                  e.Ripple(20, 3, 12, r.left, r.top, r.right, r.bottom, 2, 2, 0, 0);
              }},
        Harsh{"Scatterize",
              [](G& e, auto r) { e.Scatterize(2, 128, r.left, r.top, r.right, r.bottom); }},
        Harsh{"Lattice",
              [](G& e, auto r) { e.LatticeGlass(128, r.left, r.top, r.right, r.bottom, 0); }}),
    [](const auto& testInfo) { return std::string(testInfo.param.warp); });

} // namespace
} // namespace lumiran::testing
