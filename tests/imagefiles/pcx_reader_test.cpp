#include "imagefiles/byte_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace lumiran {
namespace {

struct RecordingSink : ProgressSink {
    std::vector<int> percents;
    void showPercent(int percent) override { percents.push_back(percent); }
};

// A PCX file built field by field; data is the coded stream behind the header.
struct PcxFile {
    std::uint8_t zsoftFlag = 10;
    std::uint8_t bitsCount = 8;
    std::uint16_t minX = 0;
    std::uint16_t maxX = 0;
    std::uint16_t maxY = 0;
    std::uint8_t planes = 1;
    std::uint16_t bytesPerLine = 0;
    std::array<Rgb8, 16> headerPalette{};
    std::vector<std::uint8_t> data;
    // Appended behind the data, with the usual marker byte, when given.
    std::optional<std::array<Rgb8, 256>> trailingPalette;

    [[nodiscard]] std::vector<std::uint8_t> bytes() const {
        ByteWriter w;
        w.u8(zsoftFlag);
        w.u8(5);
        w.u8(1);
        w.u8(bitsCount);
        w.u16(minX);
        w.u16(0);
        w.u16(maxX);
        w.u16(maxY);
        w.u16(72);
        w.u16(72);
        for (const Rgb8 c : headerPalette) {
            w.u8(c.red);
            w.u8(c.green);
            w.u8(c.blue);
        }
        w.u8(0);
        w.u8(planes);
        w.u16(bytesPerLine);
        w.zeros(60);
        for (const std::uint8_t b : data)
            w.u8(b);
        if (trailingPalette) {
            w.u8(12);
            for (const Rgb8 c : *trailingPalette) {
                w.u8(c.red);
                w.u8(c.green);
                w.u8(c.blue);
            }
        }
        return std::move(w.bytes());
    }
};

// No entry is black, so black in a result means an element nothing wrote.
constexpr Rgb8 entry(int i) {
    return {static_cast<std::uint8_t>(i), static_cast<std::uint8_t>(255 - i), 7};
}

std::array<Rgb8, 256> distinctPalette() {
    std::array<Rgb8, 256> palette{};
    for (int i = 0; i < 256; ++i)
        palette[static_cast<std::size_t>(i)] = entry(i);
    return palette;
}

PcxFile eightBit(int width, int height, int bytesPerLine, std::vector<std::uint8_t> data) {
    PcxFile f;
    f.maxX = static_cast<std::uint16_t>(width - 1);
    f.maxY = static_cast<std::uint16_t>(height - 1);
    f.bytesPerLine = static_cast<std::uint16_t>(bytesPerLine);
    f.data = std::move(data);
    f.trailingPalette = distinctPalette();
    return f;
}

Surface load(const std::vector<std::uint8_t>& bytes, ProgressSink* sink = nullptr,
             const LoadLimits& limits = {}) {
    return Class_PCXImageOp{}.PCXImageGet(bytes, sink, limits);
}

// The error of a failed load; a load that succeeds is a test failure.
ImageLoadError failure(const std::vector<std::uint8_t>& bytes, const LoadLimits& limits = {}) {
    try {
        (void)load(bytes, nullptr, limits);
    } catch (const ImageLoadError& e) {
        EXPECT_FALSE(e.detail().empty());
        return e;
    }
    ADD_FAILURE() << "the file was loaded";
    return ImageLoadError::refused("");
}

TEST(PcxReader, RunsTreat0xC0AsALiteralAndReportPercentPastTheLastRow) {
    const PcxFile f = eightBit(4, 2, 4, {0xC0, 0xC3, 5, /* row 1 */ 0xC1, 0xC0, 1, 2, 3});
    RecordingSink sink;
    const Surface s = load(f.bytes(), &sink);
    ASSERT_EQ(s.width(), 4);
    ASSERT_EQ(s.height(), 2);
    const std::array<std::array<int, 4>, 2> expected{{{192, 5, 5, 5}, {192, 1, 2, 3}}};
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(s.at(x, y), toPixel(entry(expected[y][x]))) << x << "," << y;
        }
    }
    // The divisor is the last row's index, 1.
    EXPECT_EQ(sink.percents, (std::vector<int>{100, 200}));
}

TEST(PcxReader, OneBitPlanesBuildThePaletteIndexFromPlaneOneUp) {
    PcxFile f;
    f.bitsCount = 1;
    for (int i = 0; i < 16; ++i) {
        f.headerPalette[static_cast<std::size_t>(i)] = {static_cast<std::uint8_t>(i * 16),
                                                        static_cast<std::uint8_t>(255 - i), 9};
    }
    // Width 5 leaves three bits of each plane byte over: the sixth bit
    // still lands on the next row's first element before the row ends.
    const int width = 5;
    const int height = 3;
    f.maxX = width - 1;
    f.maxY = height - 1;
    for (const int planes : {2, 3, 4}) {
        SCOPED_TRACE(planes);
        f.planes = static_cast<std::uint8_t>(planes);
        const auto indexAt = [&](int x, int y) { return (x + width * y + 3) % (1 << planes); };
        f.data.clear();
        for (int y = 0; y < height; ++y) {
            for (int p = 0; p < planes; ++p) {
                std::uint8_t byte = 0x07; // the spare bits are set
                for (int x = 0; x < width; ++x) {
                    if ((indexAt(x, y) >> p) & 1) byte |= static_cast<std::uint8_t>(0x80 >> x);
                }
                f.data.push_back(0xC1);
                f.data.push_back(byte);
            }
        }
        const Surface s = load(f.bytes());
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                EXPECT_EQ(s.at(x, y), toPixel(f.headerPalette[indexAt(x, y)])) << x << "," << y;
            }
        }
    }
}

TEST(PcxReader, OnePlaneMonochromeUsesTheFirstTwoHeaderEntries) {
    PcxFile f;
    f.bitsCount = 1;
    f.maxX = 7;
    f.maxY = 1;
    f.headerPalette[0] = {1, 2, 3};
    f.headerPalette[1] = {250, 251, 252};
    f.data = {0xA5, 0x0F};
    const Surface s = load(f.bytes());
    for (int x = 0; x < 8; ++x) {
        EXPECT_EQ(s.at(x, 0), toPixel(f.headerPalette[(0xA5 >> (7 - x)) & 1]));
        EXPECT_EQ(s.at(x, 1), toPixel(f.headerPalette[(0x0F >> (7 - x)) & 1]));
    }
}

TEST(PcxReader, TheMinimumCornerIsNotSubtracted) {
    PcxFile f = eightBit(110, 2, 110, {});
    f.minX = 10;
    for (int i = 0; i < 220; ++i)
        f.data.push_back(static_cast<std::uint8_t>(i % 150));
    const Surface s = load(f.bytes());
    EXPECT_EQ(s.width(), 110);
    EXPECT_EQ(s.at(105, 0), toPixel(entry(105)));
    EXPECT_EQ(s.at(5, 1), toPixel(entry((110 + 5) % 150)));
}

TEST(PcxReader, EightBitRowsAreStoredWithBytesPerLineAndShownWithTheWidth) {
    // Width 101, bytes per line 102: each row's padding byte is decoded as
    // the next row's first pixel, and the rows are stored 102 apart.
    std::vector<std::uint8_t> stream;
    for (int i = 0; i < 204; ++i)
        stream.push_back(static_cast<std::uint8_t>(1 + i % 180));
    const Surface s = load(eightBit(101, 2, 102, stream).bytes());
    ASSERT_EQ(s.width(), 101);
    for (int x = 0; x < 101; ++x)
        EXPECT_EQ(s.at(x, 0), toPixel(entry(stream[x]))) << x;
    // Element 101 lies between the stored rows and is never written.
    EXPECT_EQ(s.at(0, 1), makePixel(0, 0, 0));
    for (int x = 1; x < 101; ++x)
        EXPECT_EQ(s.at(x, 1), toPixel(entry(stream[100 + x]))) << x;
}

TEST(PcxReader, ARunPastTheRowEndWritesOneElementMoreAndLosesTheRest) {
    // Width 3 stored 4 apart: the element behind row 0 is shown as the
    // first pixel of row 1, and only the overrun writes it.
    const Surface s = load(eightBit(3, 2, 4, {0xC5, 9, 1, 2, 3}).bytes());
    EXPECT_EQ(s.at(0, 0), toPixel(entry(9)));
    EXPECT_EQ(s.at(2, 0), toPixel(entry(9)));
    EXPECT_EQ(s.at(0, 1), toPixel(entry(9)));
    EXPECT_EQ(s.at(1, 1), toPixel(entry(1)));
    EXPECT_EQ(s.at(2, 1), toPixel(entry(2)));
}

TEST(PcxReader, WritesOutsideThePictureAreDropped) {
    std::vector<std::uint8_t> stream;
    for (int i = 0; i < 12; ++i)
        stream.push_back(static_cast<std::uint8_t>(10 + i));
    // Rows 1 and 2 are stored far beyond the array.
    Surface s = load(eightBit(4, 3, 300, stream).bytes());
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(s.at(x, 0), toPixel(entry(10 + x)));
        EXPECT_EQ(s.at(x, 1), makePixel(0, 0, 0));
    }
    // Bytes per line is signed: 0xFFFF steps back one element a row, so row
    // 1 writes over row 0 from element -1 on, losing the first write.
    s = load(eightBit(4, 2, 0xFFFF, stream).bytes());
    EXPECT_EQ(s.at(0, 0), toPixel(entry(15)));
    EXPECT_EQ(s.at(2, 0), toPixel(entry(17)));
    EXPECT_EQ(s.at(3, 0), toPixel(entry(13)));
    EXPECT_EQ(s.at(0, 1), makePixel(0, 0, 0));
}

TEST(PcxReader, TwentyFourBitPlanesAreRedGreenBlue) {
    PcxFile f = eightBit(3, 2, 3, {});
    f.planes = 3;
    f.trailingPalette.reset();
    f.data = {
        0xC3,
        200,
        /* green */ 1,
        2,
        3,
        /* blue */ 0xC1,
        0xC0,
        0xC2,
        7,
        /* row 1 */ 10,
        11,
        12,
        20,
        21,
        22,
        30,
        31,
        32,
    };
    const Surface s = load(f.bytes());
    EXPECT_EQ(s.at(0, 0), makePixel(200, 1, 192));
    EXPECT_EQ(s.at(2, 0), makePixel(200, 3, 7));
    EXPECT_EQ(s.at(1, 1), makePixel(11, 21, 31));
}

TEST(PcxReader, RefusesWhatItCannotDecodeAndShowsBlackForTheRest) {
    PcxFile f = eightBit(2, 2, 2, {1, 2, 3, 4});
    f.zsoftFlag = 11;
    EXPECT_EQ(failure(f.bytes()).number(), 0);
    f.zsoftFlag = 10;
    for (const auto& [bits, planes] :
         {std::pair{4, 1}, {4, 3}, {2, 1}, {2, 4}, {3, 1}, {0, 1}, {16, 1}, {24, 1}}) {
        f.bitsCount = static_cast<std::uint8_t>(bits);
        f.planes = static_cast<std::uint8_t>(planes);
        const ImageLoadError e = failure(f.bytes());
        EXPECT_EQ(e.number(), 0) << bits;
        EXPECT_TRUE(e.description().empty());
        EXPECT_NE(e.detail().find("BitsCount"), std::string::npos) << e.detail();
    }
    for (const auto& [bits, planes] : {std::pair{1, 5}, {1, 0}, {2, 2}, {8, 2}, {8, 4}}) {
        f.bitsCount = static_cast<std::uint8_t>(bits);
        f.planes = static_cast<std::uint8_t>(planes);
        const Surface s = load(f.bytes());
        EXPECT_EQ(s.width(), 2);
        EXPECT_EQ(s.at(1, 1), makePixel(0, 0, 0)) << bits << " " << planes;
    }
}

TEST(PcxReader, ShortFilesReadZerosBeyondTheirEnd) {
    EXPECT_EQ(failure({}).number(), 0);
    // A header cut after BitsCount: no planes, so nothing is decoded.
    const Surface tiny = load({10, 5, 1, 8});
    EXPECT_EQ(tiny.width(), 1);
    EXPECT_EQ(tiny.height(), 1);
    // Data that stops after row 0: the other rows decode zero bytes.
    PcxFile f;
    f.bitsCount = 1;
    f.maxX = 7;
    f.maxY = 2;
    f.headerPalette[0] = {9, 9, 9};
    f.headerPalette[1] = {200, 200, 200};
    f.data = {0xC1, 0xFF};
    const Surface s = load(f.bytes());
    EXPECT_EQ(s.at(3, 0), makePixel(200, 200, 200));
    EXPECT_EQ(s.at(3, 1), makePixel(9, 9, 9));
    EXPECT_EQ(s.at(7, 2), makePixel(9, 9, 9));
}

TEST(PcxReader, AOneRowPictureOverflowsInThePercentage) {
    PcxFile f = eightBit(4, 1, 4, {1, 2, 3, 4});
    EXPECT_EQ(failure(f.bytes()).number(), 6);
    // Without a decoder no percentage is computed.
    f.planes = 2;
    EXPECT_EQ(load(f.bytes()).height(), 1);
}

TEST(PcxReader, RefusesHugeOrEmptyDimensionsBeforeAllocating) {
    const LoadLimits small{1 << 20};
    PcxFile f = eightBit(30000, 30000, 30000, {});
    EXPECT_EQ(failure(f.bytes(), small).number(), 0);
    f.maxX = 0xFFFF; // width 0
    EXPECT_EQ(failure(f.bytes()).number(), 0);
    f.maxX = 0x7FFF; // width wraps to -32768
    EXPECT_EQ(failure(f.bytes()).number(), 0);
}

} // namespace
} // namespace lumiran
