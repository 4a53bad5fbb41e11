// Posterize: a table of level steps.
#include "effects/colour/class_color_table.h"

#include <array>

namespace lumiran {
namespace {

using Entries = std::array<std::int16_t, LevelTable::Size>;

// Steps by thresholds: entry i is the value of the first bound above i.
Entries stepped(std::initializer_list<std::pair<int, int>> bounds) {
    Entries entries{};
    for (int i = 0; i < LevelTable::Size; ++i) {
        for (const auto& [below, value] : bounds) {
            if (i < below) {
                entries[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(value);
                break;
            }
        }
    }
    return entries;
}

// Levels 5 and above. The walk is the program's own and not an even split:
// the lowest entries take the first step s rather than 0, and most of the
// range sits at s + v.
Entries walkedSteps(int levels) {
    Entries entries{};
    const int step = roundTo<std::int16_t>(255.0 / levels);
    const double topStart = (levels - 1) * step + step / 2.0;
    int value = step, multiple = 1, count = 0;
    for (int i = 0; i < LevelTable::Size; ++i) {
        std::int16_t& entry = entries[static_cast<std::size_t>(i)];
        if (roundTo<std::int16_t>(value / 2.0) > i) {
            if (i >= topStart) {
                entry = 255;
            } else if (roundTo<std::int16_t>((step + value) / 2.0) > i) {
                entry = wrap16(value);
            }
        } else {
            entry = wrap16(std::min(step + value, 255));
        }
        if (count == step) {
            value = multiple * step;
            ++multiple;
            count = 0;
        } else {
            ++count;
        }
    }
    return entries;
}

// Levels below 2 match no case of the table and leave it at 0.
Entries posterizeEntries(int levels) {
    switch (levels) {
    case 2:
        return stepped({{128, 0}, {256, 255}});
    case 3:
        return stepped({{64, 0}, {192, 128}, {256, 255}});
    case 4:
        return stepped({{43, 0}, {128, 85}, {213, 170}, {256, 255}});
    default:
        return levels >= 5 ? walkedSteps(levels) : Entries{};
    }
}

} // namespace

void Class_ColorTable::ColorTableOperation(std::int16_t selector, std::int16_t left,
                                           std::int16_t top, std::int16_t right,
                                           std::int16_t bottom, std::int16_t level) {
    guarded([&] {
        const LevelTable table = LevelTable::fromEntries(posterizeEntries(level));
        applySelector({left, top, right, bottom}, selector, table, table.limited(0, 255),
                      DarkPixel::BecomesOne);
    });
}

} // namespace lumiran
