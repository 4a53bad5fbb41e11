#include "effects/colour/class_color_op.h"
#include "engine/colour_models.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

struct GrayEffectTest : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    // The stored grey of one pixel under one kind.
    int greyOf(std::uint8_t kind, int r, int g, int b) {
        Class_ColorOp effect(context);
        effect.ImageGetDiBits(Surface(1, 1, makePixel(r, g, b)));
        effect.Gray_Effect(kind, 0, 0, 1, 1);
        Surface out;
        effect.ImageSetDiBits(out);
        const Pixel p = out.at(0, 0);
        EXPECT_EQ(redOf(p), greenOf(p));
        EXPECT_EQ(redOf(p), blueOf(p));
        return redOf(p);
    }
};

TEST_F(GrayEffectTest, EachKindPicksItsValue) {
    const int r = 200, g = 100, b = 51;
    EXPECT_EQ(greyOf(0, r, g, b), 117); // 351 / 3
    EXPECT_EQ(greyOf(1, r, g, b), r);
    EXPECT_EQ(greyOf(2, r, g, b), g);
    EXPECT_EQ(greyOf(3, r, g, b), b);
    EXPECT_EQ(greyOf(4, r, g, b), 255 - b);
    EXPECT_EQ(greyOf(5, r, g, b), 255 - r);
    EXPECT_EQ(greyOf(6, r, g, b), 255 - g);
    EXPECT_EQ(greyOf(7, r, g, b), r);
    EXPECT_EQ(greyOf(8, r, g, b), g);
    EXPECT_EQ(greyOf(9, r, g, b), b);
    EXPECT_EQ(greyOf(10, r, g, b), 126); // (200 + 51) / 2 = 125.5 -> 126
    EXPECT_EQ(greyOf(11, r, g, b), luminanceY(r, g, b));
}

TEST_F(GrayEffectTest, MedianKindKeepsTheProgramsQuirk) {
    EXPECT_EQ(greyOf(8, 20, 10, 30), 30);
}

TEST_F(GrayEffectTest, ColourDifferenceKindsCapAboveAndWrapBelow) {
    // Blue difference: b - Y + 128.
    EXPECT_EQ(greyOf(12, 0, 0, 255), 255);                    // 255 - 28 + 128 capped
    const int y = luminanceY(255, 255, 0);                    // 226.95 -> 227
    EXPECT_EQ(greyOf(12, 255, 255, 0), (0 - y + 128) & 0xFF); // -99 wraps to 157
    EXPECT_EQ(greyOf(13, 0, 255, 255), (0 - luminanceY(0, 255, 255) + 128) & 0xFF);
    EXPECT_EQ(greyOf(13, 255, 0, 0), 255); // 255 - 76 + 128 capped
}

TEST_F(GrayEffectTest, CalculationTypeClampsWhatWouldWrap) {
    context.flags.calculationFlag = 1; // (r + r1) / 2 per channel, after a clamp
    // Kind 12 gives -99; clamped to 0 before the blend with each source channel.
    Class_ColorOp effect(context);
    effect.ImageGetDiBits(Surface(1, 1, makePixel(255, 255, 0)));
    effect.Gray_Effect(12, 0, 0, 1, 1);
    Surface out;
    effect.ImageSetDiBits(out);
    EXPECT_EQ(out.at(0, 0) & 0xFFFFFF, makePixel(127, 127, 0));
}

TEST_F(GrayEffectTest, UnknownKindLeavesTheResultFieldsAtZero) {
    EXPECT_EQ(greyOf(14, 90, 80, 70), 0);
}

} // namespace
} // namespace lumiran
