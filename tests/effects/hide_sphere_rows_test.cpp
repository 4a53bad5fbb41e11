// The lit spheres over the whole rectangle, pinned across lenses,
// backgrounds, lights, radii, cut rectangles and blends: the row loops work
// the shading out a row at a time, and must give what the rule pixel by
// pixel gave.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "golden.h"
#include "texture_fixture.h"

#include <string>

namespace lumiran::testing {
namespace {

using E = Class_HideEffect;

enum class Method { Ball, Line, Specular, Lighting, Random, Spot };

struct SphereCase {
    const char* name;
    Method method;
    double percent;
    std::array<std::int16_t, 3> light;
    std::array<std::int16_t, 3> reflection;
    double ambient;
    std::uint8_t type; // lens, draw mode
    std::uint8_t last; // background, selector
    ProcessRect rect;
    std::uint8_t calculationFlag;
    std::size_t failures;
    const char* hash;
};

constexpr ProcessRect Whole{0, 0, 37, 29};

// Hashes of the pictures the per-pixel rule gave before the row loops.
// clang-format off
const SphereCase Cases[] = {
    {"BallDefaults", Method::Ball, 50, {0, 0, 10}, {255, 255, 255}, 42, 0, 0, Whole, 0, 0, "478f95b2c407fc1c"},
    {"BallMagnifiedBlackTiles", Method::Ball, 13, {3, -7, 5}, {255, 128, 0}, -60, 1, 1, Whole, 0, 0, "bf7e813bb44ee093"},
    {"BallShrunkWhiteNoLight", Method::Ball, 20, {0, 0, 0}, {255, 255, 255}, 42, 2, 2, Whole, 0, 0, "951842e087d09479"},
    {"BallMirroredWholeSquare", Method::Ball, 100, {-10, 10, 1}, {90, 255, 17}, 200, 3, 0, Whole, 0, 0, "11f1f42844f631ab"},
    {"BallCentreColour", Method::Ball, 30, {5, 5, 5}, {255, 255, 255}, 0, 4, 0, Whole, 0, 0, "b9278b700f293c68"},
    {"BallCutRectangle", Method::Ball, 25, {2, -3, 8}, {200, 100, 50}, 10, 0, 2, {-5, 4, 30, 40}, 0, 0, "bad44768e2dcb0a4"},
    {"BallBlend", Method::Ball, 40, {1, 2, 9}, {255, 255, 255}, 42, 0, 0, Whole, 7, 0, "cfc5231ab3b0d341"},
    {"BallHighlightOverflows", Method::Ball, 50, {0, 0, 10}, {32767, 0, 0}, 200, 0, 0, Whole, 0, 1, "0b10aed76ad18823"},
    {"BallStrongButInRange", Method::Ball, 50, {0, 0, 10}, {32000, -32000, 0}, -200, 0, 0, Whole, 0, 0, "20fa2d6839df57ad"},
    {"LineSine", Method::Line, 50, {0, 0, 10}, {255, 255, 255}, 42, 0, 0, Whole, 0, 0, "881fab100410e631"},
    {"LineOverSine", Method::Line, 17, {-4, 6, 3}, {255, 255, 255}, 42, 1, 1, Whole, 0, 0, "c02586962c308e12"},
    {"LineTangent", Method::Line, 35, {4, 0, 7}, {255, 60, 255}, -20, 4, 2, {3, -2, 33, 25}, 0, 0, "e6d491f284532e93"},
    {"SpecularPen", Method::Specular, 50, {0, 0, 10}, {255, 255, 255}, 42, 0, 0, Whole, 0, 0, "69a0994254426ed4"},
    {"SpecularPictureGreen", Method::Specular, 70, {-3, 4, 6}, {255, 0, 120}, -30, 1, 2, Whole, 0, 0, "a23f440bfbf9c454"},
    {"SpecularBlend", Method::Specular, 45, {2, 2, 10}, {255, 255, 255}, 42, 1, 0, {2, 3, 30, 20}, 7, 0, "af676d86c05789e1"},
    {"LightingCentred", Method::Lighting, 50, {0, 0, 10}, {255, 255, 255}, -40, 0, 0, Whole, 0, 0, "6bb50eccaa460901"},
    {"LightingMoved", Method::Lighting, 30, {3, -2, 4}, {100, 200, 255}, 15, 0, 0, {1, 1, 36, 28}, 0, 0, "c924815886b71500"},
    {"RandomMagnified", Method::Random, 15, {3, -2, 7}, {255, 128, 255}, 30, 1, 2, Whole, 0, 0, "ab4c62208d8b403b"},
    {"RandomBlend", Method::Random, 25, {0, 0, 10}, {255, 255, 255}, 42, 0, 0, {-3, 2, 30, 33}, 7, 0, "58feef9dfcaa5490"},
    {"SpotsSmaller", Method::Spot, 20, {-5, 5, 5}, {200, 255, 90}, 60, 2, 0, Whole, 0, 0, "42167a41c2a452b5"},
};
// clang-format on

struct HideSphereRowsTest : TextureFixture, ::testing::WithParamInterface<SphereCase> {};

TEST_P(HideSphereRowsTest, GivesThePictureOfTheRulePixelByPixel) {
    const SphereCase& c = GetParam();
    context.flags.calculationFlag = c.calculationFlag;
    context.flags.drawingColor = {200, 30, 90};
    const Surface lit = run<E>(
        makeVariedPicture(37, 29),
        [&](E& e, const ProcessRect& r) {
            const auto [x, y, z] = c.light;
            const auto [red, green, blue] = c.reflection;
            switch (c.method) {
            case Method::Ball:
                e.Crystal_Ball(c.percent, r.left, r.top, r.right, r.bottom, x, y, z, red, green,
                               blue, c.ambient, c.type, c.last);
                break;
            case Method::Line:
                e.Crystal_Line(c.percent, r.left, r.top, r.right, r.bottom, x, y, z, red, green,
                               blue, c.ambient, c.type, c.last);
                break;
            case Method::Specular:
                e.Specular(c.percent, r.left, r.top, r.right, r.bottom, x, y, z, red, green, blue,
                           c.ambient, c.type, c.last);
                break;
            case Method::Random:
                e.Crystal_Random(c.percent, r.left, r.top, r.right, r.bottom, x, y, z, red, green,
                                 blue, c.ambient, c.type, c.last);
                break;
            case Method::Spot:
                e.RandomSpot(c.percent, r.left, r.top, r.right, r.bottom, x, y, z, red, green, blue,
                             c.ambient, c.type, c.last);
                break;
            case Method::Lighting:
                e.Crystal_Lighting(c.percent, r.left, r.top, r.right, r.bottom, x, y, z, red, green,
                                   blue, c.ambient, 0, 0);
                break;
            }
        },
        true, c.rect);
    EXPECT_EQ(context.failures.size(), c.failures);
    EXPECT_EQ(pictureHash(lit), c.hash);
}

std::string caseName(const ::testing::TestParamInfo<SphereCase>& param) {
    return param.param.name;
}

INSTANTIATE_TEST_SUITE_P(Spheres, HideSphereRowsTest, ::testing::ValuesIn(Cases), caseName);

} // namespace
} // namespace lumiran::testing
