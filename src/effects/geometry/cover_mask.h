#pragma once

// Which pixels of a box some patch covers, for effects that lay many
// patches of one size of one picture onto another at the patches' own
// places: each patch marks only its top left corner, one bit; spread()
// then grows every mark into its patch in a few passes over the mask, and
// each row of the target takes the covered pixels in one pass over the row.
#include "engine/picture_memory.h"
#include "engine/pixel.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumiran {

class CoverMask {
  public:
    // A box of width x height for patches of patchWidth x patchHeight whose
    // corners lie at or right of and below (firstX, firstY), in the box's
    // coordinates: corners left of or above the box still reach into it.
    CoverMask(int width, int height, int patchWidth, int patchHeight, int firstX, int firstY);

    // Where the mark of a patch at (x, y) goes, as word() and bit(); a
    // patch that misses the box gets an empty bit.
    struct Mark {
        std::uint32_t word;
        std::uint64_t bit;
    };
    [[nodiscard]] Mark markOf(int x, int y) const {
        const auto mx = static_cast<std::uint32_t>(x + marginX_);
        const auto my = static_cast<std::uint32_t>(y + marginY_);
        const bool inside = mx < static_cast<std::uint32_t>(markWidth_) &&
                            my < static_cast<std::uint32_t>(markHeight_);
        const std::uint32_t word = static_cast<std::uint32_t>(mx / 64) * columnWords_ + my;
        return {inside ? word : 0, inside ? std::uint64_t{1} << (mx % 64) : 0};
    }
    void mark(Mark m) { bits_[m.word] |= m.bit; }
    void prefetch(std::uint32_t word) const { __builtin_prefetch(bits_.data() + word, 1); }

    // Takes the marks of another mask of the same box and patch.
    void merge(const CoverMask& other);
    // Every mark becomes its patch.
    void spread();

    // The covered pixels of row y of the box, from source onto target,
    // both starting at the box's first column.
    void copyRow(int y, const Pixel* source, Pixel* target) const;

  private:
    [[nodiscard]] std::uint64_t& at(int column, int row) {
        return bits_[static_cast<std::size_t>(column) * columnWords_ +
                     static_cast<std::size_t>(row)];
    }
    [[nodiscard]] std::uint64_t at(int column, int row) const {
        return bits_[static_cast<std::size_t>(column) * columnWords_ +
                     static_cast<std::size_t>(row)];
    }
    void spreadAcross(int shift);
    void spreadDown(int shift);

    int width_ = 0;
    int height_ = 0;
    int patchWidth_ = 0;
    int patchHeight_ = 0;
    // Corners left of the box are kept in whole words before it, corners
    // above it in rows before it.
    int marginX_ = 0;
    int marginY_ = 0;
    int markWidth_ = 0;
    int markHeight_ = 0;
    int columns_ = 0;
    std::uint32_t columnWords_ = 0;
    // Words column by column: a patch's rows are one run of words. A mask
    // for a large picture is megabytes: picture memory, so that it comes
    // in huge pages.
    std::vector<std::uint64_t, PictureAllocator<std::uint64_t>> bits_;
};

} // namespace lumiran
