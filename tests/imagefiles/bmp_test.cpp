#include "imagefiles/bitmap_writer.h"
#include "imagefiles/bmp_reader.h"
#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "test_support.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makeVariedPicture;

// A 32-bit top-down bitmap written field by field.
std::vector<std::uint8_t> topDown32(const Surface& s) {
    ByteWriter w;
    const std::uint32_t size = 54 + 4 * static_cast<std::uint32_t>(s.pixelCount());
    w.u16(0x4D42);
    w.u32(size);
    w.u32(0);
    w.u32(54);
    w.u32(40);
    w.i32(s.width());
    w.i32(-s.height());
    w.u16(1);
    w.u16(32);
    w.u32(0);
    w.u32(0);
    w.zeros(16);
    for (const Pixel p : s.pixels())
        w.u32(p | 0xFF000000u);
    return std::move(w.bytes());
}

struct TempDir : ::testing::Test {
    fs::path dir;
    void SetUp() override {
        dir = fs::temp_directory_path() /
              ("lumiran-bmp-" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) +
               "-" + ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
};

TEST(Bmp, TwentyFourBitRoundTripAtOddWidths) {
    for (int width : {1, 2, 3, 5, 17}) {
        const Surface picture = makeVariedPicture(width, 3);
        const auto bytes = encodeBmp24(picture);
        const std::size_t stride = (width * 3 + 3) / 4 * 4;
        EXPECT_EQ(bytes.size(), 54 + stride * 3);
        EXPECT_TRUE(readBmp(bytes).sameColours(picture)) << width;
    }
}

TEST(Bmp, RowsAreWrittenBottomUp) {
    Surface picture(1, 2);
    picture.at(0, 0) = makePixel(255, 0, 0);
    const auto bytes = encodeBmp24(picture);
    // The first stored row is the bottom one (black); the top one is red.
    EXPECT_EQ(bytes[54 + 2], 0);
    EXPECT_EQ(bytes[58 + 2], 255);
}

TEST(Bmp, ThirtyTwoBitTopDownIsRead) {
    const Surface picture = makeVariedPicture(4, 3);
    EXPECT_TRUE(readBmp(topDown32(picture)).sameColours(picture));
}

TEST(Bmp, BadFilesAreRefusedWithAMessage) {
    const auto good = encodeBmp24(makeVariedPicture(4, 4));
    auto expectRefused = [](std::vector<std::uint8_t> bytes, const char* why) {
        try {
            (void)readBmp(bytes);
            ADD_FAILURE() << why;
        } catch (const ImageFileError& e) {
            EXPECT_STRNE(e.what(), "") << why;
        }
    };
    expectRefused({}, "empty");
    expectRefused({good.begin(), good.begin() + 30}, "header cut");
    expectRefused({good.begin(), good.end() - 1}, "pixels cut");
    auto patched = [&](std::size_t offset, std::int32_t value) {
        auto copy = good;
        for (int i = 0; i < 4; ++i)
            copy[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
        return copy;
    };
    expectRefused(patched(18, 0), "zero width");
    expectRefused(patched(22, 0), "zero height");
    expectRefused(patched(18, 32768), "too wide");
    expectRefused(patched(22, -40000), "too high");
    expectRefused(patched(30, 1), "compressed");
    auto eightBit = good;
    eightBit[28] = 8;
    expectRefused(eightBit, "palette depth");
}

TEST_F(TempDir, AFailedWriteLeavesTheOldFileAndNoTemporary) {
    const fs::path target = dir / "keep.bmp";
    saveBmp24(makeVariedPicture(3, 3), target);
    const auto before = readWholeFile(target, 1 << 20);
    EXPECT_THROW(saveBmp24(Surface(), target), ImageFileError);
    EXPECT_EQ(readWholeFile(target, 1 << 20), before);
    EXPECT_THROW(saveBmp24(makeVariedPicture(3, 3), dir / "missing" / "x.bmp"), ImageFileError);
    EXPECT_THROW(saveBmp24(makeVariedPicture(3, 3), dir), ImageFileError);
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir))
        ++entries;
    EXPECT_EQ(entries, 1u);
}

TEST_F(TempDir, ReadingRefusesDirectoriesMissingAndOversizedFiles) {
    EXPECT_THROW((void)readWholeFile(dir, 100), ImageFileError);
    EXPECT_THROW((void)readWholeFile(dir / "none.bmp", 100), ImageFileError);
    std::ofstream(dir / "big.bin") << std::string(200, 'x');
    EXPECT_THROW((void)readWholeFile(dir / "big.bin", 100), ImageFileError);
}

} // namespace
} // namespace lumiran
