// The shaped mosaics: the masks drawn on a work picture, and the walks that
// shift, overlap or scatter their blocks.
#include "effects/texture/mosaic/class_mosaic.h"
#include "effects/texture/mosaic/shape_masks.h"
#include "texture_fixture.h"

#include <cstdlib>
#include <functional>
#include <set>

namespace lumiran::testing {
namespace {

using M = Class_Mosaic;
using mosaic::CellMask;

bool paints(const CellMask& mask, int i, int j) {
    return mask.paints(i, j);
}

int paintedCount(const CellMask& mask) {
    int n = 0;
    for (const auto c : mask.cells)
        n += c;
    return n;
}

// Every mask cell where the predicate says it should be painted, and only
// those.
void expectMask(const CellMask& mask, const std::function<bool(int, int)>& inside,
                const char* what) {
    for (int i = 0; i < mask.height; ++i) {
        for (int j = 0; j < mask.width; ++j)
            EXPECT_EQ(paints(mask, i, j), inside(i, j)) << what << " cell " << i << "," << j;
    }
}

TEST(ShapeMasks, TheCircleIsTheDiscOfHalfTheSizeLessTwo) {
    // Centre 6, radius 4: the midpoint disc dx^2 + dy^2 <= r^2 + r.
    expectMask(
        mosaic::shapeMask(12, 0),
        [](int i, int j) { return (i - 6) * (i - 6) + (j - 6) * (j - 6) <= 20; }, "circle");
}

TEST(ShapeMasks, TheFirstLozengeTouchesTheMiddlesOfTheSidesSoThatItTiles) {
    for (const int size : {8, 12, 16}) {
        const int h = size / 2;
        expectMask(
            mosaic::shapeMask(size, 8),
            [h](int i, int j) { return std::abs(i - h) + std::abs(j - h) <= h; }, "lozenge");
    }
}

TEST(ShapeMasks, EachShapeLooksLikeItsName) {
    const int e = 11; // the last cell of a block of 12
    const CellMask pyramid = mosaic::shapeMask(12, 1);
    EXPECT_TRUE(paints(pyramid, 2, 6) && paints(pyramid, 6, 3)) << "faces";
    EXPECT_FALSE(paints(pyramid, 6, 6) || paints(pyramid, 4, 4) || paints(pyramid, 4, 8))
        << "ridges on the diagonals";
    EXPECT_FALSE(paints(pyramid, 0, 0)) << "outside";
    // Triangles: the halves below, above, left of and right of a diagonal.
    const struct {
        int shape;
        int i, j;   // a corner inside
        int oi, oj; // the opposite corner, outside
    } halves[] = {{2, e, 0, 0, e}, {3, 0, e, e, 0}, {4, 0, 0, e, e}, {5, e, e, 0, 0}};
    for (const auto& h : halves) {
        const CellMask mask = mosaic::shapeMask(12, h.shape);
        EXPECT_TRUE(paints(mask, h.i, h.j)) << h.shape;
        EXPECT_FALSE(paints(mask, h.oi, h.oj)) << h.shape;
        EXPECT_NEAR(paintedCount(mask), 78, 12) << h.shape << " covers about half";
    }
    const CellMask up = mosaic::shapeMask(12, 6);
    EXPECT_TRUE(paints(up, 0, 5) && paints(up, e, 0) && paints(up, e, e));
    EXPECT_FALSE(paints(up, 0, 0) || paints(up, 0, e));
    const CellMask down = mosaic::shapeMask(12, 7);
    EXPECT_TRUE(paints(down, e, 5) && paints(down, 0, 0) && paints(down, 0, e));
    EXPECT_FALSE(paints(down, e, 0) || paints(down, e, e));
    // Lozenges: the ring has a hole, the corners shape is the ring's outside.
    const CellMask ring = mosaic::shapeMask(12, 12);
    EXPECT_TRUE(paints(ring, 6, 1) && !paints(ring, 6, 6));
    const CellMask corners = mosaic::shapeMask(12, 13);
    EXPECT_TRUE(paints(corners, 0, 0) && !paints(corners, 6, 6));
    const CellMask smile = mosaic::shapeMask(32, 16);
    EXPECT_TRUE(paints(smile, 16, 16)) << "the face";
    EXPECT_FALSE(paints(smile, 12, 10) || paints(smile, 12, 22)) << "the eyes";
    EXPECT_FALSE(paints(smile, 25, 16)) << "the mouth";
    EXPECT_FALSE(paints(smile, 0, 0)) << "outside";
}

TEST(ShapeMasks, EveryShapeIsDistinctAndUnknownShapesPaintNothing) {
    std::set<std::vector<std::uint8_t>> seen;
    for (int shape = 0; shape <= 16; ++shape) {
        const CellMask mask = mosaic::shapeMask(16, shape);
        EXPECT_GT(paintedCount(mask), 0) << shape;
        EXPECT_TRUE(seen.insert(mask.cells).second) << shape << " repeats another shape";
    }
    EXPECT_EQ(paintedCount(mosaic::shapeMask(16, 17)), 0);
}

// Black and white pixels in a chequer: every mean is grey, so every painted
// pixel changes.
Surface chequer(int width, int height) {
    return makePicture(width, height, [](int x, int y) {
        return (x + y) % 2 == 0 ? makePixel(0, 0, 0) : makePixel(255, 255, 255);
    });
}

int unchanged(const Surface& before, const Surface& after) {
    int n = 0;
    for (std::size_t k = 0; k < before.pixels().size(); ++k)
        n += before.pixels()[k] == after.pixels()[k];
    return n;
}

struct ShapedMosaics : TextureFixture {};

TEST_F(ShapedMosaics, TheCircleLeavesThePictureOutsideItsDisc) {
    const Surface picture = chequer(24, 24);
    const Surface out = run<M>(picture, [](M& e, const ProcessRect& r) {
        e.Mosaic_Circle(12, r.left, r.top, r.right, r.bottom, 0);
    });
    EXPECT_EQ(out.at(12, 12), picture.at(12, 12));
    EXPECT_EQ(colourAt(out, 18, 18), (Colour{128, 128, 128}));
}

TEST_F(ShapedMosaics, OseroLaysStonesByTheBlocksGreyOnTheBoardColour) {
    // A dark block and a bright one; the threshold is 128.
    const Surface picture = makePicture(24, 12, [](int x, int) {
        return x < 12 ? makePixel(40, 40, 40) : makePixel(200, 200, 200);
    });
    const Surface out = run<M>(picture, [](M& e, const ProcessRect& r) {
        e.Mosaic_Osero(12, r.left, r.top, r.right, r.bottom, 128, 0, 128, 64);
    });
    EXPECT_EQ(colourAt(out, 6, 6), (Colour{0, 0, 0}));
    EXPECT_EQ(colourAt(out, 18, 6), (Colour{255, 255, 255}));
    EXPECT_EQ(colourAt(out, 0, 0), (Colour{0, 128, 64}));
    EXPECT_EQ(colourAt(out, 23, 11), (Colour{0, 128, 64}));
}

TEST_F(ShapedMosaics, LozengesAndShippouPiecesTileTheRectangle) {
    const Surface picture = chequer(40, 32);
    const auto lozenge = [](std::uint8_t shape) {
        return [shape](M& e, const ProcessRect& r) {
            e.Mosaic_Lozenge(8, 8, r.left, r.top, r.right, r.bottom, 0, shape);
        };
    };
    const auto shippou = [](std::uint8_t type) {
        return [type](M& e, const ProcessRect& r) {
            e.Mosaic_ShippouTunagi(12, r.left, r.top, r.right, r.bottom, type, 0);
        };
    };
    EXPECT_EQ(unchanged(picture, run<M>(picture, lozenge(0), true)), 0) << "lozenges tile";
    const int gaps = unchanged(picture, run<M>(picture, lozenge(1), true));
    EXPECT_GT(gaps, 40 * 32 / 5) << "the circle gap mosaic leaves the gaps";
    // Stars and petals together leave only stray pixels where the drawn
    // circles just miss; the stars alone leave the petals.
    const int pieces = unchanged(picture, run<M>(picture, shippou(0), true));
    const int starsAlone = unchanged(picture, run<M>(picture, shippou(1), true));
    EXPECT_LT(pieces, 40 * 32 / 20);
    EXPECT_GT(starsAlone, 40 * 32 / 5);
}

TEST_F(ShapedMosaics, TheGapMosaicShiftsEveryOtherRowOrColumnByHalfABlock) {
    const Surface ramp =
        makePicture(32, 32, [](int x, int y) { return makePixel(x * 7, y * 7, 0); });
    const auto blick = [&](bool columns) {
        return run<M>(ramp, [columns](M& e, const ProcessRect& r) {
            e.Mosaic_Blick(8, 8, r.left, r.top, r.right, r.bottom, columns, 0);
        });
    };
    const Surface rows = blick(false);
    EXPECT_NE(rows.at(7, 0), rows.at(8, 0));
    EXPECT_EQ(rows.at(3, 8), rows.at(0, 8)) << "a half block at the left of row 1";
    EXPECT_NE(rows.at(3, 8), rows.at(4, 8));
    EXPECT_EQ(rows.at(7, 8), rows.at(8, 8));
    const Surface columns = blick(true);
    EXPECT_NE(columns.at(8, 3), columns.at(8, 4));
    EXPECT_EQ(columns.at(8, 7), columns.at(8, 8));
    EXPECT_NE(columns.at(0, 7), columns.at(0, 8));
}

TEST_F(ShapedMosaics, RandomBlocksDrawTwoNumbersEachAndRepeatFromAFreshGenerator) {
    const Surface picture = chequer(20, 12);
    const auto scatter = [](M& e, const ProcessRect& r) {
        e.Mosaic_Random(4, 4, r.left, r.top, r.right, r.bottom, 0);
    };
    const Surface first = run<M>(picture, scatter);
    RandomGenerator expected;
    for (int draw = 0; draw < 2 * 5 * 3; ++draw)
        (void)expected.next();
    EXPECT_EQ(random.state(), expected.state());
    random = RandomGenerator();
    EXPECT_EQ(run<M>(picture, scatter), first);
    EXPECT_NE(first, picture);
}

TEST_F(ShapedMosaics, TheReliefIsLitFromTheLightsSide) {
    const Surface grey = uniformPicture(24, 24, 100, 100, 100);
    // Light from the right and above the picture.
    const Surface blocks = run<M>(grey, [](M& e, const ProcessRect& r) {
        e.Mosaic_GradShading(12, r.left, r.top, r.right, r.bottom, 0, 10, 0, 10, 128, 32);
    });
    EXPECT_GT(colourAt(blocks, 10, 6)[0], colourAt(blocks, 1, 6)[0] + 20);
    const Surface pixels = run<M>(grey, [](M& e, const ProcessRect& r) {
        e.ShadingTexture2(12, r.left, r.top, r.right, r.bottom, 1, 10, 0, 10, 128, 32);
    });
    EXPECT_GT(colourAt(pixels, 10, 6)[0], colourAt(pixels, 1, 6)[0] + 20);
    // Without light only the ambient term is left.
    const Surface dark = run<M>(grey, [](M& e, const ProcessRect& r) {
        e.Mosaic_GradShading(12, r.left, r.top, r.right, r.bottom, 0, 0, 0, 0, 128, 32);
    });
    EXPECT_EQ(colourAt(dark, 5, 5), (Colour{32, 32, 32}));
}

} // namespace
} // namespace lumiran::testing
