#include "imagefiles/png_writer.h"

#include "engine/picture_memory.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>

#define ZLIB_CONST // next_in is a pointer to const
#include <zlib.h>

namespace lumiran {
namespace {

using FileBuffer = std::vector<std::uint8_t, PictureAllocator<std::uint8_t>>;

constexpr std::array<std::uint8_t, 8> Signature{137, 80, 78, 71, 13, 10, 26, 10};
constexpr std::size_t ChunkFrame = 12; // length, type and CRC around the data
constexpr std::uint8_t BitDepth = 8;
constexpr std::uint8_t ColourTypeRgb = 2;
constexpr std::size_t BytesPerPixel = 3;

// zlib's fastest level that still finds repeats: pictures here are often
// patterns and tiles, whose rows repeat at a distance that run-length coding
// misses. Higher levels shrink a photograph by a few per cent at twice the time.
constexpr int DeflateLevel = 1;

// Compressed bytes a data chunk holds at most: readers handle any size, and
// a bounded chunk keeps its length field far from the 2^31 limit.
constexpr std::size_t IdatCapacity = std::size_t{1} << 20;
// Filtered rows are handed to the compressor in batches of about this size.
constexpr std::size_t BatchBytes = std::size_t{256} << 10;

void putBigEndian(std::uint8_t* at, std::uint32_t value) {
    at[0] = static_cast<std::uint8_t>(value >> 24);
    at[1] = static_cast<std::uint8_t>(value >> 16);
    at[2] = static_cast<std::uint8_t>(value >> 8);
    at[3] = static_cast<std::uint8_t>(value);
}

// Chunks appended to the file one after the other; the buffer's capacity is
// reserved up front, so growing it within that moves nothing.
class ChunkAppender {
  public:
    explicit ChunkAppender(FileBuffer& file) : file_(file) {}

    // Room for up to capacity data bytes of a chunk of the type.
    std::span<std::uint8_t> open(const char (&type)[5], std::size_t capacity) {
        start_ = file_.size();
        file_.resize(start_ + 8 + capacity);
        std::copy_n(type, 4, file_.data() + start_ + 4);
        return {file_.data() + start_ + 8, capacity};
    }

    // Ends the open chunk after its first `used` data bytes.
    void close(std::size_t used) {
        file_.resize(start_ + 8 + used + 4);
        std::uint8_t* chunk = file_.data() + start_;
        putBigEndian(chunk, static_cast<std::uint32_t>(used));
        const auto crc = crc32(0, chunk + 4, static_cast<uInt>(4 + used));
        putBigEndian(chunk + 8 + used, static_cast<std::uint32_t>(crc));
    }

  private:
    FileBuffer& file_;
    std::size_t start_ = 0;
};

// One zlib stream whose output fills data chunks as it comes.
class IdatStream {
  public:
    explicit IdatStream(ChunkAppender& chunks) : chunks_(chunks) {
        if (deflateInit(&stream_, DeflateLevel) != Z_OK) {
            throw ImageFileError("not enough memory to compress the picture");
        }
    }
    ~IdatStream() { deflateEnd(&stream_); }
    IdatStream(const IdatStream&) = delete;
    IdatStream& operator=(const IdatStream&) = delete;

    void write(std::span<const std::uint8_t> bytes) { pump(bytes, Z_NO_FLUSH); }

    void finish() {
        pump({}, Z_FINISH);
        if (open_) chunks_.close(IdatCapacity - stream_.avail_out);
    }

  private:
    void pump(std::span<const std::uint8_t> bytes, int flush) {
        stream_.next_in = bytes.data();
        stream_.avail_in = static_cast<uInt>(bytes.size());
        for (;;) {
            if (!open_ || stream_.avail_out == 0) {
                if (open_) chunks_.close(IdatCapacity);
                const auto room = chunks_.open("IDAT", IdatCapacity);
                stream_.next_out = room.data();
                stream_.avail_out = static_cast<uInt>(room.size());
                open_ = true;
            }
            const int result = deflate(&stream_, flush);
            if (result == Z_STREAM_END) return;
            if (result != Z_OK && result != Z_BUF_ERROR) {
                throw ImageFileError("the picture could not be compressed");
            }
            if (flush == Z_NO_FLUSH && stream_.avail_in == 0 && stream_.avail_out != 0) return;
        }
    }

    ChunkAppender& chunks_;
    z_stream stream_{};
    bool open_ = false;
};

// Picture rows as RGB bytes.
void packRowRgb(std::span<const Pixel> pixels, std::uint8_t* out) {
    for (const Pixel p : pixels) {
        *out++ = static_cast<std::uint8_t>(redOf(p));
        *out++ = static_cast<std::uint8_t>(greenOf(p));
        *out++ = static_cast<std::uint8_t>(blueOf(p));
    }
}

// The five filters of PNG, each on a whole row with the row above it (zeros
// for the first row); a pixel's left neighbour is BytesPerPixel bytes back.
// Loops of one kind each, so that the compiler can vectorise them.
enum FilterType : std::uint8_t { FilterNone, FilterSub, FilterUp, FilterAverage, FilterPaeth };
constexpr int FilterCount = 5;

void filterRow(FilterType type, const std::uint8_t* row, const std::uint8_t* above, std::size_t n,
               std::uint8_t* out) {
    constexpr std::size_t bpp = BytesPerPixel;
    const std::size_t first = std::min(bpp, n);
    switch (type) {
    case FilterNone:
        std::copy_n(row, n, out);
        break;
    case FilterSub:
        std::copy_n(row, first, out);
        for (std::size_t i = bpp; i < n; ++i)
            out[i] = static_cast<std::uint8_t>(row[i] - row[i - bpp]);
        break;
    case FilterUp:
        for (std::size_t i = 0; i < n; ++i)
            out[i] = static_cast<std::uint8_t>(row[i] - above[i]);
        break;
    case FilterAverage:
        for (std::size_t i = 0; i < first; ++i)
            out[i] = static_cast<std::uint8_t>(row[i] - (above[i] >> 1));
        for (std::size_t i = bpp; i < n; ++i)
            out[i] = static_cast<std::uint8_t>(row[i] - ((row[i - bpp] + above[i]) >> 1));
        break;
    case FilterPaeth:
        // With no left neighbour the predictor is the byte above.
        for (std::size_t i = 0; i < first; ++i)
            out[i] = static_cast<std::uint8_t>(row[i] - above[i]);
        for (std::size_t i = bpp; i < n; ++i) {
            const int a = row[i - bpp];
            const int b = above[i];
            const int c = above[i - bpp];
            const int pa = std::abs(b - c);         // |p - a| with p = a + b - c
            const int pb = std::abs(a - c);         // |p - b|
            const int pc = std::abs(a + b - 2 * c); // |p - c|
            const int predicted = pa <= pb && pa <= pc ? a : pb <= pc ? b : c;
            out[i] = static_cast<std::uint8_t>(row[i] - predicted);
        }
        break;
    }
}

// The usual heuristic for picking a row's filter: the smallest sum of the
// filtered bytes taken as signed, i.e. the residues nearest zero.
std::uint64_t residueSum(const std::uint8_t* bytes, std::size_t n) {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const int v = static_cast<std::int8_t>(bytes[i]);
        sum += static_cast<std::uint32_t>(v < 0 ? -v : v);
    }
    return sum;
}

// Filters the row into out: its filter type byte, then the filtered bytes of
// the type with the smallest residue sum. scratch holds FilterCount rows.
void filterBest(const std::uint8_t* row, const std::uint8_t* above, std::size_t n,
                std::uint8_t* scratch, std::uint8_t* out) {
    int best = FilterNone;
    std::uint64_t bestSum = UINT64_MAX;
    for (int type = FilterNone; type < FilterCount; ++type) {
        std::uint8_t* candidate = scratch + static_cast<std::size_t>(type) * n;
        filterRow(static_cast<FilterType>(type), row, above, n, candidate);
        if (const std::uint64_t sum = residueSum(candidate, n); sum < bestSum) {
            bestSum = sum;
            best = type;
        }
    }
    out[0] = static_cast<std::uint8_t>(best);
    std::copy_n(scratch + static_cast<std::size_t>(best) * n, n, out + 1);
}

std::size_t reservedFileSize(std::size_t rawBytes) {
    z_stream probe{};
    if (deflateInit(&probe, DeflateLevel) != Z_OK) {
        throw ImageFileError("not enough memory to compress the picture");
    }
    const std::size_t bound = deflateBound(&probe, static_cast<uLong>(rawBytes));
    deflateEnd(&probe);
    const std::size_t chunks = bound / IdatCapacity + 1;
    return Signature.size() + (ChunkFrame + 13) + chunks * (ChunkFrame + IdatCapacity) + ChunkFrame;
}

// The whole file into one buffer. Its capacity is reserved for the worst
// case up front; pages beyond what is written are never touched.
void encodeInto(const Surface& picture, FileBuffer& file) {
    if (picture.empty()) throw ImageFileError("the picture is empty");
    const auto width = static_cast<std::size_t>(picture.width());
    const auto height = static_cast<std::size_t>(picture.height());
    const std::size_t rowBytes = width * BytesPerPixel;
    const std::size_t lineBytes = rowBytes + 1; // the filter type leads each row

    file.reserve(reservedFileSize(lineBytes * height));
    file.assign(Signature.begin(), Signature.end());
    ChunkAppender chunks(file);
    const auto header = chunks.open("IHDR", 13);
    putBigEndian(header.data(), static_cast<std::uint32_t>(width));
    putBigEndian(header.data() + 4, static_cast<std::uint32_t>(height));
    header[8] = BitDepth;
    header[9] = ColourTypeRgb;
    header[10] = 0; // deflate
    header[11] = 0; // the five filters
    header[12] = 0; // not interlaced
    chunks.close(13);

    {
        IdatStream idat(chunks);
        std::vector<std::uint8_t> above(rowBytes, 0);
        std::vector<std::uint8_t> row(rowBytes);
        std::vector<std::uint8_t> scratch(FilterCount * rowBytes);
        const std::size_t batchRows = std::clamp<std::size_t>(BatchBytes / lineBytes, 1, height);
        std::vector<std::uint8_t> batch(batchRows * lineBytes);
        std::size_t filled = 0;
        for (std::size_t y = 0; y < height; ++y) {
            packRowRgb(picture.row(static_cast<int>(y)), row.data());
            filterBest(row.data(), above.data(), rowBytes, scratch.data(), batch.data() + filled);
            filled += lineBytes;
            row.swap(above);
            if (filled == batch.size() || y + 1 == height) {
                idat.write({batch.data(), filled});
                filled = 0;
            }
        }
        idat.finish();
    }
    chunks.open("IEND", 0);
    chunks.close(0);
}

} // namespace

std::vector<std::uint8_t> encodePng24(const Surface& picture) {
    FileBuffer file;
    encodeInto(picture, file);
    return {file.begin(), file.end()};
}

void savePng24(const Surface& picture, const std::filesystem::path& path) {
    FileBuffer file;
    encodeInto(picture, file);
    writeFileAtomically(path, file);
}

} // namespace lumiran
