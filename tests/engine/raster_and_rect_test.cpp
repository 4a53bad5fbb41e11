#include "engine/process_rect.h"
#include "engine/raster_step.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

using testing::makeVariedPicture;

TEST(RasterStep, XorOfAnUnchangedResultPaintsTheRectangleBlack) {
    Surface document = makeVariedPicture(8, 6);
    const Surface result = document;
    rasterStep(7, result, document, ProcessRect{2, 1, 5, 4});
    for (int y = 0; y < 6; ++y) {
        for (int x = 0; x < 8; ++x) {
            const bool inside = x >= 2 && x < 5 && y >= 1 && y < 4;
            EXPECT_EQ(document.at(x, y) & 0xFFFFFF, inside ? 0u : result.at(x, y) & 0xFFFFFF)
                << x << "," << y;
        }
    }
}

TEST(RasterStep, FlagsAboveTenLeaveTheDocumentUnchanged) {
    Surface document = makeVariedPicture(5, 5);
    const Surface before = document;
    const Surface result(5, 5, makePixel(1, 2, 3));
    rasterStep(11, result, document, ProcessRect::wholePicture(5, 5));
    rasterStep(255, result, document, ProcessRect::wholePicture(5, 5));
    EXPECT_EQ(document, before);
}

TEST(RasterStep, EachFlagCombinesBitByBit) {
    const Pixel d = makePixel(0xF0, 0xCC, 0xAA);
    const Pixel s = makePixel(0x0F, 0xAA, 0xCC);
    const Pixel expected[] = {s,        d | s, d & s,    ~(d & s), d & ~s, d | ~s,
                              ~(d | s), d ^ s, ~(d ^ s), s & ~d,   s | ~d};
    for (std::uint8_t flag = 0; flag <= 10; ++flag) {
        Surface document(1, 1, d);
        rasterStep(flag, Surface(1, 1, s), document, ProcessRect{0, 0, 1, 1});
        EXPECT_EQ(document.at(0, 0) & 0xFFFFFF, expected[flag] & 0xFFFFFF) << int(flag);
    }
}

TEST(RasterStep, RectanglesBeyondThePictureAreClipped) {
    Surface document(4, 4, makePixel(9, 9, 9));
    const Surface result(4, 4, makePixel(1, 1, 1));
    rasterStep(0, result, document, ProcessRect{-3, 2, 100, 100});
    EXPECT_EQ(document.at(0, 1), makePixel(9, 9, 9));
    EXPECT_EQ(document.at(3, 3), makePixel(1, 1, 1));
    rasterStep(0, result, document, ProcessRect{3, 0, 1, 4}); // left above right
    EXPECT_EQ(document.at(2, 0), makePixel(9, 9, 9));
}

TEST(ProcessRectangle, WithoutAnAreaTheWholePictureIsTaken) {
    const auto d = fixProcessRectangle(0, AreaRect{5, 5, 9, 9}, 40, 30);
    EXPECT_EQ(d.rect, (ProcessRect{0, 0, 40, 30}));
    EXPECT_TRUE(d.resetAreas);
    EXPECT_FALSE(d.endTool);
    EXPECT_EQ(fixProcessRectangle(1, AreaRect{5, 5, 9, 9}, 40, 30).rect,
              (ProcessRect{0, 0, 40, 30}));
}

TEST(ProcessRectangle, ADragInEitherDirectionGivesTheSameRectangle) {
    const auto forward = fixProcessRectangle(3, AreaRect{4, 6, 20, 18}, 40, 30);
    const auto backward = fixProcessRectangle(3, AreaRect{20, 18, 4, 6}, 40, 30);
    EXPECT_EQ(forward.rect, (ProcessRect{4, 6, 20, 18}));
    EXPECT_EQ(backward.rect, forward.rect);
    EXPECT_FALSE(forward.endTool);
    EXPECT_FALSE(forward.resetAreas);
}

TEST(ProcessRectangle, ZeroWidthOrHeightTakesTheWholePictureAndEndsTheTool) {
    for (const AreaRect area : {AreaRect{7, 2, 7, 20}, AreaRect{2, 9, 30, 9}}) {
        const auto d = fixProcessRectangle(3, area, 40, 30);
        EXPECT_EQ(d.rect, (ProcessRect{0, 0, 40, 30}));
        EXPECT_TRUE(d.endTool);
    }
}

TEST(ProcessRectangle, CornersOutsideThePictureAreCut) {
    const auto d = fixProcessRectangle(3, AreaRect{-10, -4, 55, 31}, 40, 30);
    EXPECT_EQ(d.rect, (ProcessRect{0, 0, 40, 30}));
    // Wholly to the right: left stays beyond the cut right edge, so nothing runs.
    const auto outside = fixProcessRectangle(3, AreaRect{50, 5, 60, 10}, 40, 30);
    EXPECT_GT(outside.rect.left, outside.rect.right);
}

TEST(ProcessRectangle, RunningToolsAreEndedFirst) {
    EXPECT_TRUE(fixProcessRectangle(2, AreaRect{1, 1, 5, 5}, 9, 9).endRunningTool);
    EXPECT_TRUE(fixProcessRectangle(4, AreaRect{1, 1, 5, 5}, 9, 9).endRunningTool);
    EXPECT_FALSE(fixProcessRectangle(3, AreaRect{1, 1, 5, 5}, 9, 9).endRunningTool);
}

TEST(ProcessRectangle, OnlyTheLowSixteenBitsOfTheAreaCount) {
    // 65536 + 10 keeps 10.
    const auto d = fixProcessRectangle(3, AreaRect{2, 3, 65546, 12}, 40, 30);
    EXPECT_EQ(d.rect, (ProcessRect{2, 3, 10, 12}));
}

} // namespace
} // namespace lumiran
