#pragma once

// The colour of cell (i, j) of a block from its mean M, for the mosaics
// that paint every cell. "Edge" is the first row or column of the block.
#include "engine/calculation.h"

#include <cstdint>

namespace lumiran::mosaic {

struct CellPlace {
    int i = 0;      // the cell's row in the block, unfolded
    int j = 0;      // its column
    int width = 1;  // w
    int height = 1; // h
    [[nodiscard]] bool edge() const { return i == 0 || j == 0; }
    [[nodiscard]] bool at(int k) const { return i == k || j == k; }
};

// M plus a delta in each channel, in the 16-bit fields.
[[nodiscard]] Rgb16 shifted(Rgb16 mean, int delta);
// One value in all three channels.
[[nodiscard]] Rgb16 grey(int value);

[[nodiscard]] Rgb16 normalCell(std::uint8_t type, const CellPlace& cell, Rgb16 mean);
[[nodiscard]] Rgb16 tileCell(std::uint8_t type, const CellPlace& cell, Rgb16 mean);
[[nodiscard]] Rgb16 gradation1Cell(std::uint8_t type, const CellPlace& cell, Rgb16 mean);

// Mosaic_Gradation2 as a run from a colour at distance 0 to another at the
// full extent, a + (b - a) / extent * distance per channel.
class Gradation2 {
  public:
    explicit Gradation2(std::uint8_t type);
    [[nodiscard]] Rgb16 cell(const CellPlace& cell, Rgb16 mean) const;

  private:
    enum class Measure { Vertical, Radial, Diagonal };
    enum class End { Black, Mean, White };
    struct Kind {
        Measure measure;
        End from;
        End to;
    };
    Kind kind_;
};

} // namespace lumiran::mosaic
