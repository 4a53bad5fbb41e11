#include "effects/halftone/binarization/connection_row.h"

namespace lumiran {

void markConnection(const std::uint8_t* __restrict above, const std::uint8_t* __restrict row,
                    const std::uint8_t* __restrict below, int n, int wanted,
                    std::uint8_t* __restrict keep) {
    // Ring position k is bit k; rotating by one puts each neighbour's
    // successor on its bit, so the 0-to-1 changes are ~ring & next.
    const auto target = static_cast<std::uint8_t>(wanted);
    const bool possible = wanted >= 0 && wanted <= 8;
    for (int i = 1; i < n - 1; ++i) {
        const auto ring = static_cast<std::uint8_t>(
            row[i + 1] | (above[i + 1] << 1) | (above[i] << 2) | (above[i - 1] << 3) |
            (row[i - 1] << 4) | (below[i - 1] << 5) | (below[i] << 6) | (below[i + 1] << 7));
        const auto next = static_cast<std::uint8_t>((ring >> 1) | (ring << 7));
        auto changes = static_cast<std::uint8_t>(~ring & next);
        changes = static_cast<std::uint8_t>(changes - ((changes >> 1) & 0x55));
        changes = static_cast<std::uint8_t>((changes & 0x33) + ((changes >> 2) & 0x33));
        changes = static_cast<std::uint8_t>((changes + (changes >> 4)) & 0x0F);
        keep[i] = static_cast<std::uint8_t>(row[i] & (changes == target) & possible);
    }
}

} // namespace lumiran
