// The cases of the dialogs' switches served by Class_Mosaic, Class_NetMosaic
// and Class_Pattern: the values reach the right arguments.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "effects/texture/mosaic/class_mosaic.h"
#include "effects/texture/pattern/class_pattern.h"
#include "planned.h"
#include "texture_fixture.h"

#include <string_view>

namespace lumiran::testing {
namespace {

struct TextureDispatch : TextureFixture {
    const Surface picture = makeVariedPicture(40, 30);

    // What OK leaves for the named effect with these values.
    Surface planned(std::string_view name, const ControlValues& values) {
        random = RandomGenerator();
        return runPlanned(context, name, values, picture);
    }

    ControlValues defaults(std::string_view name) {
        return defaultControlValues(*findEffect(name));
    }

    template <typename Class, typename Call>
    Surface direct(Call call, bool trans = false) {
        random = RandomGenerator();
        return run<Class>(picture, call, trans);
    }
};

TEST_F(TextureDispatch, TheCheckedPatternsBinarizingRowEndsInBlackAndWhite) {
    ControlValues v = defaults("Checked Pattern");
    v.eType = 3;
    const Surface binarized = planned("Checked Pattern", v);
    ASSERT_FALSE(binarized.empty());
    for (const Pixel p : binarized.pixels()) {
        for (const int c : {redOf(p), greenOf(p), blueOf(p)})
            ASSERT_TRUE(c == 0 || c == 255) << c;
    }
    v.eType = 2;
    EXPECT_EQ(planned("Checked Pattern", v), direct<Class_Pattern>([](auto& e, auto r) {
                  e.CheckedPattern(true, 12, 12, r.left, r.top, r.right, r.bottom, 2);
              }));
}

TEST_F(TextureDispatch, ListRowsPickShapesDirectionsAndTypes) {
    ControlValues v = defaults("Triangle Mosaic");
    v.eType = 3;
    EXPECT_EQ(planned("Triangle Mosaic", v), direct<Class_Mosaic>([](auto& e, auto r) {
                  e.Mosaic_Circle(12, r.left, r.top, r.right, r.bottom, 5);
              }));
    v = defaults("Lozenge Mosaic 2");
    v.eType = 7;
    EXPECT_EQ(planned("Lozenge Mosaic 2", v), direct<Class_Mosaic>([](auto& e, auto r) {
                  e.Mosaic_Circle(8, r.left, r.top, r.right, r.bottom, 15);
              }));
    // "垂直" (row 0) shifts columns of blocks, "水平" rows.
    v = defaults("Gap Mosaic");
    v.eType = 1;
    EXPECT_EQ(planned("Gap Mosaic", v), direct<Class_Mosaic>([](auto& e, auto r) {
                  e.Mosaic_Blick(8, 8, r.left, r.top, r.right, r.bottom, true, 1);
              }));
    v.color = 1;
    EXPECT_EQ(planned("Tile Wall Gap", v), direct<Class_Pattern>([](auto& e, auto r) {
                  e.LineInput_Gap(8, 8, r.left, r.top, r.right, r.bottom, false, 1);
              }));
    // The colour row is the shippou mosaic's type, the type row its kind.
    v = defaults("Shippou-Tunagi Mosaic");
    v.color = 1;
    EXPECT_EQ(planned("Shippou-Tunagi Mosaic", v),
              direct<Class_Mosaic>(
                  [](auto& e, auto r) {
                      e.Mosaic_ShippouTunagi(12, r.left, r.top, r.right, r.bottom, 1, 0);
                  },
                  true));
}

TEST_F(TextureDispatch, SlidersReachTheirArguments) {
    ControlValues v = defaults("Gradation Mosaic 3");
    v.sliders = {-10, 3, 7, 16, 200, 50, 0, 0};
    EXPECT_EQ(planned("Gradation Mosaic 3", v), direct<Class_Mosaic>([](auto& e, auto r) {
                  e.Mosaic_GradShading(16, r.left, r.top, r.right, r.bottom, 0, -10, 3, 7, 200, 50);
              }));
    v = defaults("Osero");
    v.sliders = {16, 90, 10, 20, 30, 0, 0, 0};
    EXPECT_EQ(planned("Osero", v), direct<Class_Mosaic>([](auto& e, auto r) {
                  e.Mosaic_Osero(16, r.left, r.top, r.right, r.bottom, 90, 10, 20, 30);
              }));
    v = defaults("Color Tile 2");
    EXPECT_EQ(planned("Color Tile 2", v), direct<Class_Pattern>([](auto& e, auto r) {
                  e.ColorTile2(0, r.left, r.top, r.right, r.bottom, 255, 192, 192, 12, 84, 12, 5,
                               5);
              }));
    v = defaults("Rinbu");
    v.processColor = {10, 200, 30};
    v.eType = 2;
    EXPECT_EQ(planned("Rinbu", v), direct<Class_Pattern>([](auto& e, auto r) {
                  e.Wamai(2, r.left, r.top, r.right, r.bottom, 10, 200, 30, 5, 12);
              }));
}

TEST_F(TextureDispatch, TheSwaysAndCycleThreeAreCalledWithWeightAndTypeZero) {
    ControlValues v = defaults("Color Sway 3");
    v.eType = 4;
    v.sliders[6] = 9;
    EXPECT_EQ(planned("Color Sway 3", v), direct<Class_Pattern>([](auto& e, auto r) {
                  e.Color_Sway3(0, 0, r.left, r.top, r.right, r.bottom, 138, 170, 128, 170, 118,
                                170);
              }));
    v = defaults("Cycle 3");
    v.eType = 2;
    EXPECT_EQ(planned("Cycle 3", v), direct<Class_Pattern>([](auto& e, auto r) {
                  e.FF3(0, 0, r.left, r.top, r.right, r.bottom, 138, 170, 128, 170, 118, 170, 2);
              }));
    // Sin Light and Smoke Pattern differ only in the drawn periods.
    EXPECT_EQ(planned("Sin Light", defaults("Sin Light")),
              direct<Class_Pattern>([](auto& e, auto r) {
                  e.Smoke(0, 0, r.left, r.top, r.right, r.bottom, 12, 42, 118, 128, 138, 2, false);
              }));
    EXPECT_EQ(planned("Smoke Pattern", defaults("Smoke Pattern")),
              direct<Class_Pattern>([](auto& e, auto r) {
                  e.Smoke(0, 0, r.left, r.top, r.right, r.bottom, 12, 42, 118, 128, 138, 2, true);
              }));
}

} // namespace
} // namespace lumiran::testing
