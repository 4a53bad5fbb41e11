#include "imagefiles/bitmap_writer.h"

#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"

namespace lumiran {

std::vector<std::uint8_t> encodeBmp24(const Surface& picture) {
    if (picture.empty()) throw ImageFileError("the picture is empty");
    const std::uint32_t stride = (static_cast<std::uint32_t>(picture.width()) * 3 + 3) / 4 * 4;
    const std::uint32_t imageSize = stride * static_cast<std::uint32_t>(picture.height());
    constexpr std::uint32_t headerSize = 54;
    ByteWriter out;
    out.reserve(headerSize + imageSize);
    out.u16(0x4D42);
    out.u32(headerSize + imageSize);
    out.u32(0);
    out.u32(headerSize);
    out.u32(40);
    out.i32(picture.width());
    out.i32(picture.height());
    out.u16(1);
    out.u16(24);
    out.u32(0);
    out.u32(imageSize);
    out.zeros(16);
    const std::size_t padding = stride - static_cast<std::size_t>(picture.width()) * 3;
    for (int y = picture.height() - 1; y >= 0; --y) {
        for (const Pixel p : picture.row(y)) {
            out.u8(static_cast<std::uint8_t>(blueOf(p)));
            out.u8(static_cast<std::uint8_t>(greenOf(p)));
            out.u8(static_cast<std::uint8_t>(redOf(p)));
        }
        out.zeros(padding);
    }
    return std::move(out.bytes());
}

void saveBmp24(const Surface& picture, const std::filesystem::path& path) {
    writeFileAtomically(path, encodeBmp24(picture));
}

} // namespace lumiran
