#include "effects/colour/class_color_op.h"
#include "shell/effect_run.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

using testing::makeVariedPicture;

// The body OK runs for Monotone with a kind.
EffectBody grayBody(std::uint8_t kind) {
    return [kind](EffectInvocation& run) {
        Class_ColorOp effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        effect.Gray_Effect(kind, run.rect.left, run.rect.top, run.rect.right, run.rect.bottom);
        effect.ImageSetDiBits(run.keptPicture1);
    };
}

class CancelAtRow : public ProgressSink {
  public:
    CancelAtRow(CancelFlag& cancel, int row) : cancel_(cancel), row_(row) {}
    void showPercent(int) override {
        if (++calls_ == row_) cancel_ = 1;
    }

  private:
    CancelFlag& cancel_;
    int row_;
    int calls_ = 0;
};

struct EffectRunTest : ::testing::Test {
    ProgramState state;
    Document document;

    void SetUp() override {
        document.picture = makeVariedPicture(12, 9);
        document.folderLabel = "/tmp/";
        document.nameLabel = "a.bmp";
    }
};

TEST_F(EffectRunTest, AnAppliedRunChangesTheWholePictureAndTakesOneLevel) {
    const Surface before = document.picture;
    const RunReport report = runEffect(state, document, grayBody(1));
    EXPECT_EQ(report.outcome, RunOutcome::Applied);
    EXPECT_EQ(state.undo.UndoCount(), 1);
    const Pixel p = before.at(5, 5);
    EXPECT_EQ(document.picture.at(5, 5) & 0xFFFFFF, makePixel(redOf(p), redOf(p), redOf(p)));
    // The run resets the document's rectangles to the whole picture.
    EXPECT_EQ(document.area, (AreaRect{0, 0, 12, 9}));
    EXPECT_TRUE(state.keep.keptPicture0.empty());
    EXPECT_EQ(state.ProcessingFlag, 0);

    ASSERT_TRUE(state.undo.PopUndo(document));
    EXPECT_EQ(document.picture, before);
}

TEST_F(EffectRunTest, CancelOnTheLastRowStillDiscardsTheResult) {
    state.undo.PushUndo(document); // an older level, to see the count come back
    const Surface before = document.picture;
    CancelAtRow sink(state.cancelFlag, document.picture.height());
    const RunReport report = runEffect(state, document, grayBody(0), &sink);
    EXPECT_EQ(report.outcome, RunOutcome::Cancelled);
    EXPECT_EQ(document.picture, before);
    EXPECT_EQ(state.undo.UndoCount(), 1);
    EXPECT_EQ(state.cancelFlag, 0);
}

TEST_F(EffectRunTest, AFailedEffectIsReportedAndRestoresThePicture) {
    const Surface before = document.picture;
    const RunReport report =
        runEffect(state, document, [](EffectInvocation&) { throw EffectError::overflow(); });
    EXPECT_EQ(report.outcome, RunOutcome::Cancelled);
    ASSERT_EQ(report.failures.size(), 1u);
    EXPECT_EQ(report.failures[0].number(), 6);
    EXPECT_EQ(document.picture, before);
    EXPECT_EQ(state.undo.UndoCount(), 0);
}

TEST_F(EffectRunTest, ASelectionConfinesTheEffectAndTheRasterStep) {
    document.ToolsFlag = 3;
    document.area = AreaRect{8, 6, 2, 1}; // drawn from bottom right
    const Surface before = document.picture;
    state.flags.rasterOpFlag = 7;
    runEffect(state, document, [](EffectInvocation& run) {
        EXPECT_EQ(run.rect, (ProcessRect{2, 1, 8, 6}));
        run.keptPicture1 = run.keptPicture0; // an effect that changes nothing
    });
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 12; ++x) {
            const bool inside = x >= 2 && x < 8 && y >= 1 && y < 6;
            EXPECT_EQ(document.picture.at(x, y) & 0xFFFFFF,
                      inside ? 0u : before.at(x, y) & 0xFFFFFF);
        }
    }
    EXPECT_EQ(document.ToolsFlag, 3);
}

TEST_F(EffectRunTest, AnEmptySelectionTakesTheWholePictureAndEndsTheTool) {
    document.ToolsFlag = 2;
    document.area = AreaRect{4, 4, 4, 7};
    EffectRun run(state, document);
    EXPECT_EQ(run.rect(), (ProcessRect{0, 0, 12, 9}));
    EXPECT_EQ(document.ToolsFlag, 0);
}

TEST_F(EffectRunTest, ACancelledRunWithoutSnapshotAndNoLevelsKeepsThePicture) {
    const Surface before = document.picture;
    EffectRun run(state, document, RunOptions{.noUndo = true});
    run.execute([](EffectInvocation& inv) { inv.context.requestCancel(); });
    EXPECT_EQ(run.finish(), RunOutcome::Cancelled);
    EXPECT_EQ(document.picture, before);
    EXPECT_EQ(state.undo.UndoCount(), 0);
}

TEST_F(EffectRunTest, TheDocumentIsUntouchedUntilFinish) {
    const Surface before = document.picture;
    EffectRun run(state, document);
    run.execute(grayBody(3));
    EXPECT_EQ(document.picture, before);
    EXPECT_EQ(state.ProcessingFlag, 1);
    EXPECT_EQ(run.finish(), RunOutcome::Applied);
    EXPECT_NE(document.picture, before);
}

} // namespace
} // namespace lumiran
