// The banded patterns, the colour spread, the stipple and the chequer of
// Class_Pattern, against their rules written out.
#include "effects/texture/pattern/class_pattern.h"
#include "texture_fixture.h"

#include <cmath>

namespace lumiran::testing {
namespace {

using P = Class_Pattern;

int rounded(double v) {
    return static_cast<int>(std::nearbyint(v));
}

// The band rule for m with period p on the colour (200, 100, 0).
Colour band(int m, int p) {
    const double step = 256.0 / p;
    const int residue = m % p;
    return {rounded(std::abs(200 - step * residue)), rounded(std::abs(100 - step * residue)),
            rounded(std::abs(0 - step * residue))};
}

struct Bands : TextureFixture {
    const Surface picture = makeVariedPicture(20, 16);

    template <typename Call>
    Surface on(Call call) {
        return run<P>(picture, call);
    }
};

TEST_F(Bands, RingsAroundTheCentreFollowTheBandRule) {
    // Centre (10, 8); period round(sqrt(19^2 + 15^2) 64 / 255) = 6.
    const Surface out = on([](P& e, const ProcessRect& r) {
        e.FF4(r.left, r.top, r.right, r.bottom, 200, 100, 0, 0, 64);
    });
    EXPECT_EQ(colourAt(out, 13, 12), band(5, 6));
    // Offsets of 0 are raised to 1: m = round(sqrt(2)) = 1.
    EXPECT_EQ(colourAt(out, 10, 8), band(1, 6));
    EXPECT_EQ(colourAt(out, 0, 0), band(rounded(std::sqrt(100.0 + 64)), 6));
}

TEST_F(Bands, WamaiAndTheColourTilesFollowTheirMeasures) {
    const Surface wamai = on([](P& e, const ProcessRect& r) {
        e.Wamai(0, r.left, r.top, r.right, r.bottom, 200, 100, 0, 0, 4);
    });
    // sqrt(sqrt(2^6) + sqrt(3^6)) = sqrt(35).
    EXPECT_EQ(colourAt(wamai, 2, 3), band(6, 4));
    EXPECT_EQ(colourAt(wamai, 0, 0), band(rounded(std::sqrt(2.0)), 4));
    // ColorTile1 at (3, 2) with period round(sqrt(19^2 + 15^2)) = 24.
    const int measures[4] = {3 * 2 + 3 + 3 * 2 + 2, 6, 60, 13};
    for (std::uint8_t type = 0; type < 4; ++type) {
        const Surface tile = on([type](P& e, const ProcessRect& r) {
            e.ColorTile1(type, r.left, r.top, r.right, r.bottom, 200, 100, 0, 0, 255);
        });
        EXPECT_EQ(colourAt(tile, 3, 2), band(measures[type], 24)) << int(type);
    }
    const Surface tile2 = on([](P& e, const ProcessRect& r) {
        e.ColorTile2(0, r.left, r.top, r.right, r.bottom, 200, 100, 0, 12, 84, 12, 5, 0);
    });
    const auto t = [](double z) { return z / 12 * 84; };
    const double a = std::sqrt(std::abs(4 / 12.0 + std::sin(std::sin(t(4)) + t(4))));
    const double b = std::sqrt(std::abs(5 / 12.0 + std::cos(t(5))));
    EXPECT_EQ(colourAt(tile2, 4, 5), band(rounded((a + b) * 10), 5));
}

TEST_F(Bands, APeriodOfZeroEndsTheRunAsCancelled) {
    const struct {
        const char* what;
        std::function<void(P&, const ProcessRect&)> call;
    } cases[] = {
        // round(sqrt(7^2 + 7^2) / 255) = 0 on an 8 x 8 picture.
        {"FF4",
         [](P& e, const ProcessRect& r) {
             e.FF4(r.left, r.top, r.right, r.bottom, 1, 2, 3, 5, 1);
         }},
        {"ColorTile1",
         [](P& e, const ProcessRect& r) {
             e.ColorTile1(0, r.left, r.top, r.right, r.bottom, 1, 2, 3, 5, 1);
         }},
        {"Wamai",
         [](P& e, const ProcessRect& r) {
             e.Wamai(0, r.left, r.top, r.right, r.bottom, 1, 2, 3, 5, 0);
         }},
        {"ColorTile2",
         [](P& e, const ProcessRect& r) {
             e.ColorTile2(0, r.left, r.top, r.right, r.bottom, 1, 2, 3, 12, 84, 12, 0, 5);
         }},
    };
    for (const auto& c : cases) {
        cancel = 0;
        context.failures.clear();
        run<P>(makeVariedPicture(8, 8), c.call);
        EXPECT_EQ(failureNumbers(), std::vector<int>{11}) << c.what;
        EXPECT_EQ(cancel.load(), 1) << c.what;
    }
}

TEST_F(Bands, TheColourSpreadMixesRampsAcrossAndDownWithTheColour) {
    // a = 255 / 20 x, b = 255 / 16 y; at (4, 3) a = 51 and b = 47.8125.
    const Colour expected[4] = {{75, 49, 124}, {51, 150, 124}, {75, 48, 200}, {100, 51, 48}};
    for (std::uint8_t type = 0; type < 4; ++type) {
        const Surface out = on([type](P& e, const ProcessRect& r) {
            e.ColorSpread(type, r.left, r.top, r.right, r.bottom, 100, 150, 200, 0);
        });
        EXPECT_EQ(colourAt(out, 4, 3), expected[type]) << int(type);
    }
    // A ramp of 0 is raised to 1.
    const Surface corner = on([](P& e, const ProcessRect& r) {
        e.ColorSpread(3, r.left, r.top, r.right, r.bottom, 100, 150, 200, 0);
    });
    EXPECT_EQ(colourAt(corner, 0, 0), (Colour{100, 1, 1}));
}

TEST_F(Bands, TheStippleLeavesAnOddLastRowAndColumnAndSkipsThePostStep) {
    context.flags.calculationFlag = 4;
    const Surface black = uniformPicture(5, 5, 0, 0, 0);
    const int painted[3] = {4, 8, 12};
    for (std::uint8_t type = 0; type < 3; ++type) {
        const Surface out = run<P>(black, [type](P& e, const ProcessRect& r) {
            e.ShadePatternMethod(type, r.left, r.top, r.right, r.bottom, 255, 128, 64);
        });
        int count = 0;
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 5; ++x) {
                const bool on = colourAt(out, x, y) == Colour{255, 128, 64};
                count += on;
                if (x == 4 || y == 4) {
                    EXPECT_FALSE(on) << int(type) << " " << x << "," << y;
                }
            }
        }
        EXPECT_EQ(count, painted[type]) << int(type);
    }
    const Surface quarter = run<P>(black, [](P& e, const ProcessRect& r) {
        e.ShadePatternMethod(0, r.left, r.top, r.right, r.bottom, 255, 128, 64);
    });
    EXPECT_EQ(colourAt(quarter, 0, 1), (Colour{255, 128, 64}));
    EXPECT_EQ(colourAt(quarter, 0, 0), (Colour{0, 0, 0}));
}

// A pair of rows adds 2 to the progress out of the rectangle's rows: with
// an odd height the bar ends short of 100 percent.
TEST_F(Bands, TheStippleStepsTwoRowsAPair) {
    struct Percents : ProgressSink {
        std::vector<int> seen;
        void showPercent(int percent) override { seen.push_back(percent); }
        void showCaption(int) override {}
    } percents;
    context.progress = &percents;
    const struct {
        int height;
        int last;
    } cases[] = {{5, 80}, {6, 100}, {1, -1}};
    for (const auto& c : cases) {
        percents.seen.clear();
        run<P>(uniformPicture(4, c.height, 0, 0, 0), [](P& e, const ProcessRect& r) {
            e.ShadePatternMethod(1, r.left, r.top, r.right, r.bottom, 255, 255, 255);
        });
        EXPECT_EQ(percents.seen.empty() ? -1 : percents.seen.back(), c.last) << c.height;
    }
    context.progress = nullptr;
}

TEST_F(Bands, TheChequerChangesEverySecondBlockFromTheTopLeft) {
    const Surface grey = uniformPicture(10, 8, 100, 50, 25);
    const auto chequer = [&](std::uint8_t operation) {
        return run<P>(grey, [operation](P& e, const ProcessRect& r) {
            e.CheckedPattern(true, 4, 4, r.left, r.top, r.right, r.bottom, operation);
        });
    };
    const Surface inverted = chequer(0);
    EXPECT_EQ(colourAt(inverted, 1, 1), (Colour{155, 205, 230}));
    EXPECT_EQ(colourAt(inverted, 5, 1), (Colour{100, 50, 25}));
    EXPECT_EQ(colourAt(inverted, 5, 5), (Colour{155, 205, 230}));
    EXPECT_EQ(colourAt(inverted, 9, 1), (Colour{155, 205, 230})) << "a partial block";
    EXPECT_EQ(colourAt(chequer(1), 0, 0), (Colour{0, 0, 0}));
    EXPECT_EQ(colourAt(chequer(2), 0, 0), (Colour{255, 255, 255}));
    EXPECT_EQ(chequer(5), grey);
    // Random copies draw two numbers a changed block.
    const Surface varied = makeVariedPicture(10, 8);
    run<P>(varied, [](P& e, const ProcessRect& r) {
        e.CheckedPattern(true, 4, 4, r.left, r.top, r.right, r.bottom, 8);
    });
    RandomGenerator expected;
    for (int draw = 0; draw < 2 * 3; ++draw)
        (void)expected.next();
    EXPECT_EQ(random.state(), expected.state());
}

} // namespace
} // namespace lumiran::testing
