#include "engine/numeric.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/reader_guard.h"
#include "imagefiles/three_byte_picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace lumiran {
namespace {

constexpr std::size_t HeaderSize = 18;
// The colour map is always read as 769 three-byte entries, whatever its
// length field says, and the pixel indices are taken from behind all of
// them: with the usual 256-entry map the indices start 1539 bytes late.
constexpr std::size_t PaletteEntries = 769;
constexpr std::size_t PaletteBytes = PaletteEntries * 3;

// Working storage per pixel besides the picture: PixelData, plus IndexData
// for colour-mapped files.
constexpr std::uint64_t TrueColourBytesPerPixel = 3 + 4;
constexpr std::uint64_t ColourMappedBytesPerPixel = 3 + 1 + 4;

struct TgaHeader {
    std::uint8_t ID = 0;
    std::uint8_t ColorMapFormat = 0;
    std::uint8_t ImageFormat = 0;
    std::uint16_t Width = 0;
    std::uint16_t Height = 0;
    std::uint8_t BitsAttribute = 0;
};

TgaHeader readHeader(std::span<const std::uint8_t> file) {
    ByteReader in(file);
    TgaHeader h;
    h.ID = in.u8(0);
    h.ColorMapFormat = in.u8(1);
    h.ImageFormat = in.u8(2);
    h.Width = in.u16(12);
    h.Height = in.u16(14);
    h.BitsAttribute = in.u8(17);
    return h;
}

struct RefusedFormat {
    std::uint8_t code;
    const char* name;
};

constexpr std::array<RefusedFormat, 5> NamedRefusedFormats{{
    {0, "no image data"},
    {3, "uncompressed grey"},
    {9, "run-length coded colour-mapped"},
    {10, "run-length coded true colour"},
    {11, "run-length coded grey"},
}};

[[noreturn]] void refuseFormat(std::uint8_t format) {
    std::string detail = "TGA: ImageFormat " + std::to_string(format);
    const auto* named = std::ranges::find(NamedRefusedFormats, format, &RefusedFormat::code);
    if (named != NamedRefusedFormats.end()) detail += std::string(" (") + named->name + ")";
    throw ImageLoadError::refused(detail + " is not supported");
}

// count bytes from offset on; what lies past the end of the file stays 0.
std::vector<std::uint8_t> readBlock(std::span<const std::uint8_t> file, std::size_t offset,
                                    std::size_t count) {
    std::vector<std::uint8_t> block(count, 0);
    if (offset < file.size()) {
        const std::size_t available = std::min(count, file.size() - offset);
        std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(offset), available, block.begin());
    }
    return block;
}

// Origin codes: bits 4 and 5 of BitsAttribute. Bit 4 says right to left,
// bit 5 top to bottom.
constexpr int RightToLeft = 16;
constexpr int TopToBottom = 32;

// Puts PixelData (blue, green, red, in file order) into the picture the
// way the picture control ends up showing it.
Surface showPixels(const std::vector<std::uint8_t>& pixelData, int width, int height, int origin) {
    Surface picture(width, height);
    // At widths that are a multiple of 4 the rows go to the platform in one
    // call with the signs taken from the origin; it refuses a negative
    // width, so a right-to-left file stays blank there. Other widths are
    // drawn point by point and mirror correctly.
    if (width % 4 == 0 && (origin & RightToLeft) != 0) return picture;
    const int x0 = (origin & RightToLeft) != 0 ? width - 1 : 0;
    const int y0 = (origin & TopToBottom) != 0 ? 0 : height - 1;
    std::size_t element = 0;
    for (int y = 0; y < height; ++y) {
        std::span<Pixel> target = picture.row(std::abs(y0 - y));
        for (int x = 0; x < width; ++x, ++element) {
            const std::uint8_t* bgr = &pixelData[element * 3];
            target[static_cast<std::size_t>(std::abs(x0 - x))] = makePixel(bgr[2], bgr[1], bgr[0]);
        }
    }
    return picture;
}

void checkHeader(const TgaHeader& header, const LoadLimits& limits) {
    const bool colourMapped = header.ImageFormat == 1;
    if (!colourMapped && header.ImageFormat != 2) refuseFormat(header.ImageFormat);
    if (colourMapped && header.ColorMapFormat == 0) {
        throw ImageLoadError::refused(
            "TGA: colour-mapped image (ImageFormat 1) without a colour map (ColorMapFormat 0)");
    }
    limits.check(header.Width, header.Height,
                 colourMapped ? ColourMappedBytesPerPixel : TrueColourBytesPerPixel);
}

} // namespace

void Class_TGAImageOp::refuseFromHead(std::span<const std::uint8_t> head,
                                      std::uint64_t /*fileSize*/, const LoadLimits& limits) {
    if (head.size() >= HeaderSize) checkHeader(readHeader(head), limits);
}

Surface Class_TGAImageOp::TGAImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits) {
    return guardedRead("TGA", [&] {
        if (file.empty()) throw ImageLoadError::refused("TGA: the file is empty");
        const TgaHeader header = readHeader(file);
        checkHeader(header, limits);
        const bool colourMapped = header.ImageFormat == 1;
        const int width = header.Width;
        const int height = header.Height;

        // The arrays run from index 0 to Width times Height: one spare element.
        const std::size_t elements = static_cast<std::size_t>(width) * height + 1;
        const std::size_t dataStart = HeaderSize + header.ID;
        const int origin = header.BitsAttribute & (RightToLeft | TopToBottom);

        if (!colourMapped) {
            // Three bytes a pixel whatever BitsPerPixel says; no per-row work.
            return showPixels(readBlock(file, dataStart, elements * 3), width, height, origin);
        }

        const std::vector<std::uint8_t> paletteData = readBlock(file, dataStart, PaletteBytes);
        const std::vector<std::uint8_t> indexData =
            readBlock(file, dataStart + PaletteBytes, elements);
        std::vector<std::uint8_t> pixelData(elements * 3, 0);
        std::size_t element = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x, ++element) {
                const std::uint8_t* entry = &paletteData[std::size_t{indexData[element]} * 3];
                std::copy_n(entry, 3, &pixelData[element * 3]);
            }
            const int percent = loadPercent(y + 1, height);
            if (progress != nullptr) progress->showPercent(percent);
        }
        return showPixels(pixelData, width, height, origin);
    });
}

} // namespace lumiran
