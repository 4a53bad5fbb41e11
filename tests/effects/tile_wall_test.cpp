// The tile walls of Class_Pattern: grid joints against the walk written
// out literally, and walls of drawn tiles.
#include "effects/texture/pattern/class_pattern.h"
#include "texture_fixture.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <set>

namespace lumiran::testing {
namespace {

using P = Class_Pattern;

struct Grid {
    int width, height;
    ProcessRect rect;
    int shifted; // 0 none, 1 rows of tiles, 2 columns of tiles
};

// The walk as the mosaics walk, step size - 1, each cell (i, j) of level
// min(i, j) colouring the pixel in place from what it holds when the type
// colours that level: cells past the rectangle fold onto its last row or
// column, cells before it are not there, and a tile starting past the last
// row is not laid. Shifted rows or columns move by half a tile.
Colour jointColour(int type, int level, const Colour& now) {
    const auto clamp = [](int v) { return std::clamp(v, 0, 255); };
    switch (type) {
    case 0: {
        const int d = level == 0 ? -18 : 18;
        return {clamp(now[0] + d), clamp(now[1] + d), clamp(now[2] + d)};
    }
    case 1:
        return level == 0 ? Colour{0, 0, 0} : Colour{255, 255, 255};
    case 2:
        return level == 0   ? Colour{0, 0, 0}
               : level == 1 ? Colour{128, 128, 128}
                            : Colour{255, 255, 255};
    default:
        return {0, 0, 0};
    }
}

Surface literalWall(const Surface& picture, const Grid& g, int type, int deepest) {
    Surface out = picture;
    const ProcessRect& r = g.rect;
    const int riseX = g.shifted == 1 ? g.width / 2 : 0;
    const int riseY = g.shifted == 2 ? g.height / 2 : 0;
    for (int k = 0; r.top + k * (g.height - 1) - riseY <= r.bottom - 1; ++k) {
        const int rowOrigin = r.top + k * (g.height - 1);
        int m = 0;
        for (int x0 = r.left - (k % 2 == 1 ? riseX : 0); x0 <= r.right - 1;
             x0 += g.width - 1, ++m) {
            const int y0 = rowOrigin - (m % 2 == 1 ? riseY : 0);
            if (y0 > r.bottom - 1) continue;
            for (int i = 0; i < g.height; ++i) {
                for (int j = 0; j < g.width; ++j) {
                    if (y0 + i < r.top || x0 + j < r.left || std::min(i, j) > deepest) continue;
                    const int y = std::min(y0 + i, r.bottom - 1);
                    const int x = std::min(x0 + j, r.right - 1);
                    const Colour c = jointColour(type, std::min(i, j), colourAt(out, x, y));
                    out.at(x, y) = withColour(out.at(x, y), c[0], c[1], c[2]);
                }
            }
        }
    }
    return out;
}

class GridJoints : public TextureFixture, public ::testing::WithParamInterface<Grid> {};

TEST_P(GridJoints, AreTheLiteralWalkColouringInPlace) {
    const Grid g = GetParam();
    // Dark enough at the top left and bright enough at the bottom right that
    // twice 18 down or up reaches the clamp.
    const Surface picture =
        makePicture(19, 13, [](int x, int y) { return makePixel(10 + x * 12, 20 + y * 19, 100); });
    const int deepest[4] = {1, 1, 2, 0};
    // Rows of the picture on one thread, and one row a band on three.
    for (const RowThreading threading : {RowThreading{1, 1 << 20}, RowThreading{3, 1}})
        for (std::uint8_t type = 0; type < 4; ++type) {
            context.threading = threading;
            const Surface out = run<P>(
                picture,
                [&](P& e, const ProcessRect& r) {
                    if (g.shifted == 0) {
                        e.LineInput_Normal(g.width, g.height, r.left, r.top, r.right, r.bottom,
                                           true, type);
                    } else {
                        e.LineInput_Gap(g.width, g.height, r.left, r.top, r.right, r.bottom,
                                        g.shifted == 2, type);
                    }
                },
                false, g.rect);
            const Surface expected = literalWall(picture, g, type, deepest[type]);
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    EXPECT_EQ(colourAt(out, x, y), colourAt(expected, x, y))
                        << "type " << int(type) << " at " << x << "," << y << " on "
                        << threading.threads;
                }
            }
        }
}

INSTANTIATE_TEST_SUITE_P(
    TileWall, GridJoints,
    ::testing::Values(Grid{4, 4, {0, 0, 19, 13}, 0}, Grid{5, 3, {0, 0, 19, 13}, 0},
                      Grid{8, 8, {0, 0, 19, 13}, 0}, Grid{6, 4, {2, 3, 17, 11}, 0},
                      Grid{20, 20, {0, 0, 19, 13}, 0}, Grid{6, 5, {0, 0, 19, 13}, 1},
                      Grid{6, 5, {1, 2, 18, 12}, 2}, Grid{4, 4, {0, 0, 19, 13}, 2},
                      Grid{8, 6, {0, 0, 19, 13}, 1}));

// Where tiles meet, the groove is cut again from what the tile before
// left: a joint two tiles share is lowered twice, the pixel beside a joint
// that the next tile's joint crosses goes up and down again.
struct SharedJoints : TextureFixture {};

TEST_F(SharedJoints, AreColouredAgainFromWhatTheTileBeforeLeft) {
    const Surface grey = uniformPicture(13, 13, 100, 100, 100);
    const Surface out = run<P>(grey, [](P& e, const ProcessRect& r) {
        e.LineInput_Normal(4, 4, r.left, r.top, r.right, r.bottom, true, 0);
    });
    EXPECT_EQ(colourAt(out, 3, 0), (Colour{64, 64, 64}));    // two tiles' top joints
    EXPECT_EQ(colourAt(out, 3, 3), (Colour{46, 46, 46}));    // three tiles' joints
    EXPECT_EQ(colourAt(out, 3, 1), (Colour{100, 100, 100})); // + 18 then - 18
    EXPECT_EQ(colourAt(out, 1, 1), (Colour{118, 118, 118})); // one tile's
    EXPECT_EQ(colourAt(out, 12, 0), (Colour{10, 10, 10}));   // the fold cuts it four times more
}

struct DrawnTiles : TextureFixture {
    const Surface grey = uniformPicture(32, 32, 100, 100, 100);
};

TEST_F(DrawnTiles, TheLozengeWallJoinsTheMiddlesOfTheTilesSides) {
    const auto wall = [&](std::uint8_t colour) {
        return run<P>(grey, [colour](P& e, const ProcessRect& r) {
            e.LineInput_Lozenge(16, r.left, r.top, r.right, r.bottom, 0, colour);
        });
    };
    const Surface black = wall(3);
    for (const auto& [x, y] : {std::pair{8, 0}, {9, 1}, {15, 7}, {7, 1}, {24, 16}, {8, 16}})
        EXPECT_EQ(colourAt(black, x, y), (Colour{0, 0, 0})) << x << "," << y;
    EXPECT_EQ(colourAt(black, 0, 0), (Colour{100, 100, 100}));
    EXPECT_EQ(colourAt(black, 8, 8), (Colour{100, 100, 100}));
    // Right of a line pixel, type 1 paints white.
    EXPECT_EQ(colourAt(wall(1), 10, 1), (Colour{255, 255, 255}));
}

TEST_F(DrawnTiles, EveryDrawingIsItsOwnAndRandomArcsRepeatFromAFreshGenerator) {
    std::set<std::vector<Pixel>> seen;
    int drawings = 0;
    const auto add = [&](const Surface& s) {
        seen.insert({s.pixels().begin(), s.pixels().end()});
        ++drawings;
    };
    for (std::uint8_t type = 0; type < 8; ++type) {
        random = RandomGenerator();
        add(run<P>(grey, [type](P& e, const ProcessRect& r) {
            e.Draw_ArcCrest(12, r.left, r.top, r.right, r.bottom, type, 3, 0);
        }));
    }
    for (std::uint8_t type = 0; type < 6; ++type) {
        add(run<P>(grey, [type](P& e, const ProcessRect& r) {
            e.LineInput_Lozenge(16, r.left, r.top, r.right, r.bottom, type, 3);
        }));
    }
    for (std::uint8_t type = 0; type < 4; ++type) {
        add(run<P>(grey, [type](P& e, const ProcessRect& r) {
            e.LineInput_Circle(16, r.left, r.top, r.right, r.bottom, type, 3);
        }));
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(drawings));
    // "ﾗﾝﾀﾞﾑ" turns each of the 3 x 3 tiles over the picture with one draw.
    random = RandomGenerator();
    const auto arcs = [](P& e, const ProcessRect& r) {
        e.Draw_ArcCrest(12, r.left, r.top, r.right, r.bottom, 7, 3, 0);
    };
    const Surface first = run<P>(grey, arcs);
    RandomGenerator expected;
    for (int draw = 0; draw < 9; ++draw)
        (void)expected.next();
    EXPECT_EQ(random.state(), expected.state());
    random = RandomGenerator();
    EXPECT_EQ(run<P>(grey, arcs), first);
}

TEST_F(DrawnTiles, AreLaidFromTheRectanglesTopWhereverThePictureBegins) {
    // A rectangle reaching d rows above the picture paints the picture as
    // the same rectangle paints rows d on of a picture d rows taller: the
    // first two rows of tiles look at no row above the rectangle, later
    // rows repeat with the tiles.
    const auto pixel = [](int x, int y) { return makePixel(x * 7 % 256, y * 5 % 256, 90); };
    using Wall = std::function<void(P&, const ProcessRect&)>;
    const std::pair<const char*, Wall> walls[] = {
        {"arcs",
         [](P& e, const ProcessRect& r) {
             e.Draw_ArcCrest(12, r.left, r.top, r.right, r.bottom, 0, 0, 0);
         }},
        {"chequer",
         [](P& e, const ProcessRect& r) {
             e.Draw_ArcCrest(9, r.left, r.top, r.right, r.bottom, 2, 2, 0);
         }},
        {"rows",
         [](P& e, const ProcessRect& r) {
             e.Draw_ArcCrest(8, r.left, r.top, r.right, r.bottom, 3, 1, 0);
         }},
        {"lozenges",
         [](P& e, const ProcessRect& r) {
             e.LineInput_Lozenge(10, r.left, r.top, r.right, r.bottom, 2, 0);
         }},
        {"circles",
         [](P& e, const ProcessRect& r) {
             e.LineInput_Circle(24, r.left, r.top, r.right, r.bottom, 3, 2);
         }},
    };
    for (const auto& [name, wall] : walls) {
        for (const std::int16_t d : {0, 1, 2, 7, 30}) {
            const Surface tall = makePicture(37, 40 + d, pixel);
            const Surface picture =
                makePicture(37, 40, [&](int x, int y) { return pixel(x, y + d); });
            const Surface whole =
                run<P>(tall, wall, false, ProcessRect{0, 0, 37, static_cast<std::int16_t>(40 + d)});
            const Surface cut =
                run<P>(picture, wall, false, ProcessRect{0, static_cast<std::int16_t>(-d), 37, 40});
            for (int y = 0; y < 40; ++y) {
                for (int x = 0; x < 37; ++x)
                    ASSERT_EQ(cut.at(x, y), whole.at(x, y + d))
                        << name << " " << d << " " << x << "," << y;
            }
        }
    }
}

TEST_F(DrawnTiles, ATileOfNoPixelsIsTheOverflowError) {
    run<P>(grey, [](P& e, const ProcessRect& r) {
        e.LineInput_Circle(0, r.left, r.top, r.right, r.bottom, 0, 0);
    });
    run<P>(grey, [](P& e, const ProcessRect& r) {
        e.LineInput_Normal(1, 4, r.left, r.top, r.right, r.bottom, true, 0);
    });
    EXPECT_EQ(failureNumbers(), (std::vector<int>{6, 6}));
}

} // namespace
} // namespace lumiran::testing
