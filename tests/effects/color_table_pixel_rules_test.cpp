// Colour table effects whose rule looks at more than one channel value:
// ranks, the wave effects and Uni.
#include "color_table_fixture.h"

namespace lumiran::testing {
namespace {

using ColorTablePixelRules = ColorTableFixture;
using E = Class_ColorTable;

const auto emphasize = [](int kind, int amount = 10) {
    return op<&E::ColorEmphasize>(amount, kind, rect);
};
const auto viewChange = [](int kind, int value = 128) {
    return op<&E::ColorViewChange>(kind, value, rect);
};

TEST_F(ColorTablePixelRules, EmphasizeRaisesNamedChannelsAndLowersTheOthers) {
    EXPECT_EQ(runOn(100, 100, 100, emphasize(0)), makePixel(110, 90, 90));
    EXPECT_EQ(runOn(100, 100, 100, emphasize(5)), makePixel(110, 90, 110));
    EXPECT_EQ(runOn(50, 250, 5, emphasize(0, 200)), makePixel(250, 50, 0));
}

TEST_F(ColorTablePixelRules, AnotherColorChangeWritesStraightIntoTheArray) {
    EXPECT_EQ(runOn(10, 20, 30, viewChange(3)), makePixel(10, 20, 128));
    // No clamp: the low byte of 300 is 44.
    EXPECT_EQ(runOn(10, 20, 30, viewChange(0, 300)), makePixel(10, 44, 44));
    // No calculation type either.
    context.flags.calculationFlag = 4;
    EXPECT_EQ(runOn(10, 20, 30, viewChange(0)), makePixel(10, 128, 128));
}

// Which channels each rank keeps is checked over every order elsewhere.
TEST_F(ColorTablePixelRules, AnotherColorChangeByRankTakesTheTail) {
    EXPECT_EQ(runOn(10, 20, 30, viewChange(6, 300)), makePixel(255, 255, 30));
    context.flags.calculationFlag = 4; // |r - r1| * 2
    EXPECT_EQ(runOn(100, 20, 30, viewChange(6)), makePixel(0, 216, 196));
}

TEST_F(ColorTablePixelRules, PhantomWavesAtTheDefaultsAndFailsWithoutARange) {
    // (0 + 1 + 1) * 128 clamped, (0.7071 + 1 + 0) * 128, (1 + 1 - 1) * 128.
    expectLevels(levels(op<&E::Phantom>(rect, 0, 2, 4, 128, 256, 256)),
                 {{0, 255}, {32, 219}, {64, 128}});
    runOn(10, 10, 10, op<&E::Phantom>(rect, 0, 2, 4, 128, 0, 256));
    EXPECT_EQ(failureNumber(), EffectError::OverflowNumber);
}

TEST_F(ColorTablePixelRules, KaniWavesOnTheLuminanceGreyOrOnEachChannel) {
    const auto kani = [](double sine, int type = 0) {
        return op<&E::Kani>(sine, 64.0, 64.0, 64.0, 64.0, rect, type);
    };
    // Y = 0: w = 1, R1 = 0, R = (64 + 0) / 2.
    EXPECT_EQ(runOn(0, 0, 0, kani(64)), makePixel(32, 32, 32));
    // Y = 100: w = -0.7857, R1 = -79, R = (143 + 100) / 2 = 121.5 to even.
    EXPECT_EQ(runOn(100, 100, 100, kani(64)), makePixel(122, 122, 122));
    // A sine of 0 is taken as 1.
    EXPECT_EQ(runOn(90, 40, 200, kani(0)), runOn(90, 40, 200, kani(1)));
    EXPECT_TRUE(context.failures.empty());
    // Each channel: c = 64 = s = k gives sin 0 + cos 0 = 1, R1 = 255, and
    // R = (191 + 64) / 2 = 127.5 to even.
    EXPECT_EQ(runOn(64, 64, 64, kani(64, 1)), makePixel(128, 128, 128));
}

TEST_F(ColorTablePixelRules, UniFloorsRedAndBlueButNeverGreen) {
    const auto uni = [](double component, double light, double weight) {
        return op<&E::Uni>(rect, component, component, component, light, weight);
    };
    // L = 205, T = 247 capped to 128.
    EXPECT_EQ(runOn(100, 50, 0, uni(255, 42, 255)), makePixel(193, 224, 255));
    // Each channel is round(10 / 245 * 128) = 5 away from 0.
    EXPECT_EQ(runOn(10, 10, 10, uni(0, 42, 255)), makePixel(64, 5, 64));
    // A negative T loses its sign: L = 50, T = |50 - 128| = 78.
    EXPECT_EQ(runOn(100, 0, 0, uni(255, -128, 100)), makePixel(99, 255, 255));
    // Black with weight 0: the bytes become 1 and L = 1, so R = |255 - T| with
    // T = 42; the blend sees the overwritten 1: (1 + 213) / 2.
    EXPECT_EQ(runOn(0, 0, 0, uni(255, 42, 0)), makePixel(213, 213, 213));
    context.flags.calculationFlag = 1;
    EXPECT_EQ(runOn(0, 0, 0, uni(255, 42, 0)), makePixel(107, 107, 107));
}

// Calculation type 0 takes loops without checks, branches or blend; a type
// above 10 takes the checked loop with a blend that only clamps. Both must
// give the same picture.
TEST_F(ColorTablePixelRules, FastLoopsAgreeWithTheCheckedLoops) {
    const Surface picture = makePicture(64, 64, [](int x, int y) {
        if (x < 8) return makePixel(x * y, x * y, x * y); // greys and black
        return makePixel((x * 37 + y * 11) & 0xFF, (x * 5 + y * 53) & 0xFF, (x * 91 + y) & 0xFF);
    });
    const Call calls[] = {
        op<&E::Negative>(0, 200, rect),
        op<&E::Negative>(7, 200, rect),
        op<&E::ColorTableOperation>(7, rect, 8),
        op<&E::Histgram_Expansion>(102, 7, rect),
        op<&E::ShadeRangeExChange>(192, 64, rect, 10, 20, 300),
        op<&E::Kani>(64.0, -30.0, 64.0, -20.0, 200.0, rect, 0),
        op<&E::Kani>(64.0, -30.0, 64.0, -20.0, 200.0, rect, 1),
        op<&E::Uni>(rect, 255.0, 0.0, 30.0, 42.0, 255.0),
        op<&E::Uni>(rect, 200.0, 10.0, 90.0, -60.0, 49.0),
    };
    for (std::size_t i = 0; i < std::size(calls); ++i) {
        context.flags.calculationFlag = 0;
        const Surface fast = run(picture, calls[i]);
        context.flags.calculationFlag = 11;
        EXPECT_TRUE(fast.sameColours(run(picture, calls[i]))) << "call " << i;
        EXPECT_TRUE(context.failures.empty()) << "call " << i;
    }
}

} // namespace
} // namespace lumiran::testing
