#include "effects/colour/class_color_table.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <cmath>

namespace lumiran {
namespace {

// Within these bounds no conversion of the rule can leave 16 bits: L stays
// below 32767, T is at most 128 and c / L at most 255, so round(c / L
// times T) is at most 32640, and a component from 0 to 32767 keeps its
// distance from that within 32767.
bool withinSixteenBits(double red, double green, double blue, double light, double weight) {
    auto component = [](double c) { return c >= 0 && c <= 32767; };
    return component(red) && component(green) && component(blue) && std::isfinite(light) &&
           std::abs(weight) <= 32000;
}

} // namespace

void Class_ColorTable::Uni(std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom, double red, double green, double blue, double light,
                           double weight) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(rect.top, rect.bottom);
        if (calculationFlag() == 0 && withinSixteenBits(red, green, blue, light, weight)) {
            // The same rule without checked conversions or branches, so that
            // it vectorises.
            forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
                for (int x = begin; x < end; ++x) {
                    const Pixel p = row[x];
                    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                    const int sum = std::max(r, std::max(g, b)) + std::min(r, std::min(g, b));
                    int level = roundInRange<std::int32_t>(std::abs(weight - sum / 2.0));
                    const double factor = std::min(std::abs(level + light), 128.0);
                    const int dark = level < 1 ? 1 : 0;
                    level += dark;
                    auto away = [&](double component, int c) {
                        const double channel = c + dark * (1 - c);
                        return roundInRange<std::int32_t>(std::abs(
                            component - roundInRange<std::int32_t>(channel / level * factor)));
                    };
                    row[x] = withColour(p, std::min(std::max(away(red, r), 64), 255),
                                        std::min(away(green, g), 255),
                                        std::min(std::max(away(blue, b), 64), 255));
                }
            });
            return;
        }
        forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
            for (int x = begin; x < end; ++x) {
                int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
                const MaxMin m = MaxMinOfThree(r, g, b);
                int level = roundTo<std::int16_t>(std::abs(weight - (m.max + m.min) / 2.0));
                double factor = level + light;
                if (factor < 0) factor = -factor;
                if (factor > 128) factor = 128;
                if (level < 1) {
                    // Overwritten in the array: the rest of the rule, the
                    // blend included, sees 1 in each channel.
                    r = g = b = 1;
                    level = 1;
                }
                auto away = [&](double component, int c) {
                    return roundTo<std::int16_t>(
                        std::abs(component -
                                 roundTo<std::int16_t>(c / static_cast<double>(level) * factor)));
                };
                Rgb16 v{away(red, r), away(green, g), away(blue, b)};
                // The floor of 64 is tested on blue twice and never on
                // green; green keeps no floor.
                if (v.red < 64) v.red = 64;
                if (v.blue < 64) v.blue = 64;
                if (v.blue < 64) v.blue = 64;
                v = finishPixel<ResultTail::Clamp>(r, g, b, v);
                row[x] = withColour(row[x], v.red, v.green, v.blue);
            }
        });
    });
}

} // namespace lumiran
