// The lit spheres, glowing blocks and mist stamps painted in bands of rows
// on several threads: spheres and stamps drawn at random overlap across the
// bands' edges and must still cover (or, as spots, light) one another in
// drawing order; the row tables of the refracting tiles, the lamp and the
// glow must give what the rule pixel by pixel gave. The hashes are those of
// the pixel-by-pixel rule.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "effects/texture/hide_effect/sphere_light.h"
#include "golden.h"
#include "texture_fixture.h"

#include <cmath>
#include <string>

namespace lumiran::testing {
namespace {

using E = Class_HideEffect;
using Call = void (*)(E&, const ProcessRect&);

struct BandCase {
    const char* name;
    Call call;
    std::uint8_t calculationFlag;
    std::size_t failures;
    const char* hash;
    bool inPlace = false; // works on ImageBits rather than TransBits
};

// 41 x 100: four bands of 32 rows, many spheres crossing their edges.
// clang-format off
const BandCase Cases[] = {
    {"RandomSmallOverlapping", [](E& e, const ProcessRect& r) {
         e.Crystal_Random(9, r.left, r.top, r.right, r.bottom, 3, -4, 8, 255, 200, 120, 20, 0, 0);
     }, 0, 0, "4be6be8003c50628"},
    {"RandomShrunkWhite", [](E& e, const ProcessRect& r) {
         e.Crystal_Random(12, r.left, r.top, r.right, r.bottom, 0, 0, 10, 255, 255, 255, 42, 2, 2);
     }, 0, 0, "b2530742897294fa"},
    {"RandomBlend", [](E& e, const ProcessRect& r) {
         e.Crystal_Random(10, r.left, r.top, r.right, r.bottom, -2, 5, 6, 255, 255, 255, -30, 0, 1);
     }, 7, 0, "bcccce3e84c86be5"},
    {"SpotsLightEachOther", [](E& e, const ProcessRect& r) {
         e.RandomSpot(15, r.left, r.top, r.right, r.bottom, 0, 0, 10, 255, 255, 255, 90, 2, 0);
     }, 0, 0, "143169acaf0b875f"},
    {"SpotsOverflow", [](E& e, const ProcessRect& r) {
         e.RandomSpot(15, r.left, r.top, r.right, r.bottom, 0, 0, 10, 32767, 0, 0, 200, 0, 0);
     }, 0, 1, ""},
    {"LineTilesSine", [](E& e, const ProcessRect& r) {
         e.Crystal_Line(11, r.left, r.top, r.right, r.bottom, 4, -3, 7, 255, 255, 255, 42, 0, 1);
     }, 0, 0, "ca4c2ee3f774ca7e"},
    {"LineTilesOverSineCut", [](E& e, const ProcessRect&) {
         e.Crystal_Line(14, -3, 5, 38, 97, 0, 0, 10, 255, 90, 255, 10, 1, 0);
     }, 0, 0, "18a89dc54f662a2c"},
    {"LineTilesCosineBlend", [](E& e, const ProcessRect& r) {
         e.Crystal_Line(13, r.left, r.top, r.right, r.bottom, 0, 0, 10, 255, 255, 255, 42, 2, 2);
     }, 7, 0, "76bd74e5b0ed75b2"},
    {"LampBelowThePicture", [](E& e, const ProcessRect& r) {
         e.Crystal_Lighting(40, r.left, r.top, r.right, r.bottom, 2, -6, -5, 255, 180, 60, 30, 0, 0);
     }, 0, 0, "ee1f03b72d7722d6"},
    {"LampOnThePicture", [](E& e, const ProcessRect& r) {
         e.Crystal_Lighting(50, r.left, r.top, r.right, r.bottom, 0, 0, 0, 255, 255, 255, -40, 0, 0);
     }, 0, 0, "77522c6fca6a80ae"},
    {"SpecularPenBlue", [](E& e, const ProcessRect& r) {
         e.Specular(45, r.left, r.top, r.right, r.bottom, -4, 3, 8, 255, 255, 255, 32, 0, 3);
     }, 0, 0, "c02f6c557b221d91"},
    {"SpecularPictureCut", [](E& e, const ProcessRect&) {
         e.Specular(60, 5, -7, 33, 90, 2, 2, 10, 100, 255, 30, -20, 1, 0);
     }, 0, 0, "be207d59fa0c1c09"},
    {"GlowFoldedBlocks", [](E& e, const ProcessRect& r) {
         e.Mosaic_Glowing(7, 7, r.left, r.top, r.right, r.bottom, 0, 0);
     }, 0, 0, "25106d82e2b7e49e"},
    {"GlowBlend", [](E& e, const ProcessRect&) {
         e.Mosaic_Glowing(9, 9, 3, 4, 40, 99, 0, 0);
     }, 7, 0, "d83ee4fd39d35a15"},
    {"MistOverThePicture", [](E& e, const ProcessRect& r) {
         e.Texture_Cloud2(12, 12, r.left, r.top, r.right, r.bottom, 0, 0);
     }, 0, 0, "d7b31f0ca3b3a81c", true},
    {"MistDeepOverWhiteCut", [](E& e, const ProcessRect&) {
         e.Texture_Cloud2(20, 20, -3, 5, 38, 97, 1, 1);
     }, 0, 0, "af00325feed465e8", true},
    {"MistBlend", [](E& e, const ProcessRect& r) {
         e.Texture_Cloud2(9, 9, r.left, r.top, r.right, r.bottom, 1, 0);
     }, 7, 0, "db47c32efbf884ed", true},
};
// clang-format on

struct HideSphereBandsTest : TextureFixture, ::testing::WithParamInterface<BandCase> {};

TEST_P(HideSphereBandsTest, GivesThePictureOfTheRulePixelByPixelOnAnyThreads) {
    const BandCase& c = GetParam();
    const Surface source = makeVariedPicture(41, 100);
    context.flags.calculationFlag = c.calculationFlag;
    context.flags.drawingColor = {200, 30, 90};
    for (const int threads : {1, 3}) {
        context.threading = {.threads = threads, .bandPixels = 1};
        context.failures.clear();
        cancel = 0;
        random = RandomGenerator();
        const Surface lit = run<E>(source, c.call, !c.inPlace);
        EXPECT_EQ(context.failures.size(), c.failures) << threads;
        // A failed run's picture is thrown away: only the failure counts.
        if (c.failures == 0) {
            EXPECT_EQ(pictureHash(lit), c.hash) << threads;
        }
    }
}

std::string caseName(const ::testing::TestParamInfo<BandCase>& param) {
    return param.param.name;
}

INSTANTIATE_TEST_SUITE_P(Bands, HideSphereBandsTest, ::testing::ValuesIn(Cases), caseName);

// The lamp's row of terms against the terms of each pixel's own normal and
// light, to the bit: under the lamp, beside it, below the picture.
TEST(LampRow, GivesTheTermsOfEachPixel) {
    struct Lamp {
        double x, toY, z;
    };
    for (const Lamp lamp : {Lamp{7, 0, 0}, Lamp{7.5, -3.25, 12}, Lamp{-20, 41, 3.5},
                            Lamp{12.3, 0.1, -8}, Lamp{3, 0, -4}, Lamp{0, 0, 1e-300}}) {
        constexpr int First = -5, Count = 30;
        double diffuse[Count], specular[Count];
        hide::lampRow(lamp.x, lamp.toY, lamp.z, First, Count, diffuse, specular);
        for (int i = 0; i < Count; ++i) {
            const hide::Vector3 to{lamp.x - (First + i), lamp.toY, lamp.z};
            const double n = std::sqrt(to.x * to.x + to.y * to.y + to.z * to.z);
            const hide::Vector3 light =
                n == 0 ? hide::Vector3{0, 0, 1} : hide::Vector3{to.x / n, to.y / n, to.z / n};
            const hide::Shade want = hide::shadeNormal(light, {0, 0, 1});
            EXPECT_EQ(diffuse[i], want.diffuse) << lamp.x << " " << i;
            EXPECT_EQ(specular[i], want.specular) << lamp.x << " " << i;
        }
    }
}

} // namespace
} // namespace lumiran::testing
