#include "imagefiles/bitmap_writer.h"

#include "imagefiles/bitmap_rows.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <stdexcept>
#include <unordered_map>

namespace lumiran {
namespace {

constexpr std::uint16_t BitmapSignature = 0x4D42; // "BM"
constexpr std::uint32_t FileHeaderSize = 14;
constexpr std::uint32_t InfoHeaderSize = 40;
constexpr std::uint32_t PaletteEntries8 = 256;
constexpr std::uint32_t PixelOffset8 = FileHeaderSize + InfoHeaderSize + PaletteEntries8 * 4;
constexpr std::uint32_t PixelOffset1 = FileHeaderSize + InfoHeaderSize + 2 * 4;
constexpr Pixel ColourMask = 0x00FFFFFFu;

// The palette writers' stride: a row already a multiple of 4 bytes stays as
// it is, any other is rounded up to the next multiple.
constexpr std::uint32_t paddedStride(std::uint32_t rowBytes) {
    return rowBytes % 4 == 0 ? rowBytes : (rowBytes + 4) / 4 * 4;
}

// 32 pixels a 4-byte word; width is at least 1.
constexpr std::uint32_t monoStride(std::uint32_t width) {
    const std::uint32_t lastByte = (width - 1) / 8;
    return lastByte / 4 * 4 + 4;
}

void writeHeaders(ByteWriter& out, const Surface& picture, std::uint32_t pixelOffset,
                  std::uint32_t pixelBytes, std::uint16_t bitCount, std::uint32_t sizeImage) {
    out.u16(BitmapSignature);
    out.u32(pixelOffset + pixelBytes);
    out.u16(0);
    out.u16(0);
    out.u32(pixelOffset);
    out.u32(InfoHeaderSize);
    out.i32(picture.width());
    out.i32(picture.height()); // positive: rows bottom-up
    out.u16(1);                // planes
    out.u16(bitCount);
    out.u32(0); // no compression
    out.u32(sizeImage);
    out.zeros(16); // resolution and colour counts
}

// Palette entries in the order their colours are first met. A hash map
// replaces the linear search of the table; entries never move, so the
// indices are the ones the search would find.
class PaletteBuilder {
  public:
    PaletteBuilder(std::uint32_t firstEntry, std::uint32_t lastEntry)
        : next_(firstEntry), last_(lastEntry) {
        indices_.reserve(PaletteEntries8);
    }

    // The colour's entry, added if new; nothing when the table is full.
    [[nodiscard]] std::optional<std::uint8_t> indexOf(Pixel colour) {
        colour &= ColourMask;
        if (const auto found = indices_.find(colour); found != indices_.end()) {
            return found->second;
        }
        if (next_ > last_) return std::nullopt;
        const auto index = static_cast<std::uint8_t>(next_++);
        indices_.emplace(colour, index);
        table_[index] = colour;
        return index;
    }

    // 256 entries blue, green, red, 0; unused ones are black.
    void write(ByteWriter& out) const {
        for (const Pixel colour : table_)
            out.u32(colour);
    }

  private:
    std::uint32_t next_;
    std::uint32_t last_;
    std::unordered_map<Pixel, std::uint8_t> indices_;
    std::array<Pixel, PaletteEntries8> table_{};
};

} // namespace

namespace {

constexpr std::uint32_t Bmp24HeaderSize = FileHeaderSize + InfoHeaderSize;

std::uint32_t bmp24Stride(const Surface& picture) {
    return (static_cast<std::uint32_t>(picture.width()) * 3 + 3) / 4 * 4;
}

std::size_t bmp24FileSize(const Surface& picture) {
    if (picture.empty()) throw ImageFileError("the picture is empty");
    return Bmp24HeaderSize + static_cast<std::size_t>(bmp24Stride(picture)) *
                                 static_cast<std::size_t>(picture.height());
}

ByteWriter bmp24Header(const Surface& picture) {
    const std::uint32_t imageSize =
        bmp24Stride(picture) * static_cast<std::uint32_t>(picture.height());
    ByteWriter header;
    writeHeaders(header, picture, Bmp24HeaderSize, imageSize, 24, imageSize);
    return header;
}

// Rows [first, first + count) of the file, which stores the picture's rows
// bottom-up, into out, their padding cleared.
void packBmp24Rows(const Surface& picture, std::size_t first, std::size_t count,
                   std::span<std::uint8_t> out) {
    const std::uint32_t stride = bmp24Stride(picture);
    const std::size_t rowBytes = static_cast<std::size_t>(picture.width()) * 3;
    if (out.size() < count * stride) throw std::logic_error("bitmap rows beyond their buffer");
    std::uint8_t* row = out.data();
    for (std::size_t i = 0; i < count; ++i, row += stride) {
        const int y = picture.height() - 1 - static_cast<int>(first + i);
        packRow24(picture.row(y).data(), row, picture.width());
        std::fill(row + rowBytes, row + stride, std::uint8_t{0});
    }
}

} // namespace

std::vector<std::uint8_t> encodeBmp24(const Surface& picture) {
    std::vector<std::uint8_t> bytes(bmp24FileSize(picture));
    ByteWriter header = bmp24Header(picture);
    std::ranges::copy(header.bytes(), bytes.begin());
    packBmp24Rows(picture, 0, static_cast<std::size_t>(picture.height()),
                  std::span(bytes).subspan(Bmp24HeaderSize));
    return bytes;
}

void saveBmp24(const Surface& picture, const std::filesystem::path& path) {
    (void)bmp24FileSize(picture); // refuses an empty picture
    ByteWriter header = bmp24Header(picture);
    writeFileAtomically(
        path,
        FileInRows{header.bytes(), bmp24Stride(picture), static_cast<std::size_t>(picture.height()),
                   [&picture](std::size_t first, std::size_t count, std::span<std::uint8_t> out) {
                       packBmp24Rows(picture, first, count, out);
                   }});
}

Bmp8Encoding encodeBmp8(const Surface& picture, bool reserveSystemColors) {
    if (picture.empty()) return {Save256EmptyPicture, {}};
    const auto width = static_cast<std::uint32_t>(picture.width());
    const auto height = static_cast<std::uint32_t>(picture.height());
    const std::uint32_t stride = paddedStride(width);
    // The info header keeps the size of the 24-bit copy the colours were
    // taken from; readers go by the stride of the 8-bit rows instead.
    const std::uint32_t sizeImage24 = paddedStride(width * 3) * height;

    // Entries 0 to 9 and 246 to 255 are the system's when it keeps its colours.
    PaletteBuilder palette(reserveSystemColors ? 10 : 0, reserveSystemColors ? 245 : 255);
    std::vector<std::uint8_t> indices(static_cast<std::size_t>(stride) * height, 0);
    // Pictures come in runs of one colour; the last one saves a lookup.
    std::optional<Pixel> lastColour;
    std::uint8_t lastIndex = 0;
    for (std::uint32_t y = 0; y < height; ++y) {
        std::uint8_t* out = indices.data() + static_cast<std::size_t>(height - 1 - y) * stride;
        for (const Pixel p : picture.row(static_cast<int>(y))) {
            const Pixel colour = p & ColourMask;
            if (colour != lastColour) {
                const auto index = palette.indexOf(colour);
                if (!index) return {Save256TooManyColours, {}};
                lastColour = colour;
                lastIndex = *index;
            }
            *out++ = lastIndex;
        }
    }

    ByteWriter file;
    file.reserve(PixelOffset8 + indices.size());
    writeHeaders(file, picture, PixelOffset8, static_cast<std::uint32_t>(indices.size()), 8,
                 sizeImage24);
    palette.write(file);
    file.bytes().insert(file.bytes().end(), indices.begin(), indices.end());
    return {Save256Success, std::move(file.bytes())};
}

int Save256(const Surface& picture, const std::filesystem::path& path, bool reserveSystemColors) {
    const Bmp8Encoding encoded = encodeBmp8(picture, reserveSystemColors);
    if (encoded.result == Save256Success) writeFileAtomically(path, encoded.bytes);
    return encoded.result;
}

std::vector<std::uint8_t> encodeBmp1(const Surface& picture) {
    if (picture.empty()) throw ImageFileError("the picture is empty");
    const auto width = static_cast<std::uint32_t>(picture.width());
    const auto height = static_cast<std::uint32_t>(picture.height());
    const std::uint32_t stride = monoStride(width);
    const std::uint32_t imageSize = stride * height;

    ByteWriter file;
    file.reserve(PixelOffset1 + imageSize);
    writeHeaders(file, picture, PixelOffset1, imageSize, 1, imageSize);
    file.u32(0x00FFFFFF); // index 0 white
    file.u32(0x00000000); // index 1 black
    std::vector<std::uint8_t>& bytes = file.bytes();
    bytes.resize(PixelOffset1 + static_cast<std::size_t>(imageSize), 0);
    for (std::uint32_t y = 0; y < height; ++y) {
        std::uint8_t* out =
            bytes.data() + PixelOffset1 + static_cast<std::size_t>(height - 1 - y) * stride;
        const auto row = picture.row(static_cast<int>(y));
        for (std::uint32_t x = 0; x < width; ++x) {
            // Only exact black is black: the picture must be bilevel already.
            if ((row[x] & ColourMask) == 0)
                out[x / 8] |= static_cast<std::uint8_t>(0x80u >> (x % 8));
        }
    }
    return std::move(bytes);
}

int SaveMonoImage(const std::filesystem::path& path, const Surface& picture) {
    writeFileAtomically(path, encodeBmp1(picture));
    return 1;
}

} // namespace lumiran
