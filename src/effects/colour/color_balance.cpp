#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace lumiran {
namespace {

Rgb16 absolute(Rgb16 v) {
    return Channels{std::abs(v.red), std::abs(v.green), std::abs(v.blue)}.fields();
}

int limitToByte(int value) {
    return std::clamp(value, 0, 255);
}

// Rounding to a 16-bit result field: checked, or unchecked where the
// arguments keep every value provably inside the field.
template <bool Checked>
int roundField(double value) {
    if constexpr (Checked) {
        return roundTo<std::int16_t>(value);
    } else {
        return roundInRange<std::int32_t>(value);
    }
}

// Luminance and colour differences, shifted.
Rgb16 yCbCr(int r, int g, int blue, int a, int b, int c) {
    const int y = roundInRange<std::int32_t>(0.3 * r + 0.59 * g + 0.11 * blue);
    const int shiftedY = limitToByte(y + a);
    const int cb = blue - y + b;
    const int cr = r - y + c;
    // The green of at most 255 + 0.7 * 33000 fits a 16-bit field.
    const int green = roundInRange<std::int32_t>(shiftedY - (0.3 / 0.59) * cr - (0.11 / 0.59) * cb);
    return Channels{cr + shiftedY, green, cb + shiftedY}.fields();
}

template <bool Checked>
Rgb16 yuv(int r, int g, int blue, int a, int b, int c) {
    const int y = roundInRange<std::int32_t>(0.587 * g + 0.299 * r + 0.114 * blue);
    const int v = roundInRange<std::int32_t>((r - y) * 0.877);
    const int u = roundInRange<std::int32_t>((blue - y) * 0.493);
    const int shiftedY = limitToByte(y + a);
    const int shiftedV = v + c;
    const int shiftedU = u + b;
    return Channels{roundField<Checked>(shiftedV * 1.14 + shiftedY),
                    roundField<Checked>(shiftedY - shiftedU * 0.396 - shiftedV * 0.581),
                    roundField<Checked>(shiftedU * 2.029 + shiftedY)}
        .fields();
}

// The HSV and HLS shifts without a branch, so that their loops run on the
// vector unit; saturation, value and luminance stay within 0 to 1.
Rgb16 hsv(int r, int g, int blue, int a, int b, int c) {
    const Hsv source = rgbToHsvBranchless(r, g, blue);
    const int value = std::min(std::abs(source.value + c), 255);
    const double turned = a + source.hue;
    const double hue = turned > 360 ? turned - 360 : turned;
    const double saturation =
        std::clamp(source.saturation + static_cast<float>(b / 255.0), 0.0, 1.0);
    return absolute(hsvToRgbInRange(hue, saturation, value / 255.0));
}

Rgb16 hls(int r, int g, int blue, int a, int b, int c) {
    const Hls source = rgbToHlsBranchless(r, g, blue);
    Hls shifted;
    shifted.luminance = std::min(std::abs(b / 255.0 + source.luminance), 1.0);
    const double turned = a + source.hue;
    shifted.hue = turned > 360 ? turned - 360 : turned;
    shifted.saturation = std::clamp(static_cast<float>(c / 255.0) + source.saturation, 0.0, 1.0);
    return absolute(hlsToRgbInRange(shifted));
}

Rgb16 cmyk(int r, int g, int blue, int a, int b, int c, int k) {
    const double c0 = 255 - r, m0 = 255 - g, y0 = 255 - blue;
    const double black = std::min({c0, m0, y0});
    const int divisor = nonZero(roundInRange<std::int32_t>(255 - black));
    const int shiftedBlack = limitToByte(roundInRange<std::int32_t>(black) + k);
    auto channel = [&](double ink0, int shift) {
        const double ink = (ink0 - black) / divisor + shift / 255.0;
        // At most 255 * 130 + 255: no 32-bit overflow is possible.
        const int ink1 =
            std::min(roundInRange<std::int32_t>((255 - shiftedBlack) * ink + shiftedBlack), 255);
        return 255 - ink1;
    };
    return Channels{channel(c0, a), channel(m0, b), channel(y0, c)}.fields();
}

} // namespace

void Class_ColorOp::ColorBalanceAdjust(std::uint8_t model, std::int16_t a, std::int16_t b,
                                       std::int16_t c, std::int16_t k, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        auto run = [&](auto rule) { mapPixels<ResultTail::Clamp>(rect, rule); };
        switch (model) {
        case 0:
            run([=](int r, int g, int blue) { return Channels{r + a, g + b, blue + c}.fields(); });
            break;
        case 1:
            run([=](int r, int g, int blue) { return yCbCr(r, g, blue, a, b, c); });
            break;
        case 2:
            run([=](int r, int g, int blue) { return hsv(r, g, blue, a, b, c); });
            break;
        case 3:
            run([=](int r, int g, int blue) { return hls(r, g, blue, a, b, c); });
            break;
        case 4:
            run([=](int r, int g, int blue) { return cmyk(r, g, blue, a, b, c, k); });
            break;
        case 5:
            // Within these shifts no result can leave its 16-bit field.
            if (std::abs(b) <= 10000 && std::abs(c) <= 10000) {
                run([=](int r, int g, int blue) { return yuv<false>(r, g, blue, a, b, c); });
            } else {
                run([=](int r, int g, int blue) { return yuv<true>(r, g, blue, a, b, c); });
            }
            break;
        default:
            // No model matched: the result fields keep 0.
            run([](int, int, int) { return Rgb16{}; });
            break;
        }
    });
}

} // namespace lumiran
