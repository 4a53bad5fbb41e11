#include "imagefiles/bmp_reader.h"

#include "imagefiles/byte_io.h"
#include "imagefiles/image_file_error.h"

#include <cstdlib>
#include <string>

namespace lumiran {
namespace {

constexpr std::uint32_t BiRgb = 0;
constexpr std::uint32_t BiBitfields = 3;

} // namespace

Surface readBmp(std::span<const std::uint8_t> bytes) {
    ByteReader in(bytes);
    if (in.size() < 26 || in.u16(0) != 0x4D42) throw ImageFileError("not a Windows bitmap");
    const std::uint32_t offBits = in.u32(10);
    const std::uint32_t infoSize = in.u32(14);
    if (infoSize < 40) throw ImageFileError("unsupported bitmap header (OS/2 format)");
    const std::int32_t width = in.i32(18);
    const std::int32_t rawHeight = in.i32(22);
    const std::uint16_t bitCount = in.u16(28);
    const std::uint32_t compression = in.u32(30);
    if (in.wasShort()) throw ImageFileError("truncated bitmap header");

    if (bitCount != 24 && bitCount != 32) {
        throw ImageFileError("unsupported bitmap depth: " + std::to_string(bitCount) +
                             " bits (24 or 32 expected)");
    }
    if (!(compression == BiRgb || (compression == BiBitfields && bitCount == 32))) {
        throw ImageFileError("compressed bitmaps are not supported");
    }
    const bool topDown = rawHeight < 0;
    const std::int64_t height = std::llabs(static_cast<std::int64_t>(rawHeight));
    if (width <= 0 || height <= 0) throw ImageFileError("bitmap has no pixels");
    if (width > Surface::MaxDimension || height > Surface::MaxDimension) {
        throw ImageFileError("bitmap too large: " + std::to_string(width) + "x" +
                             std::to_string(height) + " (at most 32767 in either direction)");
    }
    const std::size_t bytesPerPixel = bitCount / 8;
    const std::size_t stride = (static_cast<std::size_t>(width) * bitCount + 31) / 32 * 4;
    const std::size_t needed = static_cast<std::size_t>(offBits) + stride * height;
    if (offBits < 14 + infoSize || needed > in.size())
        throw ImageFileError("truncated bitmap data");

    Surface picture(width, static_cast<int>(height));
    for (int y = 0; y < height; ++y) {
        const std::size_t fileRow = topDown ? y : static_cast<std::size_t>(height - 1 - y);
        const std::uint8_t* source = bytes.data() + offBits + fileRow * stride;
        auto row = picture.row(y);
        for (int x = 0; x < width; ++x, source += bytesPerPixel) {
            row[x] = makePixel(source[2], source[1], source[0]);
        }
    }
    return picture;
}

} // namespace lumiran
