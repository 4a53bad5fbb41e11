// Dilation, erosion, border following and feature points on small drawn
// pictures: '#' in the input is white foreground, '#' in the output black.
#include "halftone_fixture.h"

namespace lumiran::testing {
namespace {

using Shapes = HalftoneFixture<Class_Binarization>;
using Rows = std::vector<std::string>;

// White where the input has '#', as the output shows it.
Rows whiteAsDots(const Rows& input) {
    Rows out = input;
    for (std::string& row : out) {
        for (char& c : row)
            c = c == '#' ? '.' : '#';
    }
    return out;
}

TEST_F(Shapes, DilationGrowsInteriorCentresAndStaysInsideTheRectangle) {
    const Rows picture{"#....", ".....", "..#..", ".....", "....#"};
    // The corners are no centres; the middle grows by the cross or the square.
    EXPECT_EQ(toRows(run(fromRows(picture), op<&Class_Binarization::Dilatation>(0, 220, rect, 0))),
              whiteAsDots({"#....", "..#..", ".###.", "..#..", "....#"}));
    EXPECT_EQ(toRows(run(fromRows(picture), op<&Class_Binarization::Dilatation>(1, 220, rect, 0))),
              whiteAsDots({"#....", ".###.", ".###.", ".###.", "....#"}));
    // A centre on the inner ring reaches the rectangle's border.
    const Rows edge{".....", ".#...", ".....", ".....", "....."};
    EXPECT_EQ(toRows(run(fromRows(edge), op<&Class_Binarization::Dilatation>(1, 220, rect, 0))),
              whiteAsDots({"###..", "###..", "###..", ".....", "....."}));
    // A rectangle under three pixels has no centre.
    EXPECT_EQ(toRows(run(fromRows(picture), {1, 1, 3, 5},
                         op<&Class_Binarization::Dilatation>(1, 220, rect, 0))),
              whiteAsDots(picture));
}

TEST_F(Shapes, ErosionSpreadsDarkCentresIntoTheChosenChannel) {
    const Surface out =
        run(fromRows({"###", "#.#", "###"}), op<&Class_Binarization::Erosion>(0, 40, rect, 1));
    EXPECT_EQ(colourOf(out.at(1, 0)), (Colour{0, 255, 255}));
    EXPECT_EQ(colourOf(out.at(0, 0)), (Colour{255, 255, 255}));
    EXPECT_EQ(colourOf(out.at(1, 1)), (Colour{0, 0, 0}));
    // Blended with the pixel's own source by calculation type 1.
    context.flags.calculationFlag = 1;
    const Surface blended =
        run(fromRows({"###", "#.#", "###"}), op<&Class_Binarization::Erosion>(0, 40, rect, 0));
    EXPECT_EQ(colourOf(blended.at(1, 0)), (Colour{127, 127, 127}));
}

TEST_F(Shapes, BorderFollowingMarksBordersOnly) {
    auto follow = [&](const Rows& in) {
        return toRows(
            run(fromRows(in), op<&Class_Binarization::BorderFollowing_Mono>(0, 0, 128, 1, rect)));
    };
    // A lone pixel: twelve failed steps, no mark.
    EXPECT_EQ(follow({".....", ".....", "..#..", ".....", "....."}),
              (Rows{".....", ".....", ".....", ".....", "....."}));
    // A line one pixel thick is traced whole.
    EXPECT_EQ(follow({".......", ".......", "..###..", ".......", "......."}),
              (Rows{".......", ".......", "..###..", ".......", "......."}));
    // A filled square: its outline, not its inside.
    EXPECT_EQ(follow({".......", ".#####.", ".#####.", ".#####.", ".#####.", ".#####.", "......."}),
              (Rows{".......", ".#####.", ".#...#.", ".#...#.", ".#...#.", ".#####.", "......."}));
    // Foreground over the picture's edge: steps out of the top are held at
    // the edge. The traces turn one way only, so a bottom border is walked
    // by traces coming down a left border; this one lies on the picture's
    // edge, starts nothing, and the bottom stays unmarked.
    EXPECT_EQ(follow({"###....", "###....", "###....", "###....", "......."}),
              (Rows{"..#....", "..#....", "..#....", "..#....", "......."}));
}

TEST_F(Shapes, ThresholdItselfIsForegroundInBothPolarities) {
    // A line of grey 128 on black, threshold 128.
    Surface grey = fromRows({".......", ".......", "..###..", ".......", "......."});
    for (Pixel& p : grey.pixels())
        p = p == 0 ? 0 : makePixel(128, 128, 128);
    auto follow = [&](std::int16_t polarity) {
        return toRows(
            run(grey, op<&Class_Binarization::BorderFollowing_Mono>(1, polarity, 128, 1, rect)));
    };
    // Polarity 0: below the threshold is background, the line is traced.
    EXPECT_EQ(follow(0)[2], "..###..");
    // Polarity 1: only above it is background, so everything is foreground
    // and nothing inside has a border.
    EXPECT_EQ(follow(1), (Rows(5, ".......")));
}

TEST_F(Shapes, ColourBorderDrawsTheDrawingColourOverThePicture) {
    context.flags.drawingColor = {1, 2, 3};
    const Surface out = run(fromRows({".......", ".......", "..###..", ".......", "......."}),
                            op<&Class_Binarization::BorderFollowing_Color>(0, 0, 128, 1, rect));
    EXPECT_EQ(colourOf(out.at(3, 2)), (Colour{1, 2, 3}));
    EXPECT_EQ(colourOf(out.at(0, 0)), (Colour{0, 0, 0})) << "unmarked pixels keep the picture";
}

TEST_F(Shapes, FeaturePointsByConnectionNumber) {
    // A plus sign: its four ends (1), arm pixels (2), the centre (4).
    const Rows plus{".........", "....#....", "....#....", "....#....", ".#######.",
                    "....#....", "....#....", "....#....", "........."};
    auto points = [&](std::int16_t kind) {
        return toRows(run(fromRows(plus), op<&Class_Binarization::FeaturePointExtract_Mono>(
                                              0, 0, 128, kind, rect, 0)));
    };
    EXPECT_EQ(points(0), (Rows{".........", "....#....", ".........", ".........", ".#.....#.",
                               ".........", ".........", "....#....", "........."}));
    EXPECT_EQ(points(3), (Rows{".........", ".........", ".........", ".........", "....#....",
                               ".........", ".........", ".........", "........."}));
    EXPECT_EQ(points(2), (Rows(9, ".........")));
    // A solid block's inside has connection number 0: kept by no kind.
    const Rows block{".....", ".###.", ".###.", ".###.", "....."};
    for (std::int16_t kind = 0; kind < 4; ++kind) {
        EXPECT_EQ(toRows(run(fromRows(block), op<&Class_Binarization::FeaturePointExtract_Mono>(
                                                  0, 0, 128, kind, rect, 0)))[2][2],
                  '.');
    }
}

} // namespace
} // namespace lumiran::testing
