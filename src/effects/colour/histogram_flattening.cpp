#include "effects/colour/histogram_flattening.h"

namespace lumiran {

HistogramFlattening::HistogramFlattening(const Histogram& histogram, std::int32_t perLevel) {
    // held[k]: the pixels level k holds now, from every source.
    std::array<std::int32_t, Levels + 1> held{};
    for (int k = 0; k < Levels; ++k) {
        held[static_cast<std::size_t>(k)] = histogram[static_cast<std::size_t>(k)];
        moves_[index(k, k)] = histogram[static_cast<std::size_t>(k)];
    }
    for (int k = 0; k < Levels; ++k) {
        if (held[static_cast<std::size_t>(k)] <= perLevel) {
            fillFromAbove(k, perLevel, held);
        } else {
            pushExcessUp(k, perLevel, held);
        }
    }
    cursor_.fill(Levels - 1);
}

// Levels above k hold only their own pixels yet: take them whole, in order,
// while the count stays within perLevel, and a part from the first that
// would pass it.
void HistogramFlattening::fillFromAbove(int k, std::int32_t perLevel,
                                        std::array<std::int32_t, Levels + 1>& held) {
    std::int32_t& own = held[static_cast<std::size_t>(k)];
    for (int j = k + 1; j < Levels; ++j) {
        std::int32_t& source = moves_[index(j, j)];
        const bool whole = own + source <= perLevel;
        const std::int32_t moved = whole ? source : perLevel - own;
        moves_[index(k, j)] += moved;
        source -= moved;
        held[static_cast<std::size_t>(j)] -= moved;
        own += moved;
        if (!whole) break;
    }
}

// Keep perLevel pixels, the lowest sources first; the rest moves on to k + 1.
void HistogramFlattening::pushExcessUp(int k, std::int32_t perLevel,
                                       std::array<std::int32_t, Levels + 1>& held) {
    std::int32_t sum = 0;
    int j = 0;
    for (; j < Levels; ++j) {
        sum += moves_[index(k, j)];
        if (sum > perLevel) break;
    }
    if (j == Levels) return;
    const std::int32_t beyond = sum - perLevel;
    moves_[index(k, j)] -= beyond;
    moves_[index(k + 1, j)] += beyond;
    for (int later = j + 1; later < Levels; ++later) {
        moves_[index(k + 1, later)] += moves_[index(k, later)];
        moves_[index(k, later)] = 0;
    }
    held[static_cast<std::size_t>(k + 1)] += held[static_cast<std::size_t>(k)] - perLevel;
    held[static_cast<std::size_t>(k)] = perLevel;
}

int HistogramFlattening::take(int sourceLevel) {
    int& k = cursor_[static_cast<std::size_t>(sourceLevel)];
    while (k >= 0 && moves_[index(k, sourceLevel)] <= 0)
        --k;
    if (k < 0) return 0;
    --moves_[index(k, sourceLevel)];
    return k;
}

} // namespace lumiran
