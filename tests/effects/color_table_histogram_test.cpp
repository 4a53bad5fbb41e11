// Histogram flattening: the plan of moves between levels and the effect
// that follows it pixel by pixel.
#include "color_table_fixture.h"
#include "effects/colour/histogram_flattening.h"

#include <map>

namespace lumiran {
namespace {

using ColorTableHistogram = testing::ColorTableFixture;
using E = Class_ColorTable;
using R = ProcessRect;
using Histogram = HistogramFlattening::Histogram;

std::vector<int> takeAll(HistogramFlattening& plan, int source, int count) {
    std::vector<int> levels;
    for (int i = 0; i < count; ++i)
        levels.push_back(plan.take(source));
    return levels;
}

TEST(ColorTableFlattening, AnEvenHistogramStaysWhereItIs) {
    Histogram even{};
    even.fill(3);
    HistogramFlattening plan(even, 3);
    for (int v = 0; v < 256; ++v)
        EXPECT_EQ(takeAll(plan, v, 3), std::vector<int>(3, v));
}

TEST(ColorTableFlattening, ExcessMovesUpAndShortLevelsFillFromAbove) {
    Histogram h{};
    h[0] = 5;
    h[3] = 1;
    HistogramFlattening plan(h, 2);
    // Level 0 keeps 2 and pushes 3 on, level 1 keeps 2 and pushes 1; level 2
    // then takes the one pixel of level 3 to reach 2. The highest planned
    // level is handed out first.
    EXPECT_EQ(takeAll(plan, 0, 5), (std::vector<int>{2, 1, 1, 0, 0}));
    EXPECT_EQ(plan.take(3), 2);
}

TEST(ColorTableFlattening, PushKeepsTheLowestSourcesFirst) {
    Histogram h{};
    h[0] = 3;
    h[1] = 2;
    HistogramFlattening plan(h, 2);
    // Level 1 holds one pixel from 0 and two of its own: the one from 0 and
    // one of its own stay, the other of its own moves to level 2.
    EXPECT_EQ(plan.planned(1, 0), 1);
    EXPECT_EQ(plan.planned(1, 1), 1);
    EXPECT_EQ(plan.planned(2, 1), 1);
    EXPECT_EQ(takeAll(plan, 0, 3), (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(takeAll(plan, 1, 2), (std::vector<int>{2, 1}));
}

TEST(ColorTableFlattening, FillTakesPartOfTheLevelThatWouldPassTheCount) {
    Histogram h{};
    h[0] = 1;
    h[1] = 3;
    HistogramFlattening plan(h, 2);
    EXPECT_EQ(plan.planned(0, 1), 1);
    EXPECT_EQ(takeAll(plan, 1, 3), (std::vector<int>{1, 1, 0}));
}

TEST(ColorTableFlattening, WhatTheTopLevelPushesOutFallsToZero) {
    Histogram h{};
    h[255] = 2;
    h[254] = 1;
    HistogramFlattening plan(h, 0);
    EXPECT_EQ(plan.planned(256, 255), 2);
    EXPECT_EQ(takeAll(plan, 255, 2), (std::vector<int>{0, 0}));
    EXPECT_EQ(plan.take(254), 0);
}

// Counts of each output level in the red channel.
std::map<int, int> redCounts(const Surface& picture) {
    std::map<int, int> counts;
    for (const Pixel p : picture.pixels())
        ++counts[redOf(p)];
    return counts;
}

TEST_F(ColorTableHistogram, EquationOnOneGreyGivesEveryLevelOncePerRowOrder) {
    // 16 x 16 = 256 pixels, Q = 1: the first pixel gets 255, the last 0.
    // Mode 0 writes straight, past the calculation type.
    context.flags.calculationFlag = 4;
    const Surface out = run(Surface(16, 16, makePixel(90, 100, 110)), [](E& e, const R& r) {
        e.Histgram_Equation(0, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(out.at(0, 0) & 0xFFFFFFu, makePixel(255, 255, 255));
    EXPECT_EQ(out.at(1, 0) & 0xFFFFFFu, makePixel(254, 254, 254));
    EXPECT_EQ(out.at(15, 15) & 0xFFFFFFu, makePixel(0, 0, 0));
    const auto counts = redCounts(out);
    EXPECT_EQ(counts.size(), 256u);
}

TEST_F(ColorTableHistogram, EquationOnAnEvenRampChangesNothingAndBothPassesCount) {
    const Surface ramp =
        testing::makePicture(256, 4, [](int x, int) { return makePixel(x, 255 - x, x); });
    Class_ColorTable effect(context);
    effect.ImageGetDiBits(ramp);
    effect.Histgram_Equation(2, 0, 0, 256, 4); // "赤": red only
    EXPECT_EQ(effect.progressCount(), 8);
    Surface out;
    effect.ImageSetDiBits(out);
    EXPECT_EQ(out, ramp);
}

TEST_F(ColorTableHistogram, EquationOnOneChannelLeavesTheOthers) {
    const Surface out = run(Surface(16, 16, makePixel(90, 100, 110)), [](E& e, const R& r) {
        e.Histgram_Equation(4, r.left, r.top, r.right, r.bottom); // "青"
    });
    EXPECT_EQ(out.at(0, 0) & 0xFFFFFFu, makePixel(90, 100, 255));
    EXPECT_EQ(out.at(15, 15) & 0xFFFFFFu, makePixel(90, 100, 0));
}

TEST_F(ColorTableHistogram, EquationBrightnessModeScalesByTheNewLevel) {
    // L = 125 everywhere; pixel 129 in row order gets the level 126.
    const Surface out = run(Surface(16, 16, makePixel(200, 100, 50)), [](E& e, const R& r) {
        e.Histgram_Equation(8, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(out.at(0, 0) & 0xFFFFFFu, makePixel(255, 204, 102)); // 408 clamped
    EXPECT_EQ(out.at(1, 8) & 0xFFFFFFu, makePixel(202, 101, 50));  // 201.6, 100.8, 50.4
    EXPECT_EQ(out.at(15, 15) & 0xFFFFFFu, makePixel(0, 0, 0));
}

TEST_F(ColorTableHistogram, EquationOnASmallRectangleSpreadsTowardTheLowestLevels) {
    // 12 x 12 = 144 pixels: Q = 1, so the pixels take the lowest 144 levels,
    // one each.
    const Surface out = run(testing::makeVariedPicture(12, 12), [](E& e, const R& r) {
        e.Histgram_Equation(1, r.left, r.top, r.right, r.bottom);
    });
    const auto counts = redCounts(out);
    EXPECT_EQ(counts.size(), 144u);
    EXPECT_EQ(counts.rbegin()->first, 143);
    // 8 x 8 = 64 pixels: Q = 0, nothing is planned and all fall to 0.
    const Surface tiny = run(testing::makeVariedPicture(8, 8), [](E& e, const R& r) {
        e.Histgram_Equation(0, r.left, r.top, r.right, r.bottom);
    });
    for (const Pixel p : tiny.pixels())
        EXPECT_EQ(p & 0xFFFFFFu, 0u);
    EXPECT_TRUE(context.failures.empty());
}

} // namespace
} // namespace lumiran
