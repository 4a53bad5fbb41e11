#include "engine/colour_models.h"

#include <cstring>
#include <gtest/gtest.h>

namespace lumiran {
namespace {

TEST(Greys, ThreeWeightsAndTheirRounding) {
    EXPECT_EQ(luminanceY(255, 255, 255), 255);
    EXPECT_EQ(luminanceY(100, 0, 0), 30);
    EXPECT_EQ(luminanceY(0, 0, 50), 6);         // 5.5 ties to 6
    EXPECT_EQ(luminanceY(0, 0, 150), 16);       // 16.5: the weight 0.11 is not exact, so no tie
    EXPECT_EQ(averageGrey(255, 255, 254), 254); // 764 / 3 truncated
    EXPECT_EQ(lightness(3, 0), 2);              // 1.5 -> 2
    EXPECT_EQ(lightness(5, 0), 2);              // 2.5 -> 2
    EXPECT_EQ(lightness(7, 0), 4);              // 3.5 -> 4
}

TEST(Hsv, GreyHasNoHueAndComesBackUnchanged) {
    for (int v : {0, 1, 77, 128, 255}) {
        const Hsv hsv = rgbToHsv(v, v, v);
        EXPECT_EQ(hsv.saturation, 0);
        EXPECT_EQ(hsv.hue, 0);
        const Rgb16 back = HsvToRgb(hsv.hue, hsv.saturation, hsv.value / 255.0);
        EXPECT_EQ(back, (Rgb16{static_cast<std::int16_t>(v), static_cast<std::int16_t>(v),
                               static_cast<std::int16_t>(v)}));
    }
}

TEST(Hsv, EqualMaximaPreferBlueOverGreenOverRed) {
    EXPECT_DOUBLE_EQ(rgbToHsv(255, 255, 0).hue, 60);  // green's formula
    EXPECT_DOUBLE_EQ(rgbToHsv(0, 255, 255).hue, 180); // blue's formula
    EXPECT_DOUBLE_EQ(rgbToHsv(255, 0, 255).hue, 300);
    EXPECT_DOUBLE_EQ(rgbToHsv(255, 0, 128).hue, 360 - 60 * 128 / 255.0);
}

TEST(Hsv, SectorsAndNegativeHue) {
    EXPECT_EQ(HsvToRgb(0, 1, 1), (Rgb16{255, 0, 0}));
    EXPECT_EQ(HsvToRgb(120, 1, 1), (Rgb16{0, 255, 0}));
    EXPECT_EQ(HsvToRgb(240, 1, 0.5), (Rgb16{0, 0, 127}));
    EXPECT_EQ(HsvToRgb(360, 1, 1), (Rgb16{255, 0, 0})); // h of 6 wraps to 0
    EXPECT_EQ(HsvToRgb(-10, 1, 1), (Rgb16{0, 0, 0}));   // no sector: black
    EXPECT_EQ(HsvToRgb(-0.001, 0.5, 1), (Rgb16{0, 0, 0}));
}

TEST(Hsv, RoundTripOfSaturatedColoursIsClose) {
    for (int r = 0; r < 256; r += 51) {
        for (int g = 0; g < 256; g += 51) {
            for (int b = 0; b < 256; b += 51) {
                const Hsv hsv = rgbToHsv(r, g, b);
                const Rgb16 back = HsvToRgb(hsv.hue, hsv.saturation, hsv.value / 255.0);
                EXPECT_NEAR(back.red, r, 1);
                EXPECT_NEAR(back.green, g, 1);
                EXPECT_NEAR(back.blue, b, 1);
            }
        }
    }
}

TEST(Hls, GreyAndPrimariesComeBack) {
    const Hls grey = rgbToHls(128, 128, 128);
    EXPECT_EQ(grey.saturation, 0);
    // The way back rounds lum * 255.9999, so a mid grey comes back one brighter.
    EXPECT_EQ(hlsToRgb(grey), (Rgb16{129, 129, 129}));
    EXPECT_EQ(hlsToRgb(rgbToHls(0, 0, 0)), (Rgb16{0, 0, 0}));
    EXPECT_EQ(hlsToRgb(rgbToHls(255, 255, 255)), (Rgb16{256, 256, 256}));
    const Hls red = rgbToHls(255, 0, 0);
    EXPECT_DOUBLE_EQ(red.hue, 0);
    EXPECT_DOUBLE_EQ(red.luminance, 0.5);
    EXPECT_DOUBLE_EQ(red.saturation, 1);
    const Hls blue = rgbToHls(0, 0, 200);
    EXPECT_DOUBLE_EQ(blue.hue, 240);
    const Rgb16 back = hlsToRgb(blue);
    EXPECT_NEAR(back.blue, 200, 1);
    EXPECT_EQ(back.red, 0);
}

} // namespace
} // namespace lumiran

namespace lumiran {
namespace {

bool sameBits(double a, double b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(BranchlessModels, GiveTheScalarModelsToTheBitOverTheWholeColourCube) {
    int differences = 0;
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; ++b) {
                const Hsv hsv = rgbToHsv(r, g, b), fast = rgbToHsvBranchless(r, g, b);
                const Hls hls = rgbToHls(r, g, b), quick = rgbToHlsBranchless(r, g, b);
                differences += !sameBits(hsv.hue, fast.hue) ||
                               !sameBits(hsv.saturation, fast.saturation) ||
                               hsv.value != fast.value || !sameBits(hls.hue, quick.hue) ||
                               !sameBits(hls.saturation, quick.saturation) ||
                               !sameBits(hls.luminance, quick.luminance);
            }
        }
    }
    EXPECT_EQ(differences, 0);
}

TEST(BranchlessModels, ConvertBackAsTheScalarModelsWithinTheUnitRange) {
    int differences = 0;
    int cases = 0;
    // Hues below 0 (black) and at and beyond 360, sector edges included.
    for (double hue = -400; hue <= 760; hue += 0.625) {
        for (int step = 0; step <= 40; ++step) {
            const double unit = step / 40.0;
            for (const double other : {0.0, 0.3, 0.5, 0.77, 1.0}) {
                ++cases;
                differences += HsvToRgb(hue, unit, other) != hsvToRgbInRange(hue, unit, other);
                differences += HsvToRgb(hue, other, unit) != hsvToRgbInRange(hue, other, unit);
                const Hls hls{hue, unit, other};
                differences += hlsToRgb(hls) != hlsToRgbInRange(hls);
            }
        }
    }
    EXPECT_GT(cases, 100000);
    EXPECT_EQ(differences, 0);
    // The grey of HLS needs hue and saturation both 0.
    EXPECT_EQ(hlsToRgbInRange({0, 0.5, 0}), hlsToRgb({0, 0.5, 0}));
}

} // namespace
} // namespace lumiran
