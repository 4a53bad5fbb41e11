// Gather's tiling cells and Moire's grey levels: the row-sharing and table
// paths against the one-thread walk and the rule's edge values.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

struct NeighbourhoodRows : NeighbourhoodFixture<Op> {
    Surface gatherOn(const Surface& picture, std::uint8_t size, std::uint8_t operation,
                     const ProcessRect& rect, int threads) {
        // Every row a band of its own, so that even a small picture is shared out.
        context.threading = {.threads = threads, .bandPixels = 1};
        Op effect(context);
        effect.ImageGetDiBits(picture);
        effect.PaturnMatrixMethod(size, operation, rect.left, rect.top, rect.right, rect.bottom,
                                  -30);
        Surface result;
        effect.ImageSetDiBits(result);
        return result;
    }
};

TEST_F(NeighbourhoodRows, GatherCellsGiveTheOneThreadPictureOnSeveral) {
    // Widths and heights that leave a part cell at the right and bottom,
    // where clamped neighbours fall back into the cell itself.
    const Surface picture = randomPicture(23, 19, 7, 5);
    const ProcessRect rects[] = {ProcessRect::wholePicture(23, 19), ProcessRect{3, 2, 20, 17},
                                 ProcessRect{-5, -3, 11, 40}};
    for (std::uint8_t size = 0; size < 4; ++size) {
        for (const std::uint8_t operation : {0, 1}) {
            for (const ProcessRect& rect : rects) {
                EXPECT_EQ(gatherOn(picture, size, operation, rect, 3),
                          gatherOn(picture, size, operation, rect, 1))
                    << "size " << int{size} << " operation " << int{operation} << " rect left "
                    << rect.left;
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
