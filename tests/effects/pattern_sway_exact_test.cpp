// The colour sways and FF3 take their final sines and cosines from the
// vector functions and redo the pixels near a half: every pixel must still be
// the one the library's functions give, worked out here pixel by pixel.
#include "effects/texture/pattern/class_pattern.h"
#include "effects/texture/pattern/sway_laws.h"
#include "engine/numeric.h"
#include "texture_fixture.h"

#include <cmath>

namespace lumiran::testing {
namespace {

using P = Class_Pattern;

struct SwayCase {
    const char* name;
    int sway; // 1..4; 0 is FF3 (Color_Sway1's laws with a degree)
    std::uint8_t type;
    int width, height;
    ProcessRect rect;
    std::array<std::int16_t, 6> amplitudeAndWave;
    double degree = 1;
};

void PrintTo(const SwayCase& c, std::ostream* os) {
    *os << c.name;
}

// One channel at (x, y) with the library's functions.
int libraryChannel(const pattern::SwayLaw& law, int x, int y, double a, double w, double degree) {
    constexpr double Pi = 3.14159;
    const pattern::Coordinates c = pattern::applyLaw(law, x, y, a, w);
    const double across = (std::sin(degree * c.u * Pi / a) + 1) / 2;
    const double down = (std::cos(degree * c.v * Pi / w) + 1) / 2;
    return roundTo<int>(across * down * 255);
}

struct PatternSwayExact : TextureFixture, ::testing::WithParamInterface<SwayCase> {};

TEST_P(PatternSwayExact, EveryPixelIsTheLibraryField) {
    const SwayCase& c = GetParam();
    const Surface picture = makeVariedPicture(c.width, c.height);
    const auto& aw = c.amplitudeAndWave;
    const Surface out = run<P>(
        picture,
        [&c, &aw](P& e, const ProcessRect& r) {
            using Sway = void (P::*)(std::int16_t, std::uint8_t, std::int16_t, std::int16_t,
                                     std::int16_t, std::int16_t, std::int16_t, std::int16_t,
                                     std::int16_t, std::int16_t, std::int16_t, std::int16_t);
            if (c.sway == 0) {
                e.FF3(0, c.type, r.left, r.top, r.right, r.bottom, aw[0], aw[1], aw[2], aw[3],
                      aw[4], aw[5], c.degree);
                return;
            }
            const Sway sways[] = {&P::Color_Sway1, &P::Color_Sway2, &P::Color_Sway3,
                                  &P::Color_Sway4};
            (e.*sways[c.sway - 1])(0, c.type, r.left, r.top, r.right, r.bottom, aw[0], aw[1], aw[2],
                                   aw[3], aw[4], aw[5]);
        },
        false, c.rect);
    ASSERT_TRUE(context.failures.empty());
    const auto laws = pattern::swayLaws(c.sway == 0 ? 1 : c.sway);
    const pattern::SwayLaw law = c.type < laws.size() ? laws[c.type] : pattern::SwayLaw{};
    for (int y = 0; y < c.height; ++y) {
        for (int x = 0; x < c.width; ++x) {
            const bool inside =
                x >= c.rect.left && x < c.rect.right && y >= c.rect.top && y < c.rect.bottom;
            Colour expected = colourAt(picture, x, y);
            if (inside) {
                for (int k = 0; k < 3; ++k)
                    expected[k] = libraryChannel(law, x, y, aw[2 * k], aw[2 * k + 1], c.degree);
            }
            ASSERT_EQ(colourAt(out, x, y), expected) << "at " << x << ", " << y;
        }
    }
}

// Type 12 is beyond every list: u = x and v = y, so column 0 has a sine of
// exactly 0 and row 0 a cosine of 1: 127.5 at the corner, a half to round.
// A degree of 10000 on an amplitude of 1 takes the angles beyond the vector
// functions' reach; the tangents put u near their poles.
INSTANTIATE_TEST_SUITE_P(
    Sways, PatternSwayExact,
    ::testing::Values(
        SwayCase{"Sway1Catalogue", 1, 0, 67, 23, {0, 0, 67, 23}, {138, 170, 128, 170, 118, 170}},
        SwayCase{"Sway2Catalogue", 2, 0, 67, 23, {0, 0, 67, 23}, {138, 170, 128, 170, 118, 170}},
        SwayCase{"Sway3Catalogue", 3, 0, 33, 19, {0, 0, 33, 19}, {138, 170, 128, 170, 118, 170}},
        SwayCase{"Sway4Catalogue", 4, 0, 33, 19, {0, 0, 33, 19}, {138, 170, 128, 170, 118, 170}},
        SwayCase{
            "Cycle3Catalogue", 0, 0, 67, 23, {0, 0, 67, 23}, {138, 170, 128, 170, 118, 170}, 2},
        SwayCase{"Cycle3FarAngles", 0, 0, 40, 9, {0, 0, 40, 9}, {1, 3, 2, 5, 1, 7}, 10000},
        SwayCase{"InnerRect", 2, 6, 50, 30, {7, 4, 43, 27}, {30, 45, 25, 50, 20, 60}},
        // Rows longer than the runs of columns the field works in.
        SwayCase{"Sway1LongRows", 1, 0, 1100, 3, {0, 0, 1100, 3}, {138, 170, 128, 60, 118, 20}},
        SwayCase{"Sway2LongInner", 2, 0, 1100, 4, {5, 1, 1093, 4}, {138, 170, 128, 60, 118, 20}},
        SwayCase{"Tangents", 3, 2, 41, 17, {0, 0, 41, 17}, {1, 4, 3, 8, 2, 9}},
        SwayCase{"Sway4Tangent", 4, 10, 41, 17, {0, 0, 41, 17}, {5, 4, 3, 8, 2, 9}},
        SwayCase{"Sway1Mixed", 1, 5, 71, 13, {0, 0, 71, 13}, {30, 45, 25, 50, 20, 60}},
        SwayCase{"BeyondTheList", 1, 12, 24, 24, {0, 0, 24, 24}, {1, 2, 4, 8, 16, 32}},
        SwayCase{"BeyondTheListTwice", 0, 12, 24, 24, {0, 0, 24, 24}, {3, 4, 6, 8, 12, 16}, 0.5}),
    [](const ::testing::TestParamInfo<SwayCase>& p) { return std::string(p.param.name); });

} // namespace
} // namespace lumiran::testing
