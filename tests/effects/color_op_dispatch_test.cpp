// The Class_ColorOp and Class_ColorTable cases of the dialogs' switches:
// which values reach which argument.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "color_op_fixture.h"

namespace lumiran::testing {
namespace {

using V = ControlValues;

struct ColourDispatch : ColorOpFixture {
    // The colour the dialog's case leaves at (x, y) of the picture.
    Colour caseOn(DialogKind dialog, int code, const V& values, const Surface& picture, int x = 0,
                  int y = 0) {
        const EffectPlan plan = planEffect(dialog, code, values);
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << dialogName(dialog) << " " << code;
        if (plan.status != EffectPlan::Status::Ready) return {};
        Surface kept0 = picture;
        Surface kept1;
        EffectInvocation invocation{context, kept0, kept1,
                                    ProcessRect::wholePicture(picture.width(), picture.height())};
        plan.body(invocation);
        EXPECT_TRUE(context.failures.empty());
        return colourOf(kept1.at(x, y));
    }

    Colour caseOn(DialogKind dialog, int code, const V& values, int r, int g, int b) {
        return caseOn(dialog, code, values, Surface(1, 1, makePixel(r, g, b)));
    }
};

TEST_F(ColourDispatch, MonotoneRowFourteenIsTheHueTriangleAndFifteenTheHistogram) {
    EXPECT_EQ(caseOn(DialogKind::Monotone, 0, V{.color = 14}, 200, 50, 0), (Colour{64, 64, 64}));
    EXPECT_EQ(planEffect(DialogKind::Monotone, 0, V{.color = 15}).status,
              EffectPlan::Status::Ready);
}

TEST_F(ColourDispatch, BlackendTakesTheSliderOverTwentySix) {
    // 24 / 26 = 0.923..: k1 = round(46.15) = 46, k2 = round(18.46) = 18.
    EXPECT_EQ(caseOn(DialogKind::Negative, 13, V{.sliders = {24}}, 10, 10, 10),
              (Colour{46, 18, 18}));
    // Row 1 is the type that adds the spread of the result, 28.
    EXPECT_EQ(caseOn(DialogKind::Negative, 13, V{.sliders = {24}, .color = 1}, 10, 10, 10),
              (Colour{74, 46, 46}));
}

TEST_F(ColourDispatch, DeteriorationTakesTheColourRowAsTypeAndTheTypeRowAsKeep) {
    V v{.sliders = {128, 128, 128, 0, 0, 30, 60, 0}, .eType = 1};
    // Keep on black: the result keeps its lightness 64 whatever the type row says.
    EXPECT_EQ(caseOn(DialogKind::Mani, 17, v, 0, 0, 0), (Colour{64, 64, 64}));
    // Type 1 of the first pixel sees zeros; keep 0 leaves the step-2 result.
    v.color = 1;
    v.eType = 0;
    EXPECT_EQ(caseOn(DialogKind::Mani, 17, v, 100, 50, 20), (Colour{194, 169, 154}));
    // Code 18 is base 1.
    EXPECT_EQ(caseOn(DialogKind::Mani, 18, v, 100, 50, 20),
              runOn(100, 50, 20,
                    op<&Class_ColorOp::Deterioration>(1, 1, 0, rect, 128, 128, 128, 0, 0, 30, 60)));
}

TEST_F(ColourDispatch, ColorOpRowDerivedAndConstantArguments) {
    // Autumns Yellow: row 1 is type 3; Cyan Adjust is type 1 whatever the row.
    EXPECT_EQ(caseOn(DialogKind::Monotone, 7, V{.color = 1}, 100, 50, 20), (Colour{255, 130, 20}));
    EXPECT_EQ(caseOn(DialogKind::Monotone, 7, V{}, 100, 50, 20), (Colour{210, 130, 20}));
    EXPECT_EQ(caseOn(DialogKind::Monotone, 8, V{}, 100, 50, 20), (Colour{100, 130, 130}));
    // Difference Addition is reverse True, Subtraction False; row 1 the pair r, g, type 1 RGB.
    const V pair{.eType = 1, .color = 1};
    EXPECT_EQ(caseOn(DialogKind::Emboss, 12, pair, 100, 150, 30), (Colour{50, 100, 0}));
    EXPECT_EQ(caseOn(DialogKind::Emboss, 13, pair, 100, 150, 30), (Colour{150, 200, 80}));
    // Silver Mountain: the row is the type, S1 the period, inverted.
    EXPECT_EQ(caseOn(DialogKind::Negative, 33, V{.sliders = {42}, .color = 1}, 255, 0, 0),
              (Colour{255, 127, 127}));
    // Invasion codes 11..17 are the sources 0..6.
    EXPECT_EQ(caseOn(DialogKind::Monotone, 11, V{}, 200, 100, 50), (Colour{200, 200, 50}));
    EXPECT_EQ(caseOn(DialogKind::Monotone, 17, V{}, 200, 100, 50), (Colour{125, 100, 50}));
}

TEST_F(ColourDispatch, FractionalSlidersRoundHalfToEvenAndOversizedOnesFail) {
    EXPECT_EQ(caseOn(DialogKind::Mani, 0, V{.sliders = {2.5, 3.5}}, 100, 100, 100),
              (Colour{102, 104, 100}));
    // Beyond 16 bits the run ends with the overflow error.
    const EffectPlan plan = planEffect(DialogKind::Mani, 0, V{.sliders = {40000}});
    ASSERT_EQ(plan.status, EffectPlan::Status::Ready);
    Surface kept0(1, 1), kept1;
    EffectInvocation invocation{context, kept0, kept1, ProcessRect::wholePicture(1, 1)};
    EXPECT_THROW(plan.body(invocation), EffectError);
}

TEST_F(ColourDispatch, ShadeRangeAdjustTakesHighFromSliderTwoAndItsValueFromTheType) {
    const std::pair<int, int> typeValue[] = {{0, 255}, {1, 0}, {2, 128}};
    for (const auto& [type, value] : typeValue) {
        EXPECT_EQ(
            caseOn(DialogKind::Level, 0, V{.sliders = {64, 192}, .eType = type}, 100, 50, 200),
            (Colour{value, 50, 200}));
    }
    // Colour row 1: red only.
    EXPECT_EQ(caseOn(DialogKind::Level, 0, V{.sliders = {64, 192}, .color = 1}, 100, 100, 100),
              (Colour{255, 100, 100}));
}

TEST_F(ColourDispatch, ColorRangeChangeAndSolarizeTakeTheSelectorFromTheTypeList) {
    // Type 3: blue only, cut to low 64.
    EXPECT_EQ(caseOn(DialogKind::Level, 1, V{.sliders = {64, 192}, .eType = 3}, 10, 10, 10),
              (Colour{10, 10, 64}));
    // Step 2 from start 0, type 1: red only.
    EXPECT_EQ(caseOn(DialogKind::Level, 3, V{.sliders = {2, 0}, .eType = 1}, 10, 10, 10),
              (Colour{20, 10, 10}));
}

TEST_F(ColourDispatch, HistogramExpansionWidthIs250MinusTheSliderAndEquationModeTheRowPlusOne) {
    // Width 102 stretches; width 9 does nothing.
    EXPECT_EQ(caseOn(DialogKind::Negative, 10, V{.sliders = {148}}, 150, 150, 150),
              (Colour{120, 120, 120}));
    EXPECT_EQ(caseOn(DialogKind::Negative, 10, V{.sliders = {241}}, 150, 150, 150),
              (Colour{150, 150, 150}));
    // Row 2 ("緑") is mode 3: green alone.
    EXPECT_EQ(
        caseOn(DialogKind::Monotone, 18, V{.color = 2}, Surface(16, 16, makePixel(90, 100, 110))),
        (Colour{90, 255, 110}));
}

TEST_F(ColourDispatch, ShadeRangeExchangeUsesTheChosenColour) {
    const V v{.sliders = {64, 192}, .processColor = {10, 20, 30}};
    EXPECT_EQ(caseOn(DialogKind::ColorScale, 14, v, 100, 50, 192), (Colour{10, 50, 30}));
}

TEST_F(ColourDispatch, PhantomAndKaniIgnoreTheirTypeLists) {
    const V phantom{.sliders = {2, 4, 128, 256, 256}};
    EXPECT_EQ(caseOn(DialogKind::Mani, 47, V{.sliders = phantom.sliders, .eType = 7, .color = 7},
                     32, 64, 200),
              caseOn(DialogKind::Mani, 47, phantom, 32, 64, 200));
    EXPECT_EQ(caseOn(DialogKind::Mani, 16, V{.sliders = {64, 64, 64, 64, 64}, .eType = 7}, 0, 0, 0),
              (Colour{32, 32, 32}));
}

} // namespace
} // namespace lumiran::testing
