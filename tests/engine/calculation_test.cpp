#include "engine/calculation.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

std::int16_t wrap(int v) {
    return static_cast<std::int16_t>(v);
}

// One channel through the blend: source r, effect output r1.
int blend(std::uint8_t flag, int r, int r1) {
    const Rgb16 out = applyCalculationType(flag, r, r, r, Rgb16{wrap(r1), wrap(r1), wrap(r1)});
    EXPECT_EQ(out.red, out.green);
    EXPECT_EQ(out.red, out.blue);
    return out.red;
}

TEST(CalculationType, IntegerFormulas) {
    EXPECT_EQ(blend(1, 255, 254), 254); // 509 halved, truncated
    EXPECT_EQ(blend(2, 100, 255), 0);   // -55 clamped
    EXPECT_EQ(blend(3, 100, 200), 255); // 300 clamped
    EXPECT_EQ(blend(3, 100, 80), 60);
    EXPECT_EQ(blend(4, 10, 50), 80);
    EXPECT_EQ(blend(5, 0, 100), 0); // 200 - 255 clamped
    EXPECT_EQ(blend(5, 200, 100), 145);
    EXPECT_EQ(blend(6, 100, 200), 145);
    EXPECT_EQ(blend(7, 10, 10), 10);
    EXPECT_EQ(blend(7, 0, 255), 255);  // 765 clamped
    EXPECT_EQ(blend(8, 100, 40), 140); // |60*3 - 40|
}

TEST(CalculationType, OutputIsClampedBeforeTheBlend) {
    // 300 acts as 255, not as its low byte 44.
    EXPECT_EQ(blend(1, 100, 300), (100 + 255) / 2);
    EXPECT_EQ(blend(1, 100, -20), 50);
}

TEST(CalculationType, TrigonometricFormulasGuardAgainstZero) {
    // r1 of 0 becomes 1: round(sin(401.92)) is round(-0.2), 0 after the clamp.
    EXPECT_EQ(blend(9, 128, 0), 0);
    EXPECT_EQ(blend(9, 100, 100), 0);  // round(100 * sin(3.14)) = round(0.159...) = 0
    EXPECT_EQ(blend(9, 50, 100), 100); // sin(1.57) is 0.99999968
    EXPECT_EQ(blend(10, 0, 0), 0);
    EXPECT_EQ(blend(10, 200, 200), 252); // round(200 * atan(3.14)) = round(252.496)
}

TEST(CalculationType, ChannelsBlendIndependently) {
    const Rgb16 out = applyCalculationType(1, 10, 20, 30, Rgb16{30, 40, 51});
    EXPECT_EQ(out, (Rgb16{20, 30, 40}));
}

TEST(CalculationType, UnknownValuesOnlyClamp) {
    EXPECT_EQ(applyCalculationType(11, 0, 0, 0, Rgb16{300, -5, 17}), (Rgb16{255, 0, 17}));
}

} // namespace
} // namespace lumiran
