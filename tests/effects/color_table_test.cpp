// Rules of the colour table effects: table builds, the colour selector, the
// brightness form and the shared tail.
#include "color_table_fixture.h"

#include <algorithm>
#include <cmath>

namespace lumiran {
namespace {

using ColorTableRules = testing::ColorTableFixture;
using E = Class_ColorTable;
using R = ProcessRect;

TEST_F(ColorTableRules, NegativeAtFullValueInvertsAndAtZeroKeepsThePicture) {
    const auto inverted =
        levels([](E& e, const R& r) { e.Negative(0, 255, r.left, r.top, r.right, r.bottom); });
    const auto kept =
        levels([](E& e, const R& r) { e.Negative(0, 0, r.left, r.top, r.right, r.bottom); });
    for (int c = 0; c < 256; ++c) {
        EXPECT_EQ(inverted[static_cast<std::size_t>(c)], 255 - c);
        EXPECT_EQ(kept[static_cast<std::size_t>(c)], c);
    }
}

TEST_F(ColorTableRules, SelectorRowsPickTheirChannelsAndLeaveTheOthers) {
    const struct {
        std::int16_t selector;
        Pixel expected;
    } rows[] = {
        {0, makePixel(245, 235, 225)}, {1, makePixel(245, 20, 30)},  {2, makePixel(10, 235, 30)},
        {3, makePixel(10, 20, 225)},   {4, makePixel(245, 235, 30)}, {5, makePixel(10, 235, 225)},
        {6, makePixel(245, 20, 225)},  {9, makePixel(10, 20, 30)}, // no such row: nothing
    };
    for (const auto& row : rows) {
        EXPECT_EQ(runOn(10, 20, 30,
                        [&](E& e, const R& r) {
                            e.Negative(row.selector, 255, r.left, r.top, r.right, r.bottom);
                        }),
                  row.expected)
            << "selector " << row.selector;
    }
}

TEST_F(ColorTableRules, BrightnessFormScalesEveryChannelByTheRuleOnLightness) {
    // L = round((200 + 50) / 2) = 125; T = 255 - 125 = 130; c / 125 * 130.
    EXPECT_EQ(runOn(200, 100, 50,
                    [](E& e, const R& r) { e.Negative(7, 255, r.left, r.top, r.right, r.bottom); }),
              makePixel(208, 104, 52));
    // L = 4, T = 6 - 4 = 2: 5 / 4 * 2 = 2.5 and 3 / 4 * 2 = 1.5 both round to even 2.
    EXPECT_EQ(runOn(5, 3, 3,
                    [](E& e, const R& r) { e.Negative(7, 6, r.left, r.top, r.right, r.bottom); }),
              makePixel(2, 2, 2));
    // A negative T loses its sign in the absolute value: T = 100 - 125.
    EXPECT_EQ(runOn(200, 100, 50,
                    [](E& e, const R& r) { e.Negative(7, 100, r.left, r.top, r.right, r.bottom); }),
              makePixel(40, 20, 10));
}

TEST_F(ColorTableRules, BrightnessFormDividesByOneWhereLightnessRoundsToZero) {
    // (0 + 1) / 2 = 0.5 rounds to 0: D becomes 1 and blue is 1 / 1 * T.
    EXPECT_EQ(runOn(0, 0, 1,
                    [](E& e, const R& r) { e.Negative(7, 255, r.left, r.top, r.right, r.bottom); }),
              makePixel(0, 0, 255));
    EXPECT_TRUE(context.failures.empty());
}

// The brightness form has a fast loop for calculation type 0 and the plain
// one for blends: both must agree with the rule on every kind of pixel.
TEST_F(ColorTableRules, BrightnessFormFollowsTheRuleWithAndWithoutABlend) {
    const Surface picture = testing::makePicture(64, 64, [](int x, int y) {
        return makePixel((x * 13 + y) & 0xFF, (y * 7) & 0xFF, x < 4 ? x : (x * y) & 0xFF);
    });
    auto expected = [](Pixel p, bool blend) {
        auto rule = [&](int c, int level) {
            const double divisor = level == 0 ? 1 : level;
            const int v = static_cast<int>(std::abs(std::nearbyint(c / divisor * (200 - level))));
            const int r1 = std::min(v, 255);
            return blend ? (c + r1) / 2 : r1;
        };
        const int r = redOf(p), g = greenOf(p), b = blueOf(p);
        const int level =
            static_cast<int>(std::nearbyint((std::max({r, g, b}) + std::min({r, g, b})) / 2.0));
        return makePixel(rule(r, level), rule(g, level), rule(b, level));
    };
    for (const bool blend : {false, true}) {
        context.flags.calculationFlag = blend ? 1 : 0;
        const Surface out = run(picture, [](E& e, const R& r) {
            e.Negative(7, 200, r.left, r.top, r.right, r.bottom);
        });
        for (int y = 0; y < 64; ++y) {
            for (int x = 0; x < 64; ++x) {
                ASSERT_EQ(out.at(x, y) & 0xFFFFFFu, expected(picture.at(x, y), blend))
                    << "blend " << blend << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(ColorTableRules, ResultsBeyondAByteAreClampedNotWrapped) {
    // 169 + 255 = 424 would store 168 unclamped; 86 - 255 would store 87.
    const auto up = levels(
        [](E& e, const R& r) { e.MedianLevelEmphasize(0, 255, r.left, r.top, r.right, r.bottom); });
    const auto down = levels([](E& e, const R& r) {
        e.MedianLevelEmphasize(0, -255, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(up[85], 85);
    EXPECT_EQ(up[86], 255);
    EXPECT_EQ(up[169], 255);
    EXPECT_EQ(up[170], 170);
    EXPECT_EQ(down[86], 0);
    EXPECT_EQ(down[170], 170);
    const auto mid = levels(
        [](E& e, const R& r) { e.MedianLevelEmphasize(0, 42, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(mid[100], 142);
}

TEST_F(ColorTableRules, SpareBytesAndPixelsOutsideTheRectangleStay) {
    Surface picture = testing::makeVariedPicture(6, 4);
    for (Pixel& p : picture.pixels())
        p |= 0xAB000000u;
    const Surface out = run(picture, [](E& e, const R&) { e.Negative(0, 255, 1, 1, 4, 3); });
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            const Pixel before = picture.at(x, y);
            const Pixel after = out.at(x, y);
            EXPECT_EQ(spareOf(after), 0xAB);
            const bool inside = x >= 1 && x < 4 && y >= 1 && y < 3;
            EXPECT_EQ(after & 0xFFFFFFu, inside ? (~before & 0xFFFFFFu) : (before & 0xFFFFFFu));
        }
    }
}

TEST_F(ColorTableRules, RectangleReachingBeyondThePictureIsCutAndRowsStillCount) {
    const Surface picture = testing::makeVariedPicture(4, 3);
    Class_ColorTable effect(context);
    effect.ImageGetDiBits(picture);
    effect.Negative(0, 255, -5, -2, 300, 5);
    EXPECT_EQ(effect.progressCount(), 7);
    Surface out;
    effect.ImageSetDiBits(out);
    EXPECT_EQ(out.at(3, 2) & 0xFFFFFFu, ~picture.at(3, 2) & 0xFFFFFFu);
}

TEST_F(ColorTableRules, SorarizationFoldsAboveTheThreshold) {
    const auto folded =
        levels([](E& e, const R& r) { e.Sorarization(128, 0, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(folded[128], 128);
    EXPECT_EQ(folded[129], 126);
    EXPECT_EQ(folded[255], 0);
    const auto top =
        levels([](E& e, const R& r) { e.Sorarization(255, 0, r.left, r.top, r.right, r.bottom); });
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(top[static_cast<std::size_t>(c)], c);
}

TEST_F(ColorTableRules, RangeRulesIncludeBothBounds) {
    const auto adjusted = levels([](E& e, const R& r) {
        e.ShadeRangeAdjust(0, 192, 64, r.left, r.top, r.right, r.bottom, 128);
    });
    EXPECT_EQ(adjusted[63], 63);
    EXPECT_EQ(adjusted[64], 128);
    EXPECT_EQ(adjusted[192], 128);
    EXPECT_EQ(adjusted[193], 193);

    const auto sliced =
        levels([](E& e, const R& r) { e.LevelSlice(192, 64, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(sliced[63], 0);
    EXPECT_EQ(sliced[64], 255);
    EXPECT_EQ(sliced[192], 255);
    EXPECT_EQ(sliced[193], 0);

    // Each channel in range takes its own component of the colour.
    EXPECT_EQ(runOn(100, 50, 192,
                    [](E& e, const R& r) {
                        e.ShadeRangeExChange(192, 64, r.left, r.top, r.right, r.bottom, 10, 20, 30);
                    }),
              makePixel(10, 50, 30));
}

TEST_F(ColorTableRules, ColorLengthTestsLowOnTheSourceValue) {
    const auto limited = levels(
        [](E& e, const R& r) { e.ColorLength(192, 64, 0, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(limited[30], 64);
    EXPECT_EQ(limited[100], 100);
    EXPECT_EQ(limited[200], 192);
    // high 50 below low 100: a channel cut to high stays there unless its
    // source value was below low.
    const auto crossed = levels(
        [](E& e, const R& r) { e.ColorLength(50, 100, 0, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(crossed[150], 50);
    EXPECT_EQ(crossed[75], 100);
    EXPECT_EQ(crossed[50], 100);
    EXPECT_EQ(crossed[30], 100);
}

TEST_F(ColorTableRules, PosterizeTablesOfTheFixedLevels) {
    auto posterize = [&](std::int16_t n) {
        return levels([n](E& e, const R& r) {
            e.ColorTableOperation(0, r.left, r.top, r.right, r.bottom, n);
        });
    };
    const auto two = posterize(2);
    EXPECT_EQ(two[127], 0);
    EXPECT_EQ(two[128], 255);
    const auto three = posterize(3);
    EXPECT_EQ(three[63], 0);
    EXPECT_EQ(three[64], 128);
    EXPECT_EQ(three[191], 128);
    EXPECT_EQ(three[192], 255);
    const auto four = posterize(4);
    EXPECT_EQ(four[42], 0);
    EXPECT_EQ(four[43], 85);
    EXPECT_EQ(four[128], 170);
    EXPECT_EQ(four[212], 170);
    EXPECT_EQ(four[213], 255);
}

TEST_F(ColorTableRules, PosterizeWalkForEightLevels) {
    // s = round(31.875) = 32; the lowest 16 entries take s, then s + v with
    // v stepping by s every s + 1 entries, the last past 255 capped.
    const auto eight = levels(
        [](E& e, const R& r) { e.ColorTableOperation(0, r.left, r.top, r.right, r.bottom, 8); });
    const std::pair<int, int> expected[] = {
        {0, 32},    {15, 32},   {16, 64},   {65, 64},   {66, 96},   {98, 96},  {99, 128},
        {131, 128}, {132, 160}, {198, 224}, {230, 224}, {231, 255}, {255, 255}};
    for (const auto& [level, value] : expected) {
        EXPECT_EQ(eight[static_cast<std::size_t>(level)], value) << "level " << level;
    }
}

TEST_F(ColorTableRules, PosterizeWalkForFiveLevelsAndNoTableFalls) {
    // s = 51: the walk keeps s below round(s / 2) = 26 and tops out at 255.
    const auto five = levels(
        [](E& e, const R& r) { e.ColorTableOperation(0, r.left, r.top, r.right, r.bottom, 5); });
    const std::pair<int, int> expected[] = {{25, 51},   {26, 102},  {103, 102}, {104, 153},
                                            {207, 204}, {208, 255}, {255, 255}};
    for (const auto& [level, value] : expected) {
        EXPECT_EQ(five[static_cast<std::size_t>(level)], value) << "level " << level;
    }
    for (std::int16_t n = 2; n <= 24; ++n) {
        const auto table = levels([n](E& e, const R& r) {
            e.ColorTableOperation(0, r.left, r.top, r.right, r.bottom, n);
        });
        for (std::size_t c = 1; c < 256; ++c) {
            EXPECT_GE(table[c], table[c - 1]) << "levels " << n << " at " << c;
        }
    }
}

TEST_F(ColorTableRules, PosterizeBrightnessOverwritesABlackPixelWithOne) {
    // L = 0: the pixel becomes 1, 1, 1 and then T = table[0] = 32 times 1.
    auto posterize = [](E& e, const R& r) {
        e.ColorTableOperation(7, r.left, r.top, r.right, r.bottom, 8);
    };
    EXPECT_EQ(runOn(0, 0, 0, posterize), makePixel(32, 32, 32));
    // The blend sees the overwritten source: 2 * 32 - 1.
    context.flags.calculationFlag = 3;
    EXPECT_EQ(runOn(0, 0, 0, posterize), makePixel(63, 63, 63));
}

TEST_F(ColorTableRules, TransformationSolarizeBendsAtTheLiteralSteps) {
    const auto triangle = levels([](E& e, const R& r) {
        e.TransformationSlarize(0, 2, 0, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(triangle[0], 0);
    EXPECT_EQ(triangle[126], 252);
    EXPECT_EQ(triangle[127], 255); // 254 jumps to 255
    EXPECT_EQ(triangle[128], 255); // past 255: the step turns
    EXPECT_EQ(triangle[129], 253);
    EXPECT_EQ(triangle[130], 250); // 251 becomes 250
    EXPECT_EQ(triangle[255], 0);
    // From 250 by 1, 251 is caught at once: the table never leaves 250.
    const auto stuck = levels([](E& e, const R& r) {
        e.TransformationSlarize(0, 1, 250, r.left, r.top, r.right, r.bottom);
    });
    for (const int v : stuck)
        EXPECT_EQ(v, 250);
}

TEST_F(ColorTableRules, RandomTableStepsEveryPeriodPlusOneAndRepeatsAfterAStart) {
    const std::int16_t period = 42;
    const auto table = levels(
        [period](E& e, const R& r) { e.RandomTable(0, r.left, r.top, r.right, r.bottom, period); });
    RandomGenerator fresh;
    int expected = 0;
    for (int c = 0; c < 256; ++c) {
        if (c > 0 && c % (period + 1) == 0) expected = roundTo<std::uint8_t>(fresh.next() * 255.0);
        EXPECT_EQ(table[static_cast<std::size_t>(c)], expected) << "level " << c;
    }
    EXPECT_EQ(random.state(), fresh.state()); // five draws, no more
    // A second program start draws the same table again.
    RandomGenerator secondStart;
    RunContext again(cancel, secondStart);
    Class_ColorTable effect(again);
    const Surface ramp =
        testing::makePicture(256, 1, [](int x, int) { return makePixel(x, x, x); });
    effect.ImageGetDiBits(ramp);
    effect.RandomTable(0, 0, 0, 256, 1, period);
    Surface out;
    effect.ImageSetDiBits(out);
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(redOf(out.at(c, 0)), table[static_cast<std::size_t>(c)]);
}

TEST_F(ColorTableRules, GammaKeepsZeroAndCapsAbove255) {
    const auto brighter = levels(
        [](E& e, const R& r) { e.GanmaRevision(255, 200, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(brighter[0], 0);
    EXPECT_EQ(brighter[1], 16); // 255 * sqrt(1 / 255) = 15.97
    EXPECT_EQ(brighter[255], 255);
    const auto darker = levels(
        [](E& e, const R& r) { e.GanmaRevision(255, 50, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(darker[128], 64); // 255 * (128 / 255)^2 = 64.25
    EXPECT_EQ(darker[1], 0);
}

TEST_F(ColorTableRules, TableErrorsArriveOnlyWithAPixelThatReachesThem) {
    // percent -100: E = -1, so level 1 gives 255 * 255, beyond 16 bits;
    // level 0 is never raised to the power.
    auto gamma = [](E& e, const R& r) {
        e.GanmaRevision(255, -100, r.left, r.top, r.right, r.bottom);
    };
    EXPECT_EQ(runOn(0, 0, 0, gamma), makePixel(0, 0, 0));
    EXPECT_TRUE(context.failures.empty());
    EXPECT_EQ(cancel.load(), 0);
    runOn(0, 1, 0, gamma);
    EXPECT_EQ(failureNumber(), EffectError::OverflowNumber);
    EXPECT_EQ(cancel.load(), 1);
}

TEST_F(ColorTableRules, HistogramExpansionUsesWidthAsOffsetAndRangeWithEvenTies) {
    const auto stretched = levels(
        [](E& e, const R& r) { e.Histgram_Expansion(102, 0, r.left, r.top, r.right, r.bottom); });
    EXPECT_EQ(stretched[0], 0);     // -254.5, clamped
    EXPECT_EQ(stretched[102], 0);   // 0.5 to even
    EXPECT_EQ(stretched[103], 3);   // (255 + 51) / 102
    EXPECT_EQ(stretched[150], 120); // 120.5 to even
    EXPECT_EQ(stretched[204], 255); // 255.5 to 256, clamped
}

TEST_F(ColorTableRules, HistogramExpansionBelowWidthTenDoesNothingAtAll) {
    context.flags.calculationFlag = 4; // would blacken anything the tail touched
    const Surface picture = testing::makeVariedPicture(5, 3);
    Class_ColorTable effect(context);
    effect.ImageGetDiBits(picture);
    effect.Histgram_Expansion(9, 0, 0, 0, 5, 3);
    EXPECT_EQ(effect.progressCount(), 0);
    Surface out;
    effect.ImageSetDiBits(out);
    EXPECT_EQ(out, picture);
}

TEST_F(ColorTableRules, CancelAfterARowLeavesTheRestUntouched) {
    struct CancelAtFirstRow : ProgressSink {
        CancelFlag* flag = nullptr;
        void showPercent(int) override { *flag = 1; }
    } sink;
    sink.flag = &cancel;
    context.progress = &sink;
    const Surface picture = testing::makeVariedPicture(3, 3);
    const Surface out = run(
        picture, [](E& e, const R& r) { e.LevelSlice(255, 0, r.left, r.top, r.right, r.bottom); });
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(out.at(x, 0) & 0xFFFFFFu, 0xFFFFFFu);
        EXPECT_EQ(out.at(x, 1), picture.at(x, 1));
    }
}

} // namespace
} // namespace lumiran
