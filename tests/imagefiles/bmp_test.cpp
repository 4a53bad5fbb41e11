#include "imagefiles/bitmap_writer.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "test_support.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makeVariedPicture;

// A 32-bit top-down bitmap: file header, info header with a negative height.
std::vector<std::uint8_t> topDown32(const Surface& s) {
    ByteWriter w;
    w.u16(0x4D42);
    // size, reserved, offset, header size, width, height, planes 1 | 32 bits
    for (const int field :
         {int(54 + 4 * s.pixelCount()), 0, 54, 40, s.width(), -s.height(), 1 | 32 << 16})
        w.i32(field);
    w.zeros(24); // no compression, sizes and palette counts 0
    for (const Pixel p : s.pixels())
        w.u32(p | 0xFF000000u);
    return std::move(w.bytes());
}

struct TempDir : ::testing::Test {
    fs::path dir = lumiran::testing::testFolder("lumiran-bmp-");
    void SetUp() override { fs::create_directories(dir); }
    void TearDown() override { fs::remove_all(dir); }
};

TEST(Bmp, RoundTripPadsRowsBottomUpAndTopDown32BitIsRead) {
    // Rows are padded to four bytes: 1, 2, 3 and 0 spare bytes.
    for (const auto& [width, size] : {std::pair{1, 66u}, {2, 78u}, {3, 90u}, {4, 90u}}) {
        const Surface picture = makeVariedPicture(width, 3);
        const auto bytes = encodeBmp24(picture);
        EXPECT_EQ(bytes.size(), size) << width;
        EXPECT_TRUE(readBmp(bytes).sameColours(picture)) << width;
    }
    // The first stored row is the bottom one (black); the top one is red.
    Surface redOverBlack(1, 2);
    redOverBlack.at(0, 0) = makePixel(255, 0, 0);
    const auto bytes = encodeBmp24(redOverBlack);
    EXPECT_EQ(bytes[54 + 2], 0);
    EXPECT_EQ(bytes[58 + 2], 255);
    // A 32-bit top-down file reads the same.
    const Surface picture = makeVariedPicture(4, 3);
    EXPECT_TRUE(readBmp(topDown32(picture)).sameColours(picture));
}

TEST(Bmp, BadFilesAreRefusedWithAMessage) {
    const auto good = encodeBmp24(makeVariedPicture(4, 4));
    auto patched = [&](std::size_t offset, std::int32_t value) { // one little-endian field
        auto copy = good;
        for (int i = 0; i < 4; ++i)
            copy.at(offset + i) = static_cast<std::uint8_t>(value >> (8 * i));
        return copy;
    };
    const std::pair<std::vector<std::uint8_t>, const char*> cases[] = {
        {{}, "empty"},
        {{good.begin(), good.begin() + 30}, "header cut"},
        {{good.begin(), good.end() - 1}, "pixels cut"},
        {patched(18, 0), "zero width"},
        {patched(22, 0), "zero height"},
        {patched(18, 32768), "too wide"},
        {patched(22, -40000), "too high"},
        {patched(30, 1), "compressed"},
        {patched(28, 8), "palette depth"}};
    for (const auto& [bytes, why] : cases) {
        try {
            (void)readBmp(bytes);
            ADD_FAILURE() << why;
        } catch (const ImageFileError& e) {
            EXPECT_STRNE(e.what(), "") << why;
        }
    }
}

TEST_F(TempDir, AFailedWriteLeavesTheOldFileAndBadReadsAreRefused) {
    const fs::path target = dir / "keep.bmp";
    saveBmp24(makeVariedPicture(3, 3), target);
    const auto before = readWholeFile(target, 1 << 20);
    EXPECT_THROW(saveBmp24(Surface(), target), ImageFileError);
    EXPECT_EQ(readWholeFile(target, 1 << 20), before);
    EXPECT_THROW(saveBmp24(makeVariedPicture(3, 3), dir / "missing" / "x.bmp"), ImageFileError);
    EXPECT_THROW(saveBmp24(makeVariedPicture(3, 3), dir), ImageFileError);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 1);
    // Reading refuses directories, missing and oversized files.
    EXPECT_THROW((void)readWholeFile(dir, 100), ImageFileError);
    EXPECT_THROW((void)readWholeFile(dir / "none.bmp", 100), ImageFileError);
    std::ofstream(dir / "big.bin") << std::string(200, 'x');
    EXPECT_THROW((void)readWholeFile(dir / "big.bin", 100), ImageFileError);
}

} // namespace
} // namespace lumiran
