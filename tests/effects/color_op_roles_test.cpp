// Class_ColorOp effects that choose channels: the fixed swaps, the kinds the
// rank-order tables leave out, and the spread ladders. (Every role kind over
// every order of the channels is in the rank-order tables.)
#include "color_op_fixture.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

namespace lumiran::testing {
namespace {

using ColorOpRoles = ColorOpFixture;
using C = Class_ColorOp;

// The branch-free forms the pixel loops use must agree with the plain ones
// on every order and tie.
TEST(ColorOpOrders, BranchFreeKeyAndMedianAgreeWithThePlainTests) {
    ByOrder<ChannelOrder> identity{};
    for (std::size_t i = 0; i < ChannelOrderCount; ++i)
        identity[i] = static_cast<ChannelOrder>(i);
    const auto keyed = byOrderKey(identity);
    for (int rgb = 0; rgb < 64; ++rgb) {
        const int r = rgb / 16, g = rgb / 4 % 4, b = rgb % 4;
        EXPECT_EQ(keyed[static_cast<std::size_t>(orderKey(r, g, b))], channelOrder(r, g, b)) << rgb;
        EXPECT_EQ(programMedianOf(r, g, b), programMedian(r, g, b)) << r << g << b;
    }
}

const auto exchange = [](int kind) { return op<&C::RGBExchange>(kind, rect); };
const auto difference = [](int pair, int use, bool reverse) {
    return op<&C::DifferenceOperation>(pair, use, rect, reverse);
};
const auto invasion = [](int from, int to) { return op<&C::Invasion_Effect>(from, to, rect); };
const auto grayAtSaturation = [](int channel, int degree, int kind) {
    return op<&C::GrayatSaturation>(channel, degree, rect, kind);
};
const auto deterioration = [](int type, int base, int keep) {
    return op<&C::Deterioration>(type, base, keep, rect, 128, 128, 128, 0, 0, 30, 60);
};

TEST_F(ColorOpRoles, ExchangeSwapsChannels) {
    const Colour expected[] = {
        {20, 10, 30}, {30, 20, 10}, {10, 30, 20}, {30, 10, 20}, {20, 30, 10}};
    for (int kind = 0; kind < 5; ++kind)
        EXPECT_EQ(runOn(10, 20, 30, exchange(kind)), expected[kind]) << kind;
    // Lightness 0 divides by 1 instead.
    EXPECT_EQ(runOn(1, 0, 0, exchange(9)), (Colour{0, 0, 0}));
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(ColorOpRoles, DifferencePairsTheirSignAndTheRoleTheyAddTo) {
    EXPECT_EQ(runOn(100, 150, 30, difference(0, 1, false)), (Colour{0, 30, 0}));      // -120
    EXPECT_EQ(runOn(100, 150, 30, difference(0, 1, true)), (Colour{220, 255, 150}));  // +120
    EXPECT_EQ(runOn(100, 150, 30, difference(1, 0, false)), (Colour{143, 143, 143})); // 93 + 50
    // Every channel holding the role takes the difference.
    EXPECT_EQ(runOn(200, 200, 50, difference(3, 6, false)), (Colour{50, 50, 50}));
    EXPECT_EQ(runOn(200, 100, 50, difference(1, 9, false)), (Colour{40, 20, 10}));
}

TEST_F(ColorOpRoles, InvasionToTheTargetsTheRankTablesLeaveOut) {
    // From the median (b on g < r < b) to red; from the maximum by brightness,
    // which keeps the source channel itself.
    EXPECT_EQ(runOn(150, 100, 200, invasion(4, 0)), (Colour{200, 100, 200}));
    EXPECT_EQ(runOn(200, 100, 50, invasion(3, 5)), (Colour{255, 160, 80}));
}

TEST_F(ColorOpRoles, GrayAtSaturationGreysDarkPixels) {
    // Darker than the degree: a grey of the kind's choice, or green alone.
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(0, 128, 1)), (Colour{30, 30, 30}));
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(2, 128, 1)), (Colour{0, 30, 40}));
}

TEST_F(ColorOpRoles, SpreadLadders) {
    EXPECT_EQ(runOn(100, 150, 50, op<&C::SakuraFilter>(0, 0, rect)), (Colour{255, 210, 250}));
    EXPECT_EQ(runOn(100, 50, 200, op<&C::SakuraFilter>(0, 0, rect)), (Colour{100, 200, 200}));
    EXPECT_EQ(runOn(100, 50, 200, op<&C::SakuraFilter>(0, 2, rect)), (Colour{100, 50, 200}));
    EXPECT_EQ(runOn(100, 50, 20, op<&C::SakuraFilter>(1, 1, rect)), (Colour{100, 130, 100}));
}

TEST_F(ColorOpRoles, DeteriorationRoundsHalfToEvenShapesByThePreviousPixelAndKeepsOnOnes) {
    // (20 + 128 + 81) / 2 = 114.5 gives 114, so the spread added is 41.
    EXPECT_EQ(runOn(101, 50, 20, deterioration(0, 0, 0)), (Colour{196, 171, 155}));
    EXPECT_EQ(runOn(100, 50, 20, deterioration(0, 1, 0)), (Colour{188, 238, 255}));
    // The first pixel of a run sees zeros; after a white one the same pixel
    // turns negative and clamps to black.
    EXPECT_EQ(runOn(100, 50, 20, deterioration(1, 0, 0)), (Colour{194, 169, 154}));
    Surface pair(2, 1, makePixel(100, 50, 20));
    pair.at(0, 0) = makePixel(200, 200, 200);
    EXPECT_EQ(colourOf(run(pair, deterioration(1, 0, 0)).at(1, 0)), (Colour{0, 0, 0}));
    // Keep on a black pixel blends against ones.
    EXPECT_EQ(runOn(0, 0, 0, deterioration(0, 0, 1)), (Colour{64, 64, 64}));
    context.flags.calculationFlag = 4; // |1 - 64| * 2
    EXPECT_EQ(runOn(0, 0, 0, deterioration(0, 0, 1)), (Colour{126, 126, 126}));
}

} // namespace
} // namespace lumiran::testing
