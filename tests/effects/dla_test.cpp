// Class_DLA: the seed alone, an aggregate that hangs together from the seed,
// cancel, and the curves kept inside their rectangle.
#include "effects/texture/dla/class_dla.h"
#include "texture_fixture.h"

#include <queue>

namespace lumiran::testing {
namespace {

struct DlaTest : TextureFixture {
    Surface grow(int count, int width = 61, int height = 61) {
        Surface picture(width, height);
        Class_DLA dla(context);
        dla.Draw_DLA(picture, 0, 0, static_cast<std::int16_t>(width),
                     static_cast<std::int16_t>(height), static_cast<std::int16_t>(count), 255, 255,
                     255, 2, 1);
        EXPECT_TRUE(context.failures.empty());
        return picture;
    }

    static int plotted(const Surface& picture) {
        int n = 0;
        for (const Pixel p : picture.pixels())
            n += redOf(p) != 0;
        return n;
    }
};

TEST_F(DlaTest, CountZeroPlotsOnlyTheSeed) {
    const Surface seed = grow(0, 41, 31);
    EXPECT_EQ(plotted(seed), 1);
    // The seed within a pixel of the middle of the centred square of side 31.
    int seedX = -1, seedY = -1;
    for (int y = 0; y < 31; ++y) {
        for (int x = 0; x < 41; ++x) {
            if (redOf(seed.at(x, y)) != 0) seedX = x, seedY = y;
        }
    }
    EXPECT_NEAR(seedX, 20, 1);
    EXPECT_NEAR(seedY, 15, 1);
}

TEST_F(DlaTest, EveryPlottedPixelHangsOnTheSeed) {
    const Surface tree = grow(300);
    EXPECT_GT(plotted(tree), 150);
    ASSERT_NE(redOf(tree.at(30, 30)), 0); // the seed
    // Flood from the seed through plotted neighbours (8-connected).
    std::vector<bool> seen(tree.pixelCount());
    std::queue<std::pair<int, int>> open;
    open.push({30, 30});
    seen[30 * 61 + 30] = true;
    int reached = 0;
    while (!open.empty()) {
        const auto [x, y] = open.front();
        open.pop();
        ++reached;
        for (int j = -1; j <= 1; ++j) {
            for (int i = -1; i <= 1; ++i) {
                const int nx = x + i, ny = y + j;
                if (nx < 0 || ny < 0 || nx >= 61 || ny >= 61) continue;
                const std::size_t at = static_cast<std::size_t>(ny) * 61 + nx;
                if (seen[at] || redOf(tree.at(nx, ny)) == 0) continue;
                seen[at] = true;
                open.push({nx, ny});
            }
        }
    }
    EXPECT_EQ(reached, plotted(tree));
}

struct CancelHalfway : ProgressSink {
    CancelFlag& cancel;
    explicit CancelHalfway(CancelFlag& flag) : cancel(flag) {}
    void showPercent(int percent) override {
        if (percent >= 50) cancel = 1;
    }
};

TEST_F(DlaTest, CancelStopsTheWalkersWithProgress) {
    const int whole = plotted(grow(400));
    random = RandomGenerator();
    CancelHalfway sink(cancel);
    context.progress = &sink;
    const int half = plotted(grow(400));
    EXPECT_LT(half, whole);
    EXPECT_GT(half, 1);
}

TEST_F(DlaTest, CurvesStayInsideTheirRectangle) {
    for (std::uint8_t family = 0; family < 6; ++family) {
        Surface picture(80, 60);
        Class_DLA dla(context);
        dla.Draw_CurveStart(picture, 3, family, 10, 5, 70, 55, 255, 0, 0, 1);
        int inside = 0, outside = 0;
        for (int y = 0; y < 60; ++y) {
            for (int x = 0; x < 80; ++x) {
                if (redOf(picture.at(x, y)) == 0) continue;
                (x >= 10 && x < 70 && y >= 5 && y < 55 ? inside : outside)++;
            }
        }
        EXPECT_GT(inside, 40) << int(family);
        EXPECT_EQ(outside, 0) << int(family);
    }
}

TEST_F(DlaTest, TheCurvesUnitIsTheRoundedQuotient) {
    // Hilbert at depth 2 spans 3 units: 62 / 3 rounds to 21, a curve of 63
    // pixels that the clip cuts to the whole side (20 would leave one free).
    struct Case {
        int side;
        int span;
    };
    for (const Case c : {Case{62, 62}, Case{61, 61}, Case{64, 64}}) {
        Surface picture(c.side, c.side);
        Class_DLA dla(context);
        dla.Draw_CurveStart(picture, 2, 0, 0, 0, static_cast<std::int16_t>(c.side),
                            static_cast<std::int16_t>(c.side), 255, 0, 0, 1);
        int first = c.side, last = -1;
        for (int y = 0; y < c.side; ++y) {
            for (int x = 0; x < c.side; ++x) {
                if (redOf(picture.at(x, y)) == 0) continue;
                first = std::min(first, x);
                last = std::max(last, x);
            }
        }
        EXPECT_EQ(last - first + 1, c.span) << c.side;
    }
}

} // namespace
} // namespace lumiran::testing
