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

namespace {

void checkRowsComplete(const BitmapLayout& layout, std::size_t fileSize) {
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

// Walks the codes without decoding them: each must be whole. The data may
// end with the end-of-bitmap code or simply after a whole code.
void checkRunLengthComplete(const BitmapLayout& layout, std::span<const std::uint8_t> bytes) {
    constexpr std::uint8_t endOfLine = 0;
    constexpr std::uint8_t endOfBitmap = 1;
    constexpr std::uint8_t delta = 2;
    const auto cutShort = [] { return PictureRefusal("BMP: the run-length data is cut short"); };
    std::size_t offset = layout.pixelOffset;
    if (offset > bytes.size()) throw cutShort();
    while (offset < bytes.size()) {
        if (bytes.size() - offset < 2) throw cutShort();
        const std::uint8_t count = bytes[offset];
        const std::uint8_t code = bytes[offset + 1];
        offset += 2;
        if (count != 0 || code == endOfLine) continue;
        if (code == endOfBitmap) return;
        std::size_t operandBytes = 2;
        if (code != delta) {
            // A literal run of code pixels, padded to a 16-bit boundary.
            const std::size_t pixelBytes =
                layout.compression == BitmapLayout::BI_RLE8 ? code : (code + 1u) / 2;
            operandBytes = (pixelBytes + 1) / 2 * 2;
        }
        if (bytes.size() - offset < operandBytes) throw cutShort();
        offset += operandBytes;
    }
}

} // namespace

void checkBitmapComplete(const BitmapLayout& layout, std::span<const std::uint8_t> bytes) {
    if (layout.runLength()) {
        checkRunLengthComplete(layout, bytes);
    } else if (layout.compression == BitmapLayout::BI_RGB ||
               layout.compression == BitmapLayout::BI_BITFIELDS) {
        checkRowsComplete(layout, bytes.size());
    }
}

} // namespace lumiran
