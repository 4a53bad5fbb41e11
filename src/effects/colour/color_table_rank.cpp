// Effects on named channels or on the channels of a rank.
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"

namespace lumiran {
namespace {

constexpr bool isRankKind(int kind) {
    return kind >= 6 && kind <= 8;
}

constexpr auto EmphasizedMiddleByKey = byOrderKey(MiddleExceptRedGreenAbove);

// Kinds 6 "最大値", 7 "中間値", 8 "最小値" of "Emphasize": every channel of
// the rank, ties included, but the middle of r = g above b is blue alone.
ChannelMask emphasizedChannels(int kind, int r, int g, int b) {
    if (kind == 6) return largestChannels(r, g, b);
    if (kind == 8) return smallestChannels(r, g, b);
    return EmphasizedMiddleByKey[static_cast<std::size_t>(orderKey(r, g, b))];
}

// The same kinds of "Another Color Change" keep every channel of the rank,
// ties included, with no exception.
ChannelMask keptChannels(int kind, int r, int g, int b) {
    if (kind == 6) return largestChannels(r, g, b);
    if (kind == 8) return smallestChannels(r, g, b);
    return middleChannels(r, g, b);
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
                const ChannelMask up = emphasizedChannels(kind, r, g, b);
                auto shifted = [&](ChannelMask channel, int c) {
                    return wrap16((up & channel) != 0 ? c + amount : c - amount);
                };
                return Rgb16{shifted(Red, r), shifted(Green, g), shifted(Blue, b)};
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
        auto tableOf = [&](ChannelMask channel) { return (up & channel) != 0 ? raised : lowered; };
        applyTables(rect, {tableOf(Red), tableOf(Green), tableOf(Blue)});
    });
}

void Class_ColorTable::ColorViewChange(std::int16_t kind, std::int16_t value, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (isRankKind(kind)) {
            const std::int16_t replacement = value;
            mapPixels<ResultTail::Clamp>(rect, [replacement, kind](int r, int g, int b) {
                const ChannelMask keep = keptChannels(kind, r, g, b);
                auto channel = [&](ChannelMask which, int c) {
                    return (keep & which) != 0 ? static_cast<std::int16_t>(c) : replacement;
                };
                return Rgb16{channel(Red, r), channel(Green, g), channel(Blue, b)};
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
        auto tableOf = [&](ChannelMask channel) { return (keep & channel) != 0 ? same : replaced; };
        applyTables(rect, {tableOf(Red), tableOf(Green), tableOf(Blue)}, Store::Direct);
    });
}

} // namespace lumiran
