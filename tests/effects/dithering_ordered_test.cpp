// The ordered dithers: thresholds at their exact values and the cells at
// the edges of the rectangle.
#include "halftone_fixture.h"

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
