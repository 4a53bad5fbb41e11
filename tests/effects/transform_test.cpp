// Class_Transform: the shape of the strips each kind leaves, the
// background kinds, and Class_Geometry's blit warps, which draw the same way.
#include "effects/geometry/transform/class_transform.h"
#include "engine/drawing/colour_ref.h"
#include "geometry_fixture.h"

#include <algorithm>
#include <functional>

namespace lumiran::testing {
namespace {

using G = Class_Geometry;

const Pixel Back = makePixel(1, 2, 3);

struct TransformFixture : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    // Kept picture 1 after the call; it starts black, the background colour
    // is (1, 2, 3).
    Surface run(const Surface& picture, const std::function<void(Class_Transform&)>& call) {
        Surface kept0 = picture;
        Surface kept1(picture.width(), picture.height());
        context.kept0 = &kept0;
        context.kept1 = &kept1;
        context.flags.backColor = {1, 2, 3};
        Class_Transform effect(context);
        call(effect);
        return kept1;
    }

    // Where the picture lies in each row: first column and count; the
    // rest of the row must be background.
    static std::pair<int, int> runOf(const Surface& s, int y) {
        int first = -1, count = 0;
        for (int x = 0; x < s.width(); ++x) {
            if ((s.at(x, y) & 0xFFFFFF) == Back) continue;
            if (first < 0) first = x;
            ++count;
        }
        return {first, count};
    }
};

TEST_F(TransformFixture, TrapezoidRowsGrowFromHalfToWholeWithTheNarrowEdgeByKind) {
    const Surface picture = positionPicture(16, 8);
    for (const std::uint8_t kind : {0, 1}) {
        const Surface s = run(picture, [&](Class_Transform& e) {
            e.Transform_TrapzoidHorizontal(kind, 0, 0, 16, 8, 1, 1, 2, 3);
        });
        const int narrow = kind == 0 ? 0 : 7, wide = kind == 0 ? 7 : 0;
        EXPECT_EQ(runOf(s, narrow), (std::pair{4, 8})) << int{kind};
        EXPECT_EQ(runOf(s, wide), (std::pair{0, 16})) << int{kind};
        // The narrow row is the whole source row squeezed: its ends stay.
        EXPECT_EQ(placeOf(s.at(4, narrow)).x, 1);
        EXPECT_EQ(placeOf(s.at(11, narrow)).x, 15);
    }
}

TEST_F(TransformFixture, EllipseRowsFollowTheShapeSymmetrically) {
    const Surface picture = positionPicture(20, 12);
    const Surface s = run(
        picture, [](Class_Transform& e) { e.Transform_Ellipse(ShapeEllipse, 0, 0, 20, 12, 1); });
    EXPECT_EQ(runOf(s, 5).second, 20);
    EXPECT_LT(runOf(s, 0).second, 10);
    for (int y = 0; y < 6; ++y)
        EXPECT_EQ(runOf(s, y), runOf(s, 11 - y)) << y;
    // Columns instead of rows with ByColumns: the middle column is whole.
    const Surface c = run(picture, [](Class_Transform& e) {
        e.Transform_Ellipse(ShapeLozenge | ByColumns, 0, 0, 20, 12, 1);
    });
    EXPECT_NE(c.at(10, 0) & 0xFFFFFF, Back);
    EXPECT_EQ(c.at(0, 0) & 0xFFFFFF, Back);
}

TEST_F(TransformFixture, TrianglesNarrowToTheirApex) {
    const Surface picture = positionPicture(16, 8);
    const Surface first = run(picture, [](Class_Transform& e) {
        e.Transform_Ellipse(ShapeTriangleApexFirst, 0, 0, 16, 8, 1);
    });
    const Surface last = run(picture, [](Class_Transform& e) {
        e.Transform_Ellipse(ShapeTriangleApexLast, 0, 0, 16, 8, 1);
    });
    for (int y = 0; y < 8; ++y) {
        EXPECT_EQ(runOf(first, y), runOf(last, 7 - y)) << y;
        if (y > 0) {
            EXPECT_GE(runOf(first, y).second, runOf(first, y - 1).second) << y;
        }
    }
    EXPECT_EQ(runOf(first, 0).second, 0);
    EXPECT_EQ(runOf(first, 7).second, 16);
}

TEST_F(TransformFixture, BackgroundKindZeroLeavesThePictureWhereTheShapeDoesNot) {
    const Surface picture = positionPicture(20, 12);
    const Surface s = run(
        picture, [](Class_Transform& e) { e.Transform_Ellipse(ShapeHexagon, 0, 0, 20, 12, 0); });
    EXPECT_EQ(s.at(0, 0), picture.at(0, 0));
}

TEST_F(TransformFixture, CrossSlidesTheHalvesOfEachColumnPastEachOther) {
    const Surface picture = positionPicture(24, 16);
    const Surface crossing =
        run(picture, [](Class_Transform& e) { e.Transform_Cross(2, 0, 0, 24, 16, -1); });
    // The first group of columns has offset 0; the last has the halves
    // swapped: the upper half moved down by about a half.
    EXPECT_EQ(placeOf(crossing.at(0, 3)), (SourcePlace{0, 3}));
    EXPECT_EQ(placeOf(crossing.at(0, 12)), (SourcePlace{0, 12}));
    // The last group of three columns has offset 7: the upper half lies on
    // rows 7..14, the lower half over it on rows 1..8.
    EXPECT_EQ(placeOf(crossing.at(23, 14)), (SourcePlace{23, 7}));
    EXPECT_EQ(placeOf(crossing.at(23, 3)), (SourcePlace{23, 10}));
    EXPECT_EQ(crossing.at(23, 15) & 0xFFFFFF, Back);
    const Surface parting =
        run(picture, [](Class_Transform& e) { e.Transform_Cross(3, 0, 0, 24, 16, -1); });
    EXPECT_EQ(parting.at(23, 7) & 0xFFFFFF, Back);
}

// A run hands kept picture 1 over unmade; the row kinds then make every
// row themselves, on several threads. The picture must be the one drawn
// over kept picture 1 filled as the run fills it, spare bytes and all.
TEST_F(TransformFixture, CrossMakesAnUnmadeTargetAsOverTheRunsFill) {
    const Surface picture = positionPicture(29, 21);
    context.threading.threads = 3;
    context.threading.bandPixels = 1;
    context.flags.backColor = {1, 2, 3};
    struct Case {
        std::uint8_t kind;
        ProcessRect rect;
    };
    for (const Case& c : {Case{0, {0, 0, 29, 21}}, Case{1, {0, 0, 29, 21}}, Case{0, {3, 4, 20, 17}},
                          Case{1, {6, 0, 29, 9}}, Case{2, {0, 0, 29, 21}}, Case{3, {2, 5, 27, 21}},
                          Case{7, {0, 0, 29, 21}}}) {
        const auto draw = [&](Surface kept1) {
            Surface kept0 = picture;
            context.kept0 = &kept0;
            context.kept1 = &kept1;
            Class_Transform effect(context);
            effect.Transform_Cross(c.kind, c.rect.left, c.rect.top, c.rect.right, c.rect.bottom,
                                   -1);
            return kept1;
        };
        const Surface filled = draw(Surface(29, 21, toPixel(context.flags.backColor)));
        const Surface unmade = draw(Surface());
        ASSERT_TRUE(context.failures.empty());
        ASSERT_TRUE(unmade.sameSize(filled)) << int{c.kind};
        EXPECT_TRUE(std::ranges::equal(unmade.elements(), filled.elements()))
            << "kind " << int{c.kind} << " rect " << c.rect.left << "," << c.rect.top;
    }
}

TEST_F(TransformFixture, CrossOnOnePixelEndsAsOverflow) {
    run(positionPicture(1, 1), [](Class_Transform& e) { e.Transform_Cross(0, 0, 0, 1, 1, -1); });
    ASSERT_EQ(context.failures.size(), 1u);
    EXPECT_EQ(context.failures.front().number(), EffectError::OverflowNumber);
    EXPECT_EQ(cancel, 1);
}

TEST_F(GeometryFixture, SineWarpMovesWholeColumnsAndLeavesTheUncoveredAsItWas) {
    const Surface picture = positionPicture(20, 30);
    const Surface target(20, 30, makePixel(9, 9, 9));
    // Amplitude 5, period 20: column 5 (a quarter period) drops by 5.
    const Surface s = drawn(picture, target, [](G& e, const ProcessRect& r) {
        e.Wave_Sin(0, 5, 20, 0, 0, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(placeOf(s.at(5, 10)), (SourcePlace{5, 5}));
    EXPECT_EQ(s.at(5, 2), makePixel(9, 9, 9));
    EXPECT_EQ(placeOf(s.at(0, 10)), (SourcePlace{0, 10}));
    // Odd modes move rows.
    const Surface rows = drawn(picture, target, [](G& e, const ProcessRect& r) {
        e.Wave_Sin(0, 5, 20, 1, 0, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(placeOf(rows.at(10, 5)), (SourcePlace{5, 5}));
}

// A strip lands on row (column) round(v) of the picture, not round(v) below
// the rectangle's top (right of its left): a selection lower down moves up.
TEST_F(GeometryFixture, SineWarpPutsEachStripAtTheWaveValueItself) {
    const Surface picture = positionPicture(20, 30);
    const Surface target(20, 30, makePixel(9, 9, 9));
    struct Case {
        std::uint8_t mode;
        ProcessRect rect;
        int x, y;
        SourcePlace from;
    };
    // Amplitude 5, period 20: strip 5 (a quarter period) lands at 5.
    const Case cases[] = {{0, {0, 10, 20, 30}, 5, 5, {5, 10}},
                          {0, {0, 10, 20, 30}, 5, 24, {5, 29}},
                          {1, {10, 0, 20, 30}, 5, 5, {10, 5}},
                          {1, {10, 0, 20, 30}, 14, 5, {19, 5}}};
    for (const Case& c : cases) {
        const ProcessRect& r = c.rect;
        const Surface s = drawn(picture, target, [&](G& e, const ProcessRect&) {
            e.Wave_Sin(0, 5, 20, c.mode, 0, r.left, r.top, r.right, r.bottom);
        });
        EXPECT_EQ(placeOf(s.at(c.x, c.y)), c.from) << "mode " << int{c.mode} << " at " << c.x;
    }
}

Surface transposed(const Surface& s) {
    return makePicture(s.height(), s.width(), [&](int x, int y) { return s.at(y, x); });
}

// Columns are drawn in blocks, rows one at a time; on the transposed
// picture the two must agree, clipping included (rectangles beyond every
// side, reversed, huge tangent shifts).
TEST_F(GeometryFixture, SineWarpColumnsMatchRowsOfTheTransposedPicture) {
    const Surface picture = makeVariedPicture(150, 70);
    const Surface target(150, 70, makePixel(9, 9, 9));
    struct Case {
        ProcessRect rect;
        std::int16_t amplitude;
        std::uint8_t kind; // 0 sin, 1 cos, 2 tan, 3 both
    };
    const Case cases[] = {{{0, 0, 150, 70}, 30, 0},   {{-20, -9, 170, 85}, 30, 1},
                          {{140, 60, 5, 3}, 12, 0},   {{3, 2, 148, 69}, 200, 3},
                          {{0, 0, 150, 70}, 1000, 2}, {{-70, 10, 20, 40}, 8, 3}};
    for (const Case& c : cases) {
        for (const std::uint8_t mode : {0, 2, 6}) {
            const ProcessRect& r = c.rect;
            const Surface columns = drawn(picture, target, [&](G& e, const ProcessRect&) {
                e.Wave_Sin(4, c.amplitude, 17, mode, c.kind, r.left, r.top, r.right, r.bottom);
            });
            const Surface rows =
                drawn(transposed(picture), transposed(target), [&](G& e, const ProcessRect&) {
                    e.Wave_Sin(4, c.amplitude, 17, mode + 1, c.kind, r.top, r.left, r.bottom,
                               r.right);
                });
            EXPECT_TRUE(std::ranges::equal(transposed(rows).pixels(), columns.pixels()))
                << r.left << "," << r.top << "," << r.right << "," << r.bottom << " mode "
                << int{mode} << " kind " << int{c.kind};
        }
    }
}

TEST_F(GeometryFixture, NeburaDrawsOnBlackAndOnlyWithinItsRectangle) {
    const Surface picture(40, 30, makePixel(200, 100, 50));
    const Surface s =
        drawn(picture, picture, [](G& e, const ProcessRect&) { e.Nebura(42, 7, 5, 4, 35, 26); });
    int lit = 0;
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            // Blocks land within the rectangle and reach one pixel past it.
            if ((s.at(x, y) & 0xFFFFFF) == 0) continue;
            ++lit;
            EXPECT_TRUE(x >= 5 && x <= 35 && y >= 4 && y <= 26) << x << "," << y;
        }
    }
    EXPECT_GT(lit, 0);
    EXPECT_LT(lit, 31 * 23);
}

} // namespace
} // namespace lumiran::testing
