#include "imagefiles/file_io.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "test_support.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <initializer_list>
#include <string>
#include <unistd.h>
#include <vector>

// Files written by netpbm, read back with the program's own readers. Each
// expectation is what the readers' rules make of a well-formed file,
// quirks included.

namespace lumiran {
namespace {

namespace fs = std::filesystem;
using testing::makePicture;

bool onPath(const std::string& tool) {
    return std::system(("command -v " + tool + " >/dev/null 2>&1").c_str()) == 0;
}

class NetpbmFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        dir_ = fs::temp_directory_path() /
               (std::string("lumiran-netpbm-") + info->name() + "-" + std::to_string(::getpid()));
        fs::create_directories(dir_);
    }
    void TearDown() override { fs::remove_all(dir_); }

    [[nodiscard]] static std::string missing(std::initializer_list<const char*> tools) {
        for (const char* tool : tools) {
            if (!onPath(tool)) return tool;
        }
        return {};
    }

    // The picture as a binary PPM made by rawtoppm, as a file name in the
    // temporary directory.
    std::string writePpm(const Surface& picture, const std::string& name) {
        std::ofstream raw(dir_ / (name + ".raw"), std::ios::binary);
        for (const Pixel p : picture.pixels()) {
            raw.put(static_cast<char>(redOf(p)));
            raw.put(static_cast<char>(greenOf(p)));
            raw.put(static_cast<char>(blueOf(p)));
        }
        raw.close();
        run("rawtoppm " + std::to_string(picture.width()) + " " + std::to_string(picture.height()) +
            " " + name + ".raw > " + name + ".ppm");
        return name + ".ppm";
    }

    // Runs a shell command in the temporary directory.
    void run(const std::string& command) {
        const std::string line = "cd '" + dir_.string() + "' && " + command + " 2>/dev/null";
        ASSERT_EQ(std::system(line.c_str()), 0) << command;
    }

    [[nodiscard]] std::vector<std::uint8_t> bytesOf(const std::string& name) const {
        return readWholeFile(dir_ / name, 1 << 24);
    }

    Surface readPcx(const std::string& name) {
        return Class_PCXImageOp{}.PCXImageGet(bytesOf(name), nullptr);
    }
    Surface readPpm(const std::string& name) {
        return Class_PPMImageOp{}.PPMImageGet(bytesOf(name), nullptr);
    }

    // The number of the error a load fails with; -1 when it succeeds.
    template <typename Read>
    int failureNumber(Read read) {
        try {
            (void)read();
        } catch (const ImageLoadError& e) {
            return e.number();
        }
        return -1;
    }

  private:
    fs::path dir_;
};

#define SKIP_WITHOUT(...)                                                                          \
    if (const std::string tool = missing({__VA_ARGS__}); !tool.empty())                            \
    GTEST_SKIP() << tool << " is not installed"

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

void expectSame(const Surface& actual, const Surface& expected) {
    ASSERT_EQ(actual.width(), expected.width());
    ASSERT_EQ(actual.height(), expected.height());
    for (int y = 0; y < expected.height(); ++y) {
        for (int x = 0; x < expected.width(); ++x) {
            EXPECT_EQ(actual.at(x, y), expected.at(x, y)) << x << "," << y;
        }
    }
}

TEST_F(NetpbmFiles, PlanarPcxKeepsItsColours) {
    SKIP_WITHOUT("rawtoppm", "ppmtopcx");
    // 2 colours give one plane, up to 16 colours up to four; width 11 ends
    // each plane row inside its second byte.
    for (const int colours : {2, 4, 8, 16}) {
        SCOPED_TRACE(colours);
        const Surface picture = paletted(11, 3, colours);
        const std::string ppm = writePpm(picture, "planar");
        run("ppmtopcx " + ppm + " > planar.pcx");
        expectSame(readPcx("planar.pcx"), picture);
    }
}

TEST_F(NetpbmFiles, EightAndTwentyFourBitPcxKeepTheirColours) {
    SKIP_WITHOUT("rawtoppm", "ppmtopcx");
    for (const int width : {5, 8}) {
        SCOPED_TRACE(width);
        const Surface picture = paletted(width, 3, 40);
        const std::string ppm = writePpm(picture, "deep");
        run("ppmtopcx -8bit " + ppm + " > eight.pcx");
        expectSame(readPcx("eight.pcx"), picture);
        run("ppmtopcx -24bit " + ppm + " > full.pcx");
        expectSame(readPcx("full.pcx"), picture);
    }
}

TEST_F(NetpbmFiles, PcxPlacementAndShapesTheReaderDoesNotTake) {
    SKIP_WITHOUT("rawtoppm", "ppmtopcx");
    // Placed at x 2: two columns wider, the first row's own pixels intact.
    const Surface picture = paletted(3, 2, 40);
    writePpm(picture, "small");
    run("ppmtopcx -8bit -xpos 2 small.ppm > placed.pcx");
    const Surface placed = readPcx("placed.pcx");
    EXPECT_EQ(placed.width(), 5);
    EXPECT_EQ(placed.height(), 2);
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ(placed.at(x, 0), picture.at(x, 0)) << x;
    // Packed pixels of 2 or 4 bits are refused.
    run("ppmtopcx -packed small.ppm > packed.pcx");
    EXPECT_EQ(failureNumber([&] { return readPcx("packed.pcx"); }), 0);
    // One row: the percentage divides by the last row's index, 0.
    writePpm(paletted(4, 1, 3), "row");
    run("ppmtopcx row.ppm > row.pcx");
    EXPECT_EQ(failureNumber([&] { return readPcx("row.pcx"); }), 6);
}

TEST_F(NetpbmFiles, BinaryPpmShiftsBlueByOnePixel) {
    SKIP_WITHOUT("rawtoppm");
    for (const int width : {4, 3}) {
        SCOPED_TRACE(width);
        const Surface picture = paletted(width, 2, 5);
        const Surface s = readPpm(writePpm(picture, "binary"));
        for (int i = 0; i < width * 2; ++i) {
            const Pixel own = picture.pixels()[i];
            // Blue of the pixel before; the first takes the line end.
            const int blue = i == 0 ? '\n' : blueOf(picture.pixels()[i - 1]);
            const Pixel expected = width % 4 == 0 ? makePixel(redOf(own), greenOf(own), blue)
                                                  : makePixel(blue, greenOf(own), redOf(own));
            EXPECT_EQ(s.pixels()[i], expected) << i;
        }
    }
}

TEST_F(NetpbmFiles, BinaryPpmWithMaximum15ScalesBy17) {
    SKIP_WITHOUT("ppmmake");
    run("ppmmake -maxval 15 rgb:f/0/8 4 2 > fifteen.ppm");
    const Surface s = readPpm("fifteen.ppm");
    EXPECT_EQ(s.at(0, 0), makePixel(255, 0, 170));
    EXPECT_EQ(s.at(3, 1), makePixel(255, 0, 136));
}

TEST_F(NetpbmFiles, PlainPpmReadsWhileItsColumnsStayFixed) {
    SKIP_WITHOUT("rawtoppm", "pnmtoplainpnm");
    const Surface four = threeDigit(4, 2);
    run("pnmtoplainpnm " + writePpm(four, "four") + " > four.plain");
    expectSame(readPpm("four.plain"), four);
    // At width 3 red and blue change places.
    const Surface three = threeDigit(3, 2);
    run("pnmtoplainpnm " + writePpm(three, "three") + " > three.plain");
    const Surface s = readPpm("three.plain");
    for (int y = 0; y < 2; ++y) {
        for (int x = 0; x < 3; ++x) {
            const Pixel p = three.at(x, y);
            EXPECT_EQ(s.at(x, y), makePixel(blueOf(p), greenOf(p), redOf(p))) << x << "," << y;
        }
    }
    // Rows too long for one netpbm line end in an empty line, and the
    // second line end stands where a digit should.
    run("pnmtoplainpnm " + writePpm(threeDigit(8, 2), "eight") + " > eight.plain");
    EXPECT_EQ(failureNumber([&] { return readPpm("eight.plain"); }), 13);
}

TEST_F(NetpbmFiles, PlainPbmReadsOnlyOneColumn) {
    SKIP_WITHOUT("pbmmake", "pnmtoplainpnm");
    run("pbmmake -gray 1 4 | pnmtoplainpnm > column.pbm");
    const Surface s = readPpm("column.pbm");
    ASSERT_EQ(s.height(), 4);
    const Pixel white = makePixel(255, 255, 255);
    const Pixel black = makePixel(0, 0, 0);
    EXPECT_NE(s.at(0, 0), s.at(0, 1));
    EXPECT_EQ(s.at(0, 0), s.at(0, 2));
    EXPECT_TRUE(s.at(0, 0) == white || s.at(0, 0) == black);
    // Wider rows have no separators between their digits.
    run("pbmmake -white 5 2 | pnmtoplainpnm > rows.pbm");
    EXPECT_EQ(failureNumber([&] { return readPpm("rows.pbm"); }), 13);
}

} // namespace
} // namespace lumiran
