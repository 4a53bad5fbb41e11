#pragma once

// Shapes as runs of pixels per row, and their painting with a pen. Internal
// to the drawing folder.
#include "engine/drawing/bit_ops.h"
#include "engine/surface.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lumiran::drawing {

// Rows and columns with inclusive bounds, in 64 bits so that shapes far
// outside the picture are worked out without overflow.
struct Window {
    std::int64_t left = 0;
    std::int64_t top = 0;
    std::int64_t right = -1;
    std::int64_t bottom = -1;
    [[nodiscard]] bool empty() const { return left > right || top > bottom; }
};

struct Run {
    std::int64_t left = 0;
    std::int64_t right = 0; // inclusive
};

// The pen of the picture control: a disc of `width` pixels across, placed
// with its upper left half on the point. Width 1 is the point itself, 2 the
// point with its right, lower and lower right neighbours, 3 the 3 x 3
// square; from 4 on the corners are cut round.
class Pen {
  public:
    explicit Pen(int width);
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int low() const { return low_; }   // first offset, 0 or negative
    [[nodiscard]] int high() const { return high_; } // last offset
    // The columns the pen covers on row offset dy, low() <= dy <= high().
    [[nodiscard]] Run span(int dy) const { return spans_[static_cast<std::size_t>(dy - low_)]; }
    // The thin shape's pixels that can reach the visible window.
    [[nodiscard]] Window reach(const Window& visible) const;

  private:
    int width_;
    int low_;
    int high_;
    std::vector<Run> spans_;
};

// The pixels of a thin shape, row by row. Pixels outside the window given
// at construction are dropped as they are added, so memory stays bounded by
// the window however far the shape reaches.
class RowRuns {
  public:
    explicit RowRuns(const Window& window) : window_(window) {}

    // Empties the shape for a new window, keeping the memory for reuse.
    void reset(const Window& window);

    void add(std::int64_t y, std::int64_t left, std::int64_t right);
    void addPixel(std::int64_t x, std::int64_t y) { add(y, x, x); }
    // Sorts the runs and merges those that overlap or touch.
    void finish();

    [[nodiscard]] bool empty() const { return entries_.empty(); }
    [[nodiscard]] std::int64_t firstRow() const { return first_; }
    [[nodiscard]] std::int64_t lastRow() const { return last_; }
    [[nodiscard]] std::span<const Run> row(std::int64_t y) const;

  private:
    struct Entry {
        std::int64_t y;
        Run run;
    };
    Window window_;
    std::vector<Entry> entries_;
    std::vector<Run> runs_;
    std::vector<std::size_t> rowStart_;
    std::int64_t first_ = 0;
    std::int64_t last_ = -1;
    bool sorted_ = true;
};

// Paints the shape widened by the pen into the visible window, each pixel
// once, combining the colour by the table.
void paintRuns(Surface& surface, const Window& visible, const RowRuns& shape, const Pen& pen,
               BinaryTable table, Pixel colour);

} // namespace lumiran::drawing
