// The threshold variants of Class_Binarization.
#include "halftone_fixture.h"

namespace lumiran::testing {
namespace {

using Threshold = HalftoneFixture<Class_Binarization>;

struct KindCase {
    std::int16_t kind;
    Colour in;
    Colour expected;
};

TEST_F(Threshold, KindsTestTheirChannels) {
    // Threshold 128. Luminance of (200, 100, 50) is round(124.2) = 124;
    // its lightness round(125) = 125.
    const KindCase cases[] = {
        {0, {200, 100, 50}, {0, 0, 0}},
        {1, {200, 100, 50}, {255, 0, 0}},
        {2, {200, 100, 50}, {255, 100, 50}},
        {3, {200, 100, 50}, {200, 0, 50}},
        {4, {200, 100, 50}, {200, 100, 0}},
        {5, {200, 100, 50}, {255, 0, 50}},
        {6, {200, 100, 50}, {200, 0, 0}},
        {7, {200, 100, 50}, {255, 100, 0}},
        {8, {200, 100, 50}, {255, 100, 50}},
        {9, {200, 100, 50}, {200, 100, 0}},
        {10, {200, 100, 50}, {0, 0, 0}},
        {11, {200, 100, 50}, {0, 100, 0}},
        // Ties: every largest (smallest) channel takes the test.
        {8, {150, 150, 20}, {255, 255, 20}},
        {9, {150, 20, 20}, {150, 0, 0}},
        // The threshold itself passes.
        {1, {128, 127, 128}, {255, 0, 255}},
        // Only this class weighs blue 0.114: 29.07 rounds to 29 (0.11 gives 28).
        {12, {0, 0, 0}, {0, 0, 0}},
    };
    for (const KindCase& c : cases) {
        const Surface out = run(Surface(1, 1, makePixel(c.in[0], c.in[1], c.in[2])),
                                op<&Class_Binarization::Binarization>(128, c.kind, rect));
        EXPECT_EQ(colourOf(out.at(0, 0)), c.expected) << "kind " << c.kind;
    }
    const Surface blue = run(Surface(1, 1, makePixel(0, 0, 255)),
                             op<&Class_Binarization::Binarization>(29, 0, rect));
    EXPECT_EQ(colourOf(blue.at(0, 0)), (Colour{255, 255, 255}));
}

TEST_F(Threshold, CalculationTypeBlendsTheResult) {
    context.flags.calculationFlag = 1;
    const Surface out = run(Surface(1, 1, makePixel(200, 100, 50)),
                            op<&Class_Binarization::Binarization>(128, 1, rect));
    EXPECT_EQ(colourOf(out.at(0, 0)), (Colour{227, 50, 25}));
}

struct DrawingCase {
    std::int16_t kind;
    std::int16_t form;
    Colour in;
    Colour expected;
};

TEST_F(Threshold, DrawingColorBinarizationKindsAndForms) {
    // Threshold 128, drawing colour (10, 20, 30); luminance of (200, 200,
    // 200) is 200, of (50, 200, 50) round(147.2) = 147, of (20, 20, 20) 20.
    const DrawingCase cases[] = {
        {0, 0, {200, 200, 200}, {10, 20, 30}},    {0, 0, {20, 20, 20}, {0, 0, 0}},
        {0, 1, {20, 20, 20}, {20, 20, 20}},       {1, 0, {20, 20, 20}, {10, 20, 30}},
        {1, 0, {200, 200, 200}, {255, 255, 255}}, {1, 1, {200, 200, 200}, {200, 200, 200}},
        {2, 0, {50, 200, 50}, {0, 20, 0}},        {2, 1, {50, 200, 50}, {50, 20, 50}},
        {3, 0, {50, 200, 50}, {10, 0, 30}},       {3, 1, {50, 200, 50}, {10, 200, 30}},
        {4, 0, {50, 200, 50}, {50, 200, 50}},
    };
    for (const DrawingCase& c : cases) {
        const Surface out = run(
            Surface(1, 1, makePixel(c.in[0], c.in[1], c.in[2])),
            op<&Class_Binarization::DrawingColorBinarization>(
                128, c.kind, c.form, rect, std::uint8_t{10}, std::uint8_t{20}, std::uint8_t{30}));
        EXPECT_EQ(colourOf(out.at(0, 0)), c.expected) << "kind " << c.kind << " form " << c.form;
    }
}

TEST_F(Threshold, TransformationBinarizeWritesByModeIntoTheChosenChannels) {
    // Average of (30, 60, 90) is 60: black at threshold 100, white at 50.
    struct Case {
        std::int16_t threshold, mode, channel;
        Colour expected;
    };
    const Case cases[] = {
        {100, 0, 0, {0, 0, 0}},    {50, 0, 0, {255, 255, 255}}, {100, 0, 2, {30, 0, 90}},
        {100, -1, 1, {0, 60, 90}}, {50, -1, 1, {30, 60, 90}},   {50, 1, 3, {30, 60, 255}},
        {100, 1, 3, {30, 60, 90}}, {100, 2, 0, {30, 60, 90}},   {100, 0, 4, {30, 60, 90}},
    };
    for (const Case& c : cases) {
        const Surface out = run(
            Surface(1, 1, makePixel(30, 60, 90)),
            op<&Class_Binarization::TransformationBinarize>(c.threshold, rect, c.mode, c.channel));
        EXPECT_EQ(colourOf(out.at(0, 0)), c.expected)
            << "mode " << c.mode << " channel " << c.channel << " threshold " << c.threshold;
    }
}

} // namespace
} // namespace lumiran::testing
