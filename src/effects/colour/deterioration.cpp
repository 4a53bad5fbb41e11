#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

int spreadOf(const Channels& c) {
    const MaxMin m = MaxMinOfThree(c.red, c.green, c.blue);
    return wrap16(m.max - m.min);
}

// round(0.59 g + 0.3 r + 0.11 b) of values that may lie outside 0..255.
int greyOf(const Channels& c) {
    return roundTo<std::int32_t>(0.59 * c.green + 0.3 * c.red + 0.11 * c.blue);
}

// The class fields r, g, b: this effect writes them only at the end of a
// pixel, so the shaping of the next pixel still reads them.
using Fields = std::array<int, 3>;

// Step 3: the shaping of types 1..3.
Channels shape(std::uint8_t type, std::uint8_t base, std::int16_t weight, Channels c,
               const Fields& previous) {
    const int q = [&] {
        const int spread = spreadOf(c);
        return spread == 0 ? 1 : spread;
    }();
    const Channels stale{previous[0], previous[1], previous[2]};
    const int y = type == 1 && base != 1 ? greyOf(stale) : greyOf(c);
    const double x = static_cast<double>(y) / q * Pi;
    const std::array<int, 3> current{c.red, c.green, c.blue};
    std::array<int, 3> out{};
    for (std::size_t i = 0; i < 3; ++i) {
        double factor = 0;
        double multiplier = 0;
        switch (type) {
        case 1:
            factor = std::cos(x) + std::sin(x);
            multiplier = current[i];
            break;
        case 2:
            factor = std::cos(x) + std::atan(x);
            multiplier = previous[i];
            break;
        default:
            factor = std::sin(x) + (base == 1 ? std::atan(static_cast<double>(current[i]) / q * Pi)
                                              : std::atan(x));
            multiplier = previous[i];
            break;
        }
        out[i] = roundTo<std::int16_t>(factor * multiplier + weight);
    }
    return {out[0], out[1], out[2]};
}

} // namespace

void Class_ColorOp::Deterioration(std::uint8_t type, std::uint8_t base, std::uint8_t keep,
                                  std::int16_t left, std::int16_t top, std::int16_t right,
                                  std::int16_t bottom, std::int16_t a, std::int16_t b,
                                  std::int16_t c, std::int16_t weight, std::int16_t redOperand,
                                  std::int16_t greenOperand, std::int16_t blueOperand) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const std::array<int, 3> shifts{a, b, c};
        const std::array<int, 3> operands{redOperand, greenOperand, blueOperand};
        const bool shaped = type >= 1 && type <= 3;

        const auto pixel = [&](Fields& fields, int& r, int& g, int& bl) {
            const Fields raw{r, g, bl};
            const MaxMin m = MaxMinOfThree(r, g, bl);
            const int d = m.max - m.min;
            const int rawLightness = lightness(m.max, m.min);

            // Step 2: the base.
            std::array<int, 3> v{};
            for (std::size_t i = 0; i < 3; ++i) {
                v[i] = base == 1 ? wrap16(std::abs(d - raw[i] + shifts[i]))
                                 : roundTo<std::int16_t>((raw[i] + shifts[i] + d) / 2.0);
            }
            Channels result{v[0], v[1], v[2]};
            const int t = wrap16(spreadOf(result) + weight);
            result = {wrap16(result.red + t), wrap16(result.green + t), wrap16(result.blue + t)};

            // Step 3.
            if (shaped) result = shape(type, base, weight, result, fields);

            // Step 4: the fields take the raw pixel; keep rescales to the
            // lightness of the result.
            fields = raw;
            if (keep == 1) {
                const MaxMin kept = MaxMinOfThree(result.red, result.green, result.blue);
                const int target = roundTo<std::int16_t>(wrap16(kept.max + kept.min) / 2.0);
                if (rawLightness == 0) fields = {1, 1, 1};
                const int divisor = nonZero(rawLightness);
                result = {scaledChannel(fields[0], divisor, target),
                          scaledChannel(fields[1], divisor, target),
                          scaledChannel(fields[2], divisor, target)};
            }

            // Step 5.
            const std::array<int, 3> current{result.red, result.green, result.blue};
            std::array<int, 3> out{};
            for (std::size_t i = 0; i < 3; ++i) {
                out[i] = current[i] < operands[i] ? current[i] + operands[i] : current[i];
            }
            r = fields[0];
            g = fields[1];
            bl = fields[2];
            return Channels{out[0], out[1], out[2]}.fields();
        };
        if (shaped) {
            // The fields carry the previous pixel into the next: one row
            // after the other. A fresh object starts them at 0, which the
            // first pixel reads.
            Fields fields{};
            mapPixels<ResultTail::Clamp, Destination::InPlace, RowOrder::TopToBottom>(
                rect, [&](int& r, int& g, int& bl) { return pixel(fields, r, g, bl); });
        } else {
            // Only the shaping reads the fields before a pixel sets them, so
            // without it every pixel stands alone.
            mapPixels<ResultTail::Clamp, Destination::InPlace, RowOrder::AnyOrder>(
                rect, [&](int& r, int& g, int& bl) {
                    Fields fields{};
                    return pixel(fields, r, g, bl);
                });
        }
    });
}

} // namespace lumiran
