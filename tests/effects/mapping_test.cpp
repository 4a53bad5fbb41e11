// Class_3DMapping: where the view puts the surface, and the surface of
// noise.
#include "effects/effect_fixture.h"
#include "effects/geometry/mapping/class_3d_mapping.h"
#include "test_support.h"

namespace lumiran::testing {
namespace {

struct MappingFixture : EffectFixture<Class_3DMapping> {
    Surface map(const Surface& source, std::int16_t viewX, std::int16_t viewY, std::uint8_t type,
                std::uint8_t kind) {
        Surface target(source.width(), source.height(), makePixel(5, 5, 5));
        Class_3DMapping effect(context);
        effect.Mapping(source, target, viewX, viewY, type, kind, 255, 255, 255, 180, 3);
        return target;
    }
};

// With both view angles 0, sx = 1.2 hw + u and sy = 1.1 hh + z: on the
// nearly flat surface 7 (z below one pixel here) the whole mesh folds onto
// the row 1.1 hh, 22 on a picture 40 high.
TEST_F(MappingFixture, ViewAnglesZeroSeeTheSurfaceEdgeOn) {
    const Surface s = map(makeVariedPicture(40, 40), 0, 0, MeshInColour, 7);
    int white = 0;
    for (int y = 0; y < 40; ++y) {
        for (int x = 0; x < 40; ++x) {
            if (s.at(x, y) == makePixel(255, 255, 255)) {
                ++white;
                EXPECT_TRUE(y >= 21 && y <= 23) << x << "," << y;
            } else {
                // The target is cleared to the background colour, black.
                EXPECT_EQ(s.at(x, y), Pixel{0}) << x << "," << y;
            }
        }
    }
    EXPECT_GT(white, 10);
}

TEST_F(MappingFixture, TheNoiseSurfaceIsNewAtEachRun) {
    const Surface picture = makeVariedPicture(30, 30);
    const Surface first = map(picture, 30, -60, PictureOnSurface, 9);
    const Surface second = map(picture, 30, -60, PictureOnSurface, 9);
    EXPECT_NE(first, second);
    EXPECT_EQ(cancel, 0);
}

TEST_F(MappingFixture, OnePixelAndEveryDrawTypeRunWithoutFailure) {
    for (const std::uint8_t type : {MeshInColour, MeshInPicture, PictureOnSurface}) {
        for (std::uint8_t kind = 0; kind <= 10; ++kind) {
            map(Surface(1, 1, makePixel(9, 9, 9)), 30, -60, type, kind);
            map(makeVariedPicture(17, 11), -180, 180, type, kind);
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

} // namespace
} // namespace lumiran::testing
