#include "imagefiles/byte_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

struct TgaFields {
    std::uint8_t id = 0;
    std::uint8_t colorMapFormat = 0;
    std::uint8_t imageFormat = 2;
    std::uint16_t colorMapLength = 0;
    std::uint16_t width = 1;
    std::uint16_t height = 1;
    std::uint8_t bitsPerPixel = 24;
    std::uint8_t attribute = 0;
};

ByteWriter tgaHeader(const TgaFields& f) {
    ByteWriter w;
    w.u8(f.id);
    w.u8(f.colorMapFormat);
    w.u8(f.imageFormat);
    w.u16(0);
    w.u16(f.colorMapLength);
    w.u8(f.colorMapFormat != 0 ? 24 : 0);
    w.u16(0);
    w.u16(0);
    w.u16(f.width);
    w.u16(f.height);
    w.u8(f.bitsPerPixel);
    w.u8(f.attribute);
    return w;
}

// A distinct colour for each element of the file, in file order.
Pixel fileColour(int x, int fileRow) {
    return makePixel(10 + x, 100 + fileRow, 200 + x + fileRow);
}

// An uncompressed true-colour file whose element at (x, fileRow) has fileColour.
std::vector<std::uint8_t> trueColourFile(int width, int height, std::uint8_t attribute) {
    ByteWriter w = tgaHeader({.width = static_cast<std::uint16_t>(width),
                              .height = static_cast<std::uint16_t>(height),
                              .attribute = attribute});
    for (int r = 0; r < height; ++r) {
        for (int x = 0; x < width; ++x) {
            const Pixel p = fileColour(x, r);
            w.u8(static_cast<std::uint8_t>(blueOf(p)));
            w.u8(static_cast<std::uint8_t>(greenOf(p)));
            w.u8(static_cast<std::uint8_t>(redOf(p)));
        }
    }
    return std::move(w.bytes());
}

Surface readTga(const std::vector<std::uint8_t>& file, ProgressSink* progress = nullptr,
                const LoadLimits& limits = {}) {
    return Class_TGAImageOp().TGAImageGet(file, progress, limits);
}

struct RecordingSink : ProgressSink {
    std::vector<int> percents;
    void showPercent(int percent) override { percents.push_back(percent); }
};

// Where the element at (x, fileRow) should appear, by origin code.
struct Placement {
    int origin;
    bool mirrorX;
    bool bottomUp;
};

TEST(TgaReader, OriginCodesPlaceRowsAndColumns) {
    const Placement placements[] = {
        {0, false, true}, {16, true, true}, {32, false, false}, {48, true, false}};
    for (const int width : {3, 4, 5}) {
        for (const Placement& p : placements) {
            // The platform refuses the negative width of a right-to-left
            // file at widths it takes in one piece: the picture stays blank.
            const bool blank = p.mirrorX && width % 4 == 0;
            const int height = 2;
            // Other bits of the attribute byte (alpha depth) do not matter.
            const Surface s = readTga(trueColourFile(width, height, p.origin | 8));
            ASSERT_EQ(s.width(), width);
            ASSERT_EQ(s.height(), height);
            for (int r = 0; r < height; ++r) {
                for (int x = 0; x < width; ++x) {
                    const int px = p.mirrorX ? width - 1 - x : x;
                    const int py = p.bottomUp ? height - 1 - r : r;
                    EXPECT_EQ(s.at(px, py), blank ? 0 : fileColour(x, r))
                        << "width " << width << " origin " << p.origin << " at " << x << "," << r;
                }
            }
        }
    }
}

TEST(TgaReader, RefusesAllButUncompressedTrueColourAndColourMapped) {
    for (const int format : {0, 3, 9, 10, 11, 4, 255}) {
        ByteWriter w = tgaHeader({.imageFormat = static_cast<std::uint8_t>(format)});
        w.zeros(3);
        try {
            (void)readTga(w.bytes());
            ADD_FAILURE() << "ImageFormat " << format << " was accepted";
        } catch (const ImageLoadError& e) {
            EXPECT_EQ(e.number(), 0);
            EXPECT_TRUE(e.description().empty());
            EXPECT_NE(e.detail().find("ImageFormat " + std::to_string(format)), std::string::npos)
                << e.detail();
        }
    }
    // Colour-mapped needs a map; true colour ignores one.
    EXPECT_THROW((void)readTga(tgaHeader({.colorMapFormat = 0, .imageFormat = 1}).bytes()),
                 ImageLoadError);
    EXPECT_NO_THROW((void)readTga(tgaHeader({.colorMapFormat = 1, .imageFormat = 2}).bytes()));
}

TEST(TgaReader, IdFieldShiftsTheDataStart) {
    ByteWriter w = tgaHeader({.id = 5, .width = 2, .attribute = 32});
    for (const std::uint8_t b : {9, 9, 9, 9, 9, 1, 2, 3, 4, 5, 6})
        w.u8(b);
    const Surface s = readTga(w.bytes());
    EXPECT_EQ(s.at(0, 0), makePixel(3, 2, 1));
    EXPECT_EQ(s.at(1, 0), makePixel(6, 5, 4));
}

Pixel mapColour(int i) {
    return makePixel(i, 255 - i, i / 2);
}

void writeMapEntry(ByteWriter& w, int i) {
    const Pixel p = mapColour(i);
    w.u8(static_cast<std::uint8_t>(blueOf(p)));
    w.u8(static_cast<std::uint8_t>(greenOf(p)));
    w.u8(static_cast<std::uint8_t>(redOf(p)));
}

TEST(TgaReader, ColourMapIsReadAs769EntriesWithIndicesBehindThem) {
    // A map laid out as the reader takes it: indices right behind 769 entries.
    {
        ByteWriter w = tgaHeader(
            {.colorMapFormat = 1, .imageFormat = 1, .width = 3, .height = 1, .attribute = 32});
        for (int i = 0; i < 769; ++i)
            writeMapEntry(w, i % 256);
        for (const std::uint8_t index : {0, 7, 255})
            w.u8(index);
        const Surface s = readTga(w.bytes());
        EXPECT_EQ(s.at(0, 0), mapColour(0));
        EXPECT_EQ(s.at(1, 0), mapColour(7));
        EXPECT_EQ(s.at(2, 0), mapColour(255));
    }
    // The usual 256-entry map: the indices are taken 1539 bytes late, and
    // those missing at the end of the file count as index 0.
    {
        const int width = 4;
        const int height = 2;
        ByteWriter w = tgaHeader({.colorMapFormat = 1,
                                  .imageFormat = 1,
                                  .colorMapLength = 256,
                                  .width = width,
                                  .height = height,
                                  .attribute = 32});
        for (int i = 0; i < 256; ++i)
            writeMapEntry(w, i);
        const int indexBytes = 1539 + 5;
        for (int j = 0; j < indexBytes; ++j)
            w.u8(static_cast<std::uint8_t>(j % 251));
        const Surface s = readTga(w.bytes());
        for (int k = 0; k < width * height; ++k) {
            const Pixel expected = k < 5 ? mapColour((1539 + k) % 251) : mapColour(0);
            EXPECT_EQ(s.at(k % width, k / width), expected) << "pixel " << k;
        }
    }
}

TEST(TgaReader, ColourMappedReportsRoundedPercentPerRowTrueColourNone) {
    ByteWriter w = tgaHeader({.colorMapFormat = 1, .imageFormat = 1, .width = 1, .height = 8});
    RecordingSink sink;
    (void)readTga(w.bytes(), &sink);
    // Ties of 12.5, 37.5, ... round to even.
    EXPECT_EQ(sink.percents, (std::vector<int>{12, 25, 38, 50, 62, 75, 88, 100}));

    RecordingSink none;
    (void)readTga(trueColourFile(4, 8, 0), &none);
    EXPECT_TRUE(none.percents.empty());
}

TEST(TgaReader, ThirtyTwoBitPixelsAreTakenThreeBytesAtATime) {
    ByteWriter w = tgaHeader({.width = 2, .bitsPerPixel = 32, .attribute = 32 | 8});
    for (const std::uint8_t b : {1, 2, 3, 255, 4, 5, 6, 255})
        w.u8(b);
    const Surface s = readTga(w.bytes());
    EXPECT_EQ(s.at(0, 0), makePixel(3, 2, 1));
    EXPECT_EQ(s.at(1, 0), makePixel(5, 4, 255));
}

TEST(TgaReader, ShortFilesLeaveMissingPixelsBlack) {
    EXPECT_THROW((void)readTga({}), ImageLoadError);

    std::vector<std::uint8_t> file = trueColourFile(2, 2, 32);
    file.resize(18 + 4); // one pixel and a byte of the next
    const Surface s = readTga(file);
    EXPECT_EQ(s.at(0, 0), fileColour(0, 0));
    EXPECT_EQ(s.at(1, 0), makePixel(0, 0, blueOf(fileColour(1, 0))));
    EXPECT_EQ(s.at(0, 1), 0u);
    EXPECT_EQ(s.at(1, 1), 0u);

    // A header cut before its height field reads a height of 0.
    file.resize(13);
    EXPECT_THROW((void)readTga(file), ImageLoadError);
}

TEST(TgaReader, HugeOrEmptyDimensionsAreRefusedBeforeAllocating) {
    const LoadLimits small{.maxBytes = 1 << 20};
    const std::pair<int, int> sizes[] = {{32767, 32767}, {65535, 1}, {1, 0}, {0, 1}};
    for (const auto& [width, height] : sizes) {
        ByteWriter w = tgaHeader({.width = static_cast<std::uint16_t>(width),
                                  .height = static_cast<std::uint16_t>(height)});
        try {
            (void)readTga(w.bytes(), nullptr, small);
            ADD_FAILURE() << width << "x" << height << " was accepted";
        } catch (const ImageLoadError& e) {
            EXPECT_EQ(e.number(), 0) << e.detail();
        }
    }
}

} // namespace
} // namespace lumiran
