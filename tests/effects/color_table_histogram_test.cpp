// Histogram flattening: the plan of moves between levels and the effect
// that follows it pixel by pixel.
#include "color_table_fixture.h"
#include "effects/colour/histogram_flattening.h"

#include <algorithm>
#include <set>
#include <utility>

namespace lumiran::testing {
namespace {

using ColorTableHistogram = ColorTableFixture;
using E = Class_ColorTable;

HistogramFlattening::Histogram histogram(std::initializer_list<std::pair<int, int>> counts) {
    HistogramFlattening::Histogram h{};
    for (const auto& [level, count] : counts)
        h[static_cast<std::size_t>(level)] = count;
    return h;
}

// The new levels of the next count pixels of a source level.
std::vector<int> takeAll(HistogramFlattening& plan, int source, int count) {
    std::vector<int> levels;
    for (int i = 0; i < count; ++i)
        levels.push_back(plan.take(source));
    return levels;
}

TEST(ColorTableFlattening, ExcessMovesUpAndShortLevelsFillFromAbove) {
    HistogramFlattening plan(histogram({{0, 5}, {3, 1}}), 2);
    // Level 0 keeps 2 and pushes 3 on, level 1 keeps 2 and pushes 1; level 2
    // then takes the one pixel of level 3 to reach 2. The highest planned
    // level is handed out first.
    EXPECT_EQ(takeAll(plan, 0, 5), (std::vector<int>{2, 1, 1, 0, 0}));
    EXPECT_EQ(plan.take(3), 2);
}

TEST(ColorTableFlattening, PushKeepsTheLowestSourcesFirst) {
    HistogramFlattening plan(histogram({{0, 3}, {1, 2}}), 2);
    // Level 1 holds one pixel from 0 and two of its own: the one from 0 and
    // one of its own stay, the other of its own moves to level 2.
    EXPECT_EQ(takeAll(plan, 0, 3), (std::vector<int>{1, 0, 0}));
    EXPECT_EQ(takeAll(plan, 1, 2), (std::vector<int>{2, 1}));
}

TEST(ColorTableFlattening, FillTakesPartOfTheLevelThatWouldPassTheCount) {
    // Level 0 takes one of the three pixels of level 1, the lowest handed out last.
    HistogramFlattening plan(histogram({{0, 1}, {1, 3}}), 2);
    EXPECT_EQ(takeAll(plan, 1, 3), (std::vector<int>{1, 1, 0}));
}

TEST(ColorTableFlattening, WhatTheTopLevelPushesOutFallsToZero) {
    HistogramFlattening plan(histogram({{254, 1}, {255, 2}}), 0);
    EXPECT_EQ(plan.planned(256, 255), 2);
    EXPECT_EQ(takeAll(plan, 255, 2), (std::vector<int>{0, 0}));
    EXPECT_EQ(plan.take(254), 0);
}

TEST(ColorTableFlattening, ASteadyLevelIsWhatEachOfTheNextTakesGives) {
    // Levels split over several new levels, one that lends to a lower level,
    // and one pushed past the top: at every point of the hand-out and for
    // every count, the steady level is the one level the next takes give,
    // or -1 when they give more than one.
    const HistogramFlattening plan(histogram({{0, 5}, {3, 1}, {7, 9}, {255, 6}}), 3);
    for (const int level : {0, 3, 7, 255}) {
        for (int taken = 0; taken <= 9; ++taken) {
            HistogramFlattening::Cursor cursor;
            for (int i = 0; i < taken; ++i)
                (void)cursor.take(plan, level);
            for (int count = 1; count <= 6; ++count) {
                HistogramFlattening::Cursor next = cursor;
                std::set<int> given;
                for (int i = 0; i < count; ++i)
                    given.insert(next.take(plan, level));
                const int expected = given.size() == 1 ? *given.begin() : -1;
                EXPECT_EQ(cursor.steadyLevel(plan, level, count), expected)
                    << "level " << level << " after " << taken << ", " << count << " more";
            }
        }
    }
}

TEST(ColorTableFlattening, ACursorThatSkipsGoesOnAsTheOneThatTook) {
    // A band of rows starts where the rows above it leave off: skipping n
    // pixels of each level must hand out what taking them would have, also
    // across the end of the plan and for levels that lend to others.
    const HistogramFlattening plan(histogram({{0, 5}, {3, 1}, {7, 9}, {200, 4}}), 3);
    for (const int skipped : {0, 1, 2, 4, 5, 9, 12}) {
        HistogramFlattening::Cursor taking;
        HistogramFlattening::Cursor skipping;
        HistogramFlattening::Histogram counts{};
        for (const int level : {0, 3, 7, 200}) {
            for (int i = 0; i < skipped; ++i)
                (void)taking.take(plan, level);
            counts[static_cast<std::size_t>(level)] = skipped;
        }
        skipping.skip(plan, counts);
        for (const int level : {0, 3, 7, 200}) {
            for (int i = 0; i < 4; ++i) {
                EXPECT_EQ(skipping.take(plan, level), taking.take(plan, level))
                    << "level " << level << " after " << skipped;
            }
        }
    }
}

TEST_F(ColorTableHistogram, EquationGivesEveryLevelOnceInRowOrderOnTheModesChannels) {
    // 16 x 16 = 256 pixels of one colour, Q = 1: the first pixel gets 255, the last 0.
    const Surface grey(16, 16, makePixel(90, 100, 110));
    const Surface blue = run(grey, op<&E::Histgram_Equation>(4, rect)); // "青": blue alone
    EXPECT_EQ(blue.at(0, 0), makePixel(90, 100, 255));
    EXPECT_EQ(blue.at(15, 15), makePixel(90, 100, 0));
    // Mode 8 scales by the new level: L = 125 everywhere, pixel 129 gets 126.
    const Surface scaled =
        run(Surface(16, 16, makePixel(200, 100, 50)), op<&E::Histgram_Equation>(8, rect));
    EXPECT_EQ(scaled.at(0, 0), makePixel(255, 204, 102)); // 408 clamped
    EXPECT_EQ(scaled.at(1, 8), makePixel(202, 101, 50));  // 201.6, 100.8, 50.4
    // Mode 0 writes straight, past the calculation type.
    context.flags.calculationFlag = 4;
    const Surface all = run(grey, op<&E::Histgram_Equation>(0, rect));
    EXPECT_EQ(all.at(1, 0), makePixel(254, 254, 254));
    EXPECT_EQ(all.at(15, 15), makePixel(0, 0, 0));
    EXPECT_EQ(std::set<Pixel>(all.pixels().begin(), all.pixels().end()).size(), 256u);
}

TEST_F(ColorTableHistogram, EquationOnAnEvenRampChangesNothingAndBothPassesCount) {
    const Surface ramp = makePicture(256, 4, [](int x, int) { return makePixel(x, 255 - x, x); });
    int rows = 0;
    const Surface out = run(ramp, [&](E& e, const ProcessRect& r) {
        e.Histgram_Equation(2, r.left, r.top, r.right, r.bottom); // "赤": red only
        rows = e.progressCount();
    });
    EXPECT_EQ(rows, 8);
    EXPECT_EQ(out, ramp);
}

// The progress window says the histogram is being surveyed before any row
// is counted, in every mode.
TEST_F(ColorTableHistogram, EquationNamesTheSurveyBeforeTheFirstRow) {
    struct Events : ProgressSink {
        std::vector<int> seen; // caption ids, and -1 for each percentage
        void showPercent(int) override { seen.push_back(-1); }
        void showCaption(int id) override { seen.push_back(id); }
    };
    for (const int mode : {0, 1, 8}) {
        Events events;
        context.progress = &events;
        run(makeVariedPicture(4, 3), op<&E::Histgram_Equation>(mode, rect));
        context.progress = nullptr;
        ASSERT_EQ(events.seen.size(), 7u) << mode; // one caption, two passes of three rows
        EXPECT_EQ(events.seen.front(), 3441) << mode;
        EXPECT_EQ(std::count(events.seen.begin(), events.seen.end(), 3441), 1) << mode;
    }
}

TEST_F(ColorTableHistogram, EquationOnASmallRectangleSpreadsTowardTheLowestLevels) {
    // 12 x 12 = 144 pixels: Q = 1, so the pixels take the lowest 144 levels, one each.
    const Surface out = run(makeVariedPicture(12, 12), op<&E::Histgram_Equation>(1, rect));
    std::set<int> reds;
    for (const Pixel p : out.pixels())
        reds.insert(redOf(p));
    EXPECT_EQ(reds.size(), 144u);
    EXPECT_EQ(*reds.rbegin(), 143);
    // 8 x 8 = 64 pixels: Q = 0, nothing is planned and all fall to 0.
    const Surface tiny = run(makeVariedPicture(8, 8), op<&E::Histgram_Equation>(0, rect));
    EXPECT_EQ(tiny, Surface(8, 8, makePixel(0, 0, 0)));
    EXPECT_TRUE(context.failures.empty());
}

} // namespace
} // namespace lumiran::testing
