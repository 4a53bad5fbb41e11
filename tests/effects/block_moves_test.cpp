// The block and strip effects of Class_Geometry between the kept pictures:
// where pixels land, what stays uncovered, and bad sizes and rectangles.
#include "geometry_fixture.h"

#include <string_view>
#include <vector>

namespace lumiran::testing {
namespace {

using Call = GeometryFixture::Call;
const Pixel Back = makePixel(1, 2, 3);

struct BlockMoves : GeometryFixture {
    Surface background(const Surface& picture) {
        return Surface(picture.width(), picture.height(), Back);
    }
};

// Every pixel of the result is the background or the picture's own pixel
// at the same place: patches and circles keep their place.
TEST_F(BlockMoves, CutsKeepTheirPlace) {
    const Surface picture = positionPicture(40, 30);
    const std::pair<std::string_view, Call> cases[] = {
        {"CuttingPicture",
         [](Class_Geometry& e, const ProcessRect& r) {
             e.CuttingPicture(3, 5, r.left, r.top, r.right, r.bottom);
         }},
        {"Random_Circle",
         [](Class_Geometry& e, const ProcessRect& r) {
             e.Random_Circle(6, r.left, r.top, r.right, r.bottom, 0);
         }},
        {"Random_Circle ring",
         [](Class_Geometry& e, const ProcessRect& r) {
             e.Random_Circle(12, r.left, r.top, r.right, r.bottom, 4);
         }},
    };
    for (const auto& [name, call] : cases) {
        const Surface result = drawn(picture, background(picture), call);
        int kept = 0;
        for (int y = 0; y < 30; ++y) {
            for (int x = 0; x < 40; ++x) {
                const Pixel p = result.at(x, y);
                if (p == Back) continue;
                ASSERT_EQ(placeOf(p), (SourcePlace{x, y})) << name << " at " << x << "," << y;
                ++kept;
            }
        }
        EXPECT_GT(kept, 0) << name;
        EXPECT_LT(kept, 40 * 30) << name;
    }
}

// Scroll by 0 and by a whole turn leaves the picture; by a quarter the
// column that lands at x comes from x - d, by the wrap kind's rule.
TEST_F(BlockMoves, ScrollByWrapKind) {
    const Surface picture = positionPicture(20, 8);
    const auto scroll = [&](std::int16_t percent, std::uint8_t wrap) {
        return drawn(picture, background(picture), [=](Class_Geometry& e, const ProcessRect& r) {
            e.Transform_Scroll(0, percent, r.left, r.top, r.right, r.bottom, wrap);
        });
    };
    for (std::uint8_t wrap = 0; wrap < 4; ++wrap)
        EXPECT_EQ(scroll(0, wrap), picture) << +wrap;
    EXPECT_EQ(scroll(100, 0), picture);
    EXPECT_EQ(scroll(-100, 0), picture);
    struct Case {
        std::uint8_t wrap;
        int x;
        int fromX; // -1: the background stays
    };
    const Case cases[] = {
        {0, 5, 0}, {0, 0, 15}, {0, 4, 19}, {1, 0, -1},  {1, 4, -1},
        {1, 7, 2}, {3, 0, 0},  {3, 4, 0},  {3, 19, 14},
    };
    for (const Case& c : cases) {
        const Surface result = scroll(25, c.wrap);
        const Pixel p = result.at(c.x, 3);
        if (c.fromX < 0) {
            EXPECT_EQ(p, Back) << +c.wrap << " x " << c.x;
        } else {
            EXPECT_EQ(placeOf(p), (SourcePlace{c.fromX, 3})) << +c.wrap << " x " << c.x;
        }
    }
    // Stretch: the whole row squeezed into the uncovered part and the rest.
    const Surface stretched = scroll(25, 2);
    EXPECT_EQ(placeOf(stretched.at(0, 3)).x, 2);
    EXPECT_EQ(placeOf(stretched.at(4, 3)).x, 18);
    EXPECT_EQ(placeOf(stretched.at(5, 3)).x, 0);
    EXPECT_EQ(placeOf(stretched.at(19, 3)).x, 19);
}

// Pairs of strips change places; a strip without a partner, or wider than
// the picture, stays; the last partial strip is stretched to its partner.
TEST_F(BlockMoves, BlockReplaceExchangesStrips) {
    const Surface picture = positionPicture(10, 4);
    const auto replace = [&](std::uint8_t kind, std::int16_t size, std::uint8_t group) {
        return drawn(picture, background(picture), [=](Class_Geometry& e, const ProcessRect& r) {
            e.BlockReplace(kind, r.left, r.top, r.right, r.bottom, size, group);
        });
    };
    const Surface pairs = replace(0, 3, 0); // strips 0-2, 3-5, 6-8, 9
    EXPECT_EQ(placeOf(pairs.at(0, 1)).x, 3);
    EXPECT_EQ(placeOf(pairs.at(4, 1)).x, 1);
    EXPECT_EQ(placeOf(pairs.at(6, 1)).x, 9); // the one-column strip stretched
    EXPECT_EQ(placeOf(pairs.at(8, 1)).x, 9);
    EXPECT_EQ(placeOf(pairs.at(9, 1)).x, 7); // three columns into one
    const Surface threes = replace(1, 2, 1); // rows 0-1 take 2-3, 2-3 take 0-1
    EXPECT_EQ(placeOf(threes.at(5, 0)), (SourcePlace{5, 2}));
    EXPECT_EQ(placeOf(threes.at(5, 3)), (SourcePlace{5, 1}));
    EXPECT_EQ(replace(2, 50, 0), picture);
}

// Crank: row y moves right by the walk 0, 1, .., s, .., 0; a step of 1 is
// taken as 2; the pixel kinds mix the sample with the pixel.
TEST_F(BlockMoves, CrankWalksThereAndBack) {
    const Surface picture = positionPicture(12, 9);
    const auto crank = [&](std::int16_t step) {
        return drawn(picture, background(picture), [=](Class_Geometry& e, const ProcessRect& r) {
            e.Transform_Crank(0, step, r.left, r.top, r.right, r.bottom, 1);
        });
    };
    const int walk[] = {0, 1, 2, 1, 0, 1, 2, 1, 0};
    for (const std::int16_t step : {std::int16_t{1}, std::int16_t{2}}) {
        const Surface result = crank(step);
        for (int y = 0; y < 9; ++y) {
            EXPECT_EQ(placeOf(result.at(walk[y] + 3, y)), (SourcePlace{3, y})) << y;
            if (walk[y] > 0) {
                EXPECT_EQ(result.at(0, y), Back) << y;
            }
        }
    }
    EXPECT_EQ(crank(0), picture);
    // (2 * sample - own) / 2 per channel, the sample beyond the rectangle
    // falling back to the pixel itself.
    const Surface mixed = warp(picture, [](Class_Geometry& e, const ProcessRect& r) {
        e.Transform_Crank(3, 2, r.left, r.top, r.right, r.bottom, 0);
    });
    EXPECT_EQ(redOf(mixed.at(4, 1)), 3);  // sample x 5: (10 - 4) / 2
    EXPECT_EQ(redOf(mixed.at(11, 2)), 6); // beyond: 11 / 2, half to even
}

// Slope: bands of height / width + 1 rows, each (band * factor + width) /
// width further than the one before, an integer quotient, from the top; the
// other way from the bottom. The vertical form exchanges the axes.
TEST_F(BlockMoves, SlopeAdvancesByTheBandRule) {
    // 12 across and 30 along: bands of 3, each (3 * 6 + 12) / 12 = 2 further.
    for (const bool horizontal : {true, false}) {
        for (const std::int16_t slope : {std::int16_t{0}, std::int16_t{-1}}) {
            const Surface picture = horizontal ? positionPicture(12, 30) : positionPicture(30, 12);
            const Surface result =
                drawn(picture, background(picture), [=](Class_Geometry& e, const ProcessRect& r) {
                    if (horizontal) {
                        e.Slope_Horizontal(6, r.left, r.top, r.right, r.bottom, slope, 1);
                    } else {
                        e.Slope_Vertical(6, r.left, r.top, r.right, r.bottom, slope, 1);
                    }
                });
            for (int along = 0; along < 30; ++along) {
                const int k = along / 3;
                const int shift = 2 * (slope == 0 ? k : 9 - k);
                if (shift >= 12) continue;
                const Pixel p =
                    horizontal ? result.at(1 + shift, along) : result.at(along, 1 + shift);
                EXPECT_EQ(placeOf(p), (horizontal ? SourcePlace{1, along} : SourcePlace{along, 1}))
                    << horizontal << " slope " << slope << " at " << along;
            }
        }
    }
}

// Bad sizes, 1x1 pictures and rectangles beyond the picture: no crash, no
// read outside the arrays, nothing drawn for a size of 0.
TEST_F(BlockMoves, BadSizesAndRectangles) {
    using Sized = std::function<void(Class_Geometry&, const ProcessRect&, std::int16_t)>;
    const std::pair<std::string_view, Sized> effects[] = {
        {"CuttingPicture",
         [](Class_Geometry& e, const ProcessRect& r, std::int16_t s) {
             e.CuttingPicture(s, s, r.left, r.top, r.right, r.bottom);
         }},
        {"BlockScatter_Type1",
         [](Class_Geometry& e, const ProcessRect& r, std::int16_t s) {
             e.BlockScatter_Type1(s, 2, 3, r.left, r.top, r.right, r.bottom);
         }},
        {"BlockScatter_Type2",
         [](Class_Geometry& e, const ProcessRect& r, std::int16_t s) {
             e.BlockScatter_Type2(2, 12, s, 1, 2, r.left, r.top, r.right, r.bottom);
         }},
        {"BlockReplace",
         [](Class_Geometry& e, const ProcessRect& r, std::int16_t s) {
             e.BlockReplace(2, r.left, r.top, r.right, r.bottom, s, 1);
         }},
        {"Random_Circle",
         [](Class_Geometry& e, const ProcessRect& r, std::int16_t s) {
             e.Random_Circle(s, r.left, r.top, r.right, r.bottom, 10);
         }},
        {"Warp_Slide",
         [](Class_Geometry& e, const ProcessRect& r, std::int16_t s) {
             e.Warp_Slide(s, 300, 1, r.left, r.top, r.right, r.bottom, 1);
         }},
    };
    const Surface picture = positionPicture(9, 7);
    for (const auto& [name, effect] : effects) {
        const Surface untouched =
            drawn(picture, background(picture),
                  [&](Class_Geometry& e, const ProcessRect& r) { effect(e, r, 0); });
        EXPECT_EQ(untouched, background(picture)) << name;
        for (const ProcessRect rect : {ProcessRect{-40, -30, 90, 80}, ProcessRect{20, 20, 30, 30},
                                       ProcessRect{5, 5, 2, 2}}) {
            drawn(picture, background(picture), [&](Class_Geometry& e, const ProcessRect&) {
                effect(e, rect, 4);
                effect(e, rect, 200);
            });
        }
        const Surface one = positionPicture(1, 1);
        const Surface result =
            drawn(one, background(one),
                  [&](Class_Geometry& e, const ProcessRect& r) { effect(e, r, 5); });
        EXPECT_TRUE(result.at(0, 0) == Back || result.at(0, 0) == one.at(0, 0)) << name;
        EXPECT_TRUE(context.failures.empty()) << name;
    }
}

} // namespace
} // namespace lumiran::testing
