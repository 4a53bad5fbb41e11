#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <initializer_list>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

// No entry is black, so black in a result means an element nothing wrote.
constexpr Rgb8 entry(int i) {
    return {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i), 7};
}

Pixel shown(int i) {
    return toPixel(entry(i));
}

// A PCX file built field by field; data is the coded stream behind the header.
// Header palette entry i is entry(16 * i + 1).
struct PcxFile {
    int zsoftFlag = 10, bitsCount = 8, minX = 0, maxX = 0, maxY = 0, planes = 1, bytesPerLine = 0;
    std::vector<std::uint8_t> data = {};
    bool trailingPalette = true; // entry(0) to entry(255), behind the marker byte

    [[nodiscard]] std::vector<std::uint8_t> bytes() const {
        std::vector<std::uint8_t> file;
        const auto put = [&file](std::initializer_list<int> values) {
            for (const int v : values)
                file.push_back(static_cast<std::uint8_t>(v));
        };
        put({zsoftFlag, 5, 1, bitsCount, minX, minX >> 8, 0, 0, maxX, maxX >> 8, maxY, maxY >> 8});
        put({72, 0, 72, 0});
        for (int i = 0; i < 16; ++i)
            put({16 * i + 1, 254 - 16 * i, 7}); // entry(16 * i + 1)
        put({0, planes, bytesPerLine, bytesPerLine >> 8});
        file.resize(128);
        file.insert(file.end(), data.begin(), data.end());
        if (trailingPalette) {
            put({12});
            for (int i = 0; i < 256; ++i)
                put({i, 255 - i, 7}); // entry(i)
        }
        return file;
    }
};

PcxFile eightBit(int width, int height, int stride, std::vector<std::uint8_t> data) {
    return {.maxX = width - 1, .maxY = height - 1, .bytesPerLine = stride, .data = data};
}

Surface load(const std::vector<std::uint8_t>& bytes, ProgressSink* sink = nullptr) {
    return Class_PCXImageOp{}.PCXImageGet(bytes, sink, LoadLimits{1 << 20});
}

// The error number of a failed load, -1 for a load that succeeds.
int refusal(const std::vector<std::uint8_t>& bytes) {
    try {
        (void)load(bytes);
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number() == 0, e.description().empty()) << e.detail();
        return e.number();
    }
    return -1;
}

TEST(PcxReader, RunsTreat0xC0AsALiteralAndReportPercentPastTheLastRow) {
    struct : ProgressSink {
        std::vector<int> percents;
        void showPercent(int percent) override { percents.push_back(percent); }
    } sink;
    const Surface s = load(eightBit(4, 2, 4, {0xC0, 0xC3, 5, 0xC1, 0xC0, 1, 2, 3}).bytes(), &sink);
    EXPECT_EQ(s.at(0, 0), shown(192));
    EXPECT_EQ(s.at(3, 0), shown(5));
    EXPECT_EQ(s.at(0, 1), shown(192));
    EXPECT_EQ(s.at(1, 1), shown(1));
    // The divisor is the last row's index, 1; one row divides by 0.
    EXPECT_EQ(sink.percents, (std::vector<int>{100, 200}));
    PcxFile oneRow = eightBit(4, 1, 4, {1, 2, 3, 4});
    EXPECT_EQ(refusal(oneRow.bytes()), 6);
    oneRow.planes = 2; // no decoder, so no percentage
    EXPECT_EQ(refusal(oneRow.bytes()), -1);
}

TEST(PcxReader, OneBitPlanesBuildThePaletteIndexFromPlaneOneUp) {
    // Width 5 leaves three bits of each plane byte over: the sixth bit
    // still lands on the next row's first element before the row ends.
    for (const int planes : {2, 3, 4}) {
        SCOPED_TRACE(planes);
        PcxFile f{.bitsCount = 1, .maxX = 4, .maxY = 2, .planes = planes};
        const auto indexAt = [&](int x, int y) { return (x + 5 * y + 3) % (1 << planes); };
        for (int y = 0; y < 3; ++y) {
            for (int p = 0; p < planes; ++p) {
                std::uint8_t byte = 0x07; // the spare bits are set
                for (int x = 0; x < 5; ++x) {
                    if ((indexAt(x, y) >> p) & 1) byte |= static_cast<std::uint8_t>(0x80 >> x);
                }
                f.data.insert(f.data.end(), {0xC1, byte});
            }
        }
        const Surface s = load(f.bytes());
        for (int y = 0; y < 3; ++y) {
            for (int x = 0; x < 5; ++x)
                EXPECT_EQ(s.at(x, y), shown(16 * indexAt(x, y) + 1)) << x << "," << y;
        }
    }
}

TEST(PcxReader, OnePlaneMonochromeUsesTheFirstTwoEntriesAndReadsZerosPastTheEnd) {
    // Data that stops after row 0: the other rows decode zero bytes.
    const PcxFile f{.bitsCount = 1, .maxX = 7, .maxY = 2, .data = {0xA5}, .trailingPalette = false};
    const Surface s = load(f.bytes());
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(s.at(x, 0), shown((0xA5 >> (7 - x)) & 1 ? 17 : 1)) << x;
    EXPECT_EQ(s.at(7, 2), shown(1));
    // A header cut after BitsCount: no planes, so nothing is decoded.
    EXPECT_EQ(load({10, 5, 1, 8}).width(), 1);
}

TEST(PcxReader, EightBitRowsAreStoredWithBytesPerLineAndTheMinimumCornerIsNotSubtracted) {
    // Width 101, bytes per line 102: each row's padding byte (3) is decoded
    // as the next row's first pixel, and the rows are stored 102 apart.
    Surface s = load(eightBit(101, 2, 102, {0xFF, 1, 0xE6, 2, 3, 0xFF, 4, 0xE5, 5}).bytes());
    ASSERT_EQ(s.width(), 101);
    EXPECT_EQ(s.at(100, 0), shown(2));
    EXPECT_EQ(s.at(0, 1), makePixel(0, 0, 0)); // between the stored rows, never written
    EXPECT_EQ(s.at(1, 1), shown(3));
    EXPECT_EQ(s.at(100, 1), shown(5));
    // MinX 10 and MaxX 109 make 110 pixels: runs of 63 and 47.
    PcxFile f = eightBit(110, 2, 110, {0xFF, 5, 0xEF, 9});
    f.minX = 10;
    s = load(f.bytes());
    EXPECT_EQ(s.width(), 110);
    EXPECT_EQ(s.at(109, 0), shown(9));
}

TEST(PcxReader, RowOverrunsAndWritesOutsideThePicture) {
    // Width 3 stored 4 apart: a run past the row's end writes one element
    // more, shown as the first pixel of row 1, and loses the rest.
    Surface s = load(eightBit(3, 2, 4, {0xC5, 9, 1, 2, 3}).bytes());
    EXPECT_EQ(s.at(2, 0), shown(9));
    EXPECT_EQ(s.at(0, 1), shown(9));
    EXPECT_EQ(s.at(1, 1), shown(1));
    // Rows 1 and 2 stored far beyond the array are dropped.
    const std::vector<std::uint8_t> stream = {10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21};
    s = load(eightBit(4, 3, 300, stream).bytes());
    EXPECT_EQ(s.at(3, 0), shown(13));
    EXPECT_EQ(s.at(0, 1), makePixel(0, 0, 0));
    // Bytes per line is signed: 0xFFFF steps back one element a row, so row
    // 1 writes over row 0 from element -1 on, losing the first write.
    s = load(eightBit(4, 2, 0xFFFF, stream).bytes());
    EXPECT_EQ(s.at(0, 0), shown(15));
    EXPECT_EQ(s.at(3, 0), shown(13));
    EXPECT_EQ(s.at(0, 1), makePixel(0, 0, 0));
}

TEST(PcxReader, TwentyFourBitPlanesAreRedGreenBlue) {
    const PcxFile f{
        .maxX = 2,
        .maxY = 1,
        .planes = 3,
        .bytesPerLine = 3,
        .data = {0xC3, 200, 1, 2, 3, 0xC1, 0xC0, 0xC2, 7, 10, 11, 12, 20, 21, 22, 30, 31, 32}};
    const Surface s = load(f.bytes());
    EXPECT_EQ(s.at(0, 0), makePixel(200, 1, 192));
    EXPECT_EQ(s.at(2, 0), makePixel(200, 3, 7));
    EXPECT_EQ(s.at(1, 1), makePixel(11, 21, 31));
}

TEST(PcxReader, RefusesWhatItCannotDecodeAndShowsBlackForTheRest) {
    EXPECT_EQ(refusal({}), 0);
    EXPECT_EQ(refusal(PcxFile{.zsoftFlag = 11}.bytes()), 0);
    for (const auto& [bits, planes] : {std::pair{4, 1}, {4, 3}, {2, 1}, {2, 4}, {3, 1}, {16, 1}}) {
        const PcxFile f{.bitsCount = bits, .maxX = 1, .maxY = 1, .planes = planes};
        EXPECT_EQ(refusal(f.bytes()), 0) << bits << " " << planes;
    }
    for (const auto& [bits, planes] : {std::pair{1, 5}, {1, 0}, {2, 2}, {8, 2}}) {
        const PcxFile f{.bitsCount = bits, .maxX = 1, .maxY = 1, .planes = planes};
        EXPECT_EQ(load(f.bytes()).at(1, 1), makePixel(0, 0, 0)) << bits << " " << planes;
    }
    // Sizes are refused before anything is allocated; 0x7FFF wraps to -32768.
    for (const int maxX : {29999, 0xFFFF, 0x7FFF})
        EXPECT_EQ(refusal(eightBit(maxX + 1, 30000, 30000, {}).bytes()), 0) << maxX;
}

} // namespace
} // namespace lumiran
