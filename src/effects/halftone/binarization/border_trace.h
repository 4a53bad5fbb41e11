#pragma once

#include "engine/picture_memory.h"
#include "engine/run_context.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

// The 8-connected border traces over a rectangle of width x height, in
// coordinates from its top left corner. The foreground is kept as each
// pixel's eight neighbours, one byte per pixel: bit d is set when the
// neighbour in direction d is foreground, and a background pixel's byte is
// 0, since a trace never stands on one. A trace then reads one byte per
// position it visits, with no bounds to test: beyond the right column and
// the bottom row lies background, and only traces that start near the top
// or left edge can reach the clamp there.
//
// Directions: 0 (0,+1), 1 (+1,+1), 2 (+1,0), 3 (+1,-1), 4 (0,-1),
// 5 (-1,-1), 6 (-1,0), 7 (-1,+1).
class BorderTraceGrid {
  public:
    // Both arrays come from picture memory; the marks are cleared on the
    // run's threads, the neighbour bytes wait for measure().
    BorderTraceGrid(RunContext& context, int width, int height);

    // A new foreground: foregroundRow(y, out) writes width bytes for row
    // y, 0xFF for foreground and 0 for background; it may read the marks.
    // Rows are measured on the run's threads, each band rolling three rows
    // of the foreground.
    template <typename ForegroundRow>
    void measure(RunContext& context, ForegroundRow&& foregroundRow) {
        const auto padded = static_cast<std::size_t>(width_) + 2;
        forEachBandShared(context, 0, height_, width_, [&](int first, int end) {
            std::vector<std::uint8_t> rows(3 * padded, 0);
            std::uint8_t* up = rows.data();
            std::uint8_t* here = up + padded;
            std::uint8_t* down = here + padded;
            auto fill = [&](std::uint8_t* row, int y) {
                if (y < 0 || y >= height_) {
                    std::fill_n(row, padded, std::uint8_t{0});
                } else {
                    foregroundRow(y, row + 1);
                }
            };
            fill(up, first - 1);
            fill(here, first);
            for (int y = first; y < end; ++y) {
                fill(down, y + 1);
                neighbourRow(up + 1, here + 1, down + 1, neighbours(y));
                std::swap(up, here);
                std::swap(here, down);
            }
        });
    }

    // Every trace that start kind 1 starts in the interior, leaving its
    // marks; the marks add up over several foregrounds.
    void trace(RunContext& context);

    [[nodiscard]] const std::uint8_t* marks(int y) const {
        return marks_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }
    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

  private:
    using Bytes = std::vector<std::uint8_t, PictureAllocator<std::uint8_t>>;

    [[nodiscard]] std::uint8_t* neighbours(int y) {
        return neighbours_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_);
    }
    // Rows up, here and down (0 or 0xFF) are readable at -1 and width,
    // which are 0.
    void neighbourRow(const std::uint8_t* up, const std::uint8_t* here, const std::uint8_t* down,
                      std::uint8_t* out) const;
    // A trace from its first move on: standing at at, facing direction,
    // steps spent.
    struct Walk {
        std::ptrdiff_t start;
        std::ptrdiff_t at;
        int direction;
        int steps;
    };
    // Walks waiting to run, in a few thousand bytes.
    struct WalkQueue {
        std::array<Walk, 512> walks;
        std::size_t count = 0;
    };
    // The traces of row y: those near the edges at once, the others'
    // first moves into the queue, which runs whenever it is full.
    void traceRow(int y, WalkQueue& queue);
    void walk(std::span<const Walk> walks);
    void traceNearEdge(int startX, int startY, int direction);
    void mark(std::ptrdiff_t at);

    // What a trace does on a pixel by its neighbour byte and the direction
    // it faces (byte * 8 + direction): the steps it spends turning and
    // moving (0: it cannot move), the offset of its move, the direction it
    // faces after it.
    struct Move {
        std::int32_t offset;
        std::uint8_t cost;
        std::uint8_t next;
    };

    int width_;
    int height_;
    std::array<Move, 256 * 8> moves_{};
    std::array<std::ptrdiff_t, 8> offsets_{};
    Bytes neighbours_;
    Bytes marks_;
};

} // namespace lumiran
