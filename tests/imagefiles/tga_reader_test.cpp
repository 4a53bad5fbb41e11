#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

struct TgaFields {
    int id = 0, colorMapFormat = 0, imageFormat = 2;
    int width = 1, height = 1, bitsPerPixel = 24, attribute = 0;
};

using Bytes = std::vector<std::uint8_t>;

Bytes tgaHeader(const TgaFields& f) {
    Bytes file;
    for (const int b : {f.id, f.colorMapFormat, f.imageFormat, 0, 0, 0, 0, 24, 0, 0, 0, 0, f.width,
                        f.width >> 8, f.height, f.height >> 8, f.bitsPerPixel, f.attribute})
        file.push_back(static_cast<std::uint8_t>(b));
    return file;
}

// Appends a colour as a file stores it: blue, green, red.
void appendBgr(Bytes& file, Pixel p) {
    for (const int channel : {blueOf(p), greenOf(p), redOf(p)})
        file.push_back(static_cast<std::uint8_t>(channel));
}

// A distinct colour for each element of the file, in file order.
Pixel fileColour(int x, int fileRow) {
    return makePixel(10 + x, 100 + fileRow, 200 + x + fileRow);
}

Bytes trueColourFile(int width, int height, int attribute) {
    Bytes file = tgaHeader({.width = width, .height = height, .attribute = attribute});
    for (int r = 0; r < height; ++r) {
        for (int x = 0; x < width; ++x)
            appendBgr(file, fileColour(x, r));
    }
    return file;
}

Surface readTga(const Bytes& file, ProgressSink* progress = nullptr) {
    return Class_TGAImageOp().TGAImageGet(file, progress, LoadLimits{.maxBytes = 1 << 20});
}

// The error number of a failed load, -1 for a load that succeeds.
int refusal(const Bytes& file) {
    try {
        (void)readTga(file);
    } catch (const ImageLoadError& e) {
        return e.number();
    }
    return -1;
}

TEST(TgaReader, OriginCodesPlaceRowsAndColumns) {
    // Width 3 is drawn pixel by pixel, width 4 in one piece, where the
    // platform refuses the negative width of a right-to-left file: that
    // picture stays blank. The alpha bits (8) do not matter.
    for (const int width : {3, 4}) {
        for (const int origin : {0, 16, 32, 48}) {
            const bool mirrorX = (origin & 16) != 0;
            const bool bottomUp = (origin & 32) == 0;
            const Surface s = readTga(trueColourFile(width, 2, origin | 8));
            ASSERT_EQ(s.width(), width);
            for (int r = 0; r < 2; ++r) {
                for (int x = 0; x < width; ++x) {
                    const Pixel expected = mirrorX && width == 4 ? 0 : fileColour(x, r);
                    EXPECT_EQ(s.at(mirrorX ? width - 1 - x : x, bottomUp ? 1 - r : r), expected)
                        << "width " << width << " origin " << origin << " at " << x << "," << r;
                }
            }
        }
    }
}

TEST(TgaReader, RefusesAllButUncompressedTrueColourAndColourMappedAndBadSizes) {
    for (const int format : {0, 3, 9, 10, 11, 255})
        EXPECT_EQ(refusal(tgaHeader({.imageFormat = format})), 0) << format;
    // Colour-mapped needs a map; true colour ignores one.
    EXPECT_EQ(refusal(tgaHeader({.imageFormat = 1})), 0);
    EXPECT_EQ(refusal(tgaHeader({.colorMapFormat = 1})), -1);
    // Sizes are refused before anything is allocated.
    for (const auto& [width, height] : {std::pair{32767, 32767}, {65535, 1}, {1, 0}, {0, 1}})
        EXPECT_EQ(refusal(tgaHeader({.width = width, .height = height})), 0) << width;
}

TEST(TgaReader, IdFieldShiftsTheDataStartAndThirtyTwoBitsAreTakenThreeBytesAtATime) {
    Bytes file = tgaHeader({.id = 5, .width = 2, .attribute = 32});
    file.insert(file.end(), {9, 9, 9, 9, 9, 1, 2, 3, 4, 5, 6});
    Surface s = readTga(file);
    EXPECT_EQ(s.at(0, 0), makePixel(3, 2, 1));
    EXPECT_EQ(s.at(1, 0), makePixel(6, 5, 4));
    file = tgaHeader({.width = 2, .bitsPerPixel = 32, .attribute = 32 | 8});
    file.insert(file.end(), {1, 2, 3, 255, 4, 5, 6, 255});
    s = readTga(file);
    EXPECT_EQ(s.at(0, 0), makePixel(3, 2, 1));
    EXPECT_EQ(s.at(1, 0), makePixel(5, 4, 255));
}

TEST(TgaReader, ColourMapIsReadAs769EntriesWithIndicesBehindThemAndRowProgress) {
    // The usual 256-entry map: the reader takes 1539 more bytes as entries
    // and the indices behind them; those missing at the end count as 0.
    const auto mapColour = [](int i) { return makePixel(i, 255 - i, i / 2); };
    Bytes file = tgaHeader({.colorMapFormat = 1, .imageFormat = 1, .width = 2, .height = 2});
    for (int i = 0; i < 256; ++i)
        appendBgr(file, mapColour(i));
    file.insert(file.end(), 1539, 200);
    file.insert(file.end(), {7, 255, 1});
    const Surface s = readTga(file);
    EXPECT_EQ(s.at(0, 1), mapColour(7)); // bottom-up
    EXPECT_EQ(s.at(1, 1), mapColour(255));
    EXPECT_EQ(s.at(0, 0), mapColour(1));
    EXPECT_EQ(s.at(1, 0), mapColour(0));
    // Eight rows: ties of 12.5, 37.5, ... round to even. True colour reports none.
    struct : ProgressSink {
        std::vector<int> percents;
        void showPercent(int percent) override { percents.push_back(percent); }
    } sink;
    (void)readTga(tgaHeader({.colorMapFormat = 1, .imageFormat = 1, .height = 8}), &sink);
    EXPECT_EQ(sink.percents, (std::vector<int>{12, 25, 38, 50, 62, 75, 88, 100}));
    sink.percents.clear();
    (void)readTga(trueColourFile(4, 8, 0), &sink);
    EXPECT_TRUE(sink.percents.empty());
}

TEST(TgaReader, ShortFilesLeaveMissingPixelsBlack) {
    EXPECT_EQ(refusal({}), 0);
    Bytes file = trueColourFile(2, 2, 32);
    file.resize(18 + 4); // one pixel and a byte of the next
    const Surface s = readTga(file);
    EXPECT_EQ(s.at(0, 0), fileColour(0, 0));
    EXPECT_EQ(s.at(1, 0), makePixel(0, 0, blueOf(fileColour(1, 0))));
    EXPECT_EQ(s.at(1, 1), 0u);
    // A header cut before its height field reads a height of 0.
    file.resize(13);
    EXPECT_EQ(refusal(file), 0);
}

} // namespace
} // namespace lumiran
