#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/load_dispatch.h"
#include "test_support.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace lumiran {
namespace {

namespace fs = std::filesystem;

// Far more than the memory of any machine that runs this: a reader that
// read it before refusing would fail to allocate instead of refusing.
// Sparse, so it costs no disk space.
constexpr std::uintmax_t HugeLength = std::uintmax_t{64} << 30;

struct HugeFileCase {
    const char* name;
    std::string head;
    const char* refusal;
};

class HugeFileTest : public ::testing::TestWithParam<HugeFileCase> {
  protected:
    fs::path dir = lumiran::testing::testFolder("lumiran-huge-file-");
    void SetUp() override { fs::create_directories(dir); }
    void TearDown() override { fs::remove_all(dir); }
};

std::string pcxHeader(int maxX, int maxY) {
    std::string header(128, '\0');
    header[0] = 10;
    header[3] = 8;
    header[8] = static_cast<char>(maxX & 0xFF);
    header[9] = static_cast<char>(maxX >> 8);
    header[10] = static_cast<char>(maxY & 0xFF);
    header[11] = static_cast<char>(maxY >> 8);
    header[65] = 3;
    return header;
}

std::string tgaHeader(int width, int height) {
    std::string header(18, '\0');
    header[2] = 2;
    header[12] = static_cast<char>(width & 0xFF);
    header[13] = static_cast<char>(width >> 8);
    header[14] = static_cast<char>(height & 0xFF);
    header[15] = static_cast<char>(height >> 8);
    header[16] = 24;
    return header;
}

TEST_P(HugeFileTest, IsRefusedFromItsLengthOrHeaderWithoutBeingRead) {
    const HugeFileCase& c = GetParam();
    const fs::path path = dir / c.name;
    std::ofstream(path, std::ios::binary) << c.head;
    fs::resize_file(path, HugeLength);
    LoadLimits limits;
    // Not the file-size guard: the reader's own refusal must come first.
    limits.maxBytes = std::numeric_limits<std::uint64_t>::max();
    limits.maxPixels = 1000 * 1000;
    try {
        (void)LoadImageFile(path, nullptr, nullptr, limits);
        FAIL() << c.name << " loaded";
    } catch (const ImageLoadError& e) {
        EXPECT_EQ(e.number(), 0);
        EXPECT_NE(e.detail().find(c.refusal), std::string::npos) << e.detail();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Readers, HugeFileTest,
    ::testing::Values(
        HugeFileCase{"long.pcd", std::string(4096, '\x80'), "longer than any resolution"},
        HugeFileCase{"wide.pcx", pcxHeader(29999, 29999), "picture too large"},
        HugeFileCase{"not-zsoft.pcx", "P6 not a pcx", "not 10"},
        HugeFileCase{"wide.tga", tgaHeader(30000, 30000), "picture too large"},
        HugeFileCase{"grey.tga", std::string(2, '\0') + std::string(1, '\3'), "grey"},
        HugeFileCase{"wide.ppm", "P6\n9999 9999\n255\n", "picture too large"},
        HugeFileCase{"five-digits.ppm", "P6\n30000 30000\n255\n", "one to four digits"},
        HugeFileCase{"graymap.ppm", "P5\n4 4\n255\n", "is not supported"}),
    [](const auto& testParam) {
        std::string name = testParam.param.name;
        for (char& ch : name) {
            if (ch == '.' || ch == '-') ch = '_';
        }
        return name;
    });

// Files longer than the part looked at first still load as before, the
// PCX palette at the end included.
TEST(LongerThanTheHead, PcxWithItsPaletteAtTheEndLoadsAsTheReaderReadsIt) {
    const fs::path dir = lumiran::testing::testFolder("lumiran-long-pcx-");
    fs::create_directories(dir);
    std::string file = pcxHeader(399, 199);
    file[3] = 8;
    file[65] = 1;
    file[66] = static_cast<char>(400 & 0xFF);
    file[67] = static_cast<char>(400 >> 8);
    for (int i = 0; i < 400 * 200; ++i)
        file += static_cast<char>(0xC1), file += static_cast<char>(i % 7);
    file += '\x0C';
    for (int i = 0; i < 768; ++i)
        file += static_cast<char>(i * 13);
    ASSERT_GT(file.size(), std::size_t{1} << 16);
    std::ofstream(dir / "long.pcx", std::ios::binary) << file;
    const auto loaded = LoadImageFile(dir / "long.pcx", nullptr, nullptr);
    const Surface direct = Class_PCXImageOp().PCXImageGet(
        std::span(reinterpret_cast<const std::uint8_t*>(file.data()), file.size()), nullptr);
    fs::remove_all(dir);
    ASSERT_TRUE(loaded.has_value());
    EXPECT_EQ(*loaded, direct);
}

} // namespace
} // namespace lumiran
