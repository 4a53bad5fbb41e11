#include "effects/colour/class_color_table.h"
#include "engine/colour_models.h"

#include <cmath>

namespace lumiran {

void Class_ColorTable::Uni(std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom, double red, double green, double blue, double light,
                           double weight) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(rect.top, rect.bottom);
        forEachRow(rect, [&](Pixel* row, int begin, int end) {
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
