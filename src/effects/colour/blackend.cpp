#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <cstdlib>

namespace lumiran {
namespace {

// k + c - Y in 32-bit arithmetic, which wraps silently, then its magnitude.
int distanceFromGrey(std::int32_t k, int channel, int y) {
    const auto sum = static_cast<std::int32_t>(static_cast<std::uint32_t>(k) +
                                               static_cast<std::uint32_t>(channel - y));
    return static_cast<int>(std::abs(static_cast<std::int64_t>(sum)));
}

} // namespace

void Class_ColorOp::Blackend(double amount, std::uint8_t type, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // The two offsets are worked out at every pixel and are the same for
        // all; once here, but only when some pixel is reached, so that their
        // overflow error comes exactly when it would.
        std::int32_t k1 = 0, k2 = 0;
        if (!spanOf(rect).empty()) {
            k1 = roundTo<std::int32_t>(amount * 50);
            k2 = roundTo<std::int32_t>(amount * 20);
        }
        auto shifted = [k1, k2](int r, int g, int b) {
            const int y = luminanceY(r, g, b);
            return Channels{distanceFromGrey(k1, r, y), distanceFromGrey(k2, g, y),
                            distanceFromGrey(k2, b, y)};
        };
        if (type == 1) {
            mapPixels<ResultTail::Clamp>(rect, [shifted](int r, int g, int b) {
                // The spread is taken of the 16-bit result fields.
                const Rgb16 v = shifted(r, g, b).fields();
                const MaxMin m = MaxMinOfThree(v.red, v.green, v.blue);
                const int spread = m.max - m.min;
                return Channels{v.red + spread, v.green + spread, v.blue + spread}.fields();
            });
        } else {
            mapPixels<ResultTail::Clamp>(
                rect, [shifted](int r, int g, int b) { return shifted(r, g, b).fields(); });
        }
    });
}

} // namespace lumiran
