#include "effects/colour/histogram_flattening.h"

#include <algorithm>

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

bool HistogramFlattening::Cursor::moveDown(const HistogramFlattening& plan, int v) {
    const auto at = static_cast<std::size_t>(v);
    int k = level_[at] - 1;
    while (k >= 0 && plan.moves_[index(k, v)] <= 0)
        --k;
    level_[at] = static_cast<std::int16_t>(std::max(k, -1));
    left_[at] = k < 0 ? 0 : plan.moves_[index(k, v)];
    return k >= 0;
}

int HistogramFlattening::Cursor::steadyLevel(const HistogramFlattening& plan, int v,
                                             std::int32_t count) const {
    // Level 0 and what lies beyond the plan both give 0.
    const auto at = static_cast<std::size_t>(v);
    if (left_[at] > 0) return left_[at] >= count || level_[at] == 0 ? level_[at] : -1;
    int k = level_[at] - 1;
    while (k > 0 && plan.moves_[index(k, v)] <= 0)
        --k;
    if (k <= 0) return 0;
    return plan.moves_[index(k, v)] >= count ? k : -1;
}

void HistogramFlattening::Cursor::skip(const HistogramFlattening& plan, const Histogram& taken) {
    for (int v = 0; v < Levels; ++v) {
        const auto at = static_cast<std::size_t>(v);
        std::int32_t count = taken[at];
        while (count > 0) {
            if (left_[at] == 0 && !moveDown(plan, v)) break;
            const std::int32_t step = std::min(left_[at], count);
            left_[at] -= step;
            count -= step;
        }
    }
}

} // namespace lumiran
