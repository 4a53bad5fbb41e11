// Effects on named channels or on the channels of a rank.
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"

namespace lumiran {
namespace {

constexpr bool isRankKind(int kind) {
    return kind >= 6 && kind <= 8;
}

LevelTable shiftedBy(int amount) {
    return LevelTable::build([amount](int c) { return c + amount; });
}

LevelTable constant(int value) {
    return LevelTable::build([value](int) { return value; });
}

} // namespace

void Class_ColorTable::ColorEmphasize(std::int16_t amount, std::int16_t kind, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (isRankKind(kind)) {
            mapPixels<ResultTail::Clamp>(rect, [amount, kind](int r, int g, int b) {
                const ChannelMask up = rankedChannels(kind, r, g, b);
                return Rgb16{wrap16(up.red ? r + amount : r - amount),
                             wrap16(up.green ? g + amount : g - amount),
                             wrap16(up.blue ? b + amount : b - amount)};
            });
            return;
        }
        // An unknown kind names no channel and changes nothing.
        if (kind < 0 || kind > 5) {
            applyTables(rect,
                        {LevelTable::identity(), LevelTable::identity(), LevelTable::identity()});
            return;
        }
        const ChannelMask up = namedChannels(kind);
        const LevelTable raised = shiftedBy(amount);
        const LevelTable lowered = shiftedBy(-amount);
        applyTables(rect, {up.red ? raised : lowered, up.green ? raised : lowered,
                           up.blue ? raised : lowered});
    });
}

void Class_ColorTable::ColorViewChange(std::int16_t kind, std::int16_t value, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (isRankKind(kind)) {
            const std::int16_t replacement = value;
            mapPixels<ResultTail::Clamp>(rect, [replacement, kind](int r, int g, int b) {
                const ChannelMask keep = rankedChannels(kind, r, g, b);
                return Rgb16{keep.red ? static_cast<std::int16_t>(r) : replacement,
                             keep.green ? static_cast<std::int16_t>(g) : replacement,
                             keep.blue ? static_cast<std::int16_t>(b) : replacement};
            });
            return;
        }
        if (kind < 0 || kind > 5) {
            // No case matches: the rows are walked and nothing is written.
            SetProgressRange(rect.top, rect.bottom);
            forEachRow(rect, [](Pixel*, int, int) {});
            return;
        }
        // The named channels stay; the others take value straight in the
        // array, without clamp or calculation type.
        const ChannelMask keep = namedChannels(kind);
        const LevelTable same = LevelTable::identity();
        const LevelTable replaced = constant(value);
        applyTables(
            rect,
            {keep.red ? same : replaced, keep.green ? same : replaced, keep.blue ? same : replaced},
            Store::Direct);
    });
}

} // namespace lumiran
