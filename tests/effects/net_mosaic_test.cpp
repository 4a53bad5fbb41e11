// Class_NetMosaic: the irregular net, as a mosaic of its cells and as
// joints drawn over the picture.
#include "effects/texture/net_mosaic/class_net_mosaic.h"
#include "texture_fixture.h"

#include <set>

namespace lumiran::testing {
namespace {

struct NetMosaic : TextureFixture {
    Surface mosaic(const Surface& source, int size, int noise, std::uint8_t type,
                   ProcessRect rect = {}) {
        if (rect == ProcessRect{})
            rect = ProcessRect::wholePicture(source.width(), source.height());
        Surface target(source.width(), source.height());
        Class_NetMosaic(context).Mosaic_Net(source, target, rect.left, rect.top, rect.right,
                                            rect.bottom, static_cast<std::int16_t>(size),
                                            static_cast<std::int16_t>(noise), type);
        return target;
    }
    Surface lines(const Surface& source, int size, int noise, std::uint8_t type,
                  ProcessRect rect = {}) {
        if (rect == ProcessRect{})
            rect = ProcessRect::wholePicture(source.width(), source.height());
        Surface target(source.width(), source.height());
        Class_NetMosaic(context).Net_Line(source, target, rect.left, rect.top, rect.right,
                                          rect.bottom, static_cast<std::int16_t>(size),
                                          static_cast<std::int16_t>(noise), type, 0, 0, 0);
        return target;
    }
};

std::set<Pixel> coloursOf(const Surface& s) {
    return {s.pixels().begin(), s.pixels().end()};
}

TEST_F(NetMosaic, EveryPixelTakesTheMeanOfItsCell) {
    // A uniform picture stays uniform; a varied one has at most a colour a
    // cell (6 x 5 cells of 8 on 48 x 40).
    EXPECT_EQ(mosaic(uniformPicture(48, 40, 10, 20, 30), 8, 8, 0),
              uniformPicture(48, 40, 10, 20, 30));
    const Surface varied = makeVariedPicture(48, 40);
    for (const std::uint8_t type : {0, 1}) {
        const Surface out = mosaic(varied, 8, 8, type);
        EXPECT_LE(coloursOf(out).size(), 30u) << int(type);
        EXPECT_GE(coloursOf(out).size(), 20u) << int(type);
    }
}

TEST_F(NetMosaic, TheRandomNetBendsItsCellsAndTheBoundaryNetDrawsNothingAtRandom) {
    const Surface varied = makeVariedPicture(48, 40);
    const Surface straight = mosaic(varied, 8, 0, 0);
    const Surface bent = mosaic(varied, 8, 8, 0);
    EXPECT_NE(straight, bent);
    const std::uint32_t before = random.state();
    const Surface snapped = mosaic(varied, 8, 8, 1);
    EXPECT_EQ(random.state(), before);
    EXPECT_EQ(snapped, mosaic(varied, 8, 8, 1));
}

TEST_F(NetMosaic, OnlyTheRectangleIsPainted) {
    const Surface varied = makeVariedPicture(40, 40);
    Surface target = varied;
    Class_NetMosaic(context).Mosaic_Net(varied, target, 10, 12, 30, 28, 8, 8, 0);
    EXPECT_EQ(target.at(9, 20), varied.at(9, 20));
    EXPECT_EQ(target.at(20, 28), varied.at(20, 28));
    EXPECT_NE(target, varied);
}

TEST_F(NetMosaic, TheWallNetDrawsBlackJointsOverThePicture) {
    const Surface white = uniformPicture(33, 25, 255, 255, 255);
    for (const std::uint8_t type : {0, 1}) {
        const Surface out = lines(white, 8, 8, type);
        // The frame of the rectangle is a joint, corners included.
        for (const auto& [x, y] : {std::pair{0, 0}, {32, 0}, {0, 24}, {32, 24}, {16, 0}, {0, 12}})
            EXPECT_EQ(colourAt(out, x, y), (Colour{0, 0, 0})) << x << "," << y;
        EXPECT_EQ(coloursOf(out).size(), 2u);
        int black = 0;
        for (const Pixel p : out.pixels())
            black += (p & 0xFFFFFF) == 0;
        EXPECT_LT(black, 33 * 25 / 2) << "joints, not fills";
    }
}

TEST_F(NetMosaic, ARectangleTakenAsFilledPaintsAsTheFilledOne) {
    // The run leaves the rectangle of kept picture 1 unfilled and says so:
    // whatever it holds there, the mosaic is the one over the background,
    // spare bytes included; outside it nothing is touched.
    const Surface varied = makeVariedPicture(150, 97);
    const Pixel background = makePixel(1, 2, 3) | 0x5A000000u;
    for (const RowThreading threading : {RowThreading{1, 1 << 30}, RowThreading{2, 1}}) {
        context.threading = threading;
        random = RandomGenerator();
        Surface filled(150, 97, background);
        Class_NetMosaic(context).Mosaic_Net(varied, filled, 5, -3, 140, 90, 8, 8, 0);
        random = RandomGenerator();
        Surface garbage(150, 97, 0xA5C3E1F0u);
        Class_NetMosaic taken(context);
        taken.takeRectangleAsFilled(background);
        taken.Mosaic_Net(varied, garbage, 5, -3, 140, 90, 8, 8, 0);
        for (int y = 0; y < 97; ++y) {
            for (int x = 0; x < 150; ++x) {
                const bool inside = x >= 5 && x < 140 && y < 90;
                ASSERT_EQ(garbage.at(x, y), inside ? filled.at(x, y) : Pixel{0xA5C3E1F0u})
                    << x << "," << y << " on " << threading.threads;
            }
        }
    }
}

TEST_F(NetMosaic, ABlockSizeOfZeroIsTheOverflowError) {
    mosaic(makeVariedPicture(8, 8), 0, 8, 0);
    EXPECT_EQ(failureNumbers(), std::vector<int>{6});
}

TEST_F(NetMosaic, BandsOfRowsPaintTheCellsAndTheJointsAsOneThreadDoes) {
    // Bands of one row of cells or more, where bent cells reach across the
    // bands' borders and overlap, and the cells are numbered and their
    // joints drawn by bands of rows too; the same net each time.
    const Surface varied = makeVariedPicture(150, 97);
    struct Case {
        int size, noise;
        std::uint8_t type;
        ProcessRect rect;
    };
    const Case cases[] = {{8, 8, 0, {}},
                          {8, 64, 0, {}},
                          {13, 40, 0, {}},
                          {5, 2, 1, {}},
                          {9, 30, 0, {-7, 11, 140, 200}}};
    for (const Case& c : cases) {
        // One band over the whole picture, then bands of one row of cells
        // on one thread and on several.
        const RowThreading threadings[] = {{1, 1 << 30}, {1, 1}, {2, 1}, {3, 1}, {2, 1 << 12}};
        Surface whole;
        Surface wholeLines;
        for (const RowThreading& threading : threadings) {
            context.threading = threading;
            random = RandomGenerator();
            const Surface banded = mosaic(varied, c.size, c.noise, c.type, c.rect);
            random = RandomGenerator();
            const Surface bandedLines = lines(varied, c.size, c.noise, c.type, c.rect);
            if (whole.empty()) {
                whole = banded;
                wholeLines = bandedLines;
            }
            EXPECT_EQ(banded, whole) << c.size << " " << c.noise << " on " << threading.threads;
            EXPECT_EQ(bandedLines, wholeLines)
                << "lines " << c.size << " " << c.noise << " on " << threading.threads;
        }
        EXPECT_GE(coloursOf(whole).size(), 30u) << c.size << " " << c.noise;
        EXPECT_NE(wholeLines, varied);
    }
}

} // namespace
} // namespace lumiran::testing
