#include "effects/colour/color_op_support.h"
#include "effects/colour/false_color/class_false_color.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <vector>

namespace lumiran {
namespace {

// The three tint levels of one key, stretched.
struct TintLevels {
    std::int16_t first = 0;
    std::int16_t second = 0;
    std::int16_t third = 0;
};

// Type 0 is keyed by s = 510 - b - g. Its stretch works on 16-bit
// integers: a level above 255 (a negative adjustment on a bright pixel)
// wraps its product by 128, and the difference with 6323 after it, before
// the quotient by 74 is taken in floating point.
TintLevels typeZeroLevels(int s, int adjust) {
    const double third = s / 3.0;
    const int p1 = roundInRange<int>(255 - (third * (55.0 / 255.0) + 200));
    const int p2 = roundInRange<int>(255 - (third * (155.0 / 255.0) + 100));
    const int p3 = roundInRange<int>(255 - third) - adjust;
    auto stretch = [](int p) {
        const std::int16_t numerator = wrap16(wrap16(p * 128) - 6323);
        return static_cast<std::int16_t>(roundInRange<int>(numerator / 74.0));
    };
    return {stretch(p1), stretch(p2), stretch(p3)};
}

// Types 1..3 are keyed by Y of the complements.
TintLevels complementLevels(std::uint8_t type, int y, int adjust) {
    const bool photo = type == 2;
    const double a1 = photo ? 123 : 55, c1 = photo ? 132 : 200;
    const double a2 = photo ? 189 : 155, c2 = photo ? 66 : 100;
    const int p1 = 255 - roundInRange<int>(a1 / 255.0 * y + c1);
    const int p2 = 255 - roundInRange<int>(a2 / 255.0 * y + c2);
    const int p3 = 255 - y;
    auto stretch = [adjust](int p) {
        return wrap16(roundInRange<int>(((p + adjust + 50) * 255 - 12676) / 74.0));
    };
    return {stretch(p1), stretch(p2), stretch(p3)};
}

// Which result channel takes which level. Types 0..2 put the strongest
// level (the third) in the tint's own channel; type 3 makes the purples:
// the strong level in blue with red second for the yellow call (reddish
// purple), in red with blue second for the blue call (purplish red).
Rgb16 assign(bool blue, std::uint8_t type, const TintLevels& l) {
    if (type == 3) {
        return blue ? Rgb16{l.third, l.first, l.second} : Rgb16{l.second, l.first, l.third};
    }
    return blue ? Rgb16{l.first, l.second, l.third} : Rgb16{l.third, l.second, l.first};
}

} // namespace

void Class_FalseColor::BlueSepia(std::uint8_t type, std::int16_t adjust, std::uint8_t choice,
                                 std::int16_t left, std::int16_t top, std::int16_t right,
                                 std::int16_t bottom) {
    guarded([&] { tint(true, type, adjust, choice, {left, top, right, bottom}); });
}

void Class_FalseColor::YellowOperation(std::uint8_t type, std::int16_t adjust, std::uint8_t choice,
                                       std::int16_t left, std::int16_t top, std::int16_t right,
                                       std::int16_t bottom) {
    guarded([&] { tint(false, type, adjust, choice, {left, top, right, bottom}); });
}

void Class_FalseColor::tint(bool blue, std::uint8_t type, std::int16_t adjust, std::uint8_t choice,
                            const ProcessRect& rect) {
    if (type > 3) type = 0;
    // The levels depend on one key only: worked out once for every key.
    std::vector<TintLevels> table(type == 0 ? 511 : 256);
    for (std::size_t key = 0; key < table.size(); ++key) {
        table[key] = type == 0 ? typeZeroLevels(static_cast<int>(key), adjust)
                               : complementLevels(type, static_cast<int>(key), adjust);
    }
    // Each channel is the tint's level or the source's by a table of the
    // key; the lightness choice stays per pixel.
    if (choice != 1) {
        ToneTables tables;
        for (std::size_t key = 0; key < table.size(); ++key) {
            const Rgb16 v = assign(blue, type, table[key]);
            const int k = static_cast<int>(key);
            tables.set(0, k, v.red);
            tables.set(1, k, v.green);
            tables.set(2, k, v.blue);
        }
        // Choices 2..4 keep the source but in red, green or blue.
        if (choice >= 2 && choice <= 4) {
            for (std::size_t c = 0; c < 3; ++c) {
                if (c != static_cast<std::size_t>(choice - 2)) tables.keep(c);
            }
        }
        if (recolour(rect, type == 0 ? ToneKey::GreenBlueDeficit : ToneKey::ComplementLuma,
                     tables)) {
            return;
        }
    }
    mapPixels<ResultTail::Clamp>(
        rect, [&table, blue, type, choice](int, int, int& r, int& g, int& b) {
            const int key = type == 0 ? 510 - b - g : luminanceY(255 - r, 255 - g, 255 - b);
            Rgb16 v = assign(blue, type, table[static_cast<std::size_t>(key)]);
            switch (choice) {
            case 1: {
                // The source's hue at the tint's lightness; a black source is
                // taken as 1, 1, 1, which the blend then sees too.
                int l0 = lightness(std::max({r, g, b}), std::min({r, g, b}));
                if (l0 == 0) r = g = b = l0 = 1;
                const MaxMin m = MaxMinOfThree(v.red, v.green, v.blue);
                const int t = lightness(m.max, m.min);
                v = {scaledChannel(r, l0, t), scaledChannel(g, l0, t), scaledChannel(b, l0, t)};
                break;
            }
            case 2:
                v = {v.red, static_cast<std::int16_t>(g), static_cast<std::int16_t>(b)};
                break;
            case 3:
                v = {static_cast<std::int16_t>(r), v.green, static_cast<std::int16_t>(b)};
                break;
            case 4:
                v = {static_cast<std::int16_t>(r), static_cast<std::int16_t>(g), v.blue};
                break;
            default:
                break;
            }
            return v;
        });
}

} // namespace lumiran
