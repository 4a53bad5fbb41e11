#pragma once

#include "engine/run_context.h"
#include "engine/surface.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace lumiran {

// A byte per position over the rectangle's index ranges left..right and
// top..bottom, both ends included: the column right and the row bottom
// lie just outside the rectangle and stay 0, so a step past the last
// column or row finds background.
class BilevelMap {
  public:
    BilevelMap(int left, int top, int right, int bottom) : BilevelMap(left, top, right, bottom, 0) {
        std::fill_n(cells_.get(), size(), std::uint8_t{0});
    }

    // A map whose rows the caller fills, every byte of each.
    static BilevelMap unfilled(int left, int top, int right, int bottom) {
        return {left, top, right, bottom, 0};
    }

    [[nodiscard]] std::uint8_t at(int x, int y) const { return cells_[index(x, y)]; }
    void set(int x, int y, std::uint8_t value) { cells_[index(x, y)] = value; }

    // Row y from column left on, width() bytes.
    [[nodiscard]] std::uint8_t* row(int y) { return cells_.get() + index(left_, y); }
    [[nodiscard]] const std::uint8_t* row(int y) const { return cells_.get() + index(left_, y); }
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int left() const { return left_; }
    [[nodiscard]] int top() const { return top_; }
    [[nodiscard]] int bottom() const { return top_ + height_ - 1; }

  private:
    BilevelMap(int left, int top, int right, int bottom, int)
        : left_(left), top_(top), width_(right - left + 1), height_(bottom - top + 1),
          cells_(std::make_unique_for_overwrite<std::uint8_t[]>(size())) {}

    [[nodiscard]] std::size_t size() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }
    [[nodiscard]] std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y - top_) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x - left_);
    }

    int left_;
    int top_;
    int width_;
    int height_;
    std::unique_ptr<std::uint8_t[]> cells_;
};

// The foreground of the rectangle (right and bottom exclusive) by a
// measure's value: polarity 0 makes values below the threshold
// background, any other polarity values above it; the threshold itself is
// foreground either way. Rows are measured on the run's threads.
[[nodiscard]] BilevelMap foregroundMap(RunContext& context, const Surface& source, int left,
                                       int top, int right, int bottom, int measure, int polarity,
                                       int threshold);

} // namespace lumiran
