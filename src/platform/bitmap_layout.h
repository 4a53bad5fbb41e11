#pragma once

#include <cstdint>
#include <span>

namespace lumiran {

// The fields of a BMP file header and its info (or OS/2 core) header that
// say how much pixel data must follow.
struct BitmapLayout {
    static constexpr std::uint32_t BI_RGB = 0;
    static constexpr std::uint32_t BI_RLE8 = 1;
    static constexpr std::uint32_t BI_RLE4 = 2;
    static constexpr std::uint32_t BI_BITFIELDS = 3;

    std::uint32_t pixelOffset = 0;
    std::int64_t width = 0;
    std::int64_t height = 0; // negative for top-down rows
    std::uint16_t bitCount = 0;
    std::uint32_t compression = BI_RGB;

    [[nodiscard]] bool runLength() const {
        return compression == BI_RLE8 || compression == BI_RLE4;
    }
};

// Throws PictureRefusal when the headers are cut short.
[[nodiscard]] BitmapLayout readBitmapLayout(std::span<const std::uint8_t> bytes);

// Qt shows a bitmap whose rows run past the end of the file with the missing
// rows blank, and reads a run-length code cut in two from stale memory; the
// platform's decoder refuses such files. Throws PictureRefusal.
void checkBitmapComplete(const BitmapLayout& layout, std::span<const std::uint8_t> bytes);

} // namespace lumiran
