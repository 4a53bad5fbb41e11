#include "effects/halftone/dithering/level_tables.h"

#include "engine/effect_error.h"

#include <algorithm>

namespace lumiran {
namespace {

// Bands of the given bounds: entries below bounds[0] take values[0], and
// so on; the rest take the last value.
template <std::size_t N>
LevelTable bands(const std::array<int, N - 1>& bounds, const std::array<int, N>& values) {
    LevelTable t{};
    for (int i = 0; i < 256; ++i) {
        const auto band = std::ranges::upper_bound(bounds, i) - bounds.begin();
        t[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(values[band]);
    }
    return t;
}

} // namespace

LevelTable levelTable(std::int16_t level) {
    switch (level) {
    case 2:
        return bands<2>({128}, {0, 255});
    case 3:
        return bands<3>({64, 192}, {0, 128, 255});
    case 4:
        return bands<4>({43, 128, 213}, {0, 85, 170, 255});
    default:
        break;
    }
    // The band rule. v starts at s and is set to n s when the counter
    // reaches s, with n starting at 1: the first band is repeated, so the
    // bands start with s and not with 0.
    LevelTable t{};
    const std::int16_t s = roundTo<std::int16_t>(256.0 / level);
    const double top = wrap16((level - 1) * s) + s / 2.0;
    std::int16_t v = s;
    std::int16_t n = 1;
    std::int16_t c = 0;
    for (int i = 0; i < 256; ++i) {
        std::int16_t& entry = t[static_cast<std::size_t>(i)];
        if (roundTo<std::int16_t>(v / 2.0) > i) {
            if (i >= top) {
                entry = 255;
            } else if (roundTo<std::int16_t>((v + s) / 2.0) > i) {
                entry = v;
            }
        } else {
            entry = std::min<std::int16_t>(wrap16(v + s), 255);
        }
        if (c == s) {
            v = wrap16(n * s);
            n = wrap16(n + 1);
            c = 0;
        } else {
            c = wrap16(c + 1);
        }
    }
    return t;
}

LevelTable drawingColorLevelTable(std::int16_t level, std::int16_t paintType, int c) {
    const bool fromColour = paintType == 0; // dark = the colour, light = white
    if (fromColour) {
        const int half = (255 - c) / 2;
        const int third = (255 - c) / 3;
        switch (level) {
        case 2:
            return bands<2>({128}, {c, 255});
        case 3:
            return bands<3>({64, 192}, {c, c + half, c + 2 * half});
        case 4:
            return bands<4>({43, 128, 213}, {c, c + third, c + 2 * third, c + 3 * third});
        default:
            break;
        }
    } else {
        switch (level) {
        case 2:
            // 128 itself is still black.
            return bands<2>({129}, {0, c});
        case 3:
            return bands<3>({64, 192}, {0, c / 2, c});
        case 4:
            // The third band is c / 6, darker than the second: kept.
            return bands<4>({43, 128, 213}, {0, c / 3, c / 6, c});
        default:
            break;
        }
    }
    // Bands of s + 1 entries (the first of s), each t above the last.
    const int step = checkedDivide(fromColour ? 255 - c : c, level - 1);
    const std::int16_t s = roundTo<std::int16_t>(256.0 / level);
    int a = fromColour ? c : 0;
    int k = 0;
    LevelTable t{};
    for (int i = 0; i < 256; ++i) {
        if (k == s) {
            k = 0;
            a = wrap16(a + step);
        } else {
            ++k;
        }
        t[static_cast<std::size_t>(i)] = static_cast<std::int16_t>(a);
    }
    return t;
}

} // namespace lumiran
