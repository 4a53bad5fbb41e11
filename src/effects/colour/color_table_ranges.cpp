// Rules on a range of channel values, low to high inclusive.
#include "effects/colour/class_color_table.h"

namespace lumiran {
namespace {

constexpr bool within(int c, int low, int high) {
    return c >= low && c <= high;
}

} // namespace

void Class_ColorTable::ShadeRangeAdjust(std::int16_t selector, std::int16_t high, std::int16_t low,
                                        std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom, std::int16_t value) {
    guarded([&] {
        const LevelTable rule =
            LevelTable::build([=](int c) { return within(c, low, high) ? value : c; });
        applySelector({left, top, right, bottom}, selector, rule);
    });
}

void Class_ColorTable::ShadeRangeExChange(std::int16_t high, std::int16_t low, std::int16_t left,
                                          std::int16_t top, std::int16_t right, std::int16_t bottom,
                                          std::int16_t red, std::int16_t green, std::int16_t blue) {
    guarded([&] {
        auto towards = [=](int component) {
            return LevelTable::build([=](int c) { return within(c, low, high) ? component : c; });
        };
        applyTables({left, top, right, bottom}, {towards(red), towards(green), towards(blue)});
    });
}

void Class_ColorTable::ColorLength(std::int16_t high, std::int16_t low, std::int16_t selector,
                                   std::int16_t left, std::int16_t top, std::int16_t right,
                                   std::int16_t bottom) {
    guarded([&] {
        const LevelTable rule = LevelTable::build([=](int c) {
            int v = c > high ? high : c;
            // Tested on the source value: with high below low, a channel
            // that was cut to high stays there unless it was below low.
            if (c < low) v = low;
            return v;
        });
        applySelector({left, top, right, bottom}, selector, rule);
    });
}

void Class_ColorTable::LevelSlice(std::int16_t high, std::int16_t low, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const LevelTable slice =
            LevelTable::build([=](int c) { return within(c, low, high) ? 255 : 0; });
        applyTables({left, top, right, bottom}, {slice, slice, slice});
    });
}

} // namespace lumiran
