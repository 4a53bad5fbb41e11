// Class_ColorOp effects that choose channels by their order, with the
// program's own choices on particular orders, and the spread ladders.
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
    for (int r = 0; r < 4; ++r) {
        for (int g = 0; g < 4; ++g) {
            for (int b = 0; b < 4; ++b) {
                EXPECT_EQ(keyed[static_cast<std::size_t>(orderKey(r, g, b))], channelOrder(r, g, b))
                    << r << g << b;
                EXPECT_EQ(programMedianOf(r, g, b), programMedian(r, g, b)) << r << g << b;
            }
        }
    }
}

ColorOpFixture::Call exchange(int kind) {
    return [kind](C& e, const ProcessRect& r) {
        e.RGBExchange(kind, r.left, r.top, r.right, r.bottom);
    };
}

TEST_F(ColorOpRoles, ExchangeSwapsChannelsAndRoles) {
    const Colour expected[] = {{20, 10, 30}, {30, 20, 10}, {10, 30, 20}, {30, 10, 20},
                               {20, 30, 10}, {30, 20, 10}, {10, 30, 20}, {20, 10, 30}};
    for (int kind = 0; kind < 8; ++kind) {
        EXPECT_EQ(runOn(10, 20, 30, exchange(kind)), expected[kind]) << kind;
    }
}

TEST_F(ColorOpRoles, ExchangeOnTiesSwapsLargestAndSmallestInAllRoleKinds) {
    for (int kind : {5, 6, 7}) {
        EXPECT_EQ(runOn(200, 200, 50, exchange(kind)), (Colour{50, 50, 200})) << kind;
        EXPECT_EQ(runOn(200, 50, 50, exchange(kind)), (Colour{50, 200, 200})) << kind;
        EXPECT_EQ(runOn(90, 90, 90, exchange(kind)), (Colour{90, 90, 90})) << kind;
    }
}

TEST_F(ColorOpRoles, ExchangeByLightnessFollowsTheProgramsChoiceOfChannels) {
    // Kind 12 on b > g > r replaces blue, not the middle green.
    EXPECT_EQ(runOn(10, 100, 200, exchange(12)), (Colour{19, 190, 105}));
    // Kind 13 on r = b > g replaces green and blue, scaled by green.
    EXPECT_EQ(runOn(200, 100, 200, exchange(13)), (Colour{133, 150, 150}));
    // Kind 11 on r = g > b replaces both, scaled by red.
    EXPECT_EQ(runOn(200, 200, 100, exchange(11)), (Colour{150, 150, 133}));
    // Lightness 0 divides by 1 instead.
    EXPECT_EQ(runOn(1, 0, 0, exchange(9)), (Colour{0, 0, 0}));
    EXPECT_TRUE(context.failures.empty());
}

ColorOpFixture::Call difference(int pair, int use, bool reverse) {
    return [=](C& e, const ProcessRect& r) {
        e.DifferenceOperation(pair, use, r.left, r.top, r.right, r.bottom, reverse);
    };
}

TEST_F(ColorOpRoles, DifferencePairsAndTheirSign) {
    EXPECT_EQ(runOn(100, 150, 30, difference(0, 1, false)), (Colour{0, 30, 0}));      // -120
    EXPECT_EQ(runOn(100, 150, 30, difference(0, 1, true)), (Colour{220, 255, 150}));  // +120
    EXPECT_EQ(runOn(100, 150, 30, difference(1, 1, false)), (Colour{150, 200, 80}));  // g - r
    EXPECT_EQ(runOn(100, 150, 30, difference(2, 1, true)), (Colour{170, 220, 100}));  // r - b
    EXPECT_EQ(runOn(100, 150, 30, difference(1, 0, false)), (Colour{143, 143, 143})); // 93 + 50
    EXPECT_EQ(runOn(100, 150, 30, difference(1, 2, false)), (Colour{178, 178, 178}));
    EXPECT_EQ(runOn(100, 150, 30, difference(1, 4, false)), (Colour{100, 200, 30}));
}

TEST_F(ColorOpRoles, DifferenceByRoleAddsToEveryChannelHoldingTheRole) {
    EXPECT_EQ(runOn(200, 200, 50, difference(3, 6, false)), (Colour{50, 50, 50}));
    EXPECT_EQ(runOn(200, 50, 50, difference(1, 8, true)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(200, 100, 50, difference(0, 7, true)), (Colour{200, 250, 50}));
    EXPECT_EQ(runOn(200, 50, 50, difference(0, 7, true)), (Colour{200, 200, 200}));
    // r = g above b gives the middle step to blue alone.
    EXPECT_EQ(runOn(200, 200, 50, difference(0, 7, true)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(200, 100, 50, difference(1, 9, false)), (Colour{40, 20, 10}));
}

ColorOpFixture::Call invasion(int source, int target) {
    return [=](C& e, const ProcessRect& r) {
        e.Invasion_Effect(source, target, r.left, r.top, r.right, r.bottom);
    };
}

TEST_F(ColorOpRoles, InvasionFromAChannelKeepsItsExceptions) {
    EXPECT_EQ(runOn(100, 200, 50, invasion(0, 2)), (Colour{100, 100, 50}));
    EXPECT_EQ(runOn(50, 200, 200, invasion(0, 2)), (Colour{50, 200, 200})); // g = b > r: nothing
    EXPECT_EQ(runOn(200, 50, 50, invasion(0, 4)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(50, 50, 200, invasion(2, 4)), (Colour{200, 50, 200})); // red only
    // Middle as the program writes it.
    EXPECT_EQ(runOn(200, 100, 50, invasion(0, 3)), (Colour{200, 200, 50}));
    EXPECT_EQ(runOn(100, 50, 200, invasion(1, 3)), (Colour{50, 50, 200}));
    EXPECT_EQ(runOn(100, 50, 200, invasion(2, 3)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(100, 200, 50, invasion(0, 3)), (Colour{100, 200, 50})); // g > r > b: nothing
}

TEST_F(ColorOpRoles, InvasionFromExtremesAndTheMedian) {
    EXPECT_EQ(runOn(200, 100, 50, invasion(3, 3)), (Colour{200, 200, 50}));
    EXPECT_EQ(runOn(200, 100, 50, invasion(3, 4)), (Colour{200, 100, 200}));
    EXPECT_EQ(runOn(200, 200, 50, invasion(3, 3)), (Colour{200, 200, 200}));
    // g < r < b: the program's median is b.
    EXPECT_EQ(runOn(150, 100, 200, invasion(4, 0)), (Colour{200, 100, 200}));
    EXPECT_EQ(runOn(200, 200, 100, invasion(4, 3)), (Colour{100, 100, 100}));
    EXPECT_EQ(runOn(200, 100, 200, invasion(4, 4)), (Colour{100, 100, 100}));
    EXPECT_EQ(runOn(200, 200, 100, invasion(4, 4)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(100, 100, 200, invasion(4, 4)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(100, 200, 100, invasion(4, 4)), (Colour{200, 200, 100}));
    EXPECT_EQ(runOn(200, 100, 100, invasion(4, 4)), (Colour{200, 100, 100}));
    // Source 5 by the order of the channels.
    EXPECT_EQ(runOn(100, 200, 50, invasion(5, 3)), (Colour{100, 50, 50}));
    EXPECT_EQ(runOn(200, 50, 100, invasion(5, 3)), (Colour{200, 50, 50}));
    EXPECT_EQ(runOn(200, 50, 100, invasion(5, 4)), (Colour{50, 50, 100}));
    EXPECT_EQ(runOn(200, 200, 100, invasion(5, 3)), (Colour{200, 200, 200}));
    EXPECT_EQ(runOn(200, 200, 100, invasion(5, 4)), (Colour{100, 100, 100}));
}

TEST_F(ColorOpRoles, InvasionByLightnessAndByBrightness) {
    // b > r > g, largest: B = L and G = b.
    EXPECT_EQ(runOn(100, 50, 200, invasion(6, 3)), (Colour{100, 200, 125}));
    EXPECT_EQ(runOn(200, 100, 200, invasion(6, 3)), (Colour{150, 200, 150}));
    EXPECT_EQ(runOn(200, 100, 50, invasion(6, 5)), (Colour{200, 100, 125}));
    // All by brightness: the source channel itself is kept.
    EXPECT_EQ(runOn(200, 100, 50, invasion(0, 5)), (Colour{200, 160, 80}));
    EXPECT_EQ(runOn(200, 100, 50, invasion(3, 5)), (Colour{255, 160, 80}));
}

ColorOpFixture::Call grayAtSaturation(int channel, int degree, int kind) {
    return [=](C& e, const ProcessRect& r) {
        e.GrayatSaturation(channel, degree, r.left, r.top, r.right, r.bottom, kind);
    };
}

TEST_F(ColorOpRoles, GrayAtSaturationMovesTheRolesApart) {
    EXPECT_EQ(runOn(200, 100, 50, grayAtSaturation(0, 51, 0)), (Colour{230, 80, 20}));
    // The middle step goes to blue on g > r > b and to nobody on g > b > r.
    EXPECT_EQ(runOn(100, 200, 50, grayAtSaturation(0, 51, 0)), (Colour{100, 230, 0}));
    EXPECT_EQ(runOn(50, 200, 100, grayAtSaturation(0, 51, 0)), (Colour{20, 230, 100}));
    // Two equal smallest take both the smallest and the middle step.
    EXPECT_EQ(runOn(200, 50, 50, grayAtSaturation(0, 51, 0)), (Colour{230, 0, 0}));
    // A negative degree moves them together; the largest stays.
    EXPECT_EQ(runOn(200, 100, 50, grayAtSaturation(0, -51, 0)), (Colour{200, 120, 80}));
}

TEST_F(ColorOpRoles, GrayAtSaturationGreysPixelsDarkerThanTheDegree) {
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(0, 128, 0)), (Colour{20, 20, 20}));
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(0, 128, 1)), (Colour{30, 30, 30}));
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(0, 128, 2)), (Colour{20, 20, 20}));
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(0, 128, 3)), (Colour{10, 10, 10}));
    // Green alone, the others as the steps left them.
    EXPECT_EQ(runOn(10, 20, 30, grayAtSaturation(2, 128, 1)), (Colour{0, 30, 40}));
}

ColorOpFixture::Call autumn(int type) {
    return
        [=](C& e, const ProcessRect& r) { e.AutumnsColor(type, r.left, r.top, r.right, r.bottom); };
}

ColorOpFixture::Call sakura(int hue, int type) {
    return [=](C& e, const ProcessRect& r) {
        e.SakuraFilter(hue, type, r.left, r.top, r.right, r.bottom);
    };
}

TEST_F(ColorOpRoles, SpreadLadders) {
    EXPECT_EQ(runOn(100, 50, 20, autumn(1)), (Colour{100, 130, 130}));
    EXPECT_EQ(runOn(100, 50, 20, autumn(2)), (Colour{150, 50, 100}));
    EXPECT_EQ(runOn(100, 150, 50, sakura(0, 0)), (Colour{255, 210, 250}));
    EXPECT_EQ(runOn(100, 50, 200, sakura(0, 0)), (Colour{100, 200, 200})); // green = blue
    EXPECT_EQ(runOn(100, 50, 200, sakura(0, 2)), (Colour{100, 50, 200}));  // back to source
    EXPECT_EQ(runOn(50, 100, 150, sakura(1, 0)), (Colour{250, 255, 210}));
    EXPECT_EQ(runOn(100, 50, 20, sakura(1, 1)), (Colour{100, 130, 100}));
}

ColorOpFixture::Call deterioration(int type, int base, int keep) {
    return [=](C& e, const ProcessRect& r) {
        e.Deterioration(type, base, keep, r.left, r.top, r.right, r.bottom, 128, 128, 128, 0, 0, 30,
                        60);
    };
}

TEST_F(ColorOpRoles, DeteriorationBasesRoundHalfToEven) {
    // (20 + 128 + 81) / 2 = 114.5 gives 114, so the spread added is 41.
    EXPECT_EQ(runOn(101, 50, 20, deterioration(0, 0, 0)), (Colour{196, 171, 155}));
    EXPECT_EQ(runOn(100, 50, 20, deterioration(0, 1, 0)), (Colour{188, 238, 255}));
}

TEST_F(ColorOpRoles, DeteriorationShapesWithThePreviousPixelsChannels) {
    // The first pixel of a run sees zeros: x = 0 and the shaping keeps it.
    EXPECT_EQ(runOn(100, 50, 20, deterioration(1, 0, 0)), (Colour{194, 169, 154}));
    // After a white pixel the same pixel turns negative and clamps to black.
    Surface pair(2, 1, makePixel(100, 50, 20));
    pair.at(0, 0) = makePixel(200, 200, 200);
    EXPECT_EQ(colourOf(run(pair, deterioration(1, 0, 0)).at(1, 0)), (Colour{0, 0, 0}));
    pair.at(0, 0) = makePixel(0, 0, 0);
    EXPECT_EQ(colourOf(run(pair, deterioration(1, 0, 0)).at(1, 0)), (Colour{194, 169, 154}));
}

TEST_F(ColorOpRoles, DeteriorationKeepOnABlackPixelBlendsAgainstOnes) {
    EXPECT_EQ(runOn(0, 0, 0, deterioration(0, 0, 1)), (Colour{64, 64, 64}));
    context.flags.calculationFlag = 4; // |1 - 64| * 2
    EXPECT_EQ(runOn(0, 0, 0, deterioration(0, 0, 1)), (Colour{126, 126, 126}));
}

} // namespace
} // namespace lumiran::testing
