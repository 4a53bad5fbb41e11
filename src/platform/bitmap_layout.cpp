#include "platform/bitmap_layout.h"

#include "imagefiles/byte_io.h"
#include "imagefiles/load_limits.h"
#include "platform/picture_refusal.h"

#include <cstdlib>
#include <string>

namespace lumiran {

BitmapLayout readBitmapLayout(std::span<const std::uint8_t> bytes) {
    constexpr std::uint32_t coreHeaderSize = 12;
    ByteReader reader(bytes);
    BitmapLayout layout;
    layout.pixelOffset = reader.u32(10);
    if (reader.u32(14) == coreHeaderSize) {
        layout.width = reader.u16(18);
        layout.height = reader.u16(20);
        layout.bitCount = reader.u16(24);
    } else {
        layout.width = reader.i32(18);
        layout.height = reader.i32(22);
        layout.bitCount = reader.u16(28);
        layout.compression = reader.u32(30);
    }
    if (reader.wasShort()) throw PictureRefusal("BMP: the header is cut short");
    return layout;
}

void checkBitmapComplete(const BitmapLayout& layout, std::size_t fileSize) {
    if (layout.compression != BitmapLayout::BI_RGB &&
        layout.compression != BitmapLayout::BI_BITFIELDS) {
        return;
    }
    // Sizes the decoder refuses anyway need no check here.
    if (layout.width <= 0 || layout.width > LoadLimits::MaxDimension || layout.bitCount == 0 ||
        layout.bitCount > 32) {
        return;
    }
    const std::int64_t stride = (layout.width * layout.bitCount + 31) / 32 * 4;
    const std::int64_t needed = std::int64_t{layout.pixelOffset} + stride * std::abs(layout.height);
    if (needed > static_cast<std::int64_t>(fileSize)) {
        throw PictureRefusal("BMP: the pixel data is cut short (" + std::to_string(fileSize) +
                             " of " + std::to_string(needed) + " bytes)");
    }
}

} // namespace lumiran
