#pragma once

// The levels a row of a tile wall paints, kept so that many rows can share
// them and painted a whole row at a time.
#include "engine/pixel.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lumiran::pattern {

// A pixel the wall leaves; any level the line type does not colour is left too.
inline constexpr std::uint8_t NoLevel = 0xFF;

// One colouring of a pixel by a wall's walk.
struct LevelPaint {
    int column = 0;
    std::uint8_t level = 0;
};

// The paints of one row of a walk in their order. A pixel that the walk
// colours several times is coloured from what the paint before left, so
// only the order of each pixel's own paints matters: layer t holds every
// pixel's (t + 1)-th level (NoLevel where it has none) across the row, as
// long as enough pixels have that many to be worth a pass over the row;
// the pixels' later paints follow as a list in the walk's order.
class LevelLayers {
  public:
    LevelLayers() = default;
    // The paints of the columns [first, end) in the walk's order.
    LevelLayers(std::span<const LevelPaint> paints, int first, int end);

    [[nodiscard]] int layerCount() const { return layers_; }
    // The levels of layer t, one per column from first.
    [[nodiscard]] const std::uint8_t* layer(int t) const {
        return levels_.data() + static_cast<std::size_t>(t) * width_;
    }
    [[nodiscard]] std::span<const LevelPaint> rest() const { return rest_; }

  private:
    int width_ = 0;
    int layers_ = 0;
    std::vector<std::uint8_t> levels_;
    std::vector<LevelPaint> rest_;
};

// The line types' colours without the blend, clamped, over count pixels:
// each pixel whose level the type colours takes that colour, the others
// stay. Type 0 moves the source by -18 at level 0 and +18 at level 1; 1
// black and white; 2 black, 128 and white; 3 black at level 0; other types
// colour nothing. Every pixel keeps its spare byte.
void paintLevelsClamped(std::uint8_t type, Pixel* row, const std::uint8_t* levels, int count);

} // namespace lumiran::pattern
