#pragma once

#include "engine/surface.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumiran {

// A byte per position over the rectangle's index ranges left..right and
// top..bottom, both ends included: the column right and the row bottom
// lie just outside the rectangle and stay 0, so a step past the last
// column or row finds background.
class BilevelMap {
  public:
    BilevelMap(int left, int top, int right, int bottom)
        : left_(left), top_(top), width_(right - left + 1),
          cells_(static_cast<std::size_t>(width_) * static_cast<std::size_t>(bottom - top + 1)) {}

    [[nodiscard]] std::uint8_t at(int x, int y) const { return cells_[index(x, y)]; }
    void set(int x, int y, std::uint8_t value) { cells_[index(x, y)] = value; }

  private:
    [[nodiscard]] std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - top_) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x - left_);
    }

    int left_;
    int top_;
    int width_;
    std::vector<std::uint8_t> cells_;
};

// The foreground of the rectangle (right and bottom exclusive) by a
// measure's value: polarity 0 makes values below the threshold
// background, any other polarity values above it; the threshold itself is
// foreground either way.
[[nodiscard]] BilevelMap foregroundMap(const Surface& source, int left, int top, int right,
                                       int bottom, int measure, int polarity, int threshold);

} // namespace lumiran
