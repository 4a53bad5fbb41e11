#include "engine/pixel_frame.h"
#include "test_support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

using testing::makePicture;
using testing::makeVariedPicture;

// A minimal effect on the shared frame: inverts, and can be told to fail
// at the n-th pixel.
class ProbeEffect : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    void Invert(const ProcessRect& rect, int failAtPixel) {
        guarded([&] {
            int seen = 0;
            mapPixels<ResultTail::Clamp>(rect, [&](int r, int g, int b) {
                if (seen++ == failAtPixel) throw EffectError::divisionByZero();
                using S = std::int16_t;
                return Rgb16{S(255 - r), S(255 - g), S(255 - b)};
            });
        });
    }
    // Inverts row by row in any order; the rows in failures throw the
    // error paired with them.
    bool InvertRows(const ProcessRect& rect,
                    const std::vector<std::pair<int, EffectError>>& failures) {
        bool finished = false;
        guarded([&] {
            SetProgressRange(rect.top, rect.bottom);
            finished = forEachRow(rect, [&](int y, int begin, int end) {
                for (const auto& [row, error] : failures) {
                    if (row == y) throw error;
                }
                for (Pixel& p : ImageBits.row(y).subspan(begin, end - begin))
                    p ^= 0x00FFFFFFu;
            });
        });
        return finished;
    }
    void Progress(int top, int bottom, int steps) {
        guarded([&] {
            SetProgressRange(top, bottom);
            for (int i = 0; i < steps; ++i)
                StepProgress();
        });
    }
};

// The picture with the pixels inside rect inverted and the spare byte kept.
Surface invertedIn(const Surface& picture, const ProcessRect& r) {
    return makePicture(picture.width(), picture.height(), [&](int x, int y) {
        const bool inside = x >= r.left && x < r.right && y >= r.top && y < r.bottom;
        return inside ? picture.at(x, y) ^ 0x00FFFFFFu : picture.at(x, y);
    });
}

// Records the percentages shown and cancels at the chosen call.
struct FrameFixture : ::testing::Test, ProgressSink {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};
    std::vector<int> percents;
    int cancelAtCall = -1;
    int count = 0, total = 0; // the progress of the last run

    FrameFixture() { context.progress = this; }
    void showPercent(int percent) override {
        percents.push_back(percent);
        if (static_cast<int>(percents.size()) == cancelAtCall) cancel = 1;
    }
    Surface invert(const Surface& picture, const ProcessRect& rect, int failAtPixel = -1) {
        ProbeEffect effect(context);
        effect.ImageGetDiBits(picture);
        effect.Invert(rect, failAtPixel);
        count = effect.progressCount();
        total = effect.progressTotal();
        Surface result;
        effect.ImageSetDiBits(result);
        return result;
    }
};

TEST_F(FrameFixture, OnlyPixelsInsideTheRectangleAndPictureChangeAndSpareBytesStay) {
    Surface picture = makeVariedPicture(6, 5);
    picture.at(2, 2) |= 0xAB000000u;
    const Surface result = invert(picture, ProcessRect{1, 1, 4, 3});
    EXPECT_EQ(result, invertedIn(picture, ProcessRect{1, 1, 4, 3}));
    EXPECT_EQ(result.at(2, 2) >> 24, 0xABu);
    // Rows and columns outside the picture are dropped, not reached.
    EXPECT_EQ(invert(picture, ProcessRect{-5, -5, 100, 100}),
              invertedIn(picture, ProcessRect{0, 0, 6, 5}));
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(FrameFixture, ProgressReachesOneHundredOnTheLastRowAndOnlyWhenEnabled) {
    (void)invert(makeVariedPicture(3, 8), ProcessRect{0, 0, 3, 8});
    EXPECT_EQ(percents, (std::vector<int>{12, 25, 38, 50, 62, 75, 88, 100}));
    // Without progress nothing is reported and nothing cancels.
    context.progressFlag = 2;
    percents.clear();
    cancelAtCall = 1;
    (void)invert(makeVariedPicture(3, 3), ProcessRect{0, 0, 3, 3});
    EXPECT_TRUE(percents.empty());
    EXPECT_EQ(cancel, 0);
}

TEST_F(FrameFixture, ZeroHeightRectangleRunsNoRowAndNeverDividesByZero) {
    const Surface picture = makeVariedPicture(4, 4);
    EXPECT_EQ(invert(picture, ProcessRect{0, 2, 4, 2}), picture);
    EXPECT_TRUE(percents.empty());
    EXPECT_EQ(total, 0);
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(FrameFixture, CancelStopsAfterTheCurrentRowEvenOnTheLastRow) {
    const Surface picture = makeVariedPicture(4, 5);
    for (const std::int16_t cancelRow : {2, 5}) {
        cancel = 0;
        percents.clear();
        cancelAtCall = cancelRow;
        const Surface result = invert(picture, ProcessRect{0, 0, 4, 5});
        EXPECT_EQ(count, cancelRow);
        EXPECT_EQ(cancel, 1);
        // Rows up to and including the cancelled one are complete.
        EXPECT_EQ(result, invertedIn(picture, ProcessRect{0, 0, 4, cancelRow})) << cancelRow;
    }
}

TEST_F(FrameFixture, RunTimeErrorsAreRecordedAndCancelTheRun) {
    (void)invert(makeVariedPicture(4, 4), ProcessRect{0, 0, 4, 4}, 5);
    EXPECT_EQ(cancel, 1);
    ProbeEffect empty(context);
    empty.Progress(3, 3, 1); // count / 0 cannot be converted
    ASSERT_EQ(context.failures.size(), 2u);
    EXPECT_EQ(context.failures[0].number(), 11);
    EXPECT_EQ(context.failures[1].number(), 6);
}

TEST_F(FrameFixture, ProgressBeyondTheRangeOverruns) {
    ProbeEffect twoPass(context);
    twoPass.Progress(0, 2, 4); // a second pass on a total that covers one
    EXPECT_EQ(percents.back(), 200);
    EXPECT_TRUE(context.failures.empty());
}

// The same frame with every row a band of its own on three threads.
struct ThreadedFrame : FrameFixture {
    ThreadedFrame() { context.threading = {.threads = 3, .bandPixels = 1}; }
    bool invertRows(Surface& picture, const std::vector<std::pair<int, EffectError>>& failures) {
        ProbeEffect effect(context);
        effect.ImageGetDiBits(picture);
        const bool finished = effect.InvertRows(
            ProcessRect::wholePicture(picture.width(), picture.height()), failures);
        count = effect.progressCount();
        effect.ImageSetDiBits(picture);
        return finished;
    }
};

TEST_F(ThreadedFrame, RowsOnSeveralThreadsGiveTheOneThreadResultAndCountEveryRow) {
    const Surface picture = makeVariedPicture(5, 40);
    Surface result = picture;
    EXPECT_TRUE(invertRows(result, {}));
    EXPECT_EQ(result, invertedIn(picture, ProcessRect{0, 0, 5, 40}));
    EXPECT_EQ(count, 40);
    // Reported one at a time, so the percentages never go back.
    ASSERT_EQ(percents.size(), 40u);
    EXPECT_TRUE(std::ranges::is_sorted(percents));
    EXPECT_EQ(percents.back(), 100);
}

TEST_F(ThreadedFrame, TheFailureOfTheFirstFailingRowIsTheOneReported) {
    for (int attempt = 0; attempt < 20; ++attempt) {
        context.failures.clear();
        cancel = 0;
        Surface picture = makeVariedPicture(3, 60);
        EXPECT_FALSE(invertRows(picture, {{41, EffectError::divisionByZero()},
                                          {17, EffectError::overflow()},
                                          {55, EffectError::outOfMemory()}}));
        ASSERT_EQ(context.failures.size(), 1u);
        EXPECT_EQ(context.failures[0].number(), 6) << attempt;
        EXPECT_EQ(cancel, 1);
    }
}

TEST_F(ThreadedFrame, CancelStopsEveryThreadAfterItsCurrentRow) {
    cancelAtCall = 4;
    Surface picture = makeVariedPicture(3, 60);
    EXPECT_FALSE(invertRows(picture, {}));
    // The row that saw the cancel, and at most one row in flight on each
    // other thread.
    EXPECT_GE(count, 4);
    EXPECT_LE(count, 4 + 2);
}

} // namespace
} // namespace lumiran
