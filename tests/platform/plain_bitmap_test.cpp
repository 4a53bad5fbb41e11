// Plain bitmaps are read without the platform's decoder; the pixels must be
// the ones that decoder gives, on every kind of bitmap, and every other
// kind must still reach it.
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/load_dispatch.h"
#include "imagefiles/plain_bitmap.h"
#include "platform/qt_picture_decoder.h"
#include "test_support.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

void put(Bytes& out, int size, std::initializer_list<std::int64_t> values) {
    for (const std::int64_t v : values) {
        for (int i = 0; i < size; ++i)
            out.push_back(static_cast<std::uint8_t>(v >> (8 * i)));
    }
}

// A bitmap with an info header of headerSize bytes (40, 108 or 124), gap
// bytes before the pixel rows, and rows made from the picture; 32-bit rows
// carry spare as their fourth byte.
Bytes bitmap(const Surface& picture, int bits, bool topDown, int headerSize = 40, int gap = 0,
             int coloursUsed = 0, std::uint8_t spare = 0) {
    const int width = picture.width(), height = picture.height();
    const int stride = (width * bits + 31) / 32 * 4;
    const int offset = 14 + headerSize + gap;
    Bytes out;
    put(out, 2, {0x4D42});
    put(out, 4,
        {offset + stride * height, 0, offset, headerSize, width, topDown ? -height : height});
    put(out, 2, {1, bits});
    put(out, 4, {0, stride * height, 2835, 2835, coloursUsed, 0});
    out.resize(static_cast<std::size_t>(offset), 0);
    for (int row = 0; row < height; ++row) {
        const int y = topDown ? row : height - 1 - row;
        for (int x = 0; x < width; ++x) {
            const Pixel p = picture.at(x, y);
            put(out, 1, {blueOf(p), greenOf(p), redOf(p)});
            if (bits == 32) out.push_back(spare);
        }
        out.resize(out.size() + static_cast<std::size_t>(stride - width * bits / 8), 0);
    }
    return out;
}

struct PlainBitmapTest : ::testing::Test {
    // ctest runs the tests of this fixture at once.
    fs::path dir = testing::testFolder("lumiran-plain-bitmap-");
    QtPictureDecoder decoder;

    void SetUp() override {
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    // The file read straight (if it is plain) and through the load path
    // must give what the platform's decoder gives, or be refused as it is.
    void expectAsThePlatformGivesIt(const fs::path& path, bool plain) {
        SCOPED_TRACE(path.filename().string());
        const std::optional<Surface> straight = readPlainBitmap(path, {});
        EXPECT_EQ(straight.has_value(), plain);
        std::optional<Surface> platform;
        try {
            platform = decoder.LoadPicture(path, "bmp");
        } catch (const ImageLoadError&) {
            EXPECT_FALSE(straight);
            EXPECT_THROW((void)LoadImageFile(path, &decoder, nullptr), ImageLoadError);
            return;
        }
        if (straight) {
            EXPECT_EQ(*straight, *platform);
        }
        EXPECT_EQ(LoadImageFile(path, &decoder, nullptr), platform);
    }
    fs::path write(const std::string& name, const Bytes& bytes) {
        writeFileAtomically(dir / name, bytes);
        return dir / name;
    }
};

TEST_F(PlainBitmapTest, EveryLayoutGivesThePlatformDecodersPixels) {
    struct Case {
        std::string name;
        Bytes bytes;
        bool plain;
    };
    std::vector<Case> cases;
    for (const int width : {1, 2, 3, 4, 5, 33}) {
        const Surface picture = testing::makeVariedPicture(width, 7);
        const std::string w = std::to_string(width);
        cases.push_back({"written" + w + ".bmp", encodeBmp24(picture), true});
        cases.push_back({"topdown" + w + ".bmp", bitmap(picture, 24, true), true});
        cases.push_back(
            {"depth32_" + w + ".bmp", bitmap(picture, 32, false, 40, 0, 0, 0x80), true});
    }
    const Surface picture = testing::makeVariedPicture(6, 4);
    cases.push_back({"v4.bmp", bitmap(picture, 24, false, 108), true});
    cases.push_back({"v5.bmp", bitmap(picture, 24, true, 124), true});
    // Left to the platform's decoder: a gap before the rows, a colour
    // count, version 5 at 32 bits (it may carry alpha), a short file.
    cases.push_back({"gap.bmp", bitmap(picture, 24, false, 40, 8), false});
    cases.push_back({"colours.bmp", bitmap(picture, 24, false, 40, 0, 2), false});
    cases.push_back({"v5alpha.bmp", bitmap(picture, 32, false, 124, 0, 0, 0x40), false});
    Bytes shortFile = encodeBmp24(picture);
    shortFile.pop_back();
    cases.push_back({"short.bmp", shortFile, false});
    cases.push_back({"sample.bmp", readWholeFile(LUMIRAN_SAMPLE_PATH, 1 << 26), true});
    for (const Case& c : cases)
        expectAsThePlatformGivesIt(write(c.name, c.bytes), c.plain);
}

TEST_F(PlainBitmapTest, BitmapsOfOtherWritersGoWhereTheyBelong) {
    if (std::system("convert -version > /dev/null 2>&1") != 0) {
        GTEST_SKIP() << "ImageMagick's convert is not installed";
    }
    const fs::path source = write("source.bmp", encodeBmp24(testing::makeVariedPicture(9, 5)));
    const std::pair<const char*, bool> kinds[] = {
        {"BMP3:", true},                // Windows 3, 24 bits
        {"BMP:", true},                 // version 5 header, 24 bits
        {"-type Palette BMP3:", false}, // 8 bits with a colour table
        {"-colors 16 -compress RLE BMP3:", false},
        {"-monochrome BMP3:", false},
        {"-alpha on BMP:", false}, // 32 bits with alpha
    };
    int n = 0;
    for (const auto& [arguments, plain] : kinds) {
        const std::string target = (dir / ("kind" + std::to_string(n++) + ".bmp")).string();
        std::string options = arguments;
        const std::size_t prefix = options.rfind(' ');
        const std::string format =
            prefix == std::string::npos ? options : options.substr(prefix + 1);
        options = prefix == std::string::npos ? "" : options.substr(0, prefix);
        const std::string command =
            "convert '" + source.string() + "' " + options + " '" + format + target + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        expectAsThePlatformGivesIt(target, plain);
    }
}

} // namespace
} // namespace lumiran
