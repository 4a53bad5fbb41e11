#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace lumiran {

// The plan of `Histgram_Equation`: not a remap of levels but, for every new
// level k and source level v, how many pixels of v become k, so that each
// new level holds the wanted count. Pixels of one source level may so end
// on different levels.
class HistogramFlattening {
  public:
    static constexpr int Levels = 256;
    using Histogram = std::array<std::int32_t, Levels>;

    // perLevel is the wanted count of every level.
    HistogramFlattening(const Histogram& histogram, std::int32_t perLevel);

    // The new level of the next pixel of source level v, in row order: the
    // highest level still planned for v. Pixels beyond the plan, those the
    // top level pushed out, fall to 0.
    [[nodiscard]] int take(int sourceLevel);

    // Pixels of sourceLevel still planned for newLevel (256: pushed out).
    [[nodiscard]] std::int32_t planned(int newLevel, int sourceLevel) const {
        return moves_[index(newLevel, sourceLevel)];
    }

  private:
    [[nodiscard]] static std::size_t index(int newLevel, int sourceLevel) {
        return static_cast<std::size_t>(newLevel) * Levels + static_cast<std::size_t>(sourceLevel);
    }
    void fillFromAbove(int level, std::int32_t perLevel,
                       std::array<std::int32_t, Levels + 1>& held);
    void pushExcessUp(int level, std::int32_t perLevel, std::array<std::int32_t, Levels + 1>& held);

    // One row per new level and one more for what the top level pushes out.
    std::vector<std::int32_t> moves_ = std::vector<std::int32_t>((Levels + 1) * Levels, 0);
    std::array<int, Levels> cursor_{};
};

} // namespace lumiran
