#include "imagefiles/bmp_reader.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "imagefiles/png_writer.h"
#include "test_support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>
#include <vector>
#include <zlib.h>

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makePicture;
using Bytes = std::vector<std::uint8_t>;

struct Chunk {
    std::string type;
    Bytes data;
    bool crcMatches = false;
};

std::uint32_t bigEndian(const std::uint8_t* at) {
    return static_cast<std::uint32_t>(at[0]) << 24 | at[1] << 16 | at[2] << 8 | at[3];
}

// The chunks after the signature; a file that runs out mid-chunk fails the test.
std::vector<Chunk> chunksOf(const Bytes& file) {
    const Bytes signature{137, 80, 78, 71, 13, 10, 26, 10};
    EXPECT_TRUE(std::equal(signature.begin(), signature.end(), file.begin()));
    std::vector<Chunk> chunks;
    for (std::size_t at = 8; at < file.size();) {
        if (file.size() - at < 12) {
            ADD_FAILURE() << "a chunk cut short at " << at;
            break;
        }
        const std::size_t length = bigEndian(&file[at]);
        if (file.size() - at - 12 < length) {
            ADD_FAILURE() << "a chunk longer than the file at " << at;
            break;
        }
        Chunk chunk{std::string(file.begin() + static_cast<std::ptrdiff_t>(at) + 4,
                                file.begin() + static_cast<std::ptrdiff_t>(at) + 8),
                    Bytes(file.begin() + static_cast<std::ptrdiff_t>(at) + 8,
                          file.begin() + static_cast<std::ptrdiff_t>(at + 8 + length))};
        chunk.crcMatches = crc32(0, &file[at + 4], static_cast<uInt>(4 + length)) ==
                           bigEndian(&file[at + 8 + length]);
        chunks.push_back(std::move(chunk));
        at += 12 + length;
    }
    return chunks;
}

// A reader of the files the writer makes, after the PNG rules: 8-bit RGB,
// not interlaced. Collects the filter types met in usedFilters.
Surface decodePng(const Bytes& file, std::set<int>& usedFilters) {
    const auto chunks = chunksOf(file);
    EXPECT_GE(chunks.size(), 3u);
    EXPECT_EQ(chunks.front().type, "IHDR");
    EXPECT_EQ(chunks.back().type, "IEND");
    EXPECT_TRUE(chunks.back().data.empty());
    const Bytes& header = chunks.front().data;
    EXPECT_EQ(header.size(), 13u);
    EXPECT_EQ(Bytes(header.begin() + 8, header.end()), (Bytes{8, 2, 0, 0, 0}));
    const auto width = static_cast<int>(bigEndian(&header[0]));
    const auto height = static_cast<int>(bigEndian(&header[4]));
    Bytes compressed;
    for (const Chunk& c : chunks) {
        EXPECT_TRUE(c.crcMatches) << c.type;
        if (c.type == "IDAT") compressed.insert(compressed.end(), c.data.begin(), c.data.end());
    }
    const std::size_t stride = 3 * static_cast<std::size_t>(width);
    Bytes raw((stride + 1) * static_cast<std::size_t>(height));
    uLongf size = raw.size();
    EXPECT_EQ(uncompress(raw.data(), &size, compressed.data(), compressed.size()), Z_OK);
    EXPECT_EQ(size, raw.size());

    Surface picture(width, height);
    Bytes above(stride, 0), row(stride);
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* line = &raw[static_cast<std::size_t>(y) * (stride + 1)];
        usedFilters.insert(line[0]);
        for (std::size_t i = 0; i < stride; ++i) {
            const int a = i >= 3 ? row[i - 3] : 0, b = above[i], c = i >= 3 ? above[i - 3] : 0;
            const int p = a + b - c, pa = std::abs(p - a), pb = std::abs(p - b),
                      pc = std::abs(p - c);
            const int predictors[] = {0, a, b, (a + b) / 2,
                                      pa <= pb && pa <= pc ? a
                                      : pb <= pc           ? b
                                                           : c};
            EXPECT_LE(line[0], 4);
            row[i] = static_cast<std::uint8_t>(line[1 + i] + predictors[line[0] % 5]);
        }
        for (int x = 0; x < width; ++x)
            picture.at(x, y) = makePixel(row[3 * x], row[3 * x + 1], row[3 * x + 2]);
        above = row;
    }
    return picture;
}

Surface noise(int width, int height) {
    std::mt19937 random(7);
    return makePicture(width, height, [&](int, int) { return Pixel(random()); });
}

TEST(PngWriter, RowsComeBackExactlyWhateverTheSizeAndTheFilters) {
    struct Case {
        const char* name;
        Surface picture;
    };
    const Case cases[] = {
        {"1x1", Surface(1, 1, makePixel(1, 2, 3, 0xFF))},
        {"one column", testing::makeVariedPicture(1, 9)},
        {"one row", testing::makeVariedPicture(9, 1)},
        {"odd width", testing::makeVariedPicture(7, 5)},
        {"gradients",
         makePicture(33, 20, [](int x, int y) { return makePixel(x * 7, y * 11, x * y); })},
        {"noise with its spare bytes set", noise(61, 40)},
    };
    std::set<int> usedFilters;
    for (const Case& c : cases) {
        const Surface back = decodePng(encodePng24(c.picture), usedFilters);
        EXPECT_TRUE(back.sameColours(c.picture)) << c.name;
    }
    // The cases reach every filter, so each one's arithmetic is checked.
    EXPECT_EQ(usedFilters, (std::set<int>{0, 1, 2, 3, 4}));
    EXPECT_THROW((void)encodePng24(Surface()), ImageFileError);
}

TEST(PngWriter, LargeDataIsSplitIntoBoundedChunks) {
    // Noise hardly compresses: 3 MiB of rows give several data chunks.
    const Surface picture = noise(1024, 1024);
    const Bytes file = encodePng24(picture);
    int dataChunks = 0;
    for (const Chunk& c : chunksOf(file)) {
        if (c.type != "IDAT") continue;
        ++dataChunks;
        EXPECT_LE(c.data.size(), std::size_t{1} << 20);
    }
    EXPECT_GE(dataChunks, 3);
    std::set<int> usedFilters;
    EXPECT_TRUE(decodePng(file, usedFilters).sameColours(picture));
}

struct PngWriterFiles : ::testing::Test {
    fs::path dir;
    void SetUp() override {
        dir = lumiran::testing::testFolder("lumiran-png-");
        fs::remove_all(dir);
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }
};

TEST_F(PngWriterFiles, AFailedSaveKeepsTheOldFileAndLeavesNothingElse) {
    const fs::path target = dir / "old.png";
    savePng24(testing::makeVariedPicture(5, 3), target);
    const Bytes before = readWholeFile(target, 1 << 20);
    std::ofstream(dir / "plain-file") << "x";
    const fs::path unwritable[] = {dir / "missing" / "a.png", dir / "plain-file" / "a.png", dir};
    for (const fs::path& path : unwritable)
        EXPECT_THROW(savePng24(testing::makeVariedPicture(5, 3), path), ImageFileError) << path;
    EXPECT_THROW(savePng24(Surface(), target), ImageFileError);
    EXPECT_EQ(readWholeFile(target, 1 << 20), before);
    // old.png and plain-file only: no temporary is left behind.
    EXPECT_EQ(std::distance(fs::directory_iterator(dir), fs::directory_iterator()), 2);
}

TEST_F(PngWriterFiles, ImageMagickReadsTheWrittenFiles) {
    if (std::system("command -v convert >/dev/null 2>&1")) GTEST_SKIP() << "no ImageMagick";
    for (const Surface& picture : {testing::makeVariedPicture(13, 7), noise(1, 1)}) {
        savePng24(picture, dir / "picture.png");
        const std::string command = "convert '" + (dir / "picture.png").string() +
                                    "' -type TrueColor 'BMP3:" + (dir / "back.bmp").string() + "'";
        ASSERT_EQ(std::system(command.c_str()), 0) << command;
        EXPECT_TRUE(readBmp(readWholeFile(dir / "back.bmp", 1 << 20)).sameColours(picture))
            << picture.width() << "x" << picture.height();
    }
}

} // namespace
} // namespace lumiran
