#include "engine/drawing/blit.h"
#include "engine/raster_step.h"
#include "test_support.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

using testing::makePicture;
using testing::makeVariedPicture;

// Every pixel names its own place, so a copy shows where each pixel came from.
Surface coordinatePicture(int width, int height) {
    return makePicture(width, height, [](int x, int y) { return makePixel(x, y, 7); });
}

TEST(BitBlt, EachRasterFlagCombinesAsTheRasterStep) {
    const Surface source = makeVariedPicture(6, 5);
    const Surface base =
        makePicture(6, 5, [](int x, int y) { return makePixel(y * 40, x * 30, 99); });
    for (int flag = 0; flag <= 10; ++flag) {
        Surface blitted = base;
        Surface stepped = base;
        BitBlt(blitted, 1, 1, 4, 3, source, 1, 1, rasterCodeForFlag(flag));
        rasterStep(static_cast<std::uint8_t>(flag), source, stepped, ProcessRect{1, 1, 5, 4});
        EXPECT_TRUE(blitted.sameColours(stepped)) << flag;
    }
    // Codes that ignore the source, and an index outside the list (code 0).
    Surface picture = base;
    BitBlt(picture, 0, 0, 6, 5, source, 0, 0, DSTINVERT);
    EXPECT_EQ(picture.at(2, 3) & 0xFFFFFF, ~base.at(2, 3) & 0xFFFFFF);
    BitBlt(picture, 0, 0, 6, 5, source, 0, 0, rasterCodeForFlag(11));
    EXPECT_EQ(picture.at(5, 4) & 0xFFFFFF, 0u);
    BitBlt(picture, 0, 0, 6, 5, source, 0, 0, WHITENESS);
    EXPECT_EQ(picture.at(0, 0) & 0xFFFFFF, 0xFFFFFFu);
}

// An unscaled stretch clips exactly as the copy does.
TEST(BitBlt, ClipsToBothPicturesAtEveryEdge) {
    struct Case {
        int x, y, w, h, xs, ys;
    };
    const Surface source = coordinatePicture(5, 4);
    for (const Case c :
         {Case{-2, 0, 4, 4, 0, 0}, Case{3, 0, 9, 4, 0, 0}, Case{0, -3, 5, 9, 0, 0},
          Case{0, 2, 5, 9, 0, 0}, Case{0, 0, 5, 4, -2, 1}, Case{0, 0, 5, 4, 3, -1},
          Case{-100, -100, 300, 300, 4, 3}, Case{0, 0, 0, 4, 0, 0}, Case{0, 0, 5, -4, 0, 0}}) {
        for (const bool stretched : {false, true}) {
            if (stretched && (c.w < 0 || c.h < 0)) continue; // a mirror both ways
            Surface target(6, 5, makePixel(1, 1, 1));
            if (stretched) {
                StretchBlt(target, c.x, c.y, c.w, c.h, source, c.xs, c.ys, c.w, c.h, SRCCOPY);
            } else {
                BitBlt(target, c.x, c.y, c.w, c.h, source, c.xs, c.ys, SRCCOPY);
            }
            for (int y = 0; y < 5; ++y) {
                for (int x = 0; x < 6; ++x) {
                    const int sx = x - c.x + c.xs;
                    const int sy = y - c.y + c.ys;
                    const bool copied = x >= c.x && x < c.x + c.w && y >= c.y && y < c.y + c.h &&
                                        sx >= 0 && sx < 5 && sy >= 0 && sy < 4;
                    EXPECT_EQ(target.at(x, y), copied ? makePixel(sx, sy, 7) : makePixel(1, 1, 1))
                        << stretched << " " << c.x << "," << c.y << " at " << x << "," << y;
                }
            }
        }
    }
}

TEST(BitBlt, OverlappingCopyWithinOnePictureReadsTheOldPixels) {
    for (const auto& [dx, dy] : {std::pair{2, 0}, {-2, 0}, {0, 2}, {0, -2}, {1, 1}, {-1, -1}}) {
        Surface picture = coordinatePicture(8, 8);
        const Surface before = picture;
        BitBlt(picture, 2 + dx, 2 + dy, 4, 4, picture, 2, 2, SRCCOPY);
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 4; ++x)
                EXPECT_EQ(picture.at(2 + dx + x, 2 + dy + y), before.at(2 + x, 2 + y)) << dx << dy;
        }
    }
}

// One row whose pixels carry their column in red and green.
Surface numberedRow(int width) {
    return makePicture(width, 1, [](int x, int) { return makePixel(x & 0xFF, x >> 8, 7); });
}
int columnOf(Pixel p) {
    return redOf(p) + 256 * greenOf(p);
}

TEST(StretchBlt, NonIntegerFactorsTakeEverySourcePixelEvenly) {
    for (const auto& [from, to] :
         {std::pair{3, 7}, {7, 3}, {5, 8}, {8, 5}, {4096, 3000}, {1, 9}, {9, 1}}) {
        Surface target(to, 1, makePixel(0, 0, 1));
        StretchBlt(target, 0, 0, to, 1, numberedRow(from), 0, 0, from, 1, SRCCOPY);
        // Enlarged, each source pixel appears n or n + 1 times in a row;
        // shrunk, once at most, and the steps between those taken differ by
        // one at most.
        std::vector<int> counts(from, 0);
        std::vector<int> steps{0};
        for (int x = 0; x < to; ++x) {
            ASSERT_EQ(blueOf(target.at(x, 0)), 7) << "pixel " << x << " was not written";
            ++counts[columnOf(target.at(x, 0))];
            if (x > 0) steps.push_back(columnOf(target.at(x, 0)) - columnOf(target.at(x - 1, 0)));
        }
        if (to > 1) steps.erase(steps.begin());
        const auto [lowCount, highCount] = std::ranges::minmax(counts);
        const auto [lowStep, highStep] = std::ranges::minmax(steps);
        EXPECT_GE(lowStep, 0);
        EXPECT_LE(highStep - lowStep, 1) << from << "->" << to;
        if (from <= to) {
            EXPECT_LE(highCount - lowCount, 1) << from << "->" << to;
        } else {
            EXPECT_EQ(highCount, 1) << from << "->" << to;
        }
    }
}

TEST(StretchBlt, PinsTheCentreMappingAndMirrorsOnOppositeSigns) {
    // Target pixel i takes source floor((2 i + 1) * 3 / 10) of three: 0 0 1 2 2.
    const Surface source = coordinatePicture(3, 2);
    struct Case {
        int x, y, w, h, xs, ys, ws, hs;
        int columns[5];
        int topRow;
    };
    for (const Case& c : {Case{0, 0, 5, 2, 0, 0, 3, 2, {0, 0, 1, 2, 2}, 0},
                          Case{5, 0, -5, 2, 0, 0, 3, 2, {2, 2, 1, 0, 0}, 0},
                          Case{0, 2, 5, -2, 0, 0, 3, 2, {0, 0, 1, 2, 2}, 1},
                          Case{0, 0, 5, 2, 3, 0, -3, 2, {2, 2, 1, 0, 0}, 0},
                          Case{5, 2, -5, -2, 3, 2, -3, -2, {0, 0, 1, 2, 2}, 0}}) {
        Surface target(5, 2);
        StretchBlt(target, c.x, c.y, c.w, c.h, source, c.xs, c.ys, c.ws, c.hs, SRCCOPY);
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(target.at(x, 0), makePixel(c.columns[x], c.topRow, 7))
                << c.x << "," << c.w << "," << c.ws;
    }
    // PaintPicture mirrors the whole picture exactly.
    const Surface picture = makeVariedPicture(7, 4);
    Surface flipped(7, 4);
    PaintPicture(flipped, picture, 7, 0, -7, 4);
    for (int x = 0; x < 7; ++x)
        EXPECT_EQ(flipped.at(x, 2), picture.at(6 - x, 2));
}

TEST(StretchBlt, ClipsAndReadsItsOwnPictureAsBefore) {
    // A stretch onto its own picture reads the pixels as they were.
    Surface row = numberedRow(8);
    StretchBlt(row, 0, 0, 8, 1, row, 0, 0, 4, 1, SRCCOPY);
    for (int x = 0; x < 8; ++x)
        EXPECT_EQ(columnOf(row.at(x, 0)), x / 2);
    // Target pixels whose source lies outside the source keep their colour;
    // those outside the target are dropped; zero extents draw nothing.
    Surface target(6, 1, makePixel(0, 0, 1));
    StretchBlt(target, -2, 0, 10, 1, numberedRow(5), -2, 0, 10, 1, SRCCOPY);
    for (int x = 0; x < 6; ++x)
        EXPECT_EQ(blueOf(target.at(x, 0)), x < 5 ? 7 : 1) << x;
    const Surface before = target;
    StretchBlt(target, 0, 0, 0, 1, numberedRow(5), 0, 0, 5, 1, SRCCOPY);
    StretchBlt(target, 0, 0, 6, 1, numberedRow(5), 0, 0, 5, 0, SRCCOPY);
    PaintPicture(target, Surface(), 0, 0, 6, 1);
    EXPECT_EQ(target, before);
}

TEST(StretchBlt, HugeExtentsStayExact) {
    // A one-pixel window onto a stretch of two billion pixels.
    Surface target(1, 1);
    StretchBlt(target, -2'000'000'000, 0, 2'100'000'000, 1, numberedRow(300), 0, 0, 300, 1,
               SRCCOPY);
    EXPECT_EQ(columnOf(target.at(0, 0)), stretchSourceOffset(2'000'000'000, 2'100'000'000, 300));
    EXPECT_EQ(stretchSourceOffset(2'000'000'000, 2'100'000'000, 300), 285);
}

} // namespace
} // namespace lumiran
