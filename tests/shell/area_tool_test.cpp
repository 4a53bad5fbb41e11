#include "effects/colour/class_color_op.h"
#include "engine/drawing/pixel_calls.h"
#include "shell/area_tool.h"
#include "shell/effect_run.h"
#include "shell/string_table.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

using testing::makeVariedPicture;

struct AreaToolTest : ::testing::Test {
    ProgramState state;
    Document document;

    void SetUp() override { document.picture = makeVariedPicture(40, 30); }

    void drag(int x0, int y0, int x1, int y1) {
        toolMouseDown(state, document, PointerButton::Left, x0, y0);
        toolMouseMove(document, (x0 + x1) / 2, (y0 + y1) / 2);
        toolMouseUp(state, document, x1, y1);
    }
    void drawArea(int x0, int y0, int x1, int y1) {
        ToolsNo_Click(state, document, tools_menu::Select);
        drag(x0, y0, x1, y1);
    }
};

TEST_F(AreaToolTest, ADragEndingOutsideThePictureEndsAtItsBorder) {
    struct Case {
        int endX, endY;
        AreaRect area;
    };
    const Case cases[] = {
        {100, 12, {5, 6, 40, 12}}, // past the right side
        {12, 30, {5, 6, 12, 30}},  // exactly at the bottom edge
        {-7, -1, {5, 6, 0, 0}},    // left of and above the picture
        {0, 1, {5, 6, 0, 1}},      // on the border values themselves
    };
    for (const Case& c : cases) {
        drawArea(5, 6, c.endX, c.endY);
        EXPECT_EQ(document.ToolsFlag, tools::AreaDrawn);
        EXPECT_EQ(document.area, c.area) << c.endX << "," << c.endY;
    }
}

TEST_F(AreaToolTest, AnEffectRunsOnTheNormalisedAreaAndFixesIt) {
    drawArea(30, 20, 10, 5); // right to left, bottom to top
    EXPECT_EQ(document.area, (AreaRect{30, 20, 10, 5}));
    const Surface before = document.picture;
    runEffect(state, document, [](EffectInvocation& run) {
        Class_ColorOp effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        effect.Gray_Effect(1, run.rect.left, run.rect.top, run.rect.right, run.rect.bottom);
        effect.ImageSetDiBits(run.keptPicture1);
    });
    EXPECT_EQ(document.ToolsFlag, tools::AreaFixed);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 30 && y >= 5 && y < 20;
            const Pixel p = before.at(x, y);
            const Pixel expected = inside ? makePixel(redOf(p), redOf(p), redOf(p)) : p;
            ASSERT_EQ(document.picture.at(x, y) & 0xFFFFFF, expected & 0xFFFFFF) << x << "," << y;
        }
    }
}

TEST_F(AreaToolTest, OnlyTheFirstDropOfAMovedAreaTakesASnapshot) {
    const Surface original = document.picture;
    drawArea(0, 0, 4, 3);
    ASSERT_EQ(ToolsNo_Click(state, document, tools_menu::MoveArea).status.has_value(), true);
    EXPECT_EQ(document.ToolsFlag, tools::ReadyToMove);

    // Take hold at (1, 1) and drop so the area's corner lands at (10, 12).
    toolMouseDown(state, document, PointerButton::Left, 1, 1);
    EXPECT_EQ(document.ToolsFlag, tools::Moving);
    toolMouseMove(document, 5, 5);
    EXPECT_EQ(document.picture, original); // nothing is laid before the drop
    const ToolStep drop = toolMouseUp(state, document, 11, 13);
    EXPECT_TRUE(drop.pictureChanged);
    EXPECT_EQ(document.ToolsFlag, tools::ReadyToMove);
    EXPECT_EQ(document.area, (AreaRect{10, 12, 14, 15}));
    EXPECT_EQ(state.undo.UndoCount(), 1);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(document.picture.at(10 + x, 12 + y), original.at(x, y));
    }

    toolMouseDown(state, document, PointerButton::Left, 11, 13);
    toolMouseUp(state, document, 21, 13);
    EXPECT_EQ(state.undo.UndoCount(), 1);
    EXPECT_EQ(document.picture.at(20, 12), original.at(0, 0));

    ASSERT_TRUE(state.undo.PopUndo(document));
    EXPECT_EQ(document.picture, original);
}

TEST_F(AreaToolTest, AnAreaDroppedPartlyOutsideIsCutToThePicture) {
    const Surface original = document.picture;
    drawArea(0, 0, 6, 6);
    ToolsNo_Click(state, document, tools_menu::MoveArea);
    toolMouseDown(state, document, PointerButton::Left, 0, 0);
    toolMouseUp(state, document, 37, -2); // three columns and two rows stick out
    EXPECT_EQ(document.area, (AreaRect{37, 0, 40, 4}));
    EXPECT_EQ(document.drag, document.area);
    EXPECT_EQ(document.picture.at(37, 0), original.at(0, 2));
    // Taken again at the cut corner and moved: the rectangle keeps its cut
    // size and the whole lifted picture is laid at its corner.
    toolMouseDown(state, document, PointerButton::Left, 37, 0);
    toolMouseUp(state, document, 20, 10);
    EXPECT_EQ(document.area, (AreaRect{20, 10, 23, 14}));
    EXPECT_EQ(document.picture.at(20, 10), original.at(0, 0));
    EXPECT_EQ(document.picture.at(25, 15), original.at(5, 5));
}

TEST_F(AreaToolTest, ADrawnAreaIsKeptWhileARunHoldsTheProgram) {
    drawArea(2, 3, 9, 8);
    state.ProcessingFlag = 1;
    toolMouseDown(state, document, PointerButton::Left, 20, 20);
    EXPECT_EQ(document.ToolsFlag, tools::AreaDrawn);
    EXPECT_FALSE(document.DragFlag);
    state.ProcessingFlag = 0;
    toolMouseDown(state, document, PointerButton::Left, 20, 20);
    EXPECT_EQ(document.ToolsFlag, tools::Selecting);
    EXPECT_TRUE(document.DragFlag);
}

TEST_F(AreaToolTest, LiftingReadsOnlyInsideAPictureThatBecameSmaller) {
    drawArea(5, 5, 40, 30);
    ToolsNo_Click(state, document, tools_menu::FixArea);
    document.picture = makeVariedPicture(20, 10); // an undo to a smaller picture
    ToolsNo_Click(state, document, tools_menu::MoveArea);
    EXPECT_EQ(state.keep.SelectAreaImage.width(), 15);
    EXPECT_EQ(state.keep.SelectAreaImage.height(), 5);

    // Wholly outside now: nothing to lift, the state stays.
    drawArea(25, 15, 40, 30);
    ToolsNo_Click(state, document, tools_menu::MoveArea);
    EXPECT_EQ(document.ToolsFlag, tools::AreaDrawn);
}

TEST_F(AreaToolTest, FillStopsAtColourBoundariesAndIsUndoneInOneStep) {
    // Two white regions apart by a black column; a black pixel touches the
    // left region only at a corner.
    document.picture = Surface(9, 5, makePixel(255, 255, 255));
    for (int y = 0; y < 5; ++y)
        document.picture.at(4, y) = makePixel(0, 0, 0);
    const Surface before = document.picture;
    state.flags.drawingColor = {10, 200, 30};
    ToolsNo_Click(state, document, tools_menu::FillArea);
    const ToolStep step = toolMouseDown(state, document, PointerButton::Left, 1, 2);
    EXPECT_TRUE(step.pictureChanged);
    EXPECT_EQ(state.undo.UndoCount(), 1);
    EXPECT_EQ(GetPixel(document.picture, 0, 0), RGB(10, 200, 30));
    EXPECT_EQ(GetPixel(document.picture, 3, 4), RGB(10, 200, 30));
    EXPECT_EQ(GetPixel(document.picture, 4, 2), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(document.picture, 5, 2), RGB(255, 255, 255));
    EXPECT_EQ(document.ToolsFlag, tools::Fill);
    ASSERT_TRUE(state.undo.PopUndo(document));
    EXPECT_EQ(document.picture, before);
    EXPECT_EQ(state.undo.UndoCount(), 0);
}

TEST_F(AreaToolTest, AnEmptyAreaRunsOnTheWholePictureAndEndsTheTool) {
    drawArea(7, 7, 7, 20);
    const RunReport report = runEffect(state, document, [](EffectInvocation& run) {
        EXPECT_EQ(run.rect, ProcessRect::wholePicture(40, 30));
    });
    EXPECT_EQ(report.outcome, RunOutcome::Applied);
    EXPECT_EQ(document.ToolsFlag, tools::None);
    EXPECT_EQ(toolStatusText(document), LoadResString(5093));
}

} // namespace
} // namespace lumiran
