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

    // Where the hand-out stands for every source level. Pixels of one
    // source level get the highest level still planned for it, in row
    // order; those beyond the plan, the ones the top level pushed out, fall
    // to 0. A cursor only reads the plan, so a band of rows can start its
    // own where the rows above it leave off (skip) and run beside them.
    class Cursor {
      public:
        Cursor() { level_.fill(Levels); }

        // The new level of the next pixel of source level v.
        [[nodiscard]] int take(const HistogramFlattening& plan, int v) {
            const auto at = static_cast<std::size_t>(v);
            if (left_[at] > 0) {
                --left_[at];
                return level_[at];
            }
            if (!moveDown(plan, v)) return 0;
            --left_[at];
            return level_[at];
        }

        // As if taken[v] pixels of every level v had been taken.
        void skip(const HistogramFlattening& plan, const Histogram& taken);

        // The one level the next count pixels of v all get, or -1 when they
        // get more than one. Most levels of a band of rows fall within one
        // planned level, so such a band needs no count for them.
        [[nodiscard]] int steadyLevel(const HistogramFlattening& plan, int v,
                                      std::int32_t count) const;

      private:
        // On to the next lower level still planned for v; false past level 0.
        bool moveDown(const HistogramFlattening& plan, int v);

        // The level being handed out (Levels before the first, -1 after the
        // last) and how many pixels it still takes: the plan is read only
        // when a level runs out.
        std::array<std::int16_t, Levels> level_{};
        std::array<std::int32_t, Levels> left_{};
    };

    // The new level of the next pixel of source level v, in row order.
    [[nodiscard]] int take(int sourceLevel) { return cursor_.take(*this, sourceLevel); }

    // Pixels of sourceLevel planned for newLevel (256: pushed out).
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
    Cursor cursor_;
};

} // namespace lumiran
