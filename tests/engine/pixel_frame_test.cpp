#include "engine/pixel_frame.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <vector>

namespace lumiran {
namespace {

using testing::makeVariedPicture;

// A minimal effect on the shared frame: inverts, and can be told to fail
// at the n-th pixel.
class ProbeEffect : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    void Invert(const ProcessRect& rect, int failAtPixel = -1) {
        guarded([&] {
            int seen = 0;
            mapPixels<ResultTail::Clamp>(rect, [&](int r, int g, int b) {
                if (seen++ == failAtPixel) throw EffectError::divisionByZero();
                return Rgb16{static_cast<std::int16_t>(255 - r), static_cast<std::int16_t>(255 - g),
                             static_cast<std::int16_t>(255 - b)};
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
    const Surface& bits() const { return ImageBits; }
};

// Records percentages and cancels at a chosen row.
class RecordingSink : public ProgressSink {
  public:
    RecordingSink(CancelFlag& cancel, int cancelAtCall)
        : cancel_(cancel), cancelAt_(cancelAtCall) {}
    void showPercent(int percent) override {
        percents.push_back(percent);
        if (static_cast<int>(percents.size()) == cancelAt_) cancel_ = 1;
    }
    std::vector<int> percents;

  private:
    CancelFlag& cancel_;
    int cancelAt_;
};

struct FrameFixture : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};
};

TEST_F(FrameFixture, OnlyPixelsInsideTheRectangleChangeAndSpareBytesStay) {
    Surface picture = makeVariedPicture(6, 5);
    picture.at(2, 2) |= 0xAB000000u;
    ProbeEffect effect(context);
    effect.ImageGetDiBits(picture);
    effect.Invert(ProcessRect{1, 1, 4, 3});
    Surface result;
    effect.ImageSetDiBits(result);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 6; ++x) {
            const bool inside = x >= 1 && x < 4 && y >= 1 && y < 3;
            const Pixel expected = inside ? picture.at(x, y) ^ 0x00FFFFFFu : picture.at(x, y);
            EXPECT_EQ(result.at(x, y), expected) << x << "," << y;
        }
    }
    EXPECT_EQ(result.at(2, 2) >> 24, 0xABu);
}

TEST_F(FrameFixture, ProgressReachesOneHundredOnTheLastRow) {
    RecordingSink sink(cancel, -1);
    context.progress = &sink;
    ProbeEffect effect(context);
    effect.ImageGetDiBits(makeVariedPicture(3, 8));
    effect.Invert(ProcessRect{0, 0, 3, 8});
    EXPECT_EQ(sink.percents, (std::vector<int>{12, 25, 38, 50, 62, 75, 88, 100}));
}

TEST_F(FrameFixture, ZeroHeightRectangleRunsNoRowAndNeverDividesByZero) {
    RecordingSink sink(cancel, -1);
    context.progress = &sink;
    ProbeEffect effect(context);
    const Surface picture = makeVariedPicture(4, 4);
    effect.ImageGetDiBits(picture);
    effect.Invert(ProcessRect{0, 2, 4, 2});
    EXPECT_TRUE(sink.percents.empty());
    EXPECT_EQ(effect.progressTotal(), 0);
    EXPECT_TRUE(context.failures.empty());
    EXPECT_EQ(effect.bits(), picture);
}

TEST_F(FrameFixture, CancelStopsAfterTheCurrentRowEvenOnTheLastRow) {
    for (int cancelRow : {2, 5}) {
        cancel = 0;
        RecordingSink sink(cancel, cancelRow);
        context.progress = &sink;
        const Surface picture = makeVariedPicture(4, 5);
        ProbeEffect effect(context);
        effect.ImageGetDiBits(picture);
        effect.Invert(ProcessRect{0, 0, 4, 5});
        EXPECT_EQ(effect.progressCount(), cancelRow);
        EXPECT_EQ(cancel, 1);
        // Rows up to and including the cancelled one are complete.
        for (int y = 0; y < 5; ++y) {
            const bool done = y < cancelRow;
            EXPECT_EQ(effect.bits().at(3, y),
                      done ? picture.at(3, y) ^ 0xFFFFFFu : picture.at(3, y));
        }
    }
}

TEST_F(FrameFixture, WithoutProgressNothingIsReportedAndNothingCancels) {
    context.progressFlag = 2;
    RecordingSink sink(cancel, 1);
    context.progress = &sink;
    ProbeEffect effect(context);
    effect.ImageGetDiBits(makeVariedPicture(3, 3));
    effect.Invert(ProcessRect{0, 0, 3, 3});
    EXPECT_TRUE(sink.percents.empty());
    EXPECT_EQ(cancel, 0);
}

TEST_F(FrameFixture, ARunTimeErrorIsRecordedAndCancelsTheRun) {
    ProbeEffect effect(context);
    effect.ImageGetDiBits(makeVariedPicture(4, 4));
    effect.Invert(ProcessRect{0, 0, 4, 4}, 5);
    ASSERT_EQ(context.failures.size(), 1u);
    EXPECT_EQ(context.failures[0].number(), 11);
    EXPECT_EQ(cancel, 1);
}

TEST_F(FrameFixture, ProgressBeyondTheRangeOverrunsAndAnEmptyRangeFails) {
    RecordingSink sink(cancel, -1);
    context.progress = &sink;
    ProbeEffect twoPass(context);
    twoPass.Progress(0, 2, 4); // a second pass on a total that covers one
    EXPECT_EQ(sink.percents.back(), 200);
    EXPECT_TRUE(context.failures.empty());

    ProbeEffect empty(context);
    empty.Progress(3, 3, 1); // count / 0 cannot be converted
    ASSERT_EQ(context.failures.size(), 1u);
    EXPECT_EQ(context.failures[0].number(), 6);
}

TEST_F(FrameFixture, RectanglesReachingOutsideThePictureAreDropped) {
    ProbeEffect effect(context);
    const Surface picture = makeVariedPicture(3, 3);
    effect.ImageGetDiBits(picture);
    effect.Invert(ProcessRect{-5, -5, 100, 100});
    EXPECT_TRUE(context.failures.empty());
    EXPECT_EQ(effect.bits().at(2, 2), picture.at(2, 2) ^ 0xFFFFFFu);
}

} // namespace
} // namespace lumiran
