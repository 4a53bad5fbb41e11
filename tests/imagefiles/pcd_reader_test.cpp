#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace lumiran {
namespace {

// Where the reader takes the stream of the two resolutions it can load:
// one byte behind the true start of the image data (0x2000 and 0x30000).
constexpr std::size_t Base16Stream = 0x2000 + 1;
constexpr std::size_t BaseStream = 0x30000 + 1;

// All-zero YCC data: the reader's colour of luma 0 and chroma 0.
const Pixel ZeroYcc = makePixel(0, 194, 0);

// A zero file whose first row pair, at the stream position, gives column x
// of row 0 and column x + 1 of row 1 the luma, and columns x and x + 1 the
// chroma. A pair is two luma rows, then chroma1 and chroma2 at half width.
struct PcdFile {
    std::vector<std::uint8_t> bytes;
    std::size_t stream, width;
    void sample(std::size_t x, std::uint8_t luma, std::uint8_t c1, std::uint8_t c2) {
        bytes[stream + x] = bytes[stream + width + x + 1] = luma;
        bytes[stream + 2 * width + x / 2] = c1;
        bytes[stream + 2 * width + width / 2 + x / 2] = c2;
    }
};

Surface readPcd(const std::vector<std::uint8_t>& file, ProgressSink* progress = nullptr) {
    return Class_PCDImageOp().PCDImageGet(file, progress);
}

TEST(PcdReader, FileLengthChoosesTheResolution) {
    // Width 0: the load fails, with 63 where the middle resolution's read
    // position wraps negative and 0 for the reader's own refusal.
    const struct {
        std::size_t length;
        int width, number;
    } cases[] = {{0, 192, 0},         {294'911, 192, 0},   {294'912, 0, 63}, {1'179'647, 0, 63},
                 {1'179'648, 768, 0}, {4'718'591, 768, 0}, {4'718'592, 0, 0}};
    for (const auto& c : cases) {
        const std::vector<std::uint8_t> file(c.length, 0);
        try {
            const Surface s = readPcd(file);
            EXPECT_EQ(s.width(), c.width) << c.length;
            EXPECT_EQ(s.height(), c.width * 2 / 3) << c.length;
            EXPECT_TRUE(std::ranges::all_of(s.pixels(), [](Pixel p) { return p == ZeroYcc; }));
        } catch (const ImageLoadError& e) {
            EXPECT_EQ(c.width, 0) << c.length;
            EXPECT_EQ(e.number(), c.number) << c.length;
        }
    }
}

TEST(PcdReader, LumaAndChromaGiveTheProgramsColours) {
    const Pixel black = makePixel(0, 0, 0), white = makePixel(255, 255, 255);
    PcdFile f{std::vector<std::uint8_t>(100'000, 0), Base16Stream, 192};
    f.sample(0, 0, 156, 137);
    f.sample(2, 188, 156, 137);     // 255.38 rounds down
    f.sample(4, 50, 255, 0);        // red below 0, blue above 255
    f.bytes[Base16Stream - 1] = 77; // the true start of the data is never read
    const Surface s = readPcd(f.bytes);
    EXPECT_EQ(s.at(0, 0), black);
    EXPECT_EQ(s.at(1, 1), black);
    EXPECT_EQ(s.at(2, 0), white);
    EXPECT_EQ(s.at(3, 1), white);
    EXPECT_EQ(s.at(4, 0), makePixel(0, 152, 255));
    EXPECT_EQ(s.at(3, 0), s.at(2, 1)); // luma 0 with the shared chroma
    EXPECT_EQ(s.at(0, 2), ZeroYcc);
}

TEST(PcdReader, LargestResolutionStreamStartsOneByteLateAndShortStreamsReadZeros) {
    PcdFile f{std::vector<std::uint8_t>(1'179'648, 0), BaseStream, 768};
    f.sample(0, 188, 156, 137);
    f.bytes[BaseStream - 1] = 77;
    Surface s = readPcd(f.bytes);
    EXPECT_EQ(s.at(0, 0), makePixel(255, 255, 255));
    EXPECT_EQ(s.at(2, 0), ZeroYcc);
    // A file that ends behind the first chroma2 sample.
    f = {std::vector<std::uint8_t>(100'000, 0), Base16Stream, 192};
    f.sample(0, 188, 156, 137);
    f.sample(2, 188, 156, 137);
    f.bytes.resize(Base16Stream + 2 * 192 + 96 + 1);
    s = readPcd(f.bytes);
    EXPECT_EQ(s.at(0, 0), makePixel(255, 255, 255));
    EXPECT_EQ(s.at(2, 0), makePixel(6, 255, 255)); // its chroma2 lies beyond the end
    EXPECT_EQ(s.at(191, 127), ZeroYcc);
}

TEST(PcdReader, ReportsRoundedPercentAfterEachRowPair) {
    struct : ProgressSink {
        std::vector<int> percents;
        void showPercent(int percent) override { percents.push_back(percent); }
    } sink;
    (void)readPcd(std::vector<std::uint8_t>(10'000, 0), &sink);
    ASSERT_EQ(sink.percents.size(), 64u);
    EXPECT_EQ(sink.percents[7], 12);  // 16 of 128 rows: 12.5, a tie to even
    EXPECT_EQ(sink.percents[23], 38); // 37.5
    EXPECT_EQ(sink.percents.back(), 100);
}

} // namespace
} // namespace lumiran
