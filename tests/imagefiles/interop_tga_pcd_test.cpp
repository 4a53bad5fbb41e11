#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "test_support.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

// Files written by ImageMagick, read back by the program's own TGA and PCD
// readers, with the readers' departures from the formats taken into account.

namespace lumiran {
namespace {

namespace fs = std::filesystem;

bool haveImageMagick() {
    return std::system("command -v convert >/dev/null 2>&1") == 0;
}

class ImageMagickDir : public ::testing::Test {
  protected:
    fs::path dir;

    void SetUp() override {
        if (!haveImageMagick()) GTEST_SKIP() << "ImageMagick convert is not on PATH";
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir = fs::temp_directory_path() /
              ("lumiran-interop-" + std::to_string(::getpid()) + "-" + info->name());
        fs::create_directories(dir);
    }
    void TearDown() override {
        if (!dir.empty()) fs::remove_all(dir);
    }

    // Writes the picture as a binary PPM and converts it with the options.
    std::vector<std::uint8_t> convert(const Surface& source, const std::string& options,
                                      const std::string& outName) {
        const fs::path in = dir / "source.ppm";
        {
            std::ofstream out(in, std::ios::binary);
            out << "P6\n" << source.width() << ' ' << source.height() << "\n255\n";
            for (const Pixel p : source.pixels()) {
                out.put(static_cast<char>(redOf(p)));
                out.put(static_cast<char>(greenOf(p)));
                out.put(static_cast<char>(blueOf(p)));
            }
        }
        const fs::path out = dir / outName;
        const std::string command =
            "convert '" + in.string() + "' " + options + " '" + out.string() + "' >/dev/null 2>&1";
        if (std::system(command.c_str()) != 0) {
            ADD_FAILURE() << "failed: " << command;
            return {};
        }
        std::ifstream file(out, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
};

class InteropTga : public ImageMagickDir {};

Surface solid(int width, int height, Pixel colour) {
    return testing::makePicture(width, height, [colour](int, int) { return colour; });
}

Surface mirroredVertically(const Surface& s) {
    return testing::makePicture(s.width(), s.height(),
                                [&s](int x, int y) { return s.at(x, s.height() - 1 - y); });
}

int originCode(const std::vector<std::uint8_t>& tga) {
    return tga.at(17) & 48;
}

// --- TGA ---------------------------------------------------------------------

TEST_F(InteropTga, TrueColourTopDownReadsBackExactly) {
    for (const int width : {8, 5}) { // one-call and point-by-point paths
        const Surface source = testing::makeVariedPicture(width, 4);
        const auto tga = convert(source, "-orient TopLeft -compress None", "top.tga");
        ASSERT_EQ(tga.size(), 18u + 3u * source.pixelCount());
        ASSERT_EQ(tga[2], 2);
        ASSERT_EQ(originCode(tga), 32);
        EXPECT_TRUE(Class_TGAImageOp().TGAImageGet(tga, nullptr).sameColours(source)) << width;
    }
}

TEST_F(InteropTga, BottomLeftCodeShowsFirstFileRowAtTheBottom) {
    const Surface source = testing::makeVariedPicture(8, 4);
    const auto tga = convert(source, "-compress None", "default.tga");
    ASSERT_EQ(originCode(tga), 0);
    // Some ImageMagick versions store the rows top-down under this code.
    const Pixel first = source.at(0, 0);
    const bool topRowFirst =
        tga.at(18) == blueOf(first) && tga.at(19) == greenOf(first) && tga.at(20) == redOf(first);
    const Surface fileRowsTopDown = topRowFirst ? source : mirroredVertically(source);
    const Surface shown = Class_TGAImageOp().TGAImageGet(tga, nullptr);
    EXPECT_TRUE(shown.sameColours(mirroredVertically(fileRowsTopDown)));
}

TEST_F(InteropTga, CommentInIdFieldIsSkipped) {
    const Surface source = testing::makeVariedPicture(6, 3);
    const auto tga = convert(source, "-set comment hello -orient TopLeft -compress None", "id.tga");
    ASSERT_EQ(tga.at(0), 5);
    EXPECT_TRUE(Class_TGAImageOp().TGAImageGet(tga, nullptr).sameColours(source));
}

TEST_F(InteropTga, ThirtyTwoBitIsTakenThreeBytesAPixel) {
    const Surface source = testing::makeVariedPicture(5, 2);
    const auto tga = convert(source, "-alpha on -orient TopLeft -compress None", "alpha.tga");
    ASSERT_EQ(tga.at(16), 32);
    ASSERT_EQ(originCode(tga), 32);
    // The stream is blue, green, red, alpha; the reader cuts it in threes.
    std::vector<std::uint8_t> stream;
    for (const Pixel p : source.pixels()) {
        stream.insert(stream.end(),
                      {static_cast<std::uint8_t>(blueOf(p)), static_cast<std::uint8_t>(greenOf(p)),
                       static_cast<std::uint8_t>(redOf(p)), 255});
    }
    const Surface shown = Class_TGAImageOp().TGAImageGet(tga, nullptr);
    for (int k = 0; k < 10; ++k) {
        const auto* bgr = &stream[static_cast<std::size_t>(k) * 3];
        EXPECT_EQ(shown.at(k % 5, k / 5), makePixel(bgr[2], bgr[1], bgr[0])) << "pixel " << k;
    }
}

TEST_F(InteropTga, ColourMappedIndicesAreRead1539BytesLate) {
    // Exactly 256 colours, so the map has the usual 256 entries.
    const int width = 64;
    const int height = 40;
    const auto colourOf = [width](int x, int y) {
        const int v = (x + y * width) % 256;
        return makePixel(v, 255 - v, (v * 7) & 0xFF);
    };
    const Surface source = testing::makePicture(width, height, colourOf);
    const auto tga = convert(source, "-type Palette -orient TopLeft -compress None", "map.tga");
    ASSERT_EQ(tga.at(1), 1);
    ASSERT_EQ(tga.at(2), 1);
    ASSERT_EQ(tga.at(5) | (tga.at(6) << 8), 256);
    ASSERT_EQ(tga.at(7), 24);
    ASSERT_EQ(originCode(tga), 32);
    const std::size_t map = 18 + tga[0];
    const Pixel entry0 = makePixel(tga.at(map + 2), tga.at(map + 1), tga.at(map));

    const Surface shown = Class_TGAImageOp().TGAImageGet(tga, nullptr);
    ASSERT_TRUE(shown.sameSize(source));
    for (int k = 0; k < width * height; ++k) {
        const int late = k + 1539;
        const Pixel expected =
            late < width * height ? source.at(late % width, late / width) : entry0;
        ASSERT_EQ(shown.at(k % width, k / width) & 0xFFFFFFu, expected) << "pixel " << k;
    }
}

TEST_F(InteropTga, RightToLeftAtMultipleOfFourWidthStaysBlank) {
    const Surface source = testing::makeVariedPicture(8, 2);
    const auto tga = convert(source, "-orient TopRight -compress None", "right.tga");
    ASSERT_EQ(originCode(tga), 48);
    const Surface shown = Class_TGAImageOp().TGAImageGet(tga, nullptr);
    EXPECT_TRUE(shown.sameSize(source));
    EXPECT_TRUE(std::ranges::all_of(shown.pixels(), [](Pixel p) { return p == 0; }));
}

TEST_F(InteropTga, GreyAndRunLengthKindsAreRefused) {
    const Surface source = testing::makeVariedPicture(4, 2);
    struct Kind {
        const char* options;
        int type;
    };
    const Kind kinds[] = {{"-type Grayscale -compress None", 3},
                          {"-type Palette -compress RLE", 9},
                          {"-compress RLE", 10},
                          {"-type Grayscale -compress RLE", 11}};
    for (const Kind& kind : kinds) {
        const auto tga = convert(source, kind.options, "refused.tga");
        ASSERT_EQ(tga.at(2), kind.type) << kind.options;
        try {
            (void)Class_TGAImageOp().TGAImageGet(tga, nullptr);
            ADD_FAILURE() << kind.options << " was accepted";
        } catch (const ImageLoadError& e) {
            EXPECT_EQ(e.number(), 0) << e.detail();
        }
    }
}

// --- PCD ---------------------------------------------------------------------

// The colour the reader makes of luma and chroma, as an independent check of
// where it takes them from in a real file.
Pixel photoYcc(int luma, int chroma1, int chroma2) {
    const double a = (chroma1 - 156) * 2.2179;
    const double b = (chroma2 - 137) * 1.8215;
    const double l = luma * 1.3584;
    const auto channel = [](double v) {
        return std::clamp(static_cast<int>(std::nearbyint(v)), 0, 255);
    };
    return makePixel(channel(l + b), channel(l - a * 0.194 - b * 0.509), channel(l + a));
}

// Each pixel against the layout of the stream from start on: per row pair a
// luma row for each row, then a chroma row of chroma1 and chroma2 halves.
void expectStreamLayout(const Surface& shown, const std::vector<std::uint8_t>& file,
                        std::size_t start) {
    const auto byteAt = [&file](std::size_t i) { return i < file.size() ? file[i] : 0; };
    const auto w = static_cast<std::size_t>(shown.width());
    for (int y = 0; y < shown.height(); ++y) {
        const std::size_t pair = start + static_cast<std::size_t>(y / 2) * 3 * w;
        const std::size_t luma = pair + static_cast<std::size_t>(y % 2) * w;
        const std::size_t chroma = pair + 2 * w;
        for (std::size_t x = 0; x < w; ++x) {
            const Pixel expected =
                photoYcc(byteAt(luma + x), byteAt(chroma + x / 2), byteAt(chroma + w / 2 + x / 2));
            ASSERT_EQ(shown.at(static_cast<int>(x), y) & 0xFFFFFFu, expected) << x << "," << y;
        }
    }
}

class InteropPcd : public ImageMagickDir {
  protected:
    const Surface source = solid(96, 64, makePixel(200, 40, 60));
};

TEST_F(InteropPcd, FileAsWrittenTakesTheMiddleResolutionAndFails) {
    const auto pcd = convert(source, "", "pack.pcd");
    // ImageMagick writes the three uncompressed resolutions only.
    ASSERT_GE(pcd.size(), 294'912u);
    ASSERT_LT(pcd.size(), 1'179'648u);
    try {
        (void)Class_PCDImageOp().PCDImageGet(pcd, nullptr);
        ADD_FAILURE() << "the middle resolution loaded";
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number(), 63) << e.detail();
    }
}

TEST_F(InteropPcd, CutAndPaddedFilesLoadTheirResolutionOneByteLate) {
    const auto pcd = convert(source, "", "pack.pcd");
    ASSERT_GE(pcd.size(), 0xB000u);

    struct Case {
        std::size_t length;
        int width;
        std::size_t trueStart;
    };
    // Cut behind the smallest image, or padded into the largest's band.
    for (const Case c : {Case{0xB000, 192, 0x2000}, Case{1'179'648, 768, 0x30000}}) {
        std::vector<std::uint8_t> file = pcd;
        file.resize(c.length, 0);
        const Surface shown = Class_PCDImageOp().PCDImageGet(file, nullptr);
        ASSERT_EQ(shown.width(), c.width);
        ASSERT_EQ(shown.height(), c.width * 2 / 3);
        expectStreamLayout(shown, file, c.trueStart + 1);
        // ImageMagick centres the picture on white.
        EXPECT_EQ(shown.at(0, 0) & 0xFFFFFFu, makePixel(255, 255, 255));
        const Pixel centre = shown.at(c.width / 2, c.width / 3);
        EXPECT_GT(redOf(centre), greenOf(centre) + 100);
        EXPECT_GT(redOf(centre), blueOf(centre) + 100);
        // The late start shifts a chroma byte into the last luma of each
        // second row: the right edge is tinted where the rest is white.
        EXPECT_NE(shown.at(c.width - 1, 1), shown.at(c.width - 3, 1));
    }
}

} // namespace
} // namespace lumiran
