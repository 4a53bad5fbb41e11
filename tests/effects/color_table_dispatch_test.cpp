// The Class_ColorTable cases of the dialogs' switches: which values reach
// which argument.
#include "catalogue/effect_dispatch.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

Surface runCase(DialogKind dialog, int code, const ControlValues& values, const Surface& picture) {
    const EffectPlan plan = planEffect(dialog, code, values);
    EXPECT_EQ(plan.status, EffectPlan::Status::Ready);
    if (plan.status != EffectPlan::Status::Ready) return {};
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Surface kept0 = picture;
    Surface kept1;
    EffectInvocation run{context, kept0, kept1,
                         ProcessRect::wholePicture(picture.width(), picture.height())};
    plan.body(run);
    EXPECT_TRUE(context.failures.empty());
    return kept1;
}

Pixel runOnPixel(DialogKind dialog, int code, const ControlValues& values, Pixel pixel) {
    return runCase(dialog, code, values, Surface(1, 1, pixel)).at(0, 0) & 0xFFFFFFu;
}

TEST(ColorTableDispatch, EveryCaseOfTheFamilyIsServed) {
    const std::pair<DialogKind, int> cases[] = {
        {DialogKind::Negative, 0},  {DialogKind::Negative, 1},  {DialogKind::Level, 0},
        {DialogKind::Level, 1},     {DialogKind::Negative, 16}, {DialogKind::Level, 3},
        {DialogKind::Negative, 11}, {DialogKind::Level, 2},     {DialogKind::Sepia, 10},
        {DialogKind::Negative, 19}, {DialogKind::Negative, 15}, {DialogKind::Mani, 19},
        {DialogKind::Negative, 10}, {DialogKind::Monotone, 18}, {DialogKind::Mani, 47},
        {DialogKind::Negative, 12}, {DialogKind::Mani, 16},     {DialogKind::ColorScale, 14},
    };
    for (const auto& [dialog, code] : cases) {
        EXPECT_TRUE(effectDispatch().contains(dialog, code)) << dialogName(dialog) << " " << code;
    }
}

TEST(ColorTableDispatch, ShadeRangeAdjustTakesHighFromSliderTwoAndItsValueFromTheType) {
    ControlValues v;
    v.sliders[0] = 64;  // 最小値
    v.sliders[1] = 192; // 最大値
    const Pixel source = makePixel(100, 50, 200);
    const std::pair<int, int> typeValue[] = {{0, 255}, {1, 0}, {2, 128}};
    for (const auto& [type, value] : typeValue) {
        v.eType = type;
        EXPECT_EQ(runOnPixel(DialogKind::Level, 0, v, source), makePixel(value, 50, 200));
    }
    v.eType = 0;
    v.color = 1; // red only
    EXPECT_EQ(runOnPixel(DialogKind::Level, 0, v, makePixel(100, 100, 100)),
              makePixel(255, 100, 100));
}

TEST(ColorTableDispatch, ColorRangeChangeAndSolarizeTakeTheSelectorFromTheTypeList) {
    ControlValues v;
    v.sliders[0] = 64;
    v.sliders[1] = 192;
    v.eType = 3; // blue only
    v.color = 0;
    EXPECT_EQ(runOnPixel(DialogKind::Level, 1, v, makePixel(10, 10, 10)), makePixel(10, 10, 64));
    v.sliders[0] = 2; // step
    v.sliders[1] = 0; // start
    v.eType = 1;      // red only
    EXPECT_EQ(runOnPixel(DialogKind::Level, 3, v, makePixel(10, 10, 10)), makePixel(20, 10, 10));
}

TEST(ColorTableDispatch, HistogramExpansionWidthIs250MinusTheSlider) {
    ControlValues v;
    v.sliders[0] = 148; // width 102
    EXPECT_EQ(runOnPixel(DialogKind::Negative, 10, v, makePixel(150, 150, 150)),
              makePixel(120, 120, 120));
    v.sliders[0] = 241; // width 9: nothing runs
    EXPECT_EQ(runOnPixel(DialogKind::Negative, 10, v, makePixel(150, 150, 150)),
              makePixel(150, 150, 150));
}

TEST(ColorTableDispatch, HistogramEquationModeIsTheRowPlusOne) {
    ControlValues v;
    v.color = 2; // "緑"
    const Surface out =
        runCase(DialogKind::Monotone, 18, v, Surface(16, 16, makePixel(90, 100, 110)));
    EXPECT_EQ(out.at(0, 0) & 0xFFFFFFu, makePixel(90, 255, 110));
}

TEST(ColorTableDispatch, ShadeRangeExchangeUsesTheChosenColour) {
    ControlValues v;
    v.sliders[0] = 64;
    v.sliders[1] = 192;
    v.processColor = {10, 20, 30};
    EXPECT_EQ(runOnPixel(DialogKind::ColorScale, 14, v, makePixel(100, 50, 192)),
              makePixel(10, 50, 30));
}

TEST(ColorTableDispatch, PhantomAndKaniIgnoreTheirTypeLists) {
    ControlValues v;
    v.sliders = {2, 4, 128, 256, 256, 0, 0, 0};
    const Pixel source = makePixel(32, 64, 200);
    const Pixel plain = runOnPixel(DialogKind::Mani, 47, v, source);
    v.eType = 7;
    v.color = 7;
    EXPECT_EQ(runOnPixel(DialogKind::Mani, 47, v, source), plain);
    v.sliders = {64, 64, 64, 64, 64, 0, 0, 0};
    EXPECT_EQ(runOnPixel(DialogKind::Mani, 16, v, makePixel(0, 0, 0)), makePixel(32, 32, 32));
}

} // namespace
} // namespace lumiran
