// The rules of single warps that can break: radius 0, the centre pixel,
// the axes, Rotate's black, the kinds of Ripple, bad input.
#include "geometry_fixture.h"

#include <set>
#include <string>
#include <vector>

namespace lumiran::testing {
namespace {

using G = Class_Geometry;
using Call = GeometryFixture::Call;

struct Named {
    const char* what;
    Call call;
};

std::string nameOf(const ::testing::TestParamInfo<Named>& info) {
    return info.param.what;
}

class RadiusZero : public GeometryFixture, public ::testing::WithParamInterface<Named> {};

TEST_P(RadiusZero, DoesNothing) {
    const Surface picture = makeVariedPicture(23, 17);
    EXPECT_EQ(warp(picture, GetParam().call), picture);
    EXPECT_EQ(cancel, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Warps, RadiusZero,
    ::testing::Values(
        Named{"PowerHole",
              [](G& e, auto r) { e.PowerHole(0, 1, 2, r.left, r.top, r.right, r.bottom, 50, 50); }},
        Named{"FishEye",
              [](G& e, auto r) {
                  e.Wave_FishEye(0, 1, 1, r.left, r.top, r.right, r.bottom, 50, 50);
              }},
        Named{"Suck",
              [](G& e, auto r) { e.Wave_Suck(0, 1, 2, r.left, r.top, r.right, r.bottom, 50, 50); }},
        Named{"Vortex",
              [](G& e, auto r) {
                  e.Wave_Circle(0, 2, 4, r.left, r.top, r.right, r.bottom, 50, 50);
              }}),
    nameOf);

class AtTheCentre : public GeometryFixture, public ::testing::WithParamInterface<Named> {};

// The centre of a 21 x 15 rectangle at 50 % is (10, 8): 10.5 and 7.5 round
// to even. r = 0 there; Suck In then divides dx = 0 by sin 1, and the other
// warps map the centre onto itself.
TEST_P(AtTheCentre, ThePixelStays) {
    const Surface result = warp(positionPicture(21, 15), GetParam().call);
    EXPECT_EQ(placeOf(result.at(10, 8)), (SourcePlace{10, 8}));
    EXPECT_NE(result, positionPicture(21, 15)) << "the warp moved nothing at all";
}

INSTANTIATE_TEST_SUITE_P(
    Warps, AtTheCentre,
    ::testing::Values(
        Named{"Suck",
              [](G& e, auto r) { e.Wave_Suck(3, 0, 2, r.left, r.top, r.right, r.bottom, 50, 50); }},
        Named{"SuckCrossed",
              [](G& e, auto r) { e.Wave_Suck(3, 3, 2, r.left, r.top, r.right, r.bottom, 50, 50); }},
        Named{"PowerHole",
              [](G& e, auto r) { e.PowerHole(2, 2, 2, r.left, r.top, r.right, r.bottom, 50, 50); }},
        Named{"FishEyeKind1",
              [](G& e, auto r) {
                  e.Wave_FishEye(2, 0, 1, r.left, r.top, r.right, r.bottom, 50, 50);
              }},
        Named{"Vortex",
              [](G& e, auto r) {
                  e.Wave_Circle(5, 2, 0, r.left, r.top, r.right, r.bottom, 50, 50);
              }}),
    nameOf);

// Warps given the axes as their argument a: with 0 no pixel comes from
// another row, with 1 none from another column.
struct OnAxes {
    const char* what;
    std::function<void(G&, const ProcessRect&, std::uint8_t)> call;
};

class Axes : public GeometryFixture, public ::testing::WithParamInterface<OnAxes> {};

TEST_P(Axes, ZeroMovesOnlyAlongRowsAndOneOnlyAlongColumns) {
    for (const std::uint8_t axes : {0, 1}) {
        const Surface result = warp(positionPicture(31, 23), [&](G& e, const ProcessRect& r) {
            GetParam().call(e, r, axes);
        });
        bool moved = false;
        for (int y = 0; y < 23; ++y) {
            for (int x = 0; x < 31; ++x) {
                const SourcePlace from = placeOf(result.at(x, y));
                ASSERT_EQ(axes == 0 ? from.y : from.x, axes == 0 ? y : x)
                    << GetParam().what << " axes " << int{axes} << " at " << x << "," << y;
                moved |= from != SourcePlace{x, y};
            }
        }
        EXPECT_TRUE(moved) << GetParam().what;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Warps, Axes,
    ::testing::Values(
        OnAxes{"PowerHole",
               [](G& e, auto r, auto a) {
                   e.PowerHole(3, 3, a, r.left, r.top, r.right, r.bottom, 40, 60);
               }},
        OnAxes{"Suck",
               [](G& e, auto r, auto a) {
                   e.Wave_Suck(4, 1, a, r.left, r.top, r.right, r.bottom, 50, 50);
               }},
        OnAxes{"Whirlpool",
               [](G& e, auto r, auto a) {
                   e.Whirlpool(20, a, r.left, r.top, r.right, r.bottom, 50, 50);
               }},
        OnAxes{"Vortex",
               [](G& e, auto r, auto a) {
                   e.Wave_Circle(20, a, 6, r.left, r.top, r.right, r.bottom, 50, 50);
               }},
        OnAxes{"SeaWave",
               [](G& e, auto r, auto a) {
                   e.Wave_Sea(3, a, 60, 20, r.left, r.top, r.right, r.bottom, 1, 50, 50);
               }},
        OnAxes{"Sway1", [](G& e, auto r,
                           auto a) { e.Sway1(a, 9, 5, 12, r.left, r.top, r.right, r.bottom, 1); }},
        OnAxes{"Sway2", [](G& e, auto r,
                           auto a) { e.Sway2(a, 0, 5, 12, r.left, r.top, r.right, r.bottom, 1); }},
        OnAxes{"Ripploid",
               [](G& e, auto r, auto a) {
                   e.Ripploid(5, r.left, r.top, r.right, r.bottom, 3, 50, 50, a);
               }},
        OnAxes{"Eddying",
               [](G& e, auto r, auto a) {
                   e.EddyingCurrent(0, 20, r.left, r.top, r.right, r.bottom, 50, 50, a);
               }},
        OnAxes{"Ripple",
               [](G& e, auto r, auto a) {
                   e.Ripple(4, 5, 7, r.left, r.top, r.right, r.bottom, a, 3, 50, 50);
               }},
        OnAxes{"Scatterize",
               [](G& e, auto r, auto a) { e.Scatterize(a, 6, r.left, r.top, r.right, r.bottom); }}),
    [](const auto& testInfo) { return std::string(testInfo.param.what); });

// The warps over a grey map name their two passes in the progress window,
// the map first; the rows of the warp count for the bar.
class GreyMapPasses : public GeometryFixture, public ::testing::WithParamInterface<Named> {};

TEST_P(GreyMapPasses, AreNamedInTurn) {
    struct Log : ProgressSink {
        std::vector<int> captions;
        int percents = 0;
        void showPercent(int) override { ++percents; }
        void showCaption(int id) override { captions.push_back(id); }
    } log;
    context.progress = &log;
    warp(positionPicture(12, 9), GetParam().call);
    EXPECT_EQ(log.captions, (std::vector<int>{3435, 3437})) << GetParam().what;
    EXPECT_EQ(log.percents, 9) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(Warps, GreyMapPasses,
                         ::testing::Values(Named{"Ripploid",
                                                 [](G& e, auto r) {
                                                     e.Ripploid(5, r.left, r.top, r.right, r.bottom,
                                                                0, 50, 50, 2);
                                                 }},
                                           Named{"Eddying",
                                                 [](G& e, auto r) {
                                                     e.EddyingCurrent(1, 20, r.left, r.top, r.right,
                                                                      r.bottom, 50, 50, 2);
                                                 }},
                                           Named{"Ripple",
                                                 [](G& e, auto r) {
                                                     e.Ripple(4, 5, 0, r.left, r.top, r.right,
                                                              r.bottom, 2, 0, 50, 50);
                                                 }}),
                         nameOf);

// 355 / 226 lies within 1.4e-7 of pi / 2: its tan, about -7.5e6, puts the
// column far beyond 32 bits on a picture 600 wide. That is a position for
// the sampler to clamp, not an overflow.
TEST_F(GeometryFixture, SphereTakesAHugeTangentToTheEdge) {
    const Surface picture = makeVariedPicture(600, 360);
    const Surface result = warp(picture, [](G& e, const ProcessRect& r) {
        e.Sphere(r.left, r.top, r.right, r.bottom, 3, 0, 0, 1);
    });
    EXPECT_EQ(cancel, 0);
    // The distance, round(420.8), lies below the picture: the last row.
    EXPECT_EQ(result.at(226, 355), picture.at(0, 359));
}

TEST_F(GeometryFixture, RotateByNothingCopiesTheRectangleAndBlacksTheRestOfTheArray) {
    const Surface picture =
        makePicture(20, 16, [](int x, int y) { return makePixel(x, y, 7, 99); });
    const ProcessRect rect{4, 3, 14, 11};
    const Surface result = warp(picture, rect, [](G& e, const ProcessRect& r) {
        e.Rotate(0, 2, r.left, r.top, r.right, r.bottom, 50, 50);
    });
    for (int y = 0; y < 16; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool inside = x >= 4 && x < 14 && y >= 3 && y < 11;
            ASSERT_EQ(result.at(x, y), inside ? picture.at(x, y) : Pixel{0}) << x << "," << y;
        }
    }
}

TEST_F(GeometryFixture, RotateLeavesBlackWhereTheTurnMissesTheRectangle) {
    const Surface result = warp(positionPicture(30, 30), [](G& e, const ProcessRect& r) {
        e.Rotate(45, 2, r.left, r.top, r.right, r.bottom, 50, 50);
    });
    EXPECT_EQ(result.at(0, 0), Pixel{0});
    EXPECT_EQ(placeOf(result.at(15, 15)), (SourcePlace{15, 15}));
    // A quarter turn moves the pixel right of the centre above it.
    const Surface quarter = warp(positionPicture(31, 31), [](G& e, const ProcessRect& r) {
        e.Rotate(90, 2, r.left, r.top, r.right, r.bottom, 50, 50);
    });
    EXPECT_EQ(placeOf(quarter.at(20, 16)), (SourcePlace{16, 20}));
}

// The eighteen maps of Ripple each give their own picture; the horizontal
// and vertical ones shake whole rows and columns alike.
TEST_F(GeometryFixture, RippleKindsAreEighteenDifferentShakes) {
    const Surface picture = positionPicture(48, 40);
    std::set<std::string> pictures;
    for (std::uint8_t kind = 0; kind < 18; ++kind) {
        const Surface result = warp(picture, [&](G& e, const ProcessRect& r) {
            e.Ripple(6, 7, kind, r.left, r.top, r.right, r.bottom, 2, 3, 30, 60);
        });
        pictures.insert(std::string(reinterpret_cast<const char*>(result.pixels().data()),
                                    result.pixelCount() * sizeof(Pixel)));
        if (kind != 1 && kind != 2) continue;
        const auto shiftAt = [&](int x, int y) {
            const SourcePlace p = placeOf(result.at(x, y));
            return SourcePlace{p.x - x, p.y - y};
        };
        // Away from the clamped edges a row (kind 1) or column (kind 2)
        // moves as one.
        for (int y = 8; y < 32; ++y) {
            for (int x = 8; x < 40; ++x) {
                ASSERT_EQ(shiftAt(x, y), kind == 1 ? shiftAt(8, y) : shiftAt(x, 8))
                    << int{kind} << " at " << x << "," << y;
            }
        }
    }
    EXPECT_EQ(pictures.size(), 18u);
}

// Formulas that reach a run-time error end the run as cancelled with the
// overflow message; radius 0 and its like are guarded and run.
struct Outcome {
    const char* what;
    Call call;
    bool fails;
};

class WarpBadInput : public GeometryFixture, public ::testing::WithParamInterface<Outcome> {};

TEST_P(WarpBadInput, FailsOnlyWhereTheFormulaReachesAnError) {
    for (const auto& [w, h] : {std::pair{1, 1}, std::pair{9, 7}}) {
        cancel = 0;
        context.failures.clear();
        warp(makeVariedPicture(w, h), GetParam().call);
        EXPECT_EQ(failedWithOverflow(), GetParam().fails) << GetParam().what << " " << w;
        EXPECT_EQ(cancel == 1, GetParam().fails) << GetParam().what << " " << w;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Warps, WarpBadInput,
    ::testing::Values(
        Outcome{
            "NegativeRadius",
            [](G& e, auto r) { e.PowerHole(-4, 0, 2, r.left, r.top, r.right, r.bottom, 50, 50); },
            false},
        Outcome{"WhirlpoolOfNothing",
                [](G& e, auto r) { e.Whirlpool(0, 2, r.left, r.top, r.right, r.bottom, 50, 50); },
                false},
        Outcome{"SwayPeriodZero",
                [](G& e, auto r) { e.Sway1(2, 0, 12, 0, r.left, r.top, r.right, r.bottom, 0); },
                true},
        Outcome{"SwayNegativePeriod",
                [](G& e, auto r) { e.Sway2(2, 1, 12, -36, r.left, r.top, r.right, r.bottom, 2); },
                false},
        Outcome{
            "RipplePeriodZero",
            [](G& e, auto r) { e.Ripple(8, 0, 0, r.left, r.top, r.right, r.bottom, 2, 0, 50, 50); },
            true},
        Outcome{
            "RipploidPeriodMinusOne",
            [](G& e, auto r) { e.Ripploid(-1, r.left, r.top, r.right, r.bottom, 0, 50, 50, 2); },
            true},
        Outcome{"SphereTurnZero",
                [](G& e, auto r) { e.Sphere(r.left, r.top, r.right, r.bottom, 0, 50, 50, 0); },
                true},
        Outcome{"SeaFullyDamped",
                [](G& e, auto r) {
                    e.Wave_Sea(4, 2, 50, 100, r.left, r.top, r.right, r.bottom, 0, 50, 50);
                },
                false},
        Outcome{"RectangleOutsideThePicture",
                [](G& e, auto) { e.PowerHole(5, 1, 2, 40, 40, 90, 90, 50, 50); }, false}),
    [](const auto& testInfo) { return std::string(testInfo.param.what); });

} // namespace
} // namespace lumiran::testing
