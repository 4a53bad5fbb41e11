#include "imagefiles/plain_bitmap.h"

#include "engine/effect_error.h"
#include "imagefiles/bitmap_rows.h"
#include "imagefiles/byte_io.h"

#include <array>
#include <climits>
#include <cstdlib>
#include <fcntl.h>
#include <new>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace lumiran {
namespace {

constexpr std::uint32_t FileHeaderSize = 14;
constexpr std::uint32_t LargestInfoHeader = 124; // BITMAPV5HEADER
// The decoded picture and the program's copy of it, as the platform decoder counts.
constexpr std::uint64_t BytesPerPixel = 8;
// Small enough that a large file reports its progress often.
constexpr std::size_t ChunkBytes = std::size_t{1} << 18;

class OpenFile {
  public:
    explicit OpenFile(const std::filesystem::path& path)
        : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (fd_ >= 0) close(fd_);
    }
    [[nodiscard]] bool isOpen() const { return fd_ >= 0; }
    [[nodiscard]] int fd() const { return fd_; }

    // Reads exactly count bytes at offset.
    [[nodiscard]] bool readAt(std::uint8_t* into, std::size_t count, std::uint64_t offset) const {
        while (count > 0) {
            const ssize_t got = pread(fd_, into, count, static_cast<off_t>(offset));
            if (got <= 0) return false;
            into += got;
            count -= static_cast<std::size_t>(got);
            offset += static_cast<std::uint64_t>(got);
        }
        return true;
    }

  private:
    int fd_;
};

struct Layout {
    int width = 0;
    int height = 0;
    bool topDown = false;
    int bitCount = 0;
    std::uint32_t pixelOffset = 0;
    std::size_t stride = 0;
};

// The layouts the platform's decoder reads as plain rows of colours: a
// Windows 3 header at 24 or 32 bits, or a version 4 or 5 header at 24 bits
// (at 32 bits those may declare an alpha channel), no compression, no
// colour table and the pixels right behind the headers.
std::optional<Layout> plainLayout(std::span<const std::uint8_t> header, std::uint64_t fileSize,
                                  const LoadLimits& limits) {
    ByteReader in(header);
    if (in.u16(0) != 0x4D42) return std::nullopt;
    const std::uint32_t pixelOffset = in.u32(10);
    const std::uint32_t infoSize = in.u32(14);
    const std::int32_t width = in.i32(18);
    const std::int32_t rawHeight = in.i32(22);
    const std::uint16_t planes = in.u16(26);
    const std::uint16_t bitCount = in.u16(28);
    const std::uint32_t compression = in.u32(30);
    const std::uint32_t coloursUsed = in.u32(46);
    if (in.wasShort()) return std::nullopt;
    const bool knownHeader =
        infoSize == 40 || (bitCount == 24 && (infoSize == 108 || infoSize == 124));
    if (!knownHeader || planes != 1 || compression != 0 || coloursUsed != 0) return std::nullopt;
    if (bitCount != 24 && bitCount != 32) return std::nullopt;
    if (pixelOffset != FileHeaderSize + infoSize) return std::nullopt;
    if (width <= 0 || rawHeight == 0 || rawHeight == INT_MIN) return std::nullopt;
    const std::int64_t height = std::llabs(static_cast<std::int64_t>(rawHeight));
    if (width > LoadLimits::MaxDimension || height > LoadLimits::MaxDimension) return std::nullopt;
    if (std::int64_t{width} * height > limits.maxPixels) return std::nullopt;
    const std::uint64_t runBytesPerPixel =
        BytesPerPixel + 4u * static_cast<std::uint64_t>(limits.keptCopies);
    if (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * runBytesPerPixel >
        limits.maxBytes) {
        return std::nullopt;
    }
    const std::size_t stride = (static_cast<std::size_t>(width) * bitCount + 31) / 32 * 4;
    if (pixelOffset + stride * static_cast<std::uint64_t>(height) > fileSize) return std::nullopt;
    return Layout{width, static_cast<int>(height), rawHeight < 0, bitCount, pixelOffset, stride};
}

} // namespace

std::optional<Surface> readPlainBitmap(const std::filesystem::path& path, const LoadLimits& limits,
                                       ProgressSink* progress) {
    const OpenFile file(path);
    if (!file.isOpen()) return std::nullopt;
    struct stat status {};
    if (fstat(file.fd(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    const auto fileSize = static_cast<std::uint64_t>(status.st_size);
    if (fileSize > limits.maxBytes || fileSize < FileHeaderSize + 40) return std::nullopt;

    std::array<std::uint8_t, FileHeaderSize + LargestInfoHeader> header{};
    const std::size_t headerBytes = std::min<std::uint64_t>(header.size(), fileSize);
    if (!file.readAt(header.data(), headerBytes, 0)) return std::nullopt;
    const auto layout = plainLayout({header.data(), headerBytes}, fileSize, limits);
    if (!layout) return std::nullopt;

    try {
        Surface picture = Surface::uninitialised(layout->width, layout->height);
        // A band of file rows at a time through one small buffer, rather
        // than the whole file in memory.
        const std::size_t bandRows = std::max<std::size_t>(1, ChunkBytes / layout->stride);
        std::vector<std::uint8_t> band(bandRows * layout->stride);
        for (int first = 0; first < layout->height; first += static_cast<int>(bandRows)) {
            const int rows = std::min(static_cast<int>(bandRows), layout->height - first);
            if (!file.readAt(band.data(), static_cast<std::size_t>(rows) * layout->stride,
                             layout->pixelOffset +
                                 static_cast<std::uint64_t>(first) * layout->stride)) {
                return std::nullopt;
            }
            for (int i = 0; i < rows; ++i) {
                const int fileRow = first + i;
                const int y = layout->topDown ? fileRow : layout->height - 1 - fileRow;
                const std::uint8_t* in = band.data() + static_cast<std::size_t>(i) * layout->stride;
                Pixel* out = picture.row(y).data();
                if (layout->bitCount == 24) {
                    expandRow24(in, out, layout->width);
                } else {
                    expandRow32(in, out, layout->width);
                }
            }
            if (progress != nullptr) {
                progress->showPercent(static_cast<int>(static_cast<std::int64_t>(first + rows) *
                                                       100 / layout->height));
            }
        }
        return picture;
    } catch (const EffectError&) {
        return std::nullopt; // out of memory: the platform's decoder says so in its words
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    }
}

} // namespace lumiran
