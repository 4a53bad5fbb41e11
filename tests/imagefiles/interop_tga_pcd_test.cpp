#include "imagefiles/bitmap_writer.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "test_support.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

// Files written by ImageMagick, read back by the program's own TGA and PCD
// readers, with the readers' departures from the formats taken into account.

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using testing::makeVariedPicture;

class ImageMagickDir : public ::testing::Test {
  protected:
    fs::path dir;

    void SetUp() override {
        dir = lumiran::testing::testFolder("lumiran-interop-");
        fs::create_directories(dir);
        if (std::system("command -v convert >/dev/null 2>&1") != 0)
            GTEST_SKIP() << "ImageMagick convert is not on PATH";
    }
    void TearDown() override { fs::remove_all(dir); }

    // The picture converted by ImageMagick with the options.
    Bytes convert(const Surface& source, const std::string& options, const std::string& outName) {
        writeFileAtomically(dir / "source.bmp", encodeBmp24(source));
        const std::string command = "convert '" + (dir / "source.bmp").string() + "' " + options +
                                    " '" + (dir / outName).string() + "' >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) ADD_FAILURE() << "failed: " << command;
        return readWholeFile(dir / outName, 1 << 24);
    }
};

class InteropTga : public ImageMagickDir {
  protected:
    // The file read with its kind and origin code checked.
    Surface readTga(const Bytes& tga, int originCode, int imageType = 2) {
        EXPECT_EQ(tga.at(2), imageType);
        EXPECT_EQ(tga.at(17) & 48, originCode);
        return Class_TGAImageOp().TGAImageGet(tga, nullptr);
    }
};

// The number of the error a read fails with; -1 when it succeeds.
template <typename Read>
int failureNumber(Read read) {
    try {
        (void)read();
    } catch (const ImageLoadError& e) {
        return e.number();
    }
    return -1;
}

TEST_F(InteropTga, OriginCodesPlaceTheFileRows) {
    // Width 8 takes the one-call path, width 5 the point-by-point one; a
    // comment in the ID field is skipped. Right-to-left files of a width that
    // is a multiple of four stay blank.
    for (const auto& [options, code, width, idLength] :
         {std::tuple{"-orient TopLeft", 32, 8, 0},
          {"-set comment hello -orient TopLeft", 32, 5, 5},
          {"-orient BottomLeft", 0, 8, 0},
          {"-orient TopRight", 48, 8, 0}}) {
        SCOPED_TRACE(options);
        const Surface source = makeVariedPicture(width, 4);
        const Bytes tga = convert(source, std::string(options) + " -compress None", "origin.tga");
        ASSERT_EQ(tga.at(0), idLength);
        ASSERT_EQ(tga.size(), 18u + idLength + 3u * source.pixelCount());
        // The bottom-left code shows the first file row at the bottom; some
        // ImageMagick versions store the rows top-down under it.
        const std::size_t d = 18 + idLength;
        const bool topRowFirst = makePixel(tga[d + 2], tga[d + 1], tga[d]) == source.at(0, 0);
        const Surface mirrored = testing::makePicture(
            width, 4, [&](int x, int y) { return source.at(x, source.height() - 1 - y); });
        const Surface expected =
            code == 48 ? Surface(width, 4) : (code == 0 && topRowFirst ? mirrored : source);
        EXPECT_TRUE(readTga(tga, code).sameColours(expected));
    }
}

TEST_F(InteropTga, ThirtyTwoBitIsTakenThreeBytesAPixel) {
    const Surface source = makeVariedPicture(5, 2);
    const Bytes tga = convert(source, "-alpha on -orient TopLeft -compress None", "alpha.tga");
    ASSERT_EQ(tga.at(16), 32);
    // The stream is blue, green, red, alpha; the reader cuts it in threes.
    const auto streamByte = [&source](int j) -> int {
        return j % 4 == 3 ? 255 : (source.pixels()[j / 4] >> (8 * (j % 4))) & 0xFF;
    };
    const Surface shown = readTga(tga, 32);
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(shown.at(k % 5, k / 5),
                  makePixel(streamByte(3 * k + 2), streamByte(3 * k + 1), streamByte(3 * k)))
            << "pixel " << k;
    }
}

TEST_F(InteropTga, ColourMappedIndicesAreRead1539BytesLate) {
    // Exactly 256 colours, so the map has the usual 256 entries of 24 bits.
    const Surface source = testing::makePicture(64, 40, [](int x, int y) {
        const int v = (x + y * 64) % 256;
        return makePixel(v, 255 - v, (v * 7) & 0xFF);
    });
    const Bytes tga = convert(source, "-type Palette -orient TopLeft -compress None", "map.tga");
    ASSERT_EQ(tga.at(5) | (tga.at(6) << 8), 256);
    ASSERT_EQ(tga.at(7), 24);
    const std::size_t map = 18 + tga[0];
    const Pixel entry0 = makePixel(tga.at(map + 2), tga.at(map + 1), tga.at(map));
    const Surface shown = readTga(tga, 32, 1);
    ASSERT_TRUE(shown.sameSize(source));
    const int count = static_cast<int>(source.pixelCount());
    for (int k = 0; k < count; ++k) {
        const Pixel expected = k + 1539 < count ? source.pixels()[k + 1539] : entry0;
        ASSERT_EQ(shown.pixels()[k] & 0xFFFFFFu, expected) << "pixel " << k;
    }
}

TEST_F(InteropTga, GreyAndRunLengthKindsAreRefused) {
    for (const auto& [options, type] :
         {std::pair{"-type Grayscale -compress None", 3}, {"-compress RLE", 10}}) {
        const Bytes tga = convert(makeVariedPicture(4, 2), options, "refused.tga");
        ASSERT_EQ(tga.at(2), type) << options;
        EXPECT_EQ(failureNumber([&] { return Class_TGAImageOp().TGAImageGet(tga, nullptr); }), 0)
            << options;
    }
}

// --- PCD ---------------------------------------------------------------------

using InteropPcd = ImageMagickDir;

TEST_F(InteropPcd, MiddleResolutionFailsAndCutOrPaddedFilesLoadOneByteLate) {
    const Bytes pcd = convert(Surface(96, 64, makePixel(200, 40, 60)), "", "pack.pcd");
    // ImageMagick writes the three uncompressed resolutions only, which
    // selects the middle resolution with its position out of range.
    ASSERT_GE(pcd.size(), 294'912u);
    ASSERT_LT(pcd.size(), 1'179'648u);
    EXPECT_EQ(failureNumber([&] { return Class_PCDImageOp().PCDImageGet(pcd, nullptr); }), 63);
    // Cut behind the smallest image, or padded into the largest's band.
    for (const auto& [length, width] : {std::pair{0xB000, 192}, {1'179'648, 768}}) {
        Bytes file = pcd;
        file.resize(length, 0);
        const Surface shown = Class_PCDImageOp().PCDImageGet(file, nullptr);
        ASSERT_EQ(shown.width(), width);
        ASSERT_EQ(shown.height(), width * 2 / 3);
        // ImageMagick centres the picture on white.
        EXPECT_EQ(shown.at(0, 0) & 0xFFFFFFu, makePixel(255, 255, 255));
        const Pixel centre = shown.at(width / 2, width / 3);
        EXPECT_GT(redOf(centre), greenOf(centre) + 100);
        EXPECT_GT(redOf(centre), blueOf(centre) + 100);
        // The late start shifts a chroma byte into the last luma of each
        // second row: the right edge is tinted where the rest is white.
        EXPECT_NE(shown.at(width - 1, 1), shown.at(width - 3, 1));
    }
}

} // namespace
} // namespace lumiran
