// Rules of one channel value and one parameter, under the colour selector.
#include "effects/colour/class_color_table.h"

#include <cstdlib>

namespace lumiran {

void Class_ColorTable::Negative(std::int16_t selector, std::int16_t value, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const LevelTable rule = LevelTable::build([value](int c) { return std::abs(value - c); });
        // The brightness form keeps the sign: value - L.
        const LevelTable brightness =
            LevelTable::build([value](int level) { return value - level; });
        applySelector({left, top, right, bottom}, selector, rule, brightness);
    });
}

void Class_ColorTable::Sorarization(std::int16_t threshold, std::int16_t selector,
                                    std::int16_t left, std::int16_t top, std::int16_t right,
                                    std::int16_t bottom) {
    guarded([&] {
        const LevelTable rule =
            LevelTable::build([threshold](int c) { return c > threshold ? 255 - c : c; });
        applySelector({left, top, right, bottom}, selector, rule);
    });
}

void Class_ColorTable::MedianLevelEmphasize(std::int16_t selector, std::int16_t amount,
                                            std::int16_t left, std::int16_t top, std::int16_t right,
                                            std::int16_t bottom) {
    guarded([&] {
        const LevelTable rule =
            LevelTable::build([amount](int c) { return c >= 86 && c <= 169 ? c + amount : c; });
        applySelector({left, top, right, bottom}, selector, rule);
    });
}

} // namespace lumiran
