// Cutting Picture against the plain reading of its rule: every patch drawn
// in turn and copied block by block, on one thread and on several, for
// patches that cross mask words and tiles, pictures of unequal sizes and
// rectangles beyond the picture.
#include "geometry_fixture.h"

#include <algorithm>

namespace lumiran::testing {
namespace {

struct Case {
    int sourceWidth, sourceHeight;
    int targetWidth, targetHeight;
    std::int16_t patchWidth, patchHeight;
    ProcessRect rect;
};

// One patch per column of every patchHeight-th row, places across then
// down, each block copied where it lies inside both pictures.
Surface reference(const Surface& source, Surface target, const Case& c, RandomGenerator& random) {
    const ProcessRect& r = c.rect;
    const int spanX = r.right - r.left + 1, spanY = r.bottom - r.top + 1;
    for (int y = r.top; y < r.bottom; y += c.patchHeight) {
        for (int k = 0; k < r.right - r.left; ++k) {
            const int px = roundTo<std::int32_t>(r.left + random.next() * spanX);
            const int py = roundTo<std::int32_t>(r.top + random.next() * spanY);
            for (int j = py; j < py + c.patchHeight; ++j) {
                for (int i = px; i < px + c.patchWidth; ++i) {
                    if (i >= 0 && j >= 0 && i < std::min(source.width(), target.width()) &&
                        j < std::min(source.height(), target.height())) {
                        target.at(i, j) = source.at(i, j);
                    }
                }
            }
        }
    }
    return target;
}

TEST_F(GeometryFixture, CuttingPictureCopiesEveryDrawnPatch) {
    const Case cases[] = {
        {150, 90, 150, 90, 4, 4, {0, 0, 150, 90}},
        {150, 90, 150, 90, 1, 1, {0, 0, 150, 90}},
        // Runs that end on, cross and pass a 64-pixel word; tall patches
        // that cross the rows of the mask's tiles.
        {150, 90, 150, 90, 63, 2, {0, 0, 150, 90}},
        {150, 90, 150, 90, 64, 9, {3, 0, 150, 90}},
        {150, 90, 150, 90, 65, 3, {0, 5, 150, 90}},
        {200, 40, 200, 40, 130, 17, {0, 0, 200, 40}},
        // Rectangles partly or wholly outside the picture.
        {150, 90, 150, 90, 5, 3, {-40, -30, 90, 80}},
        {150, 90, 150, 90, 7, 7, {140, 80, 300, 200}},
        {150, 90, 150, 90, 3, 3, {-90, -90, -20, -10}},
        {150, 90, 150, 90, 100, 6, {-70, -5, 100, 90}},
        {150, 90, 150, 90, 3, 40, {0, -30, 150, 60}},
        // Kept pictures of different sizes: patches clip to both.
        {150, 90, 100, 120, 6, 5, {0, 0, 150, 120}},
        {80, 130, 140, 60, 9, 2, {-5, 0, 140, 130}},
    };
    const Pixel back = makePixel(1, 2, 3);
    for (const Case& c : cases) {
        const Surface source = positionPicture(c.sourceWidth, c.sourceHeight);
        const Surface target(c.targetWidth, c.targetHeight, back);
        RandomGenerator expectedRandom;
        const Surface expected = reference(source, target, c, expectedRandom);
        for (const int threads : {1, 3}) {
            context.threading = {.threads = threads, .bandPixels = 1};
            random = RandomGenerator();
            Surface kept0 = source, kept1 = target;
            context.kept0 = &kept0;
            context.kept1 = &kept1;
            Class_Geometry effect(context);
            const ProcessRect& r = c.rect;
            effect.CuttingPicture(c.patchWidth, c.patchHeight, r.left, r.top, r.right, r.bottom);
            const auto what = ::testing::Message()
                              << c.patchWidth << "x" << c.patchHeight << " rect " << r.left << ","
                              << r.top << "," << r.right << "," << r.bottom << " threads "
                              << threads;
            EXPECT_EQ(kept1, expected) << what;
            EXPECT_EQ(random.state(), expectedRandom.state()) << what;
            EXPECT_EQ(kept0, source) << what;
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

// Laid on itself the picture stays, yet the draws are made.
TEST_F(GeometryFixture, CuttingPictureOntoItselfOnlyDraws) {
    const Surface picture = positionPicture(40, 30);
    Surface both = picture;
    context.kept0 = context.kept1 = &both;
    Class_Geometry effect(context);
    effect.CuttingPicture(4, 4, 0, 0, 40, 30);
    EXPECT_EQ(both, picture);
    RandomGenerator expected;
    expected.skip(std::uint64_t{2} * 40 * ((30 + 3) / 4));
    EXPECT_EQ(random.state(), expected.state());
}

} // namespace
} // namespace lumiran::testing
