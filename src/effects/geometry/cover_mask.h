#pragma once

// Which pixels of a box some patch covers, one bit a pixel, for effects
// that lay many small patches of one picture onto another at the patches'
// own places: the patches are marked in any order, and each row of the
// target then takes the covered pixels in one pass over the row.
#include "engine/picture_memory.h"
#include "engine/pixel.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

class CoverMask {
  public:
    CoverMask(int width, int height);

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

    // Marks columns [x0, x1) of rows [y0, y1); the caller clips to the box
    // and leaves out empty ranges.
    void cover(int x0, int x1, int y0, int y1) {
        const int n = x1 - x0;
        if (n > 64) {
            coverWide(x0, x1, y0, y1);
            return;
        }
        // A run of at most 64 bits reaches at most the next word.
        const std::uint64_t ones = onesBelow(n);
        const int shift = x0 & 63;
        const std::uint64_t low = ones << shift;
        const std::uint64_t high = (ones >> 1) >> (63 - shift);
        const int column = x0 >> 6;
        for (int y = y0; y < y1; ++y) {
            std::uint64_t* word = bits_.data() + indexOf(y, column);
            word[0] |= low;
            if (high != 0) word[TileRows] |= high;
        }
    }

    // Asks for the line of pixel (x, y) ahead of a cover() there, as the
    // marks land at random places; the place is clamped into the box.
    void prefetch(int x, int y) const {
        x = std::clamp(x, 0, std::max(width_ - 1, 0));
        y = std::clamp(y, 0, std::max(height_ - 1, 0));
        __builtin_prefetch(bits_.data() + indexOf(y, x >> 6), 1);
    }

    // The covered pixels of row y of the box, from source onto target,
    // both starting at the box's first column; masks are read together, so
    // several threads can each mark a mask of their own.
    static void copyRow(std::span<const CoverMask> masks, int y, const Pixel* source,
                        Pixel* target);

  private:
    // Words are kept in tiles of 8 rows of one word column, a cache line
    // each: the rows of a patch share a line, and a row of words is 8
    // lines apart.
    static constexpr int TileRows = 8;

    [[nodiscard]] static std::uint64_t onesBelow(int n) {
        return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
    }
    [[nodiscard]] std::size_t indexOf(int y, int column) const {
        return (static_cast<std::size_t>(y / TileRows) * wordsPerRow_ + column) * TileRows +
               y % TileRows;
    }
    [[nodiscard]] std::uint64_t word(int y, int column) const { return bits_[indexOf(y, column)]; }
    void coverWide(int x0, int x1, int y0, int y1);

    int width_ = 0;
    int height_ = 0;
    int wordsPerRow_ = 0; // one spare word column, for a run's carry
    // A mask the size of a picture's row count is megabytes: picture
    // memory, so that it comes in huge pages.
    std::vector<std::uint64_t, PictureAllocator<std::uint64_t>> bits_;
};

} // namespace lumiran
