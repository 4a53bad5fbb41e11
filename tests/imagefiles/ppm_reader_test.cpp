#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string_view>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

struct RecordingSink : ProgressSink {
    std::vector<int> percents;
    void showPercent(int percent) override { percents.push_back(percent); }
};

std::vector<std::uint8_t> file(std::string_view header, std::vector<std::uint8_t> data = {}) {
    data.insert(data.begin(), header.begin(), header.end());
    return data;
}

Surface load(const std::vector<std::uint8_t>& bytes, ProgressSink* sink = nullptr,
             const LoadLimits& limits = {}) {
    return Class_PPMImageOp{}.PPMImageGet(bytes, sink, limits);
}

// The error number of a failed load, -1 for a load that succeeds.
int refusal(const std::vector<std::uint8_t>& bytes, const LoadLimits& limits = {}) {
    try {
        (void)load(bytes, nullptr, limits);
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number() == 0, e.description().empty()) << e.detail(); // no message
        return e.number();
    }
    return -1;
}

// Eight pixels with distinct channels, none above 200.
const std::vector<std::uint8_t> eightPixels = {10,  20,  30,  40,  50,  60,  70,  80,
                                               90,  100, 110, 120, 130, 140, 150, 160,
                                               170, 180, 190, 200, 11,  21,  31,  41};

TEST(PpmReader, BinaryPixmapTakesEachBlueFromTheLeftNeighbour) {
    RecordingSink sink;
    const Surface s = load(file("P6\n4 2\n255\n", eightPixels), &sink);
    ASSERT_EQ(s.height(), 2);
    // The first blue is the line end behind the maximum value; a row's first
    // blue comes from the end of the row above.
    EXPECT_EQ(s.at(0, 0), makePixel(10, 20, '\n'));
    EXPECT_EQ(s.at(1, 0), makePixel(40, 50, 30));
    EXPECT_EQ(s.at(0, 1), makePixel(130, 140, 120));
    EXPECT_EQ(sink.percents, (std::vector<int>{50, 100}));
    // Cut short: the missing bytes read as zeros.
    EXPECT_EQ(load(file("P6\n4 1\n255\n", {1, 2, 3})).at(1, 0), makePixel(0, 0, 3));
    // Widths drawn pixel by pixel show red and blue exchanged.
    EXPECT_EQ(load(file("P6\n3 1\n255\n", eightPixels)).at(1, 0), makePixel(30, 50, 40));
    EXPECT_EQ(load(file("P3\n1 1\n255\n001 002 003\n")).at(0, 0), makePixel(3, 2, 1));
}

TEST(PpmReader, HeaderNumbersEndAtALineEndOrBlankBehindOneOptionalComment) {
    // 640 480 255 take four bytes each; the data is read from position 15.
    const Surface s = load(file("P6\n640 480\n255\n", {1, 2, 3}));
    EXPECT_EQ(s.width(), 640);
    EXPECT_EQ(s.height(), 480);
    EXPECT_EQ(s.at(0, 0), makePixel(1, 2, '\n'));
    EXPECT_EQ(load(file("P6 4 1 255 ", eightPixels)).at(0, 0), makePixel(10, 20, ' '));
    EXPECT_EQ(load(file("P6\n9999 0001\n255\n")).width(), 9999);
    const Surface plain = load(file("P6\n4 1\n255\n", eightPixels));
    EXPECT_EQ(load(file("P6\n#a\n4 1\n255\n", eightPixels)), plain);
    EXPECT_EQ(load(file("P6\n# made by hand\n4 1\n255\n", eightPixels)), plain);
}

TEST(PpmReader, RefusedHeaders) {
    // The reader's own refusals: kinds other than 1, 3 and 6, more than four
    // digits, a leading blank, a first line longer than two characters, a
    // comment without its line end, empty pictures.
    for (const char* header :
         {"", "Q6\n2 2\n255\n", "P2\n2 2\n255\n", "P4\n2 2\n", "P5\n2 2\n255\n",
          "P6\n10000 1\n255\n", "P6\n4 10000\n255\n", "P6\n4 1\n00255\n", "P6\n 4 1\n255\n",
          "P6\r\n4 1\n255\n", "P6\n# no end", "P6\n0 4\n255\n", "P1\n4 0\n"})
        EXPECT_EQ(refusal(file(header)), 0) << header;
    // A character that is no digit, also of a second or late comment line, is
    // the runtime's type mismatch.
    for (const char* header :
         {"P6\n4x 1\n255\n", "P6\n#a\n#b\n4 1\n255\n", "P6\n4 1\n# late\n255\n"})
        EXPECT_EQ(refusal(file(header)), 13) << header;
    EXPECT_EQ(refusal(file("P6\n9999 9999\n255\n"), LoadLimits{1 << 20}), 0);
    // An unknown kind decodes nothing and shows a blank picture.
    EXPECT_EQ(load(file("P7\n2 2\n", eightPixels)).at(1, 1), makePixel(0, 0, 0));
}

TEST(PpmReader, TextPixmapValuesAreThreeColumnsWithOneSeparator) {
    // Blanks read as zeros (" 12" is 12, "12 " is 120), digits add up in a byte.
    const Surface s = load(file("P3\n4 1\n255\n255 000 128  12 12  007 300 256 010 099 100 200\n"));
    EXPECT_EQ(s.at(0, 0), makePixel(255, 0, 128));
    EXPECT_EQ(s.at(1, 0), makePixel(12, 120, 7));
    EXPECT_EQ(s.at(2, 0), makePixel(44, 0, 10));
    // Free layout shifts the columns; short data runs into non-digits.
    EXPECT_EQ(refusal(file("P3\n4 1\n255\n1 2 3 4 5 6 7 8 9 10 11 12\n")), 13);
    EXPECT_EQ(refusal(file("P3\n4 1\n255\n255 000 128\n")), 13);
}

TEST(PpmReader, SmallMaximumValuesScaleAndLargerValuesOverflow) {
    EXPECT_EQ(load(file("P3\n4 1\n15\n015 001 000 007 008 009 000 000 000 015 015 015\n")).at(0, 0),
              makePixel(255, 17, 0));
    EXPECT_EQ(load(file("P6\n4 1\n15\n", {15, 0, 8, 1, 2, 3, 4, 5, 6, 7, 8, 9})).at(0, 0),
              makePixel(255, 0, 170));
    EXPECT_EQ(refusal(file("P3\n4 1\n15\n016 000 000\n")), 6);
    EXPECT_EQ(refusal(file("P6\n4 1\n15\n", {16, 0, 0})), 6);
    EXPECT_EQ(refusal(file("P6\n4 1\n0\n", eightPixels)), 6);
}

TEST(PpmReader, TextBitmapDigitsStandOneCharacterApart) {
    const Surface s = load(file("P1\n4 2\n1 0 1 0\n0   1 1\n"));
    EXPECT_EQ(s.at(0, 0), makePixel(0, 0, 0));
    EXPECT_EQ(s.at(1, 0), makePixel(255, 255, 255));
    EXPECT_EQ(s.at(1, 1), makePixel(255, 255, 255)); // a blank in a digit's place reads as 0
    EXPECT_EQ(s.at(3, 1), makePixel(0, 0, 0));
    // Digits side by side: every second one is thrown away and the data runs out.
    EXPECT_EQ(refusal(file("P1\n3 1\n101\n")), 13);
}

} // namespace
} // namespace lumiran
