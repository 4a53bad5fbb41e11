// Class_ColorOp's greys: the value each kind stores in all three channels.
// Kinds 7..10 (maximum, the program's median, minimum, lightness) are checked
// over every order of the channels with the other rank rules.
#include "color_op_fixture.h"
#include "engine/colour_models.h"

namespace lumiran::testing {
namespace {

using GrayEffect = ColorOpFixture;

TEST_F(GrayEffect, EachKindStoresItsGrey) {
    const struct {
        int kind;
        Colour in;
        int grey;
    } cases[] = {
        {0, {200, 100, 51}, 117}, // 351 / 3
        {1, {200, 100, 51}, 200},
        {2, {200, 100, 51}, 100},
        {3, {200, 100, 51}, 51},
        {4, {200, 100, 51}, 204}, // 255 - b
        {5, {200, 100, 51}, 55},  // 255 - r
        {6, {200, 100, 51}, 155}, // 255 - g
        {11, {200, 100, 51}, luminanceY(200, 100, 51)},
        // Colour differences, b - Y + 128 and r - Y + 128: capped above,
        // wrapped below.
        {12, {0, 0, 255}, 255},
        {12, {255, 255, 0}, (128 - luminanceY(255, 255, 0)) & 0xFF},
        {13, {0, 255, 255}, (128 - luminanceY(0, 255, 255)) & 0xFF},
        {13, {255, 0, 0}, 255},
        {14, {90, 80, 70}, 0}, // unknown: the result fields stay at zero
    };
    for (const auto& c : cases) {
        EXPECT_EQ(runOn(c.in[0], c.in[1], c.in[2], op<&Class_ColorOp::Gray_Effect>(c.kind, rect)),
                  (Colour{c.grey, c.grey, c.grey}))
            << "kind " << c.kind;
    }
}

TEST_F(GrayEffect, CalculationTypeClampsWhatWouldWrap) {
    context.flags.calculationFlag = 1; // (r + r1) / 2 per channel, after a clamp
    // Kind 12 gives -99; clamped to 0 before the blend with each source channel.
    EXPECT_EQ(runOn(255, 255, 0, op<&Class_ColorOp::Gray_Effect>(12, rect)), (Colour{127, 127, 0}));
}

} // namespace
} // namespace lumiran::testing
