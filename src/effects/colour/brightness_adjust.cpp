#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

// The lightness a pixel of lightness l is moved to, in a 16-bit field:
// capped above, then its magnitude.
int targetLightness(int l, int amount) {
    int t = wrap16(l + amount);
    if (t > 255) t = 255;
    return wrap16(std::abs(t));
}

// BlightnessAdjust depends on a channel and the pixel's lightness only, so
// its results are tabled once per run: table[lightness][channel].
class LightnessScaleTable {
  public:
    explicit LightnessScaleTable(int amount) : entries_(256 * 256) {
        for (int l = 0; l < 256; ++l) {
            const int t = targetLightness(l, amount);
            // A pixel of lightness 0 is first written as 1, 1, 1 and then
            // divided by 1: its channels all become |t|.
            const int divisor = nonZero(l);
            for (int c = 0; c < 256; ++c) {
                const int source = l == 0 ? 1 : c;
                const double value = static_cast<double>(source) / divisor * t;
                // Only channels up to 2 l + 1 occur with lightness l.
                const bool reachable = c <= 2 * l + 1;
                const double rounded = roundHalfEven(value);
                if (reachable && !(rounded >= -32768.0 && rounded <= 32767.0)) overflows_ = true;
                entries_[l * 256 + c] =
                    reachable && !overflows_ ? wrap16(std::abs(static_cast<int>(rounded))) : 0;
            }
        }
    }

    // True when some pixel could raise the overflow error: the caller then
    // works pixel by pixel, so that the error comes where it would.
    [[nodiscard]] bool overflows() const { return overflows_; }
    [[nodiscard]] int at(int lightness, int channel) const {
        return entries_[static_cast<std::size_t>(lightness * 256 + channel)];
    }

  private:
    // 32-bit entries, which the vector unit can gather.
    std::vector<std::int32_t> entries_;
    bool overflows_ = false;
};

} // namespace

void Class_ColorOp::BlightnessAdjust(std::uint8_t flag, std::int16_t amount, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom) {
    if (flag != 1) return;
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const LightnessScaleTable table(amount);
        if (!table.overflows()) {
            mapPixels<ResultTail::Clamp>(rect, [&table](int& r, int& g, int& b) {
                const MaxMin m = MaxMinOfThree(r, g, b);
                const int l = lightness(m.max, m.min);
                const Rgb16 v = Channels{table.at(l, r), table.at(l, g), table.at(l, b)}.fields();
                if (l == 0) r = g = b = 1;
                return v;
            });
            return;
        }
        mapPixels<ResultTail::Clamp>(rect, [amount](int& r, int& g, int& b) {
            const MaxMin m = MaxMinOfThree(r, g, b);
            const int l = lightness(m.max, m.min);
            const int t = targetLightness(l, amount);
            if (l == 0) r = g = b = 1;
            const int divisor = nonZero(l);
            return Rgb16{scaledChannel(r, divisor, t), scaledChannel(g, divisor, t),
                         scaledChannel(b, divisor, t)};
        });
    });
}

} // namespace lumiran
