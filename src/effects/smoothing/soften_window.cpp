#include "effects/smoothing/soften_window.h"

#include <cstdint>

namespace lumiran::soften {

ProcessRect cutToPicture(const ProcessRect& rect, int width, int height) {
    // The exclusive limits as the 16-bit "limit minus 1" of the loops gives them.
    const int right = std::min(wrap16(rect.right - 1) + 1, width);
    const int bottom = std::min(wrap16(rect.bottom - 1) + 1, height);
    const int left = std::max<int>(rect.left, 0);
    const int top = std::max<int>(rect.top, 0);
    if (left >= right || top >= bottom) return {};
    return {static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
            static_cast<std::int16_t>(right), static_cast<std::int16_t>(bottom)};
}

ProcessRect windowCentres(const ProcessRect& rect, int width, int height, int reach) {
    const ProcessRect cut = cutToPicture(rect, width, height);
    const int left = cut.left + reach;
    const int top = cut.top + reach;
    const int right = cut.right - reach;
    const int bottom = cut.bottom - reach;
    if (left >= right || top >= bottom) return {};
    return {static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
            static_cast<std::int16_t>(right), static_cast<std::int16_t>(bottom)};
}

Divider dividerFor(int n, int largest) {
    // With m = ceil(2^s / n) and e = m n - 2^s, (v m) >> s is v / n for
    // every v with v e < 2^s; the product must also fit 32 bits.
    const auto v = static_cast<std::uint64_t>(largest);
    for (int shift = 0; shift < 32; ++shift) {
        const std::uint64_t power = std::uint64_t{1} << shift;
        const std::uint64_t m = (power + static_cast<std::uint64_t>(n) - 1) / n;
        const std::uint64_t error = m * static_cast<std::uint64_t>(n) - power;
        if (m * v >= (std::uint64_t{1} << 32)) break;
        if (error * v < power) return {static_cast<std::uint32_t>(m), shift};
    }
    // Not reached for the windows here (n <= 225, largest <= 255 n).
    throw EffectError::overflow();
}

} // namespace lumiran::soften
