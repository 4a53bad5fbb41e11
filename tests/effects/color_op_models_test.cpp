// Class_ColorOp effects that pass through a colour model: HSV, HLS, YCbCr,
// YUV, CMYK, and the hue pictures.
#include "color_op_fixture.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <cstdlib>

namespace lumiran::testing {
namespace {

using ColorOpModels = ColorOpFixture;
using C = Class_ColorOp;

const auto hue = [](int mode, int threshold) { return op<&C::Hue>(mode, threshold, rect); };
const auto balance = [](int model, int a, int b, int c, int k = 0) {
    return op<&C::ColorBalanceAdjust>(model, a, b, c, k, rect);
};

TEST_F(ColorOpModels, HsvInvertHueAboveTheDefaultGoesBlackBeforeTheOperands) {
    const auto invert = [](int method) {
        return op<&C::HSVInvert>(rect, method, 240, 180, -20, 0, 30, 60);
    };
    // Hue 300: 240 - 300 is negative, so black, then + 0, 30, 60.
    EXPECT_EQ(runOn(200, 100, 200, invert(0)), (Colour{0, 30, 60}));
    // Full saturation leaves none (180 / 255 - 1 is limited to 0): a grey of
    // value |-20 - 255| capped, whatever the hue.
    EXPECT_EQ(runOn(255, 0, 255, invert(0)), (Colour{255, 255, 255}));
    // Grey: hue 240, saturation 180 / 255 in single precision, value 120.
    EXPECT_EQ(runOn(100, 100, 100, invert(0)), (Colour{35, 35, 120}));
    EXPECT_EQ(runOn(255, 0, 255, invert(1)), (Colour{255, 0, 255})); // other methods: nothing
}

TEST_F(ColorOpModels, HsvCycleCentreAtTheOriginReddensAndOnTheOnlyPixelFails) {
    // Centre (0, 0) from a rectangle starting at column 1: Ang_max is 0 and
    // the hue of the pixel off the centre is infinite, which counts as 0.
    const Surface source(2, 1, makePixel(200, 100, 50));
    const Surface out = run(
        source, [](C& e, const ProcessRect&) { e.HSVCycle(1, 0, 2, 1, 0, 360, 0, 0, -100, 1); });
    EXPECT_TRUE(context.failures.empty());
    EXPECT_EQ(colourOf(out.at(1, 0)), (Colour{200, 50, 50}));
    EXPECT_EQ(out.at(0, 0), source.at(0, 0));
    // 0.5 rounds to 0: the centre is the only pixel and its hue is 0 / 0.
    runOn(200, 100, 50, op<&C::HSVCycle>(rect, 0, 360, 0, 0, 50, 50));
    EXPECT_EQ(failureNumber(), 6);
}

TEST_F(ColorOpModels, HueModeZeroGreysDarkPixelsAndSetsTwoChannelsByTheSextant) {
    EXPECT_EQ(runOn(10, 20, 30, hue(0, 128)), (Colour{18, 18, 18}));
    // Hue 30 and 270: u is 127.5 and rounds to 128; the third channel keeps
    // its source value.
    EXPECT_EQ(runOn(200, 100, 0, hue(0, 0)), (Colour{255, 128, 0}));
    EXPECT_EQ(runOn(100, 0, 200, hue(0, 0)), (Colour{128, 0, 255}));
    // A grey has hue 0: red full, green 0, blue its own.
    EXPECT_EQ(runOn(100, 100, 100, hue(0, 0)), (Colour{255, 0, 100}));
}

TEST_F(ColorOpModels, HueOtherModesPaintTheirOwnGrey) {
    EXPECT_EQ(runOn(200, 50, 0, hue(1, 0)), (Colour{64, 64, 64}));      // hue 15, rising
    EXPECT_EQ(runOn(150, 200, 0, hue(1, 0)), (Colour{191, 191, 191}));  // hue 75, falling
    EXPECT_EQ(runOn(200, 100, 50, hue(2, 0)), (Colour{191, 191, 191})); // S 0.75
    EXPECT_EQ(runOn(200, 100, 50, hue(3, 10)), (Colour{19, 81, 131}));
    EXPECT_EQ(runOn(200, 100, 50, hue(4, 0)), (Colour{125, 125, 125}));
}

TEST_F(ColorOpModels, ColorBalanceShiftsInEachModel) {
    EXPECT_EQ(runOn(250, 10, 128, balance(0, 10, -20, 0)), (Colour{255, 0, 128}));
    // The YCbCr round trip loses a step even unshifted; YUV shifts too.
    EXPECT_EQ(runOn(200, 100, 50, balance(1, 0, 0, 0)), (Colour{200, 99, 50}));
    EXPECT_EQ(runOn(200, 100, 50, balance(1, 10, -20, 30)), (Colour{240, 98, 40}));
    EXPECT_EQ(runOn(200, 100, 50, balance(5, 10, -20, 30)), (Colour{245, 100, 20}));
    // HSV and HLS turn the hue; luminance pushed to 1 gives 255.9999, 256 clamped.
    EXPECT_EQ(runOn(255, 0, 0, balance(2, 120, 0, 0)), (Colour{0, 255, 0}));
    EXPECT_EQ(runOn(255, 0, 0, balance(3, 120, 0, 0)), (Colour{0, 255, 0}));
    EXPECT_EQ(runOn(100, 100, 100, balance(3, 0, 255, 0)), (Colour{255, 255, 255}));
    EXPECT_EQ(runOn(200, 100, 50, balance(4, 51, 0, 0)), (Colour{160, 100, 50})); // CMYK
}

// The HLS shift as the scalar models spell it out, clamped as stored.
Colour hlsShiftedByTheModels(int r, int g, int b, int turn, int lift, int push) {
    const Hls source = rgbToHls(r, g, b);
    Hls shifted;
    shifted.luminance = std::min(std::abs(lift / 255.0 + source.luminance), 1.0);
    const double turned = turn + source.hue;
    shifted.hue = turned > 360 ? turned - 360 : turned;
    shifted.saturation = std::clamp(static_cast<float>(push / 255.0) + source.saturation, 0.0, 1.0);
    const Rgb16 v = hlsToRgb(shifted);
    auto stored = [](int c) { return std::clamp(std::abs(c), 0, 255); };
    return {stored(v.red), stored(v.green), stored(v.blue)};
}

TEST_F(ColorOpModels, HlsBalanceMatchesTheScalarModelsOverTheCube) {
    // Every pair of extremes and a spread of hues: the per-pixel work takes
    // its luminance and saturation from tables by the extremes.
    constexpr int Step = 3;
    constexpr int Side = 256 / Step + 1;
    Surface cube(Side * Side, Side + 1);
    for (int y = 0; y < cube.height(); ++y) {
        for (int x = 0; x < cube.width(); ++x) {
            const int r = std::min(255, (x / Side) * Step), g = std::min(255, (x % Side) * Step);
            const int b = y < Side ? std::min(255, y * Step) : (x * 7 + 3) % 256;
            cube.at(x, y) = makePixel(r, g, b);
        }
    }
    const std::vector<std::array<int, 3>> shifts{
        {0, 0, 0}, {40, 20, 10}, {120, 0, 0}, {-90, -40, 60}, {359, 255, -255}, {-360, 300, 300}};
    for (const auto& [turn, lift, push] : shifts) {
        const Surface out = run(cube, balance(3, turn, lift, push));
        int differences = 0;
        for (int y = 0; y < cube.height(); ++y) {
            for (int x = 0; x < cube.width(); ++x) {
                const Colour in = colourOf(cube.at(x, y));
                differences += colourOf(out.at(x, y)) !=
                               hlsShiftedByTheModels(in[0], in[1], in[2], turn, lift, push);
            }
        }
        EXPECT_EQ(differences, 0) << "shift " << turn << ", " << lift << ", " << push;
    }
}

TEST_F(ColorOpModels, ColorBalanceGuardsTheCmykBlackDivisorAndFailsOnAYuvOverflow) {
    EXPECT_EQ(runOn(255, 255, 255, balance(4, 0, 0, 0)), (Colour{255, 255, 255}));
    EXPECT_EQ(runOn(0, 0, 0, balance(4, 0, 0, 0)), (Colour{0, 0, 0}));
    EXPECT_EQ(runOn(0, 0, 0, balance(4, 0, 0, 0, -55)), (Colour{55, 55, 55}));
    EXPECT_TRUE(context.failures.empty());
    runOn(200, 100, 50, balance(5, 0, 0, 32000)); // 1.14 * 32000 does not fit
    EXPECT_EQ(failureNumber(), 6);
}

} // namespace
} // namespace lumiran::testing
