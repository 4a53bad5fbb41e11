#pragma once

// Which pixels of a box some patch covers, one bit a pixel, for effects
// that lay many small patches of one picture onto another at the patches'
// own places: the patches are marked in any order, and each row of the
// target then takes the covered pixels in one pass over the row. A word
// holds part of one row, so threads may mark rows of their own at once.
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
        std::uint64_t* word = bits_.data() + indexOf(y0, x0 >> 6);
        const int rows = y1 - y0;
        for (int i = 0; i < rows; ++i)
            word[i] |= low;
        if (high != 0) {
            word += columnWords_;
            for (int i = 0; i < rows; ++i)
                word[i] |= high;
        }
    }

    // The covered pixels of row y of the box, from source onto target,
    // both starting at the box's first column.
    void copyRow(int y, const Pixel* source, Pixel* target) const;

  private:
    // Words are kept column by column, so that the rows of a patch are
    // one run of words; a column starts on a line of its own.
    static constexpr int LineWords = 8;

    [[nodiscard]] static std::uint64_t onesBelow(int n) {
        return n >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << n) - 1;
    }
    [[nodiscard]] std::size_t indexOf(int y, int column) const {
        return static_cast<std::size_t>(column) * columnWords_ + static_cast<std::size_t>(y);
    }
    [[nodiscard]] std::uint64_t word(int y, int column) const { return bits_[indexOf(y, column)]; }
    void coverWide(int x0, int x1, int y0, int y1);

    int width_ = 0;
    int height_ = 0;
    std::size_t columnWords_ = 0; // the height, whole lines
    int columns_ = 0;             // one spare column, for a run's carry
    // A mask the size of a picture's row count is megabytes: picture
    // memory, so that it comes in huge pages.
    std::vector<std::uint64_t, PictureAllocator<std::uint64_t>> bits_;
};

} // namespace lumiran
