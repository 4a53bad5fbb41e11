// The ordered dithers: thresholds at their exact values and the cells at
// the edges of the rectangle.
#include "effects/halftone/dithering/ordered_matrices.h"
#include "halftone_fixture.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace lumiran::testing {
namespace {

using Ordered = HalftoneFixture<Class_Dithering>;

Surface flat(int width, int height, int grey) {
    return Surface(width, height, makePixel(grey, grey, grey));
}

struct ThresholdCase {
    const char* what;
    bool eightByEight;
    std::int16_t adjust;
    std::int16_t level;
    int x; // cell column in row 0 of a 9 x 9 picture
    int grey;
    int expected;
};

// The output of matrix value m for value v, by the threshold rule as it
// reads: level 2 an integer threshold, levels 3..8 u = S / divisor * m
// and u plus each step, compared in that order.
int literalThreshold(int m, int v, int scale, int level, int levelTwoOffset) {
    if (level == 2) return v >= m * scale + levelTwoOffset ? 255 : 0;
    if (level < 3 || level > 8) return 0;
    const ordered::LevelSteps& s = ordered::StepsByLevel[static_cast<std::size_t>(level - 3)];
    const double u = static_cast<double>(scale) / s.divisor * m;
    int out = s.outputs[0];
    if (v >= u) out = s.outputs[1];
    for (int i = 0; i < s.stepCount; ++i) {
        if (v >= u + s.steps[static_cast<std::size_t>(i)])
            out = s.outputs[static_cast<std::size_t>(i + 2)];
    }
    return out;
}

// Cells walked from the rectangle's corner, positions row by row, those
// past the last column or row moved back onto it; every position read
// from the source and written to the result, so the last one decides.
Surface literalOrdered(const Surface& source, const ProcessRect& r, int cell,
                       std::span<const std::uint8_t> matrix, int scale, int level, bool mono) {
    Surface out = source;
    const int right = std::min<int>(r.right, source.width());
    const int bottom = std::min<int>(r.bottom, source.height());
    const int offset = cell == 4 ? 4 : 2;
    for (int cy = r.top; cy < bottom; cy += cell) {
        for (int cx = r.left; cx < right; cx += cell) {
            for (int j = 0; j < cell; ++j) {
                for (int i = 0; i < cell; ++i) {
                    const int x = std::min(cx + i, right - 1), y = std::min(cy + j, bottom - 1);
                    const int m = matrix[static_cast<std::size_t>(j * cell + i)];
                    const Pixel p = source.at(x, y);
                    auto t = [&](int v) { return literalThreshold(m, v, scale, level, offset); };
                    if (mono) {
                        const int grey = static_cast<int>(
                            std::nearbyint(0.3 * redOf(p) + 0.59 * greenOf(p) + 0.11 * blueOf(p)));
                        out.at(x, y) = withColour(out.at(x, y), t(grey), t(grey), t(grey));
                    } else {
                        out.at(x, y) =
                            withColour(out.at(x, y), t(redOf(p)), t(greenOf(p)), t(blueOf(p)));
                    }
                }
            }
        }
    }
    return out;
}

TEST_F(Ordered, EveryMatrixMatchesTheCellWalkWrittenOut) {
    // Whole pictures wider than a run of pixels, rectangles ending inside a
    // cell, and one narrower than a cell.
    const ProcessRect areas[] = {{0, 0, 37, 21}, {3, 2, 30, 19}, {5, 4, 7, 9}};
    for (const bool eight : {false, true}) {
        const std::size_t types = eight ? ordered::Matrices8x8.size() : ordered::Matrices4x4.size();
        const int reach = eight ? 3 : 15;
        for (std::size_t type = 0; type < types; ++type) {
            const std::span<const std::uint8_t> matrix =
                eight ? std::span<const std::uint8_t>(ordered::Matrices8x8[type])
                      : std::span<const std::uint8_t>(ordered::Matrices4x4[type]);
            for (const int adjust : {-reach, 0, reach}) {
                for (const std::int16_t level : {1, 2, 3, 5, 8}) {
                    for (const bool mono : {true, false}) {
                        for (const ProcessRect& area : areas) {
                            const Surface picture = noisePicture(37, 21, 11u + type);
                            const auto t = static_cast<std::int16_t>(type);
                            const auto a = static_cast<std::int16_t>(adjust);
                            const std::int16_t mode = mono ? 0 : 1;
                            const Surface got =
                                run(picture, area, [&](Class_Dithering& e, ProcessRect r) {
                                    if (eight) {
                                        e.OrderedDither8x8(t, a, r.left, r.top, r.right, r.bottom,
                                                           mode, level);
                                    } else {
                                        e.OrderedDither4x4(t, a, r.left, r.top, r.right, r.bottom,
                                                           mode, level);
                                    }
                                });
                            const int scale = adjust + (eight ? 4 : 16);
                            ASSERT_EQ(got, literalOrdered(picture, area, eight ? 8 : 4, matrix,
                                                          scale, level, mono))
                                << (eight ? "8x8" : "4x4") << " type " << type << " adjust "
                                << adjust << " level " << level << " mono " << mono << " area "
                                << area.left << "," << area.top;
                        }
                    }
                }
            }
        }
    }
}

TEST_F(Ordered, ThresholdsAtTheirExactValues) {
    // Bayer row 0 is 0 8 2 10 (4 x 4) and 0 32 8 40 .. (8 x 8).
    const ThresholdCase cases[] = {
        {"4x4 m 8: 8 * 16 + 4", false, 0, 2, 1, 131, 0},
        {"4x4 m 8 reached", false, 0, 2, 1, 132, 255},
        {"4x4 m 0: 4", false, 0, 2, 0, 4, 255},
        {"4x4 adjust -15: m + 4", false, -15, 2, 1, 12, 255},
        {"4x4 adjust -15 below", false, -15, 2, 1, 11, 0},
        {"8x8 m 32: 32 * 4 + 2", true, 0, 2, 1, 129, 0},
        {"8x8 m 32 reached", true, 0, 2, 1, 130, 255},
        // Level 3: u = 16 / 2 * 8 = 64, then u + 85.
        {"level 3 below u", false, 0, 3, 1, 63, 0},
        {"level 3 at u", false, 0, 3, 1, 64, 128},
        {"level 3 at u + 85", false, 0, 3, 1, 149, 255},
        // Level 8: u = 16 / 7 * 2 = 4.57..; u + 32 = 36.57..
        {"level 8 between", false, 0, 8, 2, 36, 36},
        {"level 8 step", false, 0, 8, 2, 37, 72},
        {"level 9 is black", false, 0, 9, 0, 255, 0},
    };
    for (const ThresholdCase& c : cases) {
        const Surface out = run(flat(9, 9, c.grey), [&](Class_Dithering& e, ProcessRect r) {
            if (c.eightByEight) {
                e.OrderedDither8x8(0, c.adjust, r.left, r.top, r.right, r.bottom, 0, c.level);
            } else {
                e.OrderedDither4x4(0, c.adjust, r.left, r.top, r.right, r.bottom, 0, c.level);
            }
        });
        EXPECT_EQ(colourOf(out.at(c.x, 0)), (Colour{c.expected, c.expected, c.expected})) << c.what;
    }
}

TEST_F(Ordered, TheLastColumnAndRowTakeTheCellsLastPosition) {
    // Thresholds of Bayer row 0: 4, 132, 36, 164; row 3: 244, 116, 212, 84.
    // Grey 140 is white at cell column 1 and black at column 3.
    const Surface out =
        run(flat(6, 6, 140), op<&Class_Dithering::OrderedDither4x4>(0, 0, rect, 0, 2));
    EXPECT_EQ(redOf(out.at(1, 0)), 255);
    EXPECT_EQ(redOf(out.at(5, 0)), 0) << "column 5 is cell column 3, not 1";
    // Row 5 is cell row 3: column 3 threshold 84, column 1 threshold 116.
    EXPECT_EQ(redOf(out.at(1, 5)), 255);
    EXPECT_EQ(redOf(out.at(5, 5)), 255);
    EXPECT_EQ(redOf(out.at(0, 5)), 0) << "threshold 244";
    // A rectangle from (1, 1) starts its cells there.
    const Surface inner = run(flat(6, 6, 140), {1, 1, 6, 6},
                              op<&Class_Dithering::OrderedDither4x4>(0, 0, rect, 0, 2));
    EXPECT_EQ(redOf(inner.at(2, 1)), 255);
    EXPECT_EQ(colourOf(inner.at(0, 0)), (Colour{140, 140, 140}));
}

TEST_F(Ordered, ColourModeThresholdsEachChannel) {
    const Surface out = run(Surface(4, 4, makePixel(131, 132, 3)),
                            op<&Class_Dithering::OrderedDither4x4>(0, 0, rect, 1, 2));
    EXPECT_EQ(colourOf(out.at(1, 0)), (Colour{0, 255, 0}));
    EXPECT_EQ(colourOf(out.at(0, 0)), (Colour{255, 255, 0}));
}

TEST_F(Ordered, TypesOutsideTheListChangeNothing) {
    const Surface picture = noisePicture(5, 5, 9);
    EXPECT_EQ(run(picture, op<&Class_Dithering::OrderedDither4x4>(9, 0, rect, 0, 2)), picture);
    EXPECT_EQ(run(picture, op<&Class_Dithering::OrderedDither8x8>(6, 0, rect, 0, 2)), picture);
    EXPECT_EQ(run(picture, op<&Class_Dithering::OrderedDither8x8>(-1, 0, rect, 0, 2)), picture);
}

} // namespace
} // namespace lumiran::testing
