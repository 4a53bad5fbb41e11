// Gather's cells and Moire's grey levels: the rows worked out on their own
// against the walk of the cells, and the table paths at the rule's edges.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "engine/colour_models.h"
#include "neighbourhood_fixture.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <string>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

// The cells walked as the rule describes them, in place, one after the
// other: what the rows worked out on their own must give.
Surface gatherByWalk(Surface picture, std::uint8_t size, std::uint8_t operation,
                     const ProcessRect& rect, int value) {
    static constexpr int Offsets[16][2] = {{0, 0},  {-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {1, 0},
                                           {-1, 1}, {0, 1},   {1, 1},  {2, -1}, {2, 0},  {2, 1},
                                           {-1, 2}, {0, 2},   {1, 2},  {2, 2}};
    static constexpr int Steps[4] = {1, 2, 3, 4};
    static constexpr int Neighbours[4] = {1, 4, 8, 15};
    const int left = std::max<int>(rect.left, 0);
    const int top = std::max<int>(rect.top, 0);
    const int right = std::min<int>(rect.right, picture.width());
    const int bottom = std::min<int>(rect.bottom, picture.height());
    auto limit = [](int v) { return std::clamp(v, 0, 255); };
    const int step = Steps[size];
    for (int y = top; y < bottom; y += step) {
        for (int x = left; x < right; x += step) {
            Pixel& centre = picture.at(x, y);
            const int m = (redOf(centre) + greenOf(centre) + blueOf(centre)) / 3;
            const int d = (m < 128 ? 0 : 255) - m;
            centre = makePixel(limit(redOf(centre) + d), limit(greenOf(centre) + d),
                               limit(blueOf(centre) + d), centre >> 24);
            for (int n = 1; n <= Neighbours[size]; ++n) {
                Pixel& p = picture.at(std::clamp(x + Offsets[n][0], left, right - 1),
                                      std::clamp(y + Offsets[n][1], top, bottom - 1));
                const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                if (operation == 0) {
                    const int grey = limit(luminanceY(r, g, b) + value - d);
                    p = makePixel(grey, grey, grey, p >> 24);
                } else {
                    p = makePixel(limit(r - d + value), limit(g - d + value), limit(b - d + value),
                                  p >> 24);
                }
            }
        }
    }
    return picture;
}

struct NeighbourhoodRows : NeighbourhoodFixture<Op> {
    // Every row a band of its own, so that even a small picture is shared
    // out; TransBits fetched, or left to the call as the program runs it.
    Surface gatherOn(const Surface& picture, std::uint8_t size, std::uint8_t operation,
                     const ProcessRect& rect, int threads, bool lent) {
        context.threading = {.threads = threads, .bandPixels = 1};
        Op effect(context);
        effect.ImageGetDiBits(picture);
        if (!lent) effect.ImageGetDiBitsTrans(picture);
        effect.PaturnMatrixMethod(size, operation, rect.left, rect.top, rect.right, rect.bottom,
                                  -30);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
};

TEST_F(NeighbourhoodRows, GatherRowsGiveTheWalkOfOverlappingCells) {
    // Sizes that leave a part cell at the right and bottom, where clamped
    // neighbours fall back into the cell; areas of one, two and three rows
    // or columns, where the first row's and column's clamps meet.
    const Surface picture = randomPicture(23, 19, 256, 5);
    const Surface levels = randomPicture(23, 19, 3, 6);
    const ProcessRect rects[] = {
        ProcessRect::wholePicture(23, 19),
        {3, 2, 20, 17},
        {-5, -3, 11, 40},
        {4, 6, 5, 7},
        {0, 5, 23, 6},
        {7, 0, 8, 19},
        {2, 2, 4, 4},
        {1, 3, 4, 6},
        {20, 16, 30, 30},
    };
    for (std::uint8_t size = 0; size < 4; ++size) {
        for (const std::uint8_t operation : {0, 1}) {
            for (const ProcessRect& rect : rects) {
                for (const Surface* source : {&picture, &levels}) {
                    const Surface expected = gatherByWalk(*source, size, operation, rect, -30);
                    const std::string what =
                        "size " + std::to_string(size) + " operation " + std::to_string(operation) +
                        " rect " + std::to_string(rect.left) + "," + std::to_string(rect.top);
                    EXPECT_EQ(gatherOn(*source, size, operation, rect, 1, false), expected) << what;
                    EXPECT_EQ(gatherOn(*source, size, operation, rect, 3, true), expected) << what;
                }
            }
        }
    }
}

TEST_F(NeighbourhoodRows, MoireLevelsAtTheDivisorsEdges) {
    const Surface step = makePicture(4, 3, [](int x, int) {
        return x >= 2 ? makePixel(200, 200, 200) : makePixel(100, 100, 100);
    });
    struct Case {
        std::int16_t divisor;
        bool marked; // the pixel before the step takes the drawing colour
        bool fails;
    };
    // A negative divisor makes every level 0 or less: no step is marked.
    // A divisor above every grey makes both sides level 0 or 1.
    for (const Case c : {Case{42, true, false}, Case{-42, false, false}, Case{1, true, false},
                         Case{255, false, false}, Case{120, true, false}, Case{150, false, false},
                         Case{0, false, true}}) {
        context.failures.clear();
        const Surface result = runTrans(step, [c](Op& e, const ProcessRect& r) {
            e.Moire(c.divisor, r.left, r.top, r.right, r.bottom);
        });
        const std::string what = "divisor " + std::to_string(c.divisor);
        EXPECT_EQ(!context.failures.empty(), c.fails) << what;
        if (c.fails) continue;
        EXPECT_EQ(colourAt(result, 1, 0) == (Colour{100, 100, 100}), !c.marked) << what;
        EXPECT_EQ(colourAt(result, 0, 0), (Colour{100, 100, 100})) << what;
    }
}

} // namespace
} // namespace lumiran::testing
