#include "engine/drawing/canvas.h"
#include "engine/drawing/flood_fill.h"
#include "engine/drawing/pixel_calls.h"
#include "test_support.h"

#include <climits>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

constexpr ColourRef White = RGB(255, 255, 255);
constexpr ColourRef Red = RGB(255, 0, 0);

// Pictures as text: '.' black, '#' white, 'o' red.
Surface fromText(const std::vector<std::string>& rows) {
    Surface s(static_cast<int>(rows[0].size()), static_cast<int>(rows.size()));
    for (int y = 0; y < s.height(); ++y) {
        for (int x = 0; x < s.width(); ++x) {
            const char c = rows[y][x];
            SetPixelV(s, x, y, c == '#' ? White : c == 'o' ? Red : 0);
        }
    }
    return s;
}

std::vector<std::string> toText(const Surface& s) {
    std::vector<std::string> rows;
    for (int y = 0; y < s.height(); ++y) {
        std::string row;
        for (int x = 0; x < s.width(); ++x) {
            const ColourRef c = GetPixel(s, x, y);
            row += c == White ? '#' : c == Red ? 'o' : c == 0 ? '.' : '?';
        }
        rows.push_back(row);
    }
    return rows;
}

using Points = std::set<std::pair<int, int>>;

Points painted(const Surface& s) {
    Points points;
    for (int y = 0; y < s.height(); ++y) {
        for (int x = 0; x < s.width(); ++x) {
            if (GetPixel(s, x, y) != 0) points.insert({x, y});
        }
    }
    return points;
}

template <typename Draw>
Points drawOn(int width, int height, Draw draw) {
    Surface s(width, height);
    Canvas canvas(s);
    draw(canvas);
    return painted(s);
}

TEST(CanvasLine, ExcludesTheEndPointAndCoversTheSamePixelsBackwards) {
    struct Case {
        int x1, y1, x2, y2;
    };
    for (const Case c :
         {Case{2, 3, 12, 3}, Case{12, 3, 2, 3}, Case{5, 1, 5, 13}, Case{1, 1, 13, 13},
          Case{13, 2, 1, 7}, Case{3, 14, 6, 0}, Case{2, 2, 6, 4}, Case{7, 7, 7, 7}}) {
        const Points forward =
            drawOn(16, 16, [&](Canvas& k) { k.Line(c.x1, c.y1, c.x2, c.y2, White); });
        const Points backward =
            drawOn(16, 16, [&](Canvas& k) { k.Line(c.x2, c.y2, c.x1, c.y1, White); });
        const auto steps = std::max(std::abs(c.x2 - c.x1), std::abs(c.y2 - c.y1));
        EXPECT_EQ(static_cast<int>(forward.size()), steps);
        EXPECT_FALSE(forward.contains({c.x2, c.y2}));
        if (steps == 0) continue;
        EXPECT_TRUE(forward.contains({c.x1, c.y1}));
        Points a = forward;
        a.insert({c.x2, c.y2});
        Points b = backward;
        b.insert({c.x1, c.y1});
        EXPECT_EQ(a, b) << c.x1 << "," << c.y1 << " - " << c.x2 << "," << c.y2;
    }
    // Halves round toward the larger coordinate: (0,0)-(4,1) steps at x = 2.
    EXPECT_EQ(drawOn(6, 3, [](Canvas& k) { k.Line(0, 0, 4, 1, White); }),
              (Points{{0, 0}, {1, 0}, {2, 1}, {3, 1}}));
}

TEST(CanvasLine, StepsSitOnTheIdealLineRoundedHalvesUp) {
    // Every line of the 9 x 9 neighbourhood from (20, 20), whole and cut by
    // a window at either end: step i of n sits at minor coordinate
    // m1 + floor((2 i dm + n) / (2 n)), written out with a plain floor.
    const auto floorOf = [](long long num, long long den) {
        return num >= 0 ? num / den : -((-num + den - 1) / den);
    };
    for (int dx = -9; dx <= 9; ++dx) {
        for (int dy = -9; dy <= 9; ++dy) {
            const int n = std::max(std::abs(dx), std::abs(dy));
            if (n == 0) continue;
            const bool xMajor = std::abs(dx) >= std::abs(dy);
            for (const int cut : {0, 1, 3}) {
                // The window drops the first cut columns (rows) of the line.
                const int sx = dx > 0 ? 1 : -1, sy = dy > 0 ? 1 : -1;
                Points expected;
                for (int i = cut; i < n; ++i) {
                    const long long minor = floorOf(2LL * i * (xMajor ? dy : dx) + n, 2LL * n);
                    expected.insert(xMajor ? std::pair{20 + sx * i, 20 + static_cast<int>(minor)}
                                           : std::pair{20 + static_cast<int>(minor), 20 + sy * i});
                }
                const Points drawn = drawOn(41, 41, [&](Canvas& k) {
                    if (xMajor) {
                        k.setClip(dx > 0 ? 20 + cut : 0, 0, dx > 0 ? 41 : 21 - cut, 41);
                    } else {
                        k.setClip(0, dy > 0 ? 20 + cut : 0, 41, dy > 0 ? 41 : 21 - cut);
                    }
                    k.Line(20, 20, 20 + dx, 20 + dy, White);
                });
                EXPECT_EQ(drawn, expected) << dx << "," << dy << " cut " << cut;
            }
        }
    }
}

TEST(CanvasLine, PenShapeByWidth) {
    // The pen around the one pixel of the line (5,5)-(6,5): its pixel count
    // and its first and last row and column.
    struct Case {
        int width;
        std::size_t count;
        int first, last;
    };
    for (const Case& c : {Case{0, 1, 5, 5}, Case{1, 1, 5, 5}, Case{2, 4, 5, 6}, Case{3, 9, 4, 6},
                          Case{4, 12, 4, 7}, Case{5, 21, 3, 7}}) {
        const Points pen = drawOn(12, 12, [&](Canvas& k) {
            k.DrawWidth = c.width;
            k.Line(5, 5, 6, 5, White);
        });
        EXPECT_EQ(pen.size(), c.count) << c.width;
        for (const auto& [x, y] : pen) {
            EXPECT_TRUE(x >= c.first && x <= c.last && y >= c.first && y <= c.last) << c.width;
        }
    }
    // Each pixel of a wide line is painted once: an odd number of xors on
    // black leaves exactly the pixels a copy pen paints.
    const auto wide = [](PenMode mode) {
        return drawOn(12, 8, [mode](Canvas& k) {
            k.DrawWidth = 3;
            k.DrawMode = mode;
            k.Line(1, 1, 10, 6, Red);
        });
    };
    EXPECT_EQ(wide(PenMode::XorPen), wide(PenMode::CopyPen));
}

TEST(CanvasLine, DotsAndInvertingModesForTheSelectionOutline) {
    EXPECT_EQ(drawOn(12, 2,
                     [](Canvas& k) {
                         k.DrawStyle = PenStyle::Dot;
                         k.Line(0, 0, 9, 0, White);
                     }),
              (Points{{0, 0}, {2, 0}, {4, 0}, {6, 0}, {8, 0}}));
    EXPECT_EQ(drawOn(12, 2,
                     [](Canvas& k) {
                         k.DrawStyle = PenStyle::Dot;
                         k.DrawWidth = 2;
                         k.Line(0, 0, 9, 0, White);
                     })
                  .size(),
              20u);
    // The outline drawn twice in an inverting mode leaves the picture as it was.
    for (const auto& [mode, pen] : {std::pair{PenMode::Invert, White},
                                    {PenMode::XorPen, White},
                                    {PenMode::NotXorPen, ColourRef{0}}}) {
        const Surface base = testing::makeVariedPicture(20, 12);
        Surface picture = base;
        Canvas canvas(picture);
        canvas.DrawMode = mode;
        canvas.DrawStyle = PenStyle::Dot;
        canvas.Line(2, 2, 17, 9, pen, LineKind::B);
        EXPECT_NE(picture.at(2, 2), base.at(2, 2));
        EXPECT_EQ(picture.at(3, 2), base.at(3, 2));
        canvas.Line(2, 2, 17, 9, pen, LineKind::B);
        EXPECT_EQ(picture, base) << static_cast<int>(mode);
    }
}

TEST(CanvasBox, IncludesBothCornersInEitherOrder) {
    const auto box = [](LineKind kind, BrushStyle fill) {
        Surface s(10, 9);
        Canvas canvas(s);
        canvas.FillStyle = fill;
        canvas.FillColor = Red;
        canvas.Line(7, 6, 2, 1, White, kind);
        return toText(s);
    };
    const std::vector<std::string> outline{"..........", "..######..", "..#....#..",
                                           "..#....#..", "..#....#..", "..#....#..",
                                           "..######..", "..........", ".........."};
    EXPECT_EQ(box(LineKind::B, BrushStyle::Transparent), outline);
    EXPECT_EQ(box(LineKind::B, BrushStyle::Solid)[3], "..#oooo#..");
    EXPECT_EQ(box(LineKind::BF, BrushStyle::Transparent)[3], "..######..");
}

TEST(CanvasCircle, IsSymmetricAndClosed) {
    for (const int r : {0, 1, 2, 5, 12, 31}) {
        const int c = 32;
        Surface s(65, 65);
        Canvas canvas(s);
        canvas.Circle(c, c, r, White);
        const Points ring = painted(s);
        for (const auto& [x, y] : ring) {
            const int dx = x - c;
            const int dy = y - c;
            for (const auto& [mx, my] : {std::pair{-dx, dy}, {dx, -dy}, {dy, dx}})
                EXPECT_TRUE(ring.contains({c + mx, c + my})) << r << ": " << dx << "," << dy;
            EXPECT_LE(std::max(std::abs(dx), std::abs(dy)), r);
        }
        EXPECT_TRUE(ring.contains({c + r, c}));
        // A border fill from the centre stays inside: the filled disc of the
        // brush is exactly the outline plus what the fill reached.
        if (r >= 1) FloodFill(s, c, c, White, White);
        Surface disc(65, 65);
        Canvas solid(disc);
        solid.FillStyle = BrushStyle::Solid;
        solid.FillColor = White;
        solid.Circle(c, c, r, White);
        EXPECT_EQ(painted(s), painted(disc)) << r;
    }
    // The ellipse by its semi-axes, and a width-2 pen fills concentric rings.
    const Points ellipse = drawOn(20, 9, [](Canvas& k) { k.Ellipse(9, 4, 6, 2, White); });
    EXPECT_EQ(ellipse.begin()->first, 3);
    EXPECT_EQ(ellipse.rbegin()->first, 15);
    EXPECT_TRUE(ellipse.contains({9, 2}) && ellipse.contains({9, 6}));
    EXPECT_FALSE(ellipse.contains({9, 1}) || ellipse.contains({9, 4}));
    const Points rings = drawOn(83, 83, [](Canvas& k) {
        k.DrawWidth = 2;
        for (int r = 0; r <= 40; ++r)
            k.Circle(41, 41, r, White);
    });
    const Points disc = drawOn(83, 83, [](Canvas& k) {
        k.FillStyle = BrushStyle::Solid;
        k.FillColor = White;
        k.Circle(41, 41, 40, White);
    });
    EXPECT_TRUE(std::ranges::includes(rings, disc));
}

TEST(CanvasPolygon, FillsTheTriangleWithItsEdges) {
    const CanvasPoint triangle[] = {{0, 0}, {8, 0}, {0, 8}};
    const Points filled = drawOn(10, 10, [&](Canvas& k) {
        k.FillStyle = BrushStyle::Solid;
        k.FillColor = White;
        k.Polygon(triangle, White);
    });
    Points expected;
    for (int y = 0; y <= 8; ++y) {
        for (int x = 0; x + y <= 8; ++x)
            expected.insert({x, y});
    }
    EXPECT_EQ(filled, expected);
    const Points outline = drawOn(10, 10, [&](Canvas& k) { k.Polygon(triangle, White); });
    EXPECT_EQ(outline.size(), 24u);
    EXPECT_FALSE(outline.contains({2, 2}));
}

TEST(CanvasPolygon, PaintsEachPixelOnceInEveryMode) {
    // Outlines whose edges meet, and insides whose runs touch or coincide
    // (a bow tie, a spike back along itself, cells sharing a corner):
    // xor must flip each pixel once, giving what or (painted as it comes)
    // gives. The inside is drawn alone with an outline of colour 0.
    using Shape = std::vector<CanvasPoint>;
    const std::vector<Shape> shapes{
        {{0, 0}, {8, 0}, {0, 8}},
        {{0, 0}, {9, 9}, {9, 0}, {0, 9}},
        {{1, 1}, {9, 5}, {1, 5}, {9, 1}, {5, 9}},
        {{0, 4}, {6, 4}, {2, 4}, {8, 0}, {8, 9}},
        {{0, 0}, {5, 5}, {0, 9}, {9, 9}, {5, 5}, {9, 0}},
    };
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const auto draw = [&](PenMode mode, bool fill) {
            return drawOn(12, 12, [&](Canvas& k) {
                k.DrawMode = mode;
                k.FillStyle = fill ? BrushStyle::Solid : BrushStyle::Transparent;
                k.FillColor = White;
                k.Polygon(shapes[i], fill ? 0 : White);
            });
        };
        for (const bool fill : {false, true}) {
            const Points merged = draw(PenMode::MergePen, fill);
            EXPECT_FALSE(merged.empty()) << i;
            EXPECT_EQ(draw(PenMode::XorPen, fill), merged) << i << " fill " << fill;
        }
    }
}

TEST(CanvasPolygon, AnOutlineCutByThePicturesEdgeKeepsItsPixelsAbove) {
    // Sides traced back over a row widen its last run to the left, past an
    // earlier run of the row; the cut picture must still show them.
    const CanvasPoint outline[] = {{7, 4}, {10, 5}, {12, 6}, {14, 5}, {12, 4}, {6, 4}};
    const Points whole = drawOn(16, 10, [&](Canvas& k) { k.Polygon(outline, White); });
    ASSERT_TRUE(whole.contains({6, 4}));
    for (int height = 1; height <= 8; ++height) {
        Points above;
        for (const auto& p : whole) {
            if (p.second < height) above.insert(p);
        }
        EXPECT_EQ(drawOn(16, height, [&](Canvas& k) { k.Polygon(outline, White); }), above)
            << height;
    }
}

TEST(Canvas, ClipsAndSurvivesAnyInput) {
    Surface s(16, 16);
    Canvas canvas(s);
    canvas.setClip(4, 4, 12, 12);
    canvas.DrawWidth = 3;
    canvas.Line(0, 8, 16, 8, White);
    canvas.Circle(4, 4, 6, White);
    const Points inClip = painted(s);
    EXPECT_TRUE(inClip.contains({4, 9}) && inClip.contains({11, 7}));
    for (const auto& [x, y] : inClip)
        EXPECT_TRUE(x >= 4 && x < 12 && y >= 4 && y < 12) << x << "," << y;

    // Far coordinates, huge widths and radii, empty and tiny pictures.
    Surface far(16, 16);
    Canvas k(far);
    k.Line(INT_MIN, INT_MIN, INT_MAX, INT_MAX, White);
    EXPECT_EQ(GetPixel(far, 5, 5), White);
    k.DrawWidth = INT_MAX;
    k.Line(100, 100, 101, 100, Red);
    EXPECT_EQ(GetPixel(far, 0, 0), Red);
    k.DrawWidth = 1;
    k.Circle(0, 0, INT_MAX, White);
    k.Ellipse(8, 8, -1, 3, Red);
    k.FillStyle = BrushStyle::Solid;
    k.Circle(INT_MIN, INT_MAX, INT_MAX, White);
    const CanvasPoint wild[] = {{INT_MIN, INT_MIN}, {INT_MAX, 0}, {0, INT_MAX}};
    k.Polygon(wild, White);
    Surface empty;
    Canvas none(empty);
    none.Line(0, 0, 5, 5, White, LineKind::BF);
    none.Circle(0, 0, 3, White);
    Surface one(1, 1);
    Canvas dot(one);
    dot.Circle(0, 0, 0, White);
    EXPECT_EQ(GetPixel(one, 0, 0), White);
}

TEST(PixelCalls, ReadOutsideGivesNoColourAndWritesAreDropped) {
    Surface s(3, 2, makePixel(1, 2, 3, 0x55));
    EXPECT_EQ(GetPixel(s, 1, 1), 1 | (2 << 8) | (3 << 16)); // red in the low byte
    for (const auto& [x, y] : {std::pair{-1, 0}, {3, 0}, {0, -1}, {0, 2}, {INT_MIN, INT_MAX}}) {
        EXPECT_EQ(GetPixel(s, x, y), NoColour);
        SetPixelV(s, x, y, White);
    }
    EXPECT_EQ(s, Surface(3, 2, makePixel(1, 2, 3, 0x55)));
    SetPixelV(s, 2, 1, RGB(300, -4, 16));
    EXPECT_EQ(s.at(2, 1), makePixel(255, 0, 16, 0x55));
    Cls(s, RGB(9, 8, 7));
    EXPECT_EQ(s.at(0, 0), makePixel(9, 8, 7, 0x55));
}

TEST(FloodFill, FillsFourConnectedRegionsOfBothKinds) {
    struct Case {
        FloodFillType type;
        ColourRef colour;
        int x, y;
        std::vector<std::string> before, after;
    };
    // A diamond whose white border pixels touch only at their corners.
    const std::vector<std::string> map{"....#....", "...#.#...", "..#...#..", "...#.#...",
                                       "....#...."};
    // The diamond meets the top and bottom edges: the left outside is a region of its own.
    const std::vector<std::string> leftFilled{"oooo#....", "ooo#.#...", "oo#...#..", "ooo#.#...",
                                              "oooo#...."};
    for (const Case& c : {
             // Same colour: the black left outside, not through the diagonal gaps.
             Case{FloodFillType::Surface, 0, 0, 0, map, leftFilled},
             // A white pixel alone: its white neighbours touch only at corners.
             Case{FloodFillType::Surface,
                  White,
                  4,
                  0,
                  map,
                  {"....o....", "...#.#...", "..#...#..", "...#.#...", "....#...."}},
             // Up to the white border, from inside and from outside.
             Case{FloodFillType::Border,
                  White,
                  4,
                  2,
                  map,
                  {"....#....", "...#o#...", "..#ooo#..", "...#o#...", "....#...."}},
             Case{FloodFillType::Border, White, 0, 4, map, leftFilled},
         }) {
        Surface picture = fromText(c.before);
        EXPECT_TRUE(ExtFloodFill(picture, c.x, c.y, c.colour, c.type, Red));
        EXPECT_EQ(toText(picture), c.after) << c.x << "," << c.y;
    }
    // Nothing to fill: a point outside, on the border, or of another colour.
    Surface picture = fromText(map);
    EXPECT_FALSE(FloodFill(picture, -1, 0, White, Red));
    EXPECT_FALSE(FloodFill(picture, 4, 0, White, Red));
    EXPECT_FALSE(ExtFloodFill(picture, 4, 0, 0, FloodFillType::Surface, Red));
    EXPECT_EQ(toText(picture), map);
    // A brush of the region's own colour, or of the border's, still ends.
    EXPECT_TRUE(ExtFloodFill(picture, 0, 4, 0, FloodFillType::Surface, 0));
    EXPECT_EQ(toText(picture), map);
    EXPECT_TRUE(FloodFill(picture, 4, 2, White, White));
    EXPECT_EQ(toText(picture)[2], "..#####..");
}

} // namespace
} // namespace lumiran
