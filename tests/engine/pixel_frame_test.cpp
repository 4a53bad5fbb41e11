#include "engine/pixel_frame.h"
#include "test_support.h"

#include <gtest/gtest.h>
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

} // namespace
} // namespace lumiran
