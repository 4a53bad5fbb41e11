#include "platform/embedded_dib.h"

#include "imagefiles/byte_io.h"
#include "imagefiles/load_limits.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace lumiran {
namespace {

constexpr std::uint32_t coreHeaderSize = 12;
constexpr std::uint32_t infoHeaderSize = 40;
constexpr std::uint32_t largestHeaderSize = 124;
constexpr std::uint32_t BI_RGB = 0;
constexpr std::uint32_t BI_RLE8 = 1;
constexpr std::uint32_t BI_RLE4 = 2;
constexpr std::uint32_t BI_BITFIELDS = 3;
constexpr std::array<std::uint16_t, 6> bitCounts{1, 4, 8, 16, 24, 32};

struct DibHeader {
    std::uint32_t size = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;
    std::uint16_t planes = 0;
    std::uint16_t bitCount = 0;
    std::uint32_t compression = BI_RGB;
    std::uint32_t imageSize = 0;
    std::uint32_t coloursUsed = 0;
};

DibHeader readHeader(ByteReader& in) {
    DibHeader h;
    h.size = in.u32(0);
    if (h.size == coreHeaderSize) {
        h.width = in.u16(4);
        h.height = in.u16(6);
        h.planes = in.u16(8);
        h.bitCount = in.u16(10);
        return h;
    }
    h.width = in.i32(4);
    h.height = in.i32(8);
    h.planes = in.u16(12);
    h.bitCount = in.u16(14);
    h.compression = in.u32(16);
    h.imageSize = in.u32(20);
    h.coloursUsed = in.u32(32);
    return h;
}

std::uint64_t colourTableBytes(const DibHeader& h, DibColours colours) {
    std::uint64_t entries = h.coloursUsed;
    if (h.bitCount <= 8 && entries == 0) entries = std::uint64_t{1} << h.bitCount;
    const std::uint64_t entryBytes =
        colours == DibColours::PaletteIndices ? 2 : (h.size == coreHeaderSize ? 3 : 4);
    std::uint64_t bytes = entries * entryBytes;
    if (h.compression == BI_BITFIELDS && h.size == infoHeaderSize) bytes += 12;
    return bytes;
}

} // namespace

std::string embeddedDibProblem(std::span<const std::uint8_t> dib, DibColours colours,
                               DibBudget& budget) {
    ByteReader in(dib);
    const DibHeader h = readHeader(in);
    if (in.wasShort() || dib.size() < h.size) return "its bitmap header is cut short";
    if (h.size != coreHeaderSize && (h.size < infoHeaderSize || h.size > largestHeaderSize))
        return "its bitmap header has an unknown size " + std::to_string(h.size);
    const std::int64_t height = std::llabs(h.height);
    if (h.width <= 0 || height == 0 || h.width > LoadLimits::MaxDimension ||
        height > LoadLimits::MaxDimension) {
        return "its bitmap has an impossible size " + std::to_string(h.width) + "x" +
               std::to_string(h.height);
    }
    if (h.planes != 1 || std::ranges::find(bitCounts, h.bitCount) == bitCounts.end())
        return "its bitmap has " + std::to_string(h.bitCount) + " bits a pixel";
    const bool runLength = h.compression == BI_RLE8 || h.compression == BI_RLE4;
    if (h.compression > BI_BITFIELDS ||
        (runLength && h.bitCount != (h.compression == BI_RLE8 ? 8 : 4)))
        return "its bitmap has an unknown compression " + std::to_string(h.compression);
    if (h.bitCount <= 8 && h.coloursUsed > (1u << h.bitCount))
        return "its bitmap's colour table is longer than its pixels can use";
    const std::uint64_t stride = (static_cast<std::uint64_t>(h.width) * h.bitCount + 31) / 32 * 4;
    const std::uint64_t pixelBytes =
        runLength ? h.imageSize : stride * static_cast<std::uint64_t>(height);
    if (runLength && h.imageSize == 0) return "its run-length bitmap gives no data size";
    if (h.size + colourTableBytes(h, colours) + pixelBytes > dib.size())
        return "its bitmap's pixels run past the end of the record";
    if (!budget.take(static_cast<std::uint64_t>(h.width) * static_cast<std::uint64_t>(height)))
        return "its bitmaps together have more pixels than the drawing is allowed";
    return {};
}

} // namespace lumiran
