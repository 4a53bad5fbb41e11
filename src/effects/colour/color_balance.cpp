#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <vector>

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

// The HLS shift with what depends on the extremes alone worked out once:
// the shifted luminance by max + min, the shifted saturation by (max, min).
// Each value is made by the very operations of rgbToHlsBranchless and the
// shift, so the tables hold the same doubles; a pixel then divides once for
// its hue and once for each channel, selecting the operands first where the
// rule selects between quotients.
class HlsShift {
  public:
    HlsShift(int a, int b, int c) : turn_(a), luminance_(511), saturation_(256 * 256) {
        const double lift = b / 255.0;
        for (int sum = 0; sum <= 510; ++sum)
            luminance_[static_cast<std::size_t>(sum)] =
                std::min(std::abs(lift + (sum / 2.0) / 255), 1.0);
        const float push = static_cast<float>(c / 255.0);
        for (int mx = 0; mx < 256; ++mx) {
            for (int mn = 0; mn <= mx; ++mn) {
                const double source = rgbToHlsBranchless(mx, mn, mn).saturation;
                saturation_[static_cast<std::size_t>(mx * 256 + mn)] =
                    std::clamp(push + source, 0.0, 1.0);
            }
        }
    }

    [[nodiscard]] Rgb16 operator()(int r, int g, int blue) const {
        const int mx = std::max(r, std::max(g, blue));
        const int mn = std::min(r, std::min(g, blue));
        const int spread = mx - mn;
        const double lum = luminance_[static_cast<std::size_t>(mx + mn)];
        const double sat = saturation_[static_cast<std::size_t>(mx * 256 + mn)];
        // The source hue as rgbToHlsBranchless has it.
        const int flat = spread == 0 ? 1 : 0;
        const double d = spread + flat;
        const int rise = blue == mx ? r - g : g == mx ? blue - r : g - blue;
        const int sextant = blue == mx ? 4 : g == mx ? 2 : 0;
        const double hue = (rise / d + sextant) * 60;
        const double raised = hue + 360;
        const double wrapped = hue < 0 ? raised : hue;
        const double turned = turn_ + (flat != 0 ? 0.0 : wrapped);
        const double shifted = turned > 360 ? turned - 360 : turned;
        // hlsToRgbInRange, each channel's two ramps folded into one.
        const double darker = lum * (1 + sat);
        const double lighter = lum + sat - lum * sat;
        const double m2 = lum <= 0.5 ? darker : lighter;
        const double m1 = 2 * lum - m2;
        auto degrees = [](double h) {
            const int whole = roundInRange<std::int32_t>(h);
            const int lowered = whole > 360 ? whole - 360 : whole;
            return lowered < 0 ? lowered + 360 : lowered;
        };
        auto channel = [m1, m2](int h) {
            const int along = h < 60 ? h : 240 - h;
            const double ramp = m1 + (m2 - m1) * along / 60;
            const double v = h < 60 ? ramp : h < 180 ? m2 : h < 240 ? ramp : m1;
            return roundInRange<std::int16_t>(v * 255.9999);
        };
        const bool grey = sat == 0 && shifted == 0;
        const std::int16_t level = roundInRange<std::int16_t>(lum * 255.9999);
        const int red = grey ? level : channel(degrees(shifted + 120));
        const int green = grey ? level : channel(degrees(shifted));
        const int blueOut = grey ? level : channel(degrees(shifted - 120));
        return Channels{std::abs(red), std::abs(green), std::abs(blueOut)}.fields();
    }

  private:
    double turn_;
    std::vector<double> luminance_;
    std::vector<double> saturation_;
};

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
        case 3: {
            const HlsShift shift(a, b, c);
            run([&shift](int r, int g, int blue) { return shift(r, g, blue); });
            break;
        }
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
