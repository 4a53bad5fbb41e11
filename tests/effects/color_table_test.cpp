// Rules of the colour table effects: table builds, the colour selector, the
// brightness form and the shared tail.
#include "color_table_fixture.h"

#include <algorithm>

namespace lumiran::testing {
namespace {

using ColorTableRules = ColorTableFixture;
using E = Class_ColorTable;

TEST_F(ColorTableRules, NegativeAtFullValueInvertsAndAtZeroKeepsThePicture) {
    expectLevels(levels(op<&E::Negative>(0, 255, rect)), {{0, 255}, {100, 155}, {255, 0}});
    expectLevels(levels(op<&E::Negative>(0, 0, rect)), {{0, 0}, {100, 100}, {255, 255}});
}

TEST_F(ColorTableRules, SelectorRowsPickTheirChannelsAndLeaveTheOthers) {
    const std::pair<int, Pixel> rows[] = {
        {0, makePixel(245, 235, 225)}, {1, makePixel(245, 20, 30)},  {2, makePixel(10, 235, 30)},
        {3, makePixel(10, 20, 225)},   {4, makePixel(245, 235, 30)}, {5, makePixel(10, 235, 225)},
        {6, makePixel(245, 20, 225)},  {9, makePixel(10, 20, 30)}, // no such row: nothing
    };
    for (const auto& [selector, expected] : rows)
        EXPECT_EQ(runOn(10, 20, 30, op<&E::Negative>(selector, 255, rect)), expected) << selector;
}

TEST_F(ColorTableRules, BrightnessFormScalesEveryChannelByTheRuleOnLightness) {
    // L = round((200 + 50) / 2) = 125; T = 255 - 125 = 130; c / 125 * 130.
    EXPECT_EQ(runOn(200, 100, 50, op<&E::Negative>(7, 255, rect)), makePixel(208, 104, 52));
    // L = 4, T = 6 - 4 = 2: 5 / 4 * 2 = 2.5 and 3 / 4 * 2 = 1.5 both round to even 2.
    EXPECT_EQ(runOn(5, 3, 3, op<&E::Negative>(7, 6, rect)), makePixel(2, 2, 2));
    // A negative T loses its sign in the absolute value: T = 100 - 125.
    EXPECT_EQ(runOn(200, 100, 50, op<&E::Negative>(7, 100, rect)), makePixel(40, 20, 10));
    // (0 + 1) / 2 = 0.5 rounds to 0: D becomes 1 and blue is 1 / 1 * T.
    EXPECT_EQ(runOn(0, 0, 1, op<&E::Negative>(7, 255, rect)), makePixel(0, 0, 255));
    EXPECT_TRUE(context.failures.empty());
    // The blending loop: (c + r1) / 2.
    context.flags.calculationFlag = 1;
    EXPECT_EQ(runOn(200, 100, 50, op<&E::Negative>(7, 255, rect)), makePixel(204, 102, 51));
}

TEST_F(ColorTableRules, ResultsBeyondAByteAreClampedNotWrapped) {
    // 169 + 255 = 424 would store 168 unclamped; 86 - 255 would store 87.
    expectLevels(levels(op<&E::MedianLevelEmphasize>(0, 255, rect)),
                 {{85, 85}, {86, 255}, {169, 255}, {170, 170}});
    expectLevels(levels(op<&E::MedianLevelEmphasize>(0, -255, rect)), {{86, 0}, {170, 170}});
    expectLevels(levels(op<&E::MedianLevelEmphasize>(0, 42, rect)), {{100, 142}});
}

TEST_F(ColorTableRules, SpareBytesAndPixelsOutsideTheRectangleStay) {
    Surface picture = makeVariedPicture(6, 4);
    for (Pixel& p : picture.pixels())
        p |= 0xAB000000u;
    const Surface out =
        run(picture, [](E& e, const ProcessRect&) { e.Negative(0, 255, 1, 1, 4, 3); });
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool inside = x >= 1 && x < 4 && y >= 1 && y < 3;
            EXPECT_EQ(out.at(x, y), inside ? picture.at(x, y) ^ 0xFFFFFFu : picture.at(x, y));
        }
    }
}

TEST_F(ColorTableRules, RectangleReachingBeyondThePictureIsCutAndRowsStillCount) {
    const Surface picture = makeVariedPicture(4, 3);
    int rows = 0;
    const Surface out = run(picture, [&](E& e, const ProcessRect&) {
        e.Negative(0, 255, -5, -2, 300, 5);
        rows = e.progressCount();
    });
    EXPECT_EQ(rows, 7);
    EXPECT_EQ(out.at(3, 2), picture.at(3, 2) ^ 0xFFFFFFu);
}

TEST_F(ColorTableRules, SorarizationFoldsAboveTheThreshold) {
    expectLevels(levels(op<&E::Sorarization>(128, 0, rect)), {{128, 128}, {129, 126}, {255, 0}});
    expectLevels(levels(op<&E::Sorarization>(255, 0, rect)), {{0, 0}, {254, 254}, {255, 255}});
}

TEST_F(ColorTableRules, RangeRulesIncludeBothBounds) {
    expectLevels(levels(op<&E::ShadeRangeAdjust>(0, 192, 64, rect, 128)),
                 {{63, 63}, {64, 128}, {192, 128}, {193, 193}});
    expectLevels(levels(op<&E::LevelSlice>(192, 64, rect)),
                 {{63, 0}, {64, 255}, {192, 255}, {193, 0}});
    // Each channel in range takes its own component of the colour.
    EXPECT_EQ(runOn(100, 50, 192, op<&E::ShadeRangeExChange>(192, 64, rect, 10, 20, 30)),
              makePixel(10, 50, 30));
}

TEST_F(ColorTableRules, ColorLengthTestsLowOnTheSourceValue) {
    expectLevels(levels(op<&E::ColorLength>(192, 64, 0, rect)), {{30, 64}, {100, 100}, {200, 192}});
    // high 50 below low 100: a channel cut to high stays there unless its
    // source value was below low.
    expectLevels(levels(op<&E::ColorLength>(50, 100, 0, rect)), {{150, 50}, {75, 100}, {50, 100}});
}

TEST_F(ColorTableRules, PosterizeTablesOfTheFixedLevelsAndTheWalk) {
    auto posterize = [&](int n) { return levels(op<&E::ColorTableOperation>(0, rect, n)); };
    expectLevels(posterize(2), {{127, 0}, {128, 255}});
    expectLevels(posterize(3), {{63, 0}, {64, 128}, {191, 128}, {192, 255}});
    expectLevels(posterize(4), {{42, 0}, {43, 85}, {128, 170}, {212, 170}, {213, 255}});
    // s = round(31.875) = 32; the lowest 16 entries take s, then s + v with
    // v stepping by s every s + 1 entries, the last past 255 capped.
    expectLevels(posterize(8), {{0, 32},
                                {15, 32},
                                {16, 64},
                                {65, 64},
                                {66, 96},
                                {198, 224},
                                {230, 224},
                                {231, 255},
                                {255, 255}});
    // s = 51: the walk keeps s below round(s / 2) = 26 and tops out at 255.
    expectLevels(posterize(5),
                 {{25, 51}, {26, 102}, {103, 102}, {104, 153}, {207, 204}, {208, 255}});
    for (int n = 2; n <= 24; ++n) {
        const auto table = posterize(n);
        EXPECT_TRUE(std::is_sorted(table.begin(), table.end())) << n << " levels fall";
    }
}

TEST_F(ColorTableRules, PosterizeBrightnessOverwritesABlackPixelWithOne) {
    // L = 0: the pixel becomes 1, 1, 1 and then T = table[0] = 32 times 1.
    const auto posterize = op<&E::ColorTableOperation>(7, rect, 8);
    EXPECT_EQ(runOn(0, 0, 0, posterize), makePixel(32, 32, 32));
    // The blend sees the overwritten source: 2 * 32 - 1.
    context.flags.calculationFlag = 3;
    EXPECT_EQ(runOn(0, 0, 0, posterize), makePixel(63, 63, 63));
}

TEST_F(ColorTableRules, TransformationSolarizeBendsAtTheLiteralSteps) {
    // 254 jumps to 255, past 255 the step turns, 251 becomes 250.
    expectLevels(levels(op<&E::TransformationSlarize>(0, 2, 0, rect)),
                 {{0, 0}, {126, 252}, {127, 255}, {128, 255}, {129, 253}, {130, 250}, {255, 0}});
    // From 250 by 1, 251 is caught at once: the table never leaves 250.
    const auto stuck = levels(op<&E::TransformationSlarize>(0, 1, 250, rect));
    EXPECT_EQ(std::count(stuck.begin(), stuck.end(), 250), 256);
}

TEST_F(ColorTableRules, RandomTableStepsEveryPeriodPlusOneLevels) {
    const int period = 42;
    const auto table = levels(op<&E::RandomTable>(0, rect, period));
    RandomGenerator fresh;
    int expected = 0;
    for (int c = 0; c < 256; ++c) {
        if (c > 0 && c % (period + 1) == 0) expected = roundTo<std::uint8_t>(fresh.next() * 255.0);
        EXPECT_EQ(table[static_cast<std::size_t>(c)], expected) << "level " << c;
    }
    EXPECT_EQ(random.state(), fresh.state()); // five draws, no more
}

TEST_F(ColorTableRules, GammaKeepsZeroAndRoundsThePower) {
    // 255 * sqrt(1 / 255) = 15.97; 255 * (128 / 255)^2 = 64.25.
    expectLevels(levels(op<&E::GanmaRevision>(255, 200, rect)), {{0, 0}, {1, 16}, {255, 255}});
    expectLevels(levels(op<&E::GanmaRevision>(255, 50, rect)), {{1, 0}, {128, 64}});
}

TEST_F(ColorTableRules, TableErrorsArriveOnlyWithAPixelThatReachesThem) {
    // percent -100: E = -1, so level 1 gives 255 * 255, beyond 16 bits;
    // level 0 is never raised to the power.
    const auto gamma = op<&E::GanmaRevision>(255, -100, rect);
    EXPECT_EQ(runOn(0, 0, 0, gamma), makePixel(0, 0, 0));
    EXPECT_TRUE(context.failures.empty());
    EXPECT_EQ(cancel.load(), 0);
    runOn(0, 1, 0, gamma);
    EXPECT_EQ(failureNumber(), EffectError::OverflowNumber);
    EXPECT_EQ(cancel.load(), 1);
}

TEST_F(ColorTableRules, HistogramExpansionUsesWidthAsOffsetAndRangeWithEvenTies) {
    // -254.5 clamped, 0.5 to even, (255 + 51) / 102, 120.5 to even, 255.5 to 256 clamped.
    expectLevels(levels(op<&E::Histgram_Expansion>(102, 0, rect)),
                 {{0, 0}, {102, 0}, {103, 3}, {150, 120}, {204, 255}});
}

TEST_F(ColorTableRules, HistogramExpansionBelowWidthTenDoesNothingAtAll) {
    context.flags.calculationFlag = 4; // would blacken anything the tail touched
    const Surface picture = makeVariedPicture(5, 3);
    int rows = -1;
    const Surface out = run(picture, [&](E& e, const ProcessRect& r) {
        e.Histgram_Expansion(9, 0, r.left, r.top, r.right, r.bottom);
        rows = e.progressCount();
    });
    EXPECT_EQ(rows, 0);
    EXPECT_EQ(out, picture);
}

TEST_F(ColorTableRules, CancelAfterARowLeavesTheRestUntouched) {
    CancellingProgress progress(cancel);
    context.progress = &progress;
    const Surface picture = makeVariedPicture(3, 3);
    const Surface out = run(picture, op<&E::LevelSlice>(255, 0, rect));
    for (int x = 0; x < 3; ++x) {
        EXPECT_EQ(out.at(x, 0) & 0xFFFFFFu, 0xFFFFFFu);
        EXPECT_EQ(out.at(x, 1), picture.at(x, 1));
    }
}

} // namespace
} // namespace lumiran::testing
