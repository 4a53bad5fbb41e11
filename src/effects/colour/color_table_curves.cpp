// Curves of one channel value: gamma and the histogram stretch.
#include "effects/colour/class_color_table.h"

#include <cmath>

namespace lumiran {

void Class_ColorTable::GanmaRevision(std::int16_t maxLevel, std::int16_t percent, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const double exponent = 1.0 / (percent / 100.0);
        const double scale = maxLevel;
        const LevelTable curve = LevelTable::build([=](int c) {
            if (c == 0) return 0;
            const int v = roundTo<std::int16_t>(scale * std::pow(c / scale, exponent));
            return v > 255 ? 255 : v;
        });
        applyTables({left, top, right, bottom}, {curve, curve, curve});
    });
}

void Class_ColorTable::Histgram_Expansion(std::int16_t width, std::int16_t selector,
                                          std::int16_t left, std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    // Too narrow a range: the effect does not run at all.
    if (width < 10) return;
    guarded([&] {
        // width is both the offset and the range of the stretch.
        const LevelTable stretch = LevelTable::build([width](int c) {
            return roundTo<std::int16_t>(((c - width) * 255 + width / 2.0) / width);
        });
        applySelector({left, top, right, bottom}, selector, stretch);
    });
}

} // namespace lumiran
