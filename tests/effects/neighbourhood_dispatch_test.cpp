// The cases that call Class_NeighborhoodOp or Class_Edge first: which
// values reach which argument. (Every entry runs at its defaults in the
// golden tests.)
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "neighbourhood_fixture.h"
#include "planned.h"

#include <gtest/gtest.h>
#include <string_view>

namespace lumiran::testing {
namespace {

using V = ControlValues;

struct NeighbourhoodDispatch : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    Surface caseOn(std::string_view effect, const V& values, const Surface& picture) {
        return runPlanned(context, effect, values, picture);
    }

    static Surface impulse() {
        Surface s(5, 5, makePixel(0, 0, 0));
        s.at(2, 2) = makePixel(20, 20, 20);
        return s;
    }
};

TEST_F(NeighbourhoodDispatch, LaplacianRowsAreFourAndEightNeighbours) {
    // The neighbour weights are 1 or the row; the centre -4 or -8 darkens.
    const Surface four = caseOn("Laplacian Filter", V{.color = 0}, impulse());
    EXPECT_EQ(colourAt(four, 2, 1)[0], 20);
    EXPECT_EQ(colourAt(four, 1, 1)[0], 0);
    EXPECT_EQ(colourAt(four, 2, 2)[0], 0);
    const Surface eight = caseOn("Laplacian Filter", V{.color = 1}, impulse());
    EXPECT_EQ(colourAt(eight, 1, 1)[0], 20);
}

TEST_F(NeighbourhoodDispatch, PrewittRowsAreCompassKernelsAroundMinusTwo) {
    // "上": the row above weighs +1, the row below -1.
    const Surface up = caseOn("Prewitt Filter", V{.color = 0}, impulse());
    EXPECT_EQ(colourAt(up, 2, 3)[0], 20); // the bright pixel above it
    EXPECT_EQ(colourAt(up, 2, 1)[0], 0);  // below it
    // "右": the right column weighs +1.
    const Surface right = caseOn("Prewitt Filter", V{.color = 3}, impulse());
    EXPECT_EQ(colourAt(right, 1, 2)[0], 20);
    EXPECT_EQ(colourAt(right, 3, 2)[0], 0);
}

TEST_F(NeighbourhoodDispatch, EdgeExtraction2x2WeighsTheNamedSideBySliderOne) {
    // "上" with weight 3: the pixel whose lower neighbours are dark and the
    // block's upper row holds the bright one.
    const Surface result = caseOn("Edge Extraction 2x2", V{.sliders = {3}, .color = 0}, impulse());
    EXPECT_EQ(colourAt(result, 2, 2)[0], 60);
    EXPECT_EQ(colourAt(result, 1, 1)[0], 0);
}

TEST_F(NeighbourhoodDispatch, FuguTakesSliderTwoAsTheUpperAndOneAsTheLowerThreshold) {
    const Surface grey(1, 1, makePixel(100, 100, 100));
    EXPECT_EQ(colourAt(caseOn("Fugu", V{.sliders = {0, 255}}, grey), 0, 0)[0], 155);
    EXPECT_EQ(colourAt(caseOn("Fugu", V{.sliders = {150, 255}}, grey), 0, 0)[0], 100);
    EXPECT_EQ(colourAt(caseOn("Fugu", V{.sliders = {0, 50}}, grey), 0, 0)[0], 100);
}

TEST_F(NeighbourhoodDispatch, NormalEmbossTakesTheTypeRowAsItsDirection) {
    // Row 2 is direction 2: A above, B below; the pixel above the bright
    // one has it as B.
    const V values{.sliders = {1, 128, 128, 128, 1}, .eType = 2};
    const Surface result = caseOn("Normal Emboss", values, impulse());
    EXPECT_EQ(colourAt(result, 2, 1)[0], 108);
    EXPECT_EQ(colourAt(result, 2, 3)[0], 148);
}

TEST_F(NeighbourhoodDispatch, TwoCallsInARowReadEachOthersResult) {
    // Bleeding Filter folds before it marks steps; on a flat picture the
    // fold alone shows: grey 100 becomes 155 inside the 7x7 margin.
    const Surface flat(9, 9, makePixel(100, 100, 100));
    const Surface result = caseOn("Bleeding Filter", V{.sliders = {42}}, flat);
    EXPECT_EQ(colourAt(result, 4, 4)[0], 155);
    EXPECT_EQ(colourAt(result, 0, 0)[0], 100);
}

} // namespace
} // namespace lumiran::testing
