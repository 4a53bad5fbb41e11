#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace lumiran {

// How a device-independent bitmap inside a metafile record gives its colours.
enum class DibColours { Rgb, PaletteIndices };

// The pixels of the bitmaps a metafile carries, added up over the file: a
// run-length bitmap of a few bytes can declare any size, and the libraries
// decode (and inline into the drawing) every one of them.
class DibBudget {
  public:
    explicit DibBudget(std::uint64_t pixels) : left_(pixels) {}
    // False once the bitmaps together have more pixels than the budget.
    [[nodiscard]] bool take(std::uint64_t pixels) {
        if (pixels > left_) return false;
        left_ -= pixels;
        return true;
    }

  private:
    std::uint64_t left_;
};

// Why a bitmap embedded in a record will not be handed to the metafile
// libraries, or empty when it is whole: a known header, a plausible size,
// and the colour table and pixels it declares inside the record. The
// libraries read such a bitmap without checking, and some cut-short ones
// make them loop forever.
[[nodiscard]] std::string embeddedDibProblem(std::span<const std::uint8_t> dib, DibColours colours,
                                             DibBudget& budget);

} // namespace lumiran
