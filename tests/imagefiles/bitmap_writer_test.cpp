#include "imagefiles/bitmap_writer.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "test_support.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makePicture;
using testing::makeVariedPicture;

// A picture of exactly `count` different colours, one a pixel in reading
// order, the rest of the picture repeating the first colour.
Surface pictureWithColours(int count) {
    const int width = 16;
    const int height = (count + width - 1) / width + 1;
    return makePicture(width, height, [count](int x, int y) {
        const int n = y * width + x;
        return n < count ? makePixel(n & 0xFF, n >> 8, 7) : makePixel(0, 0, 7);
    });
}

struct Bmp8 {
    std::vector<std::uint8_t> bytes;
    ByteReader in{bytes};
    explicit Bmp8(std::vector<std::uint8_t> b) : bytes(std::move(b)), in(bytes) {}
    Pixel paletteEntry(std::size_t i) { return in.u32(54 + 4 * i); }
    // Index of the picture's pixel (x, y), with rows stored bottom-up.
    std::uint8_t index(int x, int y) {
        const auto height = static_cast<std::size_t>(in.i32(22));
        const std::size_t stride = (in.u32(2) - 1078) / height;
        return in.u8(1078 + (height - 1 - y) * stride + x);
    }
};

TEST(BitmapWriter8, HeaderFieldsKeepTheSizeOfTheTwentyFourBitRows) {
    const Surface picture = makeVariedPicture(5, 3);
    const Bmp8Encoding encoded = encodeBmp8(picture, false);
    ASSERT_EQ(encoded.result, Save256Success);
    ByteReader in(encoded.bytes);
    EXPECT_EQ(encoded.bytes.size(), 1078u + 3 * 8);
    EXPECT_EQ(in.u16(0), 19778);
    EXPECT_EQ(in.u32(2), 1078u + 3 * 8);
    EXPECT_EQ(in.u32(6), 0u);
    EXPECT_EQ(in.u32(10), 1078u);
    EXPECT_EQ(in.u32(14), 40u);
    EXPECT_EQ(in.i32(18), 5);
    EXPECT_EQ(in.i32(22), 3);
    EXPECT_EQ(in.u16(26), 1);
    EXPECT_EQ(in.u16(28), 8);
    EXPECT_EQ(in.u32(30), 0u);
    EXPECT_EQ(in.u32(34), 3u * 16); // 5 pixels of 3 bytes padded to 16
    for (std::size_t offset = 38; offset < 54; offset += 4)
        EXPECT_EQ(in.u32(offset), 0u);
    EXPECT_FALSE(in.wasShort());
}

TEST(BitmapWriter8, StridesFollowTheWidth) {
    // width: 8-bit stride, 24-bit stride
    const std::pair<int, std::pair<std::uint32_t, std::uint32_t>> cases[] = {
        {1, {4, 4}}, {3, {4, 12}}, {4, {4, 12}}, {5, {8, 16}}, {8, {8, 24}}, {9, {12, 28}}};
    for (const auto& [width, strides] : cases) {
        const Bmp8Encoding encoded = encodeBmp8(Surface(width, 2), true);
        ASSERT_EQ(encoded.result, Save256Success);
        ByteReader in(encoded.bytes);
        EXPECT_EQ(encoded.bytes.size(), 1078 + 2 * strides.first) << width;
        EXPECT_EQ(in.u32(2), 1078 + 2 * strides.first) << width;
        EXPECT_EQ(in.u32(34), 2 * strides.second) << width;
    }
}

TEST(BitmapWriter8, ColoursTakeEntriesInTheOrderTheyAreMetFromTheTopLeft) {
    const Pixel red = makePixel(200, 0, 0);
    const Pixel green = makePixel(0, 200, 0);
    const Pixel black = makePixel(0, 0, 0);
    // Top row: red green; bottom row: black red.
    Surface picture(2, 2);
    picture.at(0, 0) = red;
    picture.at(1, 0) = green;
    picture.at(0, 1) = black;
    picture.at(1, 1) = makePixel(200, 0, 0, 0xFF); // the spare byte does not count

    Bmp8 reserved(encodeBmp8(picture, true).bytes);
    EXPECT_EQ(reserved.index(0, 0), 10);
    EXPECT_EQ(reserved.index(1, 0), 11);
    EXPECT_EQ(reserved.index(0, 1), 12); // black gets its own entry, not a reserved one
    EXPECT_EQ(reserved.index(1, 1), 10);
    for (std::size_t i = 0; i < 10; ++i)
        EXPECT_EQ(reserved.paletteEntry(i), 0u) << i;
    EXPECT_EQ(reserved.paletteEntry(10), red);
    EXPECT_EQ(reserved.paletteEntry(11), green);
    EXPECT_EQ(reserved.paletteEntry(12), black);
    for (std::size_t i = 13; i < 256; ++i)
        EXPECT_EQ(reserved.paletteEntry(i), 0u) << i;
    // Row padding stays zero.
    EXPECT_EQ(reserved.index(2, 0), 0);
    EXPECT_EQ(reserved.index(3, 1), 0);

    Bmp8 full(encodeBmp8(picture, false).bytes);
    EXPECT_EQ(full.index(0, 0), 0);
    EXPECT_EQ(full.index(1, 0), 1);
    EXPECT_EQ(full.index(0, 1), 2);
    EXPECT_EQ(full.paletteEntry(0), red);
}

TEST(BitmapWriter8, ColourCountLimits) {
    const auto result = [](int colours, bool reserve) {
        return encodeBmp8(pictureWithColours(colours), reserve).result;
    };
    EXPECT_EQ(result(236, true), Save256Success);
    EXPECT_EQ(result(237, true), Save256TooManyColours);
    EXPECT_EQ(result(256, false), Save256Success);
    EXPECT_EQ(result(257, false), Save256TooManyColours);
    EXPECT_TRUE(encodeBmp8(pictureWithColours(237), true).bytes.empty());

    Bmp8 last(encodeBmp8(pictureWithColours(236), true).bytes);
    EXPECT_EQ(last.index(235 % 16, 235 / 16), 245);
    EXPECT_EQ(last.paletteEntry(245), makePixel(235, 0, 7));
    EXPECT_EQ(last.paletteEntry(246), 0u);
    EXPECT_EQ(encodeBmp8(Surface(), true).result, Save256EmptyPicture);
}

TEST(BitmapWriter1, HeaderPaletteAndBitsOfAWidthOfTen) {
    // Black where x equals y or x is 9; near-black and coloured pixels are white.
    const Surface picture = makePicture(10, 2, [](int x, int y) {
        if (x == y || x == 9) return makePixel(0, 0, 0, 0xFF);
        return x == 5 ? makePixel(0, 0, 1) : makePixel(255, 0, 0);
    });
    const auto bytes = encodeBmp1(picture);
    ByteReader in(bytes);
    ASSERT_EQ(bytes.size(), 62u + 2 * 4);
    EXPECT_EQ(in.u16(0), 19778);
    EXPECT_EQ(in.u32(2), 62u + 2 * 4);
    EXPECT_EQ(in.u32(10), 62u);
    EXPECT_EQ(in.u32(14), 40u);
    EXPECT_EQ(in.i32(18), 10);
    EXPECT_EQ(in.i32(22), 2);
    EXPECT_EQ(in.u16(26), 1);
    EXPECT_EQ(in.u16(28), 1);
    EXPECT_EQ(in.u32(34), 2u * 4);
    EXPECT_EQ(in.u32(54), 0x00FFFFFFu); // white first
    EXPECT_EQ(in.u32(58), 0u);
    // First stored row is the bottom one: x 1 and 9 black.
    EXPECT_EQ(bytes[62], 0b0100'0000);
    EXPECT_EQ(bytes[63], 0b0100'0000);
    EXPECT_EQ(bytes[64], 0);
    EXPECT_EQ(bytes[65], 0);
    // Top row: x 0 and 9.
    EXPECT_EQ(bytes[66], 0b1000'0000);
    EXPECT_EQ(bytes[67], 0b0100'0000);
}

TEST(BitmapWriter1, StridesAndAPictureWithoutBlack) {
    for (const auto& [width, stride] : {std::pair{1, 4u}, {8, 4u}, {32, 4u}, {33, 8u}, {65, 12u}}) {
        const auto bytes = encodeBmp1(Surface(width, 3, makePixel(0, 0, 0)));
        EXPECT_EQ(bytes.size(), 62 + 3 * stride) << width;
        // Bits beyond the width stay 0 although the picture is all black.
        const std::size_t lastByte = 62 + (width - 1) / 8;
        EXPECT_EQ(bytes[lastByte], static_cast<std::uint8_t>(0xFF00u >> (((width - 1) % 8) + 1)))
            << width;
        for (std::size_t i = lastByte + 1; i < 62 + stride; ++i)
            EXPECT_EQ(bytes[i], 0) << width;
    }
    const auto white = encodeBmp1(
        makePicture(7, 5, [](int x, int y) { return makePixel(x * 30 + 1, y * 40, 0); }));
    for (std::size_t i = 62; i < white.size(); ++i)
        EXPECT_EQ(white[i], 0) << i;
    EXPECT_THROW((void)encodeBmp1(Surface()), ImageFileError);
}

struct BitmapWriterFiles : ::testing::Test {
    fs::path dir;
    void SetUp() override {
        dir = fs::temp_directory_path() /
              (std::string("lumiran-writer-") +
               ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    std::size_t entries() const {
        std::size_t n = 0;
        for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir))
            ++n;
        return n;
    }
};

TEST_F(BitmapWriterFiles, RefusalsAndFailuresKeepTheOldFileAndLeaveNoTemporary) {
    const fs::path target = dir / "old.bmp";
    ASSERT_EQ(Save256(pictureWithColours(3), target, true), Save256Success);
    const auto before = readWholeFile(target, 1 << 20);
    EXPECT_EQ(Save256(pictureWithColours(237), target, true), Save256TooManyColours);
    EXPECT_EQ(Save256(Surface(), target, true), Save256EmptyPicture);
    EXPECT_EQ(Save256(pictureWithColours(5), dir / "new.bmp", true), Save256Success);
    EXPECT_THROW(SaveMonoImage(target, Surface()), ImageFileError);
    EXPECT_EQ(readWholeFile(target, 1 << 20), before);
    EXPECT_THROW(Save256(pictureWithColours(3), dir / "missing" / "a.bmp", true), ImageFileError);
    EXPECT_THROW(SaveMonoImage(dir / "missing" / "a.bmp", pictureWithColours(3)), ImageFileError);
    EXPECT_THROW(SaveMonoImage(dir, pictureWithColours(3)), ImageFileError);
    EXPECT_EQ(entries(), 2u); // old.bmp and new.bmp
    EXPECT_EQ(SaveMonoImage(target, pictureWithColours(3)), 1);
    EXPECT_EQ(readWholeFile(target, 1 << 20), encodeBmp1(pictureWithColours(3)));
}

// The picture ImageMagick decodes from a file, or nothing when it is absent.
std::optional<Surface> decodeWithImageMagick(const fs::path& file, std::string& format) {
    if (std::system("command -v identify >/dev/null 2>&1 && command -v convert >/dev/null 2>&1") !=
        0) {
        return std::nullopt;
    }
    const auto capture = [](const std::string& command) {
        std::string output;
        std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
        if (!pipe) return output;
        char buffer[4096];
        for (std::size_t n; (n = std::fread(buffer, 1, sizeof buffer, pipe.get())) > 0;) {
            output.append(buffer, n);
        }
        return output;
    };
    const std::string quoted = "'" + file.string() + "'";
    format = capture("identify -format '%m %w %h %z %r' " + quoted + " 2>&1");
    const std::string ppm = capture("convert " + quoted + " -depth 8 ppm:- 2>/dev/null");
    // A binary PPM with a header of "P6\nW H\n255\n".
    int width = 0, height = 0, maxValue = 0, headerLength = 0;
    if (std::sscanf(ppm.c_str(), "P6 %d %d %d%n", &width, &height, &maxValue, &headerLength) != 3 ||
        maxValue != 255 || width <= 0 || height <= 0) {
        return Surface();
    }
    const std::size_t start = static_cast<std::size_t>(headerLength) + 1;
    if (ppm.size() < start + static_cast<std::size_t>(width) * height * 3) return Surface();
    Surface picture(width, height);
    for (std::size_t i = 0; i < picture.pixelCount(); ++i) {
        const auto* rgb = reinterpret_cast<const unsigned char*>(ppm.data() + start + 3 * i);
        picture.pixels()[i] = makePixel(rgb[0], rgb[1], rgb[2]);
    }
    return picture;
}

TEST_F(BitmapWriterFiles, ImageMagickReadsTheWrittenFiles) {
    const Surface colours = makePicture(
        13, 7, [](int x, int y) { return makePixel((x * 40) & 0xFF, y * 30, (x + y) % 3 * 100); });
    const fs::path eight = dir / "eight.bmp";
    ASSERT_EQ(Save256(colours, eight, true), Save256Success);
    std::string format;
    const auto decoded8 = decodeWithImageMagick(eight, format);
    if (!decoded8) GTEST_SKIP() << "ImageMagick is not installed";
    EXPECT_NE(format.find("BMP3 13 7 8 PseudoClass"), std::string::npos) << format;
    EXPECT_TRUE(decoded8->sameColours(colours));

    const Surface bilevel = makePicture(37, 5, [](int x, int y) {
        return (x * y) % 3 == 0 ? makePixel(0, 0, 0) : makePixel(x, 255, 7);
    });
    const fs::path one = dir / "one.bmp";
    ASSERT_EQ(SaveMonoImage(one, bilevel), 1);
    const auto decoded1 = decodeWithImageMagick(one, format);
    ASSERT_TRUE(decoded1);
    EXPECT_NE(format.find("BMP3 37 5 1"), std::string::npos) << format;
    const Surface expected = makePicture(37, 5, [&](int x, int y) {
        return bilevel.at(x, y) == makePixel(0, 0, 0) ? makePixel(0, 0, 0)
                                                      : makePixel(255, 255, 255);
    });
    EXPECT_TRUE(decoded1->sameColours(expected));
}

} // namespace
} // namespace lumiran
