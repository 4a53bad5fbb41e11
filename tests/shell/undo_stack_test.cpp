#include "shell/undo_stack.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran {
namespace {

// A document whose picture and name tell which push it was.
Document numbered(int n) {
    Document d;
    d.picture = Surface(n, 1, makePixel(n, n, n));
    d.folderLabel = "/pictures/";
    d.nameLabel = "p" + std::to_string(n) + ".bmp";
    return d;
}

int pictureNumber(const Document& d) {
    return d.picture.width();
}

TEST(UndoStack, DefaultLimitKeepsFourLevelsInFiveSlots) {
    UndoStack undo(5);
    for (int n = 1; n <= 5; ++n)
        undo.PushUndo(numbered(n));
    EXPECT_EQ(undo.UndoCount(), 4);
    for (std::size_t i = 0; i < 5; ++i) {
        ASSERT_TRUE(undo.slot(i).has_value()) << i;
        EXPECT_EQ(undo.slot(i)->picture.width(), static_cast<int>(5 - i));
    }
    Document active = numbered(99);
    for (int expected = 5; expected >= 2; --expected) {
        ASSERT_TRUE(undo.PopUndo(active));
        EXPECT_EQ(pictureNumber(active), expected);
        EXPECT_EQ(active.caption(), "/pictures/p" + std::to_string(expected) + ".bmp");
    }
    EXPECT_EQ(undo.UndoCount(), 0);
    EXPECT_FALSE(undo.PopUndo(active)); // a fifth pop does nothing
    EXPECT_EQ(pictureNumber(active), 2);
}

TEST(UndoStack, LimitOfOneReplacesTheOnlyLevel) {
    UndoStack undo(1);
    undo.PushUndo(numbered(1));
    undo.PushUndo(numbered(2));
    EXPECT_EQ(undo.UndoCount(), 1);
    Document active;
    ASSERT_TRUE(undo.PopUndo(active));
    EXPECT_EQ(pictureNumber(active), 2);
    EXPECT_FALSE(undo.PopUndo(active));
}

TEST(UndoStack, ALevelTakesItsNameIntoAnotherDocument) {
    UndoStack undo;
    undo.PushUndo(numbered(3));
    EXPECT_EQ(undo.lastCaption(), "/pictures/p3.bmp");
    Document other = numbered(8);
    other.nameLabel = "other.bmp";
    ASSERT_TRUE(undo.PopUndo(other));
    EXPECT_EQ(other.nameLabel, "p3.bmp");
    EXPECT_EQ(pictureNumber(other), 3);
}

TEST(UndoStack, ReleasingForgetsEveryLevel) {
    UndoStack undo;
    undo.PushUndo(numbered(1));
    undo.PushUndo(numbered(2));
    undo.release();
    Document active = numbered(7);
    EXPECT_FALSE(undo.PopUndo(active));
    EXPECT_EQ(pictureNumber(active), 7);
}

TEST(UndoStack, ANewLimitKeepsTheNewestLevelsThatFit) {
    UndoStack undo(5);
    for (int n = 1; n <= 4; ++n)
        undo.PushUndo(numbered(n));
    undo.setMaxUndoCount(3);
    EXPECT_EQ(undo.UndoCount(), 2);
    Document active;
    ASSERT_TRUE(undo.PopUndo(active));
    EXPECT_EQ(pictureNumber(active), 4);
    ASSERT_TRUE(undo.PopUndo(active));
    EXPECT_EQ(pictureNumber(active), 3);
    EXPECT_FALSE(undo.PopUndo(active));
}

} // namespace
} // namespace lumiran
