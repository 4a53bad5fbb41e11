#include "imagefiles/file_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "test_support.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tuple>
#include <vector>

// Files written by netpbm, read back with the program's own readers. Each
// expectation is what the readers' rules make of a well-formed file,
// quirks included.

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makePicture;

bool haveTools(const std::string& tools) {
    const std::string check = "for t in " + tools + "; do command -v $t >/dev/null || exit 1; done";
    return std::system(check.c_str()) == 0;
}

#define SKIP_WITHOUT(tools)                                                                        \
    if (!haveTools(tools)) GTEST_SKIP() << "needs " << tools

// A picture of `count` distinct colours, varied across rows and columns.
Surface paletted(int width, int height, int count) {
    return makePicture(width, height, [count](int x, int y) {
        const int i = (x + 3 * y) % count;
        return makePixel(255 - i * 13, i * 29 % 256, i * 7 + 40);
    });
}

// Three-digit channels only, so that the plain form has fixed columns.
Surface threeDigit(int width, int height) {
    return makePicture(width, height, [](int x, int y) {
        return makePixel(100 + (x * 13 + y * 7) % 156, 150 + x * 3, 200 + y);
    });
}

class NetpbmFiles : public ::testing::Test {
  protected:
    fs::path dir;

    void SetUp() override {
        dir = lumiran::testing::testFolder("lumiran-netpbm-");
        fs::create_directories(dir);
    }
    void TearDown() override { fs::remove_all(dir); }

    // Runs a shell command in the temporary directory.
    void run(const std::string& command) {
        const std::string line = "cd '" + dir.string() + "' && " + command + " 2>/dev/null";
        ASSERT_EQ(std::system(line.c_str()), 0) << command;
    }

    // The picture as a binary PPM made by rawtoppm; returns the file's name.
    std::string writePpm(const Surface& picture, const std::string& name) {
        std::vector<std::uint8_t> raw;
        for (const Pixel p : picture.pixels())
            for (const int channel : {redOf(p), greenOf(p), blueOf(p)})
                raw.push_back(static_cast<std::uint8_t>(channel));
        writeFileAtomically(dir / (name + ".raw"), raw);
        run("rawtoppm " + std::to_string(picture.width()) + " " + std::to_string(picture.height()) +
            " " + name + ".raw > " + name + ".ppm");
        return name + ".ppm";
    }

    // The file read by the program's PCX or PPM reader, by its extension.
    Surface read(const std::string& name) {
        const std::vector<std::uint8_t> file = readWholeFile(dir / name, 1 << 24);
        if (name.ends_with(".pcx")) return Class_PCXImageOp{}.PCXImageGet(file, nullptr);
        return Class_PPMImageOp{}.PPMImageGet(file, nullptr);
    }

    // The number of the error reading the file fails with; -1 when it loads.
    int failureNumber(const std::string& name) {
        try {
            (void)read(name);
        } catch (const ImageLoadError& e) {
            return e.number();
        }
        return -1;
    }
};

TEST_F(NetpbmFiles, PlanarEightAndTwentyFourBitPcxKeepTheirColours) {
    SKIP_WITHOUT("rawtoppm ppmtopcx");
    // 2 colours give one plane, 8 three and 16 four; width 11 ends each plane
    // row inside its second byte. Width 5 pads the 8- and 24-bit rows.
    for (const auto& [options, colours, width] :
         {std::tuple{"", 2, 11}, {"", 8, 11}, {"", 16, 11}, {"-8bit", 40, 5}, {"-24bit", 40, 5}}) {
        SCOPED_TRACE(std::string(options) + " " + std::to_string(colours));
        const Surface picture = paletted(width, 3, colours);
        run("ppmtopcx " + std::string(options) + " " + writePpm(picture, "p") + " > p.pcx");
        EXPECT_TRUE(read("p.pcx").sameColours(picture));
    }
}

TEST_F(NetpbmFiles, PcxPlacementAndShapesTheReaderDoesNotTake) {
    SKIP_WITHOUT("rawtoppm ppmtopcx");
    // Placed at x 2: two columns wider, the first row's own pixels intact.
    const Surface picture = paletted(3, 2, 40);
    run("ppmtopcx -8bit -xpos 2 " + writePpm(picture, "small") + " > placed.pcx");
    const Surface placed = read("placed.pcx");
    EXPECT_EQ(placed.width(), 5);
    EXPECT_EQ(placed.height(), 2);
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(placed.at(x, 0), picture.at(x, 0)) << x;
    // Packed pixels of 2 or 4 bits are refused.
    run("ppmtopcx -packed small.ppm > packed.pcx");
    EXPECT_EQ(failureNumber("packed.pcx"), 0);
    // One row: the percentage divides by the last row's index, 0.
    run("ppmtopcx " + writePpm(paletted(4, 1, 3), "row") + " > row.pcx");
    EXPECT_EQ(failureNumber("row.pcx"), 6);
}

TEST_F(NetpbmFiles, BinaryPpmShiftsBlueByOnePixel) {
    SKIP_WITHOUT("rawtoppm");
    // At a width that is not a multiple of four, red and blue change places too.
    for (const int width : {4, 3}) {
        SCOPED_TRACE(width);
        const Surface picture = paletted(width, 2, 5);
        const auto source = picture.pixels();
        const Surface s = read(writePpm(picture, "binary"));
        for (std::size_t i = 0; i < source.size(); ++i) {
            // Blue of the pixel before; the first takes the line end.
            const int blue = i == 0 ? '\n' : blueOf(source[i - 1]);
            const Pixel expected = width % 4 == 0
                                       ? makePixel(redOf(source[i]), greenOf(source[i]), blue)
                                       : makePixel(blue, greenOf(source[i]), redOf(source[i]));
            EXPECT_EQ(s.pixels()[i], expected) << i;
        }
    }
}

TEST_F(NetpbmFiles, BinaryPpmWithMaximum15ScalesBy17) {
    SKIP_WITHOUT("ppmmake");
    run("ppmmake -maxval 15 rgb:f/0/8 4 2 > fifteen.ppm");
    const Surface s = read("fifteen.ppm");
    EXPECT_EQ(s.at(0, 0), makePixel(255, 0, 170));
    EXPECT_EQ(s.at(3, 1), makePixel(255, 0, 136));
}

TEST_F(NetpbmFiles, PlainPpmReadsWhileItsColumnsStayFixed) {
    SKIP_WITHOUT("rawtoppm pnmtoplainpnm");
    const Surface four = threeDigit(4, 2);
    run("pnmtoplainpnm " + writePpm(four, "four") + " > four.plain");
    EXPECT_TRUE(read("four.plain").sameColours(four));
    // Rows too long for one netpbm line end in an empty line, and the
    // second line end stands where a digit should.
    run("pnmtoplainpnm " + writePpm(threeDigit(8, 2), "eight") + " > eight.plain");
    EXPECT_EQ(failureNumber("eight.plain"), 13);
}

TEST_F(NetpbmFiles, PlainPbmReadsOnlyOneColumn) {
    SKIP_WITHOUT("pbmmake pnmtoplainpnm");
    run("pbmmake -gray 1 4 | pnmtoplainpnm > column.pbm");
    const Surface s = read("column.pbm");
    ASSERT_EQ(s.height(), 4);
    EXPECT_NE(s.at(0, 0), s.at(0, 1));
    EXPECT_EQ(s.at(0, 0), s.at(0, 2));
    EXPECT_TRUE(s.at(0, 0) == makePixel(255, 255, 255) || s.at(0, 0) == makePixel(0, 0, 0));
    // Wider rows have no separators between their digits.
    run("pbmmake -white 5 2 | pnmtoplainpnm > rows.pbm");
    EXPECT_EQ(failureNumber("rows.pbm"), 13);
}

} // namespace
} // namespace lumiran
