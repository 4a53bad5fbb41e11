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

constexpr std::size_t Base16Width = 192;

Surface readPcd(const std::vector<std::uint8_t>& file, ProgressSink* progress = nullptr) {
    return Class_PCDImageOp().PCDImageGet(file, progress);
}

struct RecordingSink : ProgressSink {
    std::vector<int> percents;
    void showPercent(int percent) override { percents.push_back(percent); }
};

// A file of the given length with bytes placed at an offset.
std::vector<std::uint8_t> pcdFile(std::size_t length, std::size_t offset,
                                  const std::vector<std::uint8_t>& bytes = {}) {
    std::vector<std::uint8_t> file(length, 0);
    std::copy_n(bytes.begin(), std::min(bytes.size(), length - std::min(length, offset)),
                file.begin() + static_cast<std::ptrdiff_t>(std::min(length, offset)));
    return file;
}

// All-zero YCC data: the reader's colour of luma 0 and chroma 0.
const Pixel ZeroYcc = makePixel(0, 194, 0);

int loadNumber(const std::vector<std::uint8_t>& file) {
    try {
        (void)readPcd(file);
    } catch (const ImageLoadError& e) {
        return e.number();
    }
    return -1;
}

TEST(PcdReader, FileLengthChoosesTheResolution) {
    struct Case {
        std::size_t length;
        int width; // 0: the load fails
        int number;
    };
    const Case cases[] = {
        {0, 192, -1},
        {294'911, 192, -1},
        // The middle resolution's read position wraps negative: never loads.
        {294'912, 0, 63},
        {1'179'647, 0, 63},
        {1'179'648, 768, -1},
        {4'718'591, 768, -1},
        // Longer than any resolution: the reader's own refusal.
        {4'718'592, 0, 0},
    };
    for (const Case& c : cases) {
        const std::vector<std::uint8_t> file(c.length, 0);
        if (c.width == 0) {
            EXPECT_EQ(loadNumber(file), c.number) << c.length;
            continue;
        }
        const Surface s = readPcd(file);
        EXPECT_EQ(s.width(), c.width) << c.length;
        EXPECT_EQ(s.height(), c.width * 2 / 3) << c.length;
        EXPECT_TRUE(std::ranges::all_of(s.pixels(), [](Pixel p) { return p == ZeroYcc; }));
    }
}

// The first row pair of a Base/16 stream: luma rows and a chroma row whose
// first half is chroma1 and second half chroma2, one sample per two columns.
struct RowPair {
    std::vector<std::uint8_t> luma1 = std::vector<std::uint8_t>(Base16Width, 0);
    std::vector<std::uint8_t> luma2 = std::vector<std::uint8_t>(Base16Width, 0);
    std::vector<std::uint8_t> chroma = std::vector<std::uint8_t>(Base16Width, 0);

    void setChroma(std::size_t column, std::uint8_t c1, std::uint8_t c2) {
        chroma[column / 2] = c1;
        chroma[Base16Width / 2 + column / 2] = c2;
    }
    [[nodiscard]] std::vector<std::uint8_t> stream() const {
        std::vector<std::uint8_t> s = luma1;
        s.insert(s.end(), luma2.begin(), luma2.end());
        s.insert(s.end(), chroma.begin(), chroma.end());
        return s;
    }
};

TEST(PcdReader, LumaAndChromaGiveTheProgramsColours) {
    RowPair pair;
    struct Sample {
        std::uint8_t luma, c1, c2;
        Pixel expected;
    };
    // Columns in pairs share chroma; the second column of each pair and the
    // second row get luma 0 with the same chroma.
    const Sample samples[] = {
        {0, 156, 137, makePixel(0, 0, 0)},
        {188, 156, 137, makePixel(255, 255, 255)}, // 255.38 rounds down
        {100, 100, 200, makePixel(251, 102, 12)},
        {120, 180, 60, makePixel(23, 224, 216)},
        {50, 255, 0, makePixel(0, 152, 255)}, // red below 0, blue above 255
        {255, 255, 255, makePixel(255, 194, 255)},
    };
    for (std::size_t i = 0; i < std::size(samples); ++i) {
        pair.luma1[2 * i] = samples[i].luma;
        pair.luma2[2 * i + 1] = samples[i].luma;
        pair.setChroma(2 * i, samples[i].c1, samples[i].c2);
    }
    std::vector<std::uint8_t> file = pcdFile(100'000, Base16Stream, pair.stream());
    // The true start of the data is never read.
    file[Base16Stream - 1] = 77;
    const Surface s = readPcd(file);
    for (std::size_t i = 0; i < std::size(samples); ++i) {
        const int x = static_cast<int>(2 * i);
        EXPECT_EQ(s.at(x, 0), samples[i].expected) << "sample " << i;
        EXPECT_EQ(s.at(x + 1, 1), samples[i].expected) << "sample " << i;
        // Luma 0 with the shared chroma.
        EXPECT_EQ(s.at(x + 1, 0), s.at(x, 1));
    }
    EXPECT_EQ(s.at(0, 2), ZeroYcc);
}

TEST(PcdReader, LargestResolutionStreamStartsOneByteLate) {
    RowPair pair; // only the first 192 columns are set
    pair.luma1[0] = 188;
    std::vector<std::uint8_t> stream(768 * 3, 0);
    std::copy(pair.luma1.begin(), pair.luma1.end(), stream.begin());
    stream[2 * 768] = 156;       // chroma1 of columns 0 and 1
    stream[2 * 768 + 384] = 137; // chroma2 of columns 0 and 1
    std::vector<std::uint8_t> file = pcdFile(1'179'648, BaseStream, stream);
    file[BaseStream - 1] = 77;
    const Surface s = readPcd(file);
    ASSERT_EQ(s.width(), 768);
    EXPECT_EQ(s.at(0, 0), makePixel(255, 255, 255));
    EXPECT_EQ(s.at(1, 0), makePixel(0, 0, 0));
    EXPECT_EQ(s.at(2, 0), ZeroYcc);
}

TEST(PcdReader, TruncatedStreamReadsZeros) {
    RowPair pair;
    std::ranges::fill(pair.luma1, std::uint8_t{188});
    for (std::size_t x = 0; x < Base16Width; x += 2)
        pair.setChroma(x, 156, 137);
    // The file ends behind the first chroma2 sample.
    const std::vector<std::uint8_t> file =
        pcdFile(Base16Stream + 2 * Base16Width + Base16Width / 2 + 1, Base16Stream, pair.stream());
    const Surface s = readPcd(file);
    EXPECT_EQ(s.at(0, 0), makePixel(255, 255, 255));
    EXPECT_EQ(s.at(1, 0), makePixel(255, 255, 255));
    // Chroma2 0 beyond the end.
    EXPECT_EQ(s.at(2, 0), makePixel(6, 255, 255));
    EXPECT_EQ(s.at(191, 127), ZeroYcc);
}

TEST(PcdReader, ReportsRoundedPercentAfterEachRowPair) {
    RecordingSink sink;
    (void)readPcd(std::vector<std::uint8_t>(10'000, 0), &sink);
    ASSERT_EQ(sink.percents.size(), 64u);
    EXPECT_EQ(sink.percents[0], 2);   // 1.5625
    EXPECT_EQ(sink.percents[7], 12);  // 16 of 128 rows: 12.5, a tie to even
    EXPECT_EQ(sink.percents[23], 38); // 37.5
    EXPECT_EQ(sink.percents.back(), 100);
}

} // namespace
} // namespace lumiran
