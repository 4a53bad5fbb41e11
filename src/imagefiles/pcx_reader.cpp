#include "engine/numeric.h"
#include "engine/pixel.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/reader_guard.h"
#include "imagefiles/three_byte_picture.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>

namespace lumiran {

namespace {

using Element = ThreeBytePicture::Element;

constexpr std::size_t HeaderSize = 128;
constexpr std::size_t HeaderPaletteOffset = 16;
constexpr std::size_t PaletteBytesAtEnd = 768;
// The working picture and the shown picture.
constexpr std::uint64_t WorkingBytesPerPixel = 3 + 4;

struct PcxHeader {
    std::uint8_t ZsoftFlag = 0;
    std::uint8_t BitsCount = 0;
    std::int16_t ImageSizeMaxX = 0;
    std::int16_t ImageSizeMaxY = 0;
    std::uint8_t Planes = 0;
    std::int16_t bytesPerLine = 0;

    // The minimum corner is not subtracted: a picture placed at x 10 is 10
    // columns wider than its data.
    [[nodiscard]] int width() const { return wrap16(ImageSizeMaxX + 1); }
    [[nodiscard]] int height() const { return wrap16(ImageSizeMaxY + 1); }
};

// A header cut short reads as zeros.
PcxHeader readHeader(std::span<const std::uint8_t> file) {
    ByteReader reader(file);
    PcxHeader header;
    header.ZsoftFlag = reader.u8(0);
    header.BitsCount = reader.u8(3);
    header.ImageSizeMaxX = static_cast<std::int16_t>(reader.u16(8));
    header.ImageSizeMaxY = static_cast<std::int16_t>(reader.u16(10));
    header.Planes = reader.u8(65);
    header.bytesPerLine = static_cast<std::int16_t>(reader.u16(66));
    return header;
}

enum class Decoder { none, oneBit, eightBitPalette, twentyFourBit };

// Combinations without a decoder of their own still load, as a black picture.
Decoder chooseDecoder(const PcxHeader& header) {
    const int planes = header.Planes;
    switch (header.BitsCount) {
    case 1:
        return planes >= 1 && planes <= 4 ? Decoder::oneBit : Decoder::none;
    case 2:
        if (planes == 1 || planes == 4) {
            throw ImageLoadError::refused("PCX: BitsCount 2 with " + std::to_string(planes) +
                                          " planes is not supported");
        }
        return Decoder::none;
    case 8:
        if (planes == 1) return Decoder::eightBitPalette;
        if (planes == 3) return Decoder::twentyFourBit;
        return Decoder::none;
    default:
        throw ImageLoadError::refused("PCX: BitsCount " + std::to_string(header.BitsCount) +
                                      " is not supported");
    }
}

Element fromEntry(Rgb8 entry) {
    return {entry.blue, entry.green, entry.red};
}

Rgb8 entryAt(ByteReader& reader, std::size_t offset) {
    const std::uint8_t red = reader.u8(offset);
    const std::uint8_t green = reader.u8(offset + 1);
    return {red, green, reader.u8(offset + 2)};
}

// The 1-bit modes index at most 16 entries of the header's palette.
std::array<Rgb8, 16> headerPalette(std::span<const std::uint8_t> file) {
    ByteReader reader(file);
    std::array<Rgb8, 16> palette;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        palette[i] = entryAt(reader, HeaderPaletteOffset + 3 * i);
    }
    return palette;
}

// The last 768 bytes of the file, whatever precedes them; in a file shorter
// than that the entries before its start read as zeros.
std::array<Rgb8, 256> trailingPalette(std::span<const std::uint8_t> file) {
    std::array<std::uint8_t, PaletteBytesAtEnd> bytes{};
    const std::size_t available = std::min(file.size(), PaletteBytesAtEnd);
    std::copy(file.end() - static_cast<std::ptrdiff_t>(available), file.end(),
              bytes.end() - static_cast<std::ptrdiff_t>(available));
    std::array<Rgb8, 256> palette;
    for (std::size_t i = 0; i < palette.size(); ++i) {
        palette[i] = {bytes[3 * i], bytes[3 * i + 1], bytes[3 * i + 2]};
    }
    return palette;
}

// Run-length coded data behind the header, one read position over the
// whole picture. Nothing stops at the end of the file: the bytes beyond it
// read as zeros, each a one-pixel run of value 0.
class RunSource {
  public:
    struct Run {
        std::uint8_t value;
        int count;
    };

    explicit RunSource(std::span<const std::uint8_t> file)
        : data_(file.size() > HeaderSize ? file.subspan(HeaderSize)
                                         : std::span<const std::uint8_t>{}) {}

    Run next() {
        const std::uint8_t v = take();
        // 0xC0 has both marker bits but a count of 0: a literal pixel, with
        // no value byte behind it.
        if ((v & 0xC0) == 0xC0 && (v & 0x3F) != 0) return {take(), v & 0x3F};
        return {v, 1};
    }

  private:
    std::uint8_t take() {
        const std::uint8_t v = position_ < data_.size() ? data_[position_] : 0;
        ++position_;
        return v;
    }

    std::span<const std::uint8_t> data_;
    std::size_t position_ = 0;
};

// One plane of one row: runs are taken until x has passed the last column.
// The sample that finds x already past it is still handed over, so a run
// that crosses the end writes one element beyond the row and loses its
// remainder; the row's padding bytes start the next plane or row.
template <typename Act>
void walkPlaneRow(RunSource& source, int maxX, bool bitwise, Act&& act) {
    const int samplesPerRepetition = bitwise ? 8 : 1;
    int x = 0;
    do {
        const RunSource::Run run = source.next();
        bool rowEnded = false;
        for (int repetition = 0; repetition < run.count && !rowEnded; ++repetition) {
            for (int i = 0; i < samplesPerRepetition; ++i) {
                act(x, bitwise ? (run.value >> (7 - i)) & 1 : run.value);
                if (x > maxX) {
                    rowEnded = true;
                    break;
                }
                ++x;
            }
        }
    } while (x <= maxX);
}

class PcxDecoding {
  public:
    PcxDecoding(const PcxHeader& header, std::span<const std::uint8_t> file,
                ThreeBytePicture& picture, ProgressSink* progress)
        : header_(header), file_(file), source_(file), picture_(picture), progress_(progress) {}

    void run(Decoder decoder) {
        switch (decoder) {
        case Decoder::oneBit:
            oneBit();
            break;
        case Decoder::eightBitPalette:
            eightBitPalette();
            break;
        case Decoder::twentyFourBit:
            twentyFourBit();
            break;
        case Decoder::none:
            break;
        }
    }

  private:
    // Planes above 1 gather the index bit by bit in the element's red,
    // green and blue bytes; the last plane turns them into the colour.
    void oneBit() {
        const auto palette = headerPalette(file_);
        const int planes = header_.Planes;
        const std::int64_t width = picture_.width();
        for (int y = 0; y <= header_.ImageSizeMaxY; ++y) {
            for (int p = 1; p <= planes; ++p) {
                walkPlaneRow(source_, header_.ImageSizeMaxX, true, [&](int x, int bit) {
                    Element* e = picture_.find(y * width + x);
                    if (e == nullptr) return;
                    const auto byteBit = static_cast<std::uint8_t>(bit);
                    if (planes == 1) {
                        *e = fromEntry(palette[byteBit]);
                    } else if (p == planes) {
                        int index = bit << (p - 1);
                        if (e->third != 0) index += 1;
                        if (p > 2 && e->second != 0) index += 2;
                        if (p == 4 && e->first != 0) index += 4;
                        *e = fromEntry(palette[static_cast<std::size_t>(index)]);
                    } else if (p == 1) {
                        e->third = byteBit;
                    } else if (p == 2) {
                        e->second = byteBit;
                    } else {
                        e->first = byteBit;
                    }
                });
            }
            rowDone();
        }
    }

    // The row stride here is the header's bytes per line, not the width.
    void eightBitPalette() {
        const auto palette = trailingPalette(file_);
        for (int y = 0; y <= header_.ImageSizeMaxY; ++y) {
            walkPlaneRow(source_, header_.ImageSizeMaxX, false, [&](int x, int value) {
                if (Element* e = picture_.find(strideIndex(y, x))) {
                    *e = fromEntry(palette[static_cast<std::size_t>(value)]);
                }
            });
            rowDone();
        }
    }

    void twentyFourBit() {
        for (int y = 0; y <= header_.ImageSizeMaxY; ++y) {
            for (int p = 1; p <= header_.Planes; ++p) {
                walkPlaneRow(source_, header_.ImageSizeMaxX, false, [&](int x, int value) {
                    Element* e = picture_.find(strideIndex(y, x));
                    if (e == nullptr) return;
                    const auto byte = static_cast<std::uint8_t>(value);
                    if (p == 1) e->third = byte;
                    if (p == 2) e->second = byte;
                    if (p == 3) e->first = byte;
                });
            }
            rowDone();
        }
    }

    [[nodiscard]] std::int64_t strideIndex(int y, int x) const {
        return static_cast<std::int64_t>(header_.bytesPerLine) * y + x;
    }

    // The divisor is the last row's index, so the count passes 100 on the
    // last row and a one-row picture fails on the zero.
    void rowDone() {
        ++rowsDone_;
        const int percent = loadPercent(rowsDone_, header_.ImageSizeMaxY);
        if (progress_ != nullptr) progress_->showPercent(percent);
    }

    const PcxHeader& header_;
    std::span<const std::uint8_t> file_;
    RunSource source_;
    ThreeBytePicture& picture_;
    ProgressSink* progress_;
    std::int64_t rowsDone_ = 0;
};

void checkHeader(const PcxHeader& header, const LoadLimits& limits) {
    if (header.ZsoftFlag != 10) {
        throw ImageLoadError::refused("PCX: the first byte is " + std::to_string(header.ZsoftFlag) +
                                      ", not 10");
    }
    limits.check(header.width(), header.height(), WorkingBytesPerPixel);
}

} // namespace

void Class_PCXImageOp::refuseFromHead(std::span<const std::uint8_t> head,
                                      std::uint64_t /*fileSize*/, const LoadLimits& limits) {
    if (head.size() >= HeaderSize) checkHeader(readHeader(head), limits);
}

Surface Class_PCXImageOp::PCXImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits) {
    return guardedRead("PCX", [&] {
        const PcxHeader header = readHeader(file);
        checkHeader(header, limits);
        const Decoder decoder = chooseDecoder(header);
        ThreeBytePicture picture(header.width(), header.height());
        PcxDecoding(header, file, picture, progress).run(decoder);
        // Both display paths show red, green and blue bytes as they are.
        return picture.shownAsBitmap();
    });
}

} // namespace lumiran
