#include "engine/effect_error.h"
#include "engine/numeric.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/reader_guard.h"
#include "imagefiles/three_byte_picture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace lumiran {
namespace {

// The uncompressed resolutions of an image pack. The read position is
// counted from 1 and held in 16 bits where the program wrote it so: the
// middle one wraps to a negative position.
struct PcdResolution {
    int width;
    int height;
    std::int32_t readPosition;
};

constexpr PcdResolution Base16{192, 128, 8192};
constexpr PcdResolution Base4{384, 256, wrap16(0xB800)};
constexpr PcdResolution Base{768, 512, 196608};

constexpr std::size_t LargestLength = 1024 * 4608 - 1;

// The file's length alone decides; the header is never consulted.
std::optional<PcdResolution> resolutionForLength(std::size_t length) {
    if (length <= 192 * 384) return Base16;
    if (length < 384 * 768) return Base16;
    if (length < 512 * 2304) return Base4;
    if (length < 1024 * 4608) return Base;
    return std::nullopt;
}

PcdResolution resolutionOrRefusal(std::uint64_t length) {
    const std::optional<PcdResolution> resolution =
        length > LargestLength ? std::nullopt : resolutionForLength(length);
    if (!resolution) {
        throw ImageLoadError::refused("PCD: a file of " + std::to_string(length) +
                                      " bytes is longer than any resolution it reads (at most " +
                                      std::to_string(LargestLength) + " bytes)");
    }
    return *resolution;
}

// The runtime refuses a record position below 1.
EffectError badRecordNumber() {
    return {63, "レコード番号が不正です。"};
}

// Where the pixel stream is taken from: the two-byte read at the 1-based
// position leaves the file one byte behind the true start of the image.
std::size_t streamStart(std::int32_t readPosition) {
    if (readPosition < 1) throw badRecordNumber();
    return static_cast<std::size_t>(readPosition - 1) + 2;
}

// Fills row from offset on; bytes past the end of the file read as 0.
void readRow(std::span<const std::uint8_t> file, std::size_t offset, std::span<std::uint8_t> row) {
    std::ranges::fill(row, std::uint8_t{0});
    if (offset >= file.size()) return;
    const std::size_t available = std::min(row.size(), file.size() - offset);
    std::copy_n(file.begin() + static_cast<std::ptrdiff_t>(offset), available, row.begin());
}

struct YccResult {
    int red;
    int green;
    int blue;
};

YccResult YccToRgb(std::uint8_t luma, std::uint8_t chroma1, std::uint8_t chroma2) {
    const std::int16_t c1 = wrap16(chroma1 - 156);
    const std::int16_t c2 = wrap16(chroma2 - 137);
    const double a = c1 * 2.2179;
    const double b = c2 * 1.8215;
    const double l = luma * 1.3584;
    const auto toByte = [](double value) {
        return std::min(std::max(roundTo<std::int32_t>(value), 0), 255);
    };
    return {toByte(l + b), toByte(l - a * 0.194 - b * 0.509), toByte(l + a)};
}

// One picture row from a luma row and the chroma row it shares with its
// pair: the first half of the chroma row is chroma1, the second chroma2,
// each sample covering two columns.
void convertRow(std::span<const std::uint8_t> luma, std::span<const std::uint8_t> chroma,
                std::span<Pixel> target) {
    const std::size_t half = target.size() / 2;
    for (std::size_t x = 0; x < target.size(); ++x) {
        const YccResult rgb = YccToRgb(luma[x], chroma[x / 2], chroma[half + x / 2]);
        target[x] = makePixel(rgb.red, rgb.green, rgb.blue);
    }
}

} // namespace

void Class_PCDImageOp::refuseFromHead(std::span<const std::uint8_t> /*head*/,
                                      std::uint64_t fileSize, const LoadLimits& limits) {
    const PcdResolution resolution = resolutionOrRefusal(fileSize);
    limits.check(resolution.width, resolution.height, 3 + 4);
}

Surface Class_PCDImageOp::PCDImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits) {
    return guardedRead("PCD", [&] {
        const auto [width, height, readPosition] = resolutionOrRefusal(file.size());
        std::size_t cursor = streamStart(readPosition);
        // PixelData and the picture.
        limits.check(width, height, 3 + 4);

        Surface picture(width, height);
        const auto rowWidth = static_cast<std::size_t>(width);
        std::vector<std::uint8_t> lumaRow1(rowWidth);
        std::vector<std::uint8_t> lumaRow2(rowWidth);
        std::vector<std::uint8_t> chromaRow(rowWidth);
        int rowsDone = 0;
        for (int y = 0; y < height; y += 2) {
            for (std::vector<std::uint8_t>* row : {&lumaRow1, &lumaRow2, &chromaRow}) {
                readRow(file, cursor, *row);
                cursor += rowWidth;
            }
            convertRow(lumaRow1, chromaRow, picture.row(y));
            convertRow(lumaRow2, chromaRow, picture.row(y + 1));
            rowsDone += 2;
            const int percent = loadPercent(rowsDone, height);
            if (progress != nullptr) progress->showPercent(percent);
        }
        return picture;
    });
}

} // namespace lumiran
