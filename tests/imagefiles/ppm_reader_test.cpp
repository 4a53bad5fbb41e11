#include "imagefiles/byte_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string_view>
#include <vector>

namespace lumiran {
namespace {

struct RecordingSink : ProgressSink {
    std::vector<int> percents;
    void showPercent(int percent) override { percents.push_back(percent); }
};

std::vector<std::uint8_t> file(std::string_view header,
                               const std::vector<std::uint8_t>& data = {}) {
    ByteWriter w;
    for (const char c : header)
        w.u8(static_cast<std::uint8_t>(c));
    for (const std::uint8_t b : data)
        w.u8(b);
    return std::move(w.bytes());
}

Surface load(const std::vector<std::uint8_t>& bytes, ProgressSink* sink = nullptr,
             const LoadLimits& limits = {}) {
    return Class_PPMImageOp{}.PPMImageGet(bytes, sink, limits);
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

// Eight pixels with distinct channels, none above 200.
const std::vector<std::uint8_t> eightPixels = {
    10,  20,  30,  40,  50,  60,  70,  80,  90, 100, 110, 120,
    130, 140, 150, 160, 170, 180, 190, 200, 11, 21,  31,  41,
};

TEST(PpmReader, BinaryPixmapTakesEachBlueFromTheLeftNeighbour) {
    RecordingSink sink;
    const Surface s = load(file("P6\n4 2\n255\n", eightPixels), &sink);
    ASSERT_EQ(s.width(), 4);
    ASSERT_EQ(s.height(), 2);
    // The first pixel's blue is the line end behind the maximum value.
    EXPECT_EQ(s.at(0, 0), makePixel(10, 20, '\n'));
    EXPECT_EQ(s.at(1, 0), makePixel(40, 50, 30));
    // The blue of a row's first pixel comes from the end of the row above.
    EXPECT_EQ(s.at(0, 1), makePixel(130, 140, 120));
    EXPECT_EQ(s.at(3, 1), makePixel(21, 31, 11));
    EXPECT_EQ(sink.percents, (std::vector<int>{50, 100}));
}

TEST(PpmReader, PixelByPixelWidthsShowRedAndBlueExchanged) {
    Surface s = load(file("P6\n3 1\n255\n", eightPixels));
    EXPECT_EQ(s.at(1, 0), makePixel(30, 50, 40));
    EXPECT_EQ(s.at(2, 0), makePixel(60, 80, 70));
    s = load(file("P3\n1 2\n255\n001 002 003\n004 005 006\n"));
    EXPECT_EQ(s.at(0, 0), makePixel(3, 2, 1));
    EXPECT_EQ(s.at(0, 1), makePixel(6, 5, 4));
}

TEST(PpmReader, HeaderNumbersAndTheirTerminators) {
    // 640 480 255 take four bytes each; the data is read from position 15.
    std::vector<std::uint8_t> bytes = file("P6\n640 480\n255\n", {1, 2, 3});
    Surface s = load(bytes);
    EXPECT_EQ(s.width(), 640);
    EXPECT_EQ(s.height(), 480);
    EXPECT_EQ(s.at(0, 0), makePixel(1, 2, '\n'));
    // Blanks end numbers too, also the one before the data.
    s = load(file("P6 4 1 255 ", eightPixels));
    EXPECT_EQ(s.at(0, 0), makePixel(10, 20, ' '));
    // Four digits, leading zeros included, are the most a number may have.
    EXPECT_EQ(load(file("P6\n9999 0001\n255\n")).width(), 9999);
    EXPECT_EQ(failure(file("P6\n10000 1\n255\n")).number(), 0);
    EXPECT_EQ(failure(file("P6\n4 10000\n255\n")).number(), 0);
    EXPECT_EQ(failure(file("P6\n4 1\n00255\n")).number(), 0);
    EXPECT_EQ(failure(file("P6\n 4 1\n255\n")).number(), 0);
    // The first line is two characters and a line end, nothing else.
    EXPECT_EQ(failure(file("P6\r\n4 1\n255\n")).number(), 0);
    // A character that is not a digit is the runtime's type mismatch.
    EXPECT_EQ(failure(file("P6\n4x 1\n255\n")).number(), 13);
}

TEST(PpmReader, OnlyOneCommentLineRightBehindTheFirstLineIsRecognised) {
    const Surface plain = load(file("P6\n4 1\n255\n", eightPixels));
    EXPECT_EQ(load(file("P6\n#a\n4 1\n255\n", eightPixels)), plain);
    EXPECT_EQ(load(file("P6\n# made by hand\n4 1\n255\n", eightPixels)), plain);
    EXPECT_EQ(failure(file("P6\n#a\n#b\n4 1\n255\n", eightPixels)).number(), 13);
    EXPECT_EQ(failure(file("P6\n4 1\n# late\n255\n", eightPixels)).number(), 13);
    EXPECT_EQ(failure(file("P6\n# no end")).number(), 0);
}

TEST(PpmReader, TextPixmapValuesAreThreeColumnsWithOneSeparator) {
    // Blanks read as zeros, and the digits add up in a byte.
    const Surface s = load(file("P3\n4 1\n255\n255 000 128  12 12  007 300 256 010 099 100 200\n"));
    EXPECT_EQ(s.at(0, 0), makePixel(255, 0, 128));
    EXPECT_EQ(s.at(1, 0), makePixel(12, 120, 7));
    EXPECT_EQ(s.at(2, 0), makePixel(44, 0, 10));
    EXPECT_EQ(s.at(3, 0), makePixel(99, 100, 200));
    // Free layout shifts the columns and runs out of data.
    EXPECT_EQ(failure(file("P3\n4 1\n255\n1 2 3 4 5 6 7 8 9 10 11 12\n")).number(), 13);
    // The data ends early: the zeros behind it are no digits.
    EXPECT_EQ(failure(file("P3\n4 1\n255\n255 000 128\n")).number(), 13);
}

TEST(PpmReader, SmallMaximumValuesScaleAndLargerValuesOverflow) {
    Surface s = load(file("P3\n4 1\n15\n015 001 000 007 008 009 000 000 000 015 015 015\n"));
    EXPECT_EQ(s.at(0, 0), makePixel(255, 17, 0));
    EXPECT_EQ(s.at(1, 0), makePixel(119, 136, 153));
    s = load(file("P6\n4 1\n15\n", {15, 0, 8, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(s.at(0, 0), makePixel(255, 0, 170));
    EXPECT_EQ(s.at(1, 0), makePixel(17, 34, 136));
    EXPECT_EQ(failure(file("P3\n4 1\n15\n016 000 000\n")).number(), 6);
    EXPECT_EQ(failure(file("P6\n4 1\n15\n", {16, 0, 0})).number(), 6);
    EXPECT_EQ(failure(file("P6\n4 1\n0\n", eightPixels)).number(), 6);
}

TEST(PpmReader, TextBitmapDigitsStandOneCharacterApart) {
    const Surface s = load(file("P1\n4 2\n1 0 1 0\n0   1 1\n"));
    const Pixel black = makePixel(0, 0, 0);
    const Pixel white = makePixel(255, 255, 255);
    EXPECT_EQ(s.at(0, 0), black);
    EXPECT_EQ(s.at(1, 0), white);
    EXPECT_EQ(s.at(2, 0), black);
    // The blank in a digit's place reads as 0.
    EXPECT_EQ(s.at(1, 1), white);
    EXPECT_EQ(s.at(3, 1), black);
    // Digits side by side: every second one is thrown away, and the data
    // runs out before the picture is full.
    EXPECT_EQ(failure(file("P1\n3 1\n101\n")).number(), 13);
}

TEST(PpmReader, KindsOtherThanOneThreeAndSix) {
    for (const char* refused : {"P2\n2 2\n255\n", "P4\n2 2\n", "P5\n2 2\n255\n"}) {
        const ImageLoadError e = failure(file(refused, eightPixels));
        EXPECT_EQ(e.number(), 0);
        EXPECT_TRUE(e.description().empty());
    }
    // An unknown kind decodes nothing and shows a blank picture.
    const Surface blank = load(file("P7\n2 2\n", eightPixels));
    EXPECT_EQ(blank.width(), 2);
    EXPECT_EQ(blank.at(1, 1), makePixel(0, 0, 0));
    EXPECT_EQ(failure(file("Q6\n2 2\n255\n", eightPixels)).number(), 0);
    EXPECT_EQ(failure({}).number(), 0);
}

TEST(PpmReader, ABinaryPixmapCutShortReadsZeros) {
    const Surface s = load(file("P6\n4 1\n255\n", {1, 2, 3}));
    EXPECT_EQ(s.at(1, 0), makePixel(0, 0, 3));
    EXPECT_EQ(s.at(3, 0), makePixel(0, 0, 0));
}

TEST(PpmReader, RefusesHugeOrEmptyDimensionsBeforeAllocating) {
    const LoadLimits small{1 << 20};
    EXPECT_EQ(failure(file("P6\n9999 9999\n255\n"), small).number(), 0);
    EXPECT_EQ(failure(file("P6\n0 4\n255\n")).number(), 0);
    EXPECT_EQ(failure(file("P1\n4 0\n")).number(), 0);
}

} // namespace
} // namespace lumiran
