#include "imagefiles/bitmap_writer.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "test_support.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <tuple>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makePicture;
using Bytes = std::vector<std::uint8_t>;

// A picture of exactly `count` different colours, one a pixel in reading
// order, the rest of the picture repeating the first colour.
Surface pictureWithColours(int count) {
    const int width = 16;
    return makePicture(width, (count + width - 1) / width + 1, [count](int x, int y) {
        const int n = y * width + x;
        return n < count ? makePixel(n & 0xFF, n >> 8, 7) : makePixel(0, 0, 7);
    });
}

// The file and info headers of a bottom-up, uncompressed bitmap.
Bytes headers(std::int64_t fileSize, std::int64_t dataOffset, int width, int height, int bits,
              std::int64_t imageSize) {
    const int sizes[] = {2, 4, 4, 4, 4, 4, 4, 2, 2, 4, 4, 16};
    const std::int64_t values[] = {0x4D42, fileSize, 0,    dataOffset, 40,        width,
                                   height, 1,        bits, 0,          imageSize, 0};
    Bytes out;
    for (int field = 0; field < 12; ++field) {
        for (int i = 0; i < sizes[field]; ++i)
            out.push_back(static_cast<std::uint8_t>(i < 4 ? values[field] >> (8 * i) : 0));
    }
    return out;
}

Bytes part(const Bytes& bytes, std::size_t from, std::size_t to) {
    return {bytes.begin() + static_cast<std::ptrdiff_t>(from),
            bytes.begin() + static_cast<std::ptrdiff_t>(std::min(to, bytes.size()))};
}

TEST(BitmapWriter8, HeadersGiveTheImageSizeOfTwentyFourBitRows) {
    // width, 8-bit stride, 24-bit stride: the image size is that of 24-bit rows.
    for (const auto& [width, stride8, stride24] :
         {std::tuple{1, 4u, 4u}, {4, 4u, 12u}, {5, 8u, 16u}, {9, 12u, 28u}}) {
        const Bmp8Encoding encoded = encodeBmp8(testing::makeVariedPicture(width, 3), false);
        EXPECT_EQ(encoded.bytes.size(), 1078 + 3 * stride8) << width;
        EXPECT_EQ(part(encoded.bytes, 0, 54),
                  headers(1078 + 3 * stride8, 1078, width, 3, 8, 3 * stride24))
            << width;
    }
}

TEST(BitmapWriter8, ColoursTakeEntriesInTheOrderTheyAreMetFromTheTopLeft) {
    const Pixel red = makePixel(200, 0, 0);
    const Pixel green = makePixel(0, 200, 0);
    const Pixel black = makePixel(0, 0, 0);
    // Top row: red green; bottom row: black, then red whose spare byte does not count.
    const Surface picture = makePicture(2, 2, [&](int x, int y) {
        return y == 0 ? (x == 0 ? red : green) : (x == 0 ? black : makePixel(200, 0, 0, 0xFF));
    });
    for (const bool reserve : {true, false}) {
        SCOPED_TRACE(reserve);
        const Bytes bytes = encodeBmp8(picture, reserve).bytes;
        const int f = reserve ? 10 : 0; // the first entry given out
        // Rows bottom-up, padded with zeros; black gets its own entry, not an
        // unused one that happens to hold zero.
        EXPECT_EQ(std::vector<int>(bytes.begin() + 1078, bytes.end()),
                  (std::vector<int>{f + 2, f, 0, 0, f, f + 1, 0, 0}));
        ByteReader in(bytes);
        for (int i = 0; i < 256; ++i) {
            const Pixel expected = i == f ? red : i == f + 1 ? green : 0;
            EXPECT_EQ(in.u32(54 + 4 * static_cast<std::size_t>(i)), expected) << i;
        }
    }
}

TEST(BitmapWriter8, RefusesMoreColoursThanThePaletteHolds) {
    for (const auto& [colours, reserve, result] : {std::tuple{236, true, Save256Success},
                                                   {237, true, Save256TooManyColours},
                                                   {256, false, Save256Success},
                                                   {257, false, Save256TooManyColours}}) {
        const Bmp8Encoding encoded = encodeBmp8(pictureWithColours(colours), reserve);
        EXPECT_EQ(encoded.result, result) << colours;
        EXPECT_EQ(encoded.bytes.empty(), result != Save256Success) << colours;
    }
    EXPECT_EQ(encodeBmp8(Surface(), true).result, Save256EmptyPicture);
}

TEST(BitmapWriter1, OnlyExactBlackIsBlackAndPaddingStaysClear) {
    // Black where x equals y or x is 9; near-black and coloured pixels are white.
    const Surface picture = makePicture(10, 2, [](int x, int y) {
        if (x == y || x == 9) return makePixel(0, 0, 0, 0xFF);
        return x == 5 ? makePixel(0, 0, 1) : makePixel(255, 0, 0);
    });
    const Bytes bytes = encodeBmp1(picture);
    EXPECT_EQ(part(bytes, 0, 54), headers(62 + 2 * 4, 62, 10, 2, 1, 2 * 4));
    // White first, then black; rows bottom-up: x 1 and 9 black, then x 0 and 9.
    EXPECT_EQ(part(bytes, 54, bytes.size()),
              (Bytes{0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 0, 0b0100'0000, 0b0100'0000, 0, 0, 0b1000'0000,
                     0b0100'0000, 0, 0}));
    EXPECT_THROW((void)encodeBmp1(Surface()), ImageFileError);
    // Rows are padded to four bytes, with clear bits even where all is black.
    for (const auto& [width, row] : {std::pair{1, Bytes{0x80, 0, 0, 0}},
                                     {8, Bytes{0xFF, 0, 0, 0}},
                                     {33, Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0x80, 0, 0, 0}}}) {
        const Bytes black = encodeBmp1(Surface(width, 3, makePixel(0, 0, 0)));
        EXPECT_EQ(black.size(), 62 + 3 * row.size()) << width;
        EXPECT_EQ(part(black, 62, 62 + row.size()), row) << width;
    }
}

struct BitmapWriterFiles : ::testing::Test {
    fs::path dir;
    void SetUp() override {
        dir = lumiran::testing::testFolder("lumiran-writer-");
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
};

TEST_F(BitmapWriterFiles, RefusalsAndFailuresKeepTheOldFileAndLeaveNoTemporary) {
    const fs::path target = dir / "old.bmp";
    ASSERT_EQ(Save256(pictureWithColours(3), target, true), Save256Success);
    const Bytes before = readWholeFile(target, 1 << 20);
    EXPECT_EQ(Save256(pictureWithColours(237), target, true), Save256TooManyColours);
    EXPECT_EQ(Save256(Surface(), target, true), Save256EmptyPicture);
    EXPECT_EQ(Save256(pictureWithColours(5), dir / "new.bmp", true), Save256Success);
    EXPECT_THROW(SaveMonoImage(target, Surface()), ImageFileError);
    EXPECT_EQ(readWholeFile(target, 1 << 20), before);
    EXPECT_THROW(Save256(pictureWithColours(3), dir / "missing" / "a.bmp", true), ImageFileError);
    EXPECT_THROW(SaveMonoImage(dir / "missing" / "a.bmp", pictureWithColours(3)), ImageFileError);
    EXPECT_THROW(SaveMonoImage(dir, pictureWithColours(3)), ImageFileError);
    // old.bmp and new.bmp only.
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 2);
    EXPECT_EQ(SaveMonoImage(target, pictureWithColours(3)), 1);
    EXPECT_EQ(readWholeFile(target, 1 << 20), encodeBmp1(pictureWithColours(3)));
}

TEST_F(BitmapWriterFiles, ImageMagickReadsTheWrittenFiles) {
    if (std::system("command -v convert >/dev/null 2>&1")) GTEST_SKIP() << "no ImageMagick";
    const Surface colours = makePicture(
        13, 7, [](int x, int y) { return makePixel((x * 40) & 0xFF, y * 30, (x + y) % 3 * 100); });
    const Surface bilevel = makePicture(37, 5, [](int x, int y) {
        return (x * y) % 3 == 0 ? makePixel(0, 0, 0) : makePixel(x, 255, 7);
    });
    Surface blackAndWhite = bilevel;
    std::ranges::replace_if(
        blackAndWhite.pixels(), [](Pixel p) { return p != 0; }, makePixel(255, 255, 255));
    ASSERT_EQ(Save256(colours, dir / "eight.bmp", true), Save256Success);
    ASSERT_EQ(SaveMonoImage(dir / "one.bmp", bilevel), 1);
    // The picture ImageMagick decodes from each file, written back as 24 bits.
    for (const auto& [name, expected] :
         {std::pair{"eight.bmp", colours}, {"one.bmp", blackAndWhite}}) {
        const std::string command = "convert '" + (dir / name).string() +
                                    "' -type TrueColor 'BMP3:" + (dir / "back.bmp").string() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        EXPECT_TRUE(readBmp(readWholeFile(dir / "back.bmp", 1 << 20)).sameColours(expected))
            << name;
    }
}

} // namespace
} // namespace lumiran
