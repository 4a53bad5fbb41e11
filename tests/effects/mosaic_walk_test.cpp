// The block walk of Class_Mosaic: folding of partial blocks, the mean, the
// blend with the block's first pixel, cancelling, and the cell rules.
#include "effects/texture/mosaic/block_walk.h"
#include "effects/texture/mosaic/class_mosaic.h"
#include "texture_fixture.h"

#include <cmath>

namespace lumiran::testing {
namespace {

using M = Class_Mosaic;

// Red grows with the column, green with the row.
Surface ramps(int width, int height) {
    return makePicture(width, height, [](int x, int y) { return makePixel(x * 20, y * 20, 7); });
}

struct MosaicWalk : TextureFixture {
    Surface normal(const Surface& picture, int size, std::uint8_t type = 0,
                   std::optional<ProcessRect> rect = std::nullopt) {
        return run<M>(
            picture,
            [&](M& e, const ProcessRect& r) {
                e.Mosaic_Normal(static_cast<std::uint8_t>(size), static_cast<std::uint8_t>(size),
                                r.left, r.top, r.right, r.bottom, type);
            },
            false, rect);
    }
};

TEST(BlockWalk, FoldAxisFoldsPastTheEndAndSkipsBeforeTheStart) {
    std::vector<int> cells(8);
    mosaic::foldAxis(8, 0, 10, cells);
    EXPECT_EQ(cells, (std::vector<int>{8, 9, 9, 9, 9, 9, 9, 9}));
    mosaic::foldAxis(-3, 0, 10, cells);
    EXPECT_EQ(cells, (std::vector<int>{-1, -1, -1, 0, 1, 2, 3, 4}));
}

TEST_F(MosaicWalk, PartialBlocksFoldOntoTheLastColumnAndRow) {
    // 10 x 10 with blocks of 8: the second block of each axis has two real
    // columns, the last of them counted 7 times of 8: (160 + 7 * 180) / 8 =
    // 177.5, rounded half to even to 178.
    const Surface out = normal(ramps(10, 10), 8);
    EXPECT_EQ(colourAt(out, 3, 3), (Colour{70, 70, 7}));
    EXPECT_EQ(colourAt(out, 8, 0), (Colour{178, 70, 7}));
    EXPECT_EQ(colourAt(out, 9, 9), (Colour{178, 178, 7}));
    EXPECT_EQ(colourAt(out, 0, 9), (Colour{70, 178, 7}));
}

TEST_F(MosaicWalk, ABlockLargerThanThePictureFoldsEverythingOntoOneMean) {
    const Surface picture = ramps(5, 3);
    // Columns 0..3 once, column 4 four times; rows 0, 1 once, row 2 six times.
    const double red = (0 + 20 + 40 + 60 + 4 * 80) / 8.0;
    const double green = (0 + 20 + 6 * 40) / 8.0;
    const Surface out = normal(picture, 8);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(colourAt(out, x, y), (Colour{static_cast<int>(std::nearbyint(red)),
                                                   static_cast<int>(std::nearbyint(green)), 7}));
    }
}

TEST_F(MosaicWalk, BlocksAreLaidFromTheRectangleAndStayInsideIt) {
    const Surface picture = ramps(12, 12);
    const Surface out = normal(picture, 4, 0, ProcessRect{3, 2, 9, 8});
    EXPECT_EQ(out.at(2, 5), picture.at(2, 5));
    EXPECT_EQ(out.at(9, 5), picture.at(9, 5));
    EXPECT_EQ(out.at(5, 8), picture.at(5, 8));
    // The first block covers columns 3..6 and rows 2..5.
    EXPECT_EQ(colourAt(out, 3, 2), (Colour{90, 70, 7}));
    // A rectangle reaching outside the picture is cut to it first.
    const Surface cut = normal(picture, 4, 0, ProcessRect{-5, -5, 30, 30});
    EXPECT_EQ(cut, normal(picture, 4));
}

TEST_F(MosaicWalk, TheBlendUsesTheBlocksFirstSourcePixel) {
    // Means red 85; with "(r + r1) / 2" every pixel blends with the first
    // pixel's 0, not with its own red.
    const Surface picture = makePicture(2, 2, [](int x, int y) {
        const int reds[2][2] = {{0, 100}, {200, 40}};
        return makePixel(reds[y][x], 0, 0);
    });
    context.flags.calculationFlag = 1;
    const Surface out = normal(picture, 2);
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 2; ++x)
            EXPECT_EQ(colourAt(out, x, y)[0], 42) << x << "," << y;
    }
}

TEST_F(MosaicWalk, ACancelLeavesAfterAWholeRowOfBlocks) {
    struct CancelAtFirst : ProgressSink {
        CancelFlag& flag;
        explicit CancelAtFirst(CancelFlag& f) : flag(f) {}
        void showPercent(int) override { flag = 1; }
    } sink(cancel);
    context.progress = &sink;
    context.threading.threads = 1;
    const Surface picture = ramps(8, 8);
    const Surface out = normal(picture, 4);
    EXPECT_EQ(colourAt(out, 7, 3), (Colour{110, 30, 7}));
    EXPECT_EQ(out.at(7, 4), picture.at(7, 4));
}

TEST_F(MosaicWalk, AnEmptyBlockIsTheOverflowError) {
    normal(ramps(4, 4), 0);
    EXPECT_EQ(failureNumbers(), std::vector<int>{6});
    EXPECT_EQ(cancel.load(), 1);
}

struct CellCase {
    const char* what;
    std::function<void(M&, const ProcessRect&)> call;
    int x, y; // a pixel of the first block of 4 x 4 on a grey of 100
    Colour expected;
};

class CellRules : public MosaicWalk, public ::testing::WithParamInterface<CellCase> {};

TEST_P(CellRules, PaintTheCellByItsPlace) {
    const CellCase& c = GetParam();
    const Surface out = run<M>(uniformPicture(8, 8, 100, 100, 100), c.call);
    EXPECT_EQ(colourAt(out, c.x, c.y), c.expected) << c.what;
}

auto normalCall(int type) {
    return [type](M& e, const ProcessRect& r) {
        e.Mosaic_Normal(4, 4, r.left, r.top, r.right, r.bottom, static_cast<std::uint8_t>(type));
    };
}
auto tileCall(int type) {
    return [type](M& e, const ProcessRect& r) {
        e.Mosaic_Tile(4, 4, r.left, r.top, r.right, r.bottom, true,
                      static_cast<std::uint8_t>(type));
    };
}
auto gradation1Call(int type) {
    return [type](M& e, const ProcessRect& r) {
        e.Mosaic_Gradation1(4, 4, r.left, r.top, r.right, r.bottom, 0,
                            static_cast<std::uint8_t>(type));
    };
}
auto gradation2Call(int type) {
    return [type](M& e, const ProcessRect& r) {
        e.Mosaic_Gradation2(4, 4, r.left, r.top, r.right, r.bottom, 0,
                            static_cast<std::uint8_t>(type));
    };
}

INSTANTIATE_TEST_SUITE_P(
    Mosaic, CellRules,
    ::testing::Values(
        CellCase{"normal 1 edge: M + 5 w", normalCall(1), 0, 2, {120, 120, 120}},
        CellCase{"normal 1 inside: M - 3 j", normalCall(1), 3, 2, {91, 91, 91}},
        CellCase{"normal 2 edge: M - 5 w", normalCall(2), 2, 0, {80, 80, 80}},
        CellCase{"normal 2 inside: M + 3 j", normalCall(2), 2, 1, {106, 106, 106}},
        CellCase{"tile 0 edge", tileCall(0), 0, 3, {82, 82, 82}},
        CellCase{"tile 0 at 1", tileCall(0), 3, 1, {118, 118, 118}},
        CellCase{"tile 1 at 1 is white", tileCall(1), 1, 2, {255, 255, 255}},
        // With blocks of 4 only cells 2..3 both ways keep the mean.
        CellCase{"tile 1 inside keeps M", tileCall(1), 2, 3, {100, 100, 100}},
        CellCase{"tile 2 at 2 is white", tileCall(2), 2, 3, {255, 255, 255}},
        CellCase{"tile 2 at 1 is grey", tileCall(2), 3, 1, {128, 128, 128}},
        CellCase{"gradation 1 type 0", gradation1Call(0), 3, 3, {91, 91, 91}},
        CellCase{"gradation 1 type 1", gradation1Call(1), 2, 1, {106, 106, 106}},
        // i + j = 3: round(4.5) = 4, half to even.
        CellCase{"gradation 1 type 2", gradation1Call(2), 2, 1, {96, 96, 96}},
        CellCase{"gradation 1 type 3", gradation1Call(3), 3, 3, {109, 109, 109}},
        // Radial from the centre (2, 2) to the corner's distance sqrt(8).
        CellCase{"gradation 2 type 1 centre white", gradation2Call(1), 2, 2, {255, 255, 255}},
        CellCase{"gradation 2 type 1 corner M", gradation2Call(1), 0, 0, {100, 100, 100}},
        CellCase{"gradation 2 type 2 centre M", gradation2Call(2), 2, 2, {100, 100, 100}},
        CellCase{"gradation 2 type 2 beside", gradation2Call(2), 3, 2, {155, 155, 155}},
        CellCase{"gradation 2 type 3 corner black", gradation2Call(3), 0, 0, {0, 0, 0}},
        CellCase{"gradation 2 type 0 from white", gradation2Call(0), 0, 0, {255, 255, 255}},
        CellCase{"gradation 2 type 5 to black", gradation2Call(5), 1, 3, {0, 0, 0}}),
    [](const auto& param) { return "Case" + std::to_string(param.index); });

} // namespace
} // namespace lumiran::testing
