// The Class_ColorOp cases of the dialogs' switches: which values reach
// which argument.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "color_op_fixture.h"

#include <string_view>

namespace lumiran::testing {
namespace {

struct ColorOpDispatch : ColorOpFixture {
    Surface runCase(DialogKind dialog, int code, const ControlValues& values,
                    const Surface& picture) {
        const EffectPlan plan = planEffect(dialog, code, values);
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << dialogName(dialog) << " " << code;
        if (plan.status != EffectPlan::Status::Ready) return {};
        Surface kept0 = picture;
        Surface kept1;
        EffectInvocation invocation{context, kept0, kept1,
                                    ProcessRect::wholePicture(picture.width(), picture.height())};
        plan.body(invocation);
        return kept1;
    }

    Colour caseOn(DialogKind dialog, int code, const ControlValues& values, int r, int g, int b) {
        return colourOf(runCase(dialog, code, values, Surface(1, 1, makePixel(r, g, b))).at(0, 0));
    }
};

// Calls of the catalogue served by this class alone.
bool onlyColorOp(std::string_view call) {
    return call.starts_with("Class_ColorOp ") && call.find("; Class_") == std::string_view::npos;
}

TEST_F(ColorOpDispatch, EveryCatalogueCallOfTheClassIsServed) {
    int served = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        if (!onlyColorOp(entry.call)) continue;
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << entry.caption;
        ++served;
    }
    EXPECT_EQ(served, 32);
}

TEST_F(ColorOpDispatch, MonotoneRowFourteenIsTheHueTriangleAndFifteenIsNotHere) {
    ControlValues v;
    v.color = 14;
    EXPECT_EQ(caseOn(DialogKind::Monotone, 0, v, 200, 50, 0), (Colour{64, 64, 64}));
    v.color = 15; // the histogram of Class_ColorTable
    EXPECT_EQ(planEffect(DialogKind::Monotone, 0, v).status, EffectPlan::Status::Ready);
}

TEST_F(ColorOpDispatch, BlackendTakesTheSliderOverTwentySix) {
    ControlValues v;
    v.sliders[0] = 24; // 0.923..: k1 = round(46.15) = 46, k2 = round(18.46) = 18
    EXPECT_EQ(caseOn(DialogKind::Negative, 13, v, 10, 10, 10), (Colour{46, 18, 18}));
    v.color = 1; // type 1 adds the spread of the result, 28
    EXPECT_EQ(caseOn(DialogKind::Negative, 13, v, 10, 10, 10), (Colour{74, 46, 46}));
}

TEST_F(ColorOpDispatch, DeteriorationTakesTheColourRowAsTypeAndTheTypeRowAsKeep) {
    ControlValues v;
    v.sliders = {128, 128, 128, 0, 0, 30, 60, 0};
    v.color = 0;
    v.eType = 1; // keep
    // Keep on black: the result keeps its lightness 64 whatever the type row says.
    EXPECT_EQ(caseOn(DialogKind::Mani, 17, v, 0, 0, 0), (Colour{64, 64, 64}));
    // Type 1 of the first pixel sees zeros; keep 0 leaves the step-2 result.
    v.color = 1;
    v.eType = 0;
    EXPECT_EQ(caseOn(DialogKind::Mani, 17, v, 100, 50, 20), (Colour{194, 169, 154}));
    EXPECT_EQ(caseOn(DialogKind::Mani, 18, v, 100, 50, 20),
              runOn(100, 50, 20, [](Class_ColorOp& e, const ProcessRect& r) {
                  e.Deterioration(1, 1, 0, r.left, r.top, r.right, r.bottom, 128, 128, 128, 0, 0,
                                  30, 60);
              }));
}

TEST_F(ColorOpDispatch, RowDerivedAndConstantArguments) {
    ControlValues v;
    // Autumns Yellow: row 1 is type 3; Cyan Adjust is type 1 whatever the row.
    v.color = 1;
    EXPECT_EQ(caseOn(DialogKind::Monotone, 7, v, 100, 50, 20), (Colour{255, 130, 20}));
    v.color = 0;
    EXPECT_EQ(caseOn(DialogKind::Monotone, 7, v, 100, 50, 20), (Colour{210, 130, 20}));
    EXPECT_EQ(caseOn(DialogKind::Monotone, 8, v, 100, 50, 20), (Colour{100, 130, 130}));
    // Difference Addition is reverse True, Subtraction False.
    v.color = 1; // pair r, g
    v.eType = 1; // RGB
    EXPECT_EQ(caseOn(DialogKind::Emboss, 12, v, 100, 150, 30), (Colour{50, 100, 0}));
    EXPECT_EQ(caseOn(DialogKind::Emboss, 13, v, 100, 150, 30), (Colour{150, 200, 80}));
    // Silver Mountain: the row is the type, S1 the period, inverted.
    v = {};
    v.color = 1;
    v.sliders[0] = 42;
    EXPECT_EQ(caseOn(DialogKind::Negative, 33, v, 255, 0, 0), (Colour{255, 127, 127}));
    // Invasion codes 11..17 are the sources 0..6.
    v = {};
    EXPECT_EQ(caseOn(DialogKind::Monotone, 11, v, 200, 100, 50), (Colour{200, 200, 50}));
    EXPECT_EQ(caseOn(DialogKind::Monotone, 17, v, 200, 100, 50), (Colour{125, 100, 50}));
}

TEST_F(ColorOpDispatch, FractionalSlidersRoundHalfToEven) {
    ControlValues v;
    v.sliders[0] = 2.5;
    v.sliders[1] = 3.5;
    EXPECT_EQ(caseOn(DialogKind::Mani, 0, v, 100, 100, 100), (Colour{102, 104, 100}));
}

TEST_F(ColorOpDispatch, ASliderBeyondSixteenBitsEndsTheRunWithTheOverflowError) {
    ControlValues v;
    v.sliders[0] = 40000;
    const EffectPlan plan = planEffect(DialogKind::Mani, 0, v);
    ASSERT_EQ(plan.status, EffectPlan::Status::Ready);
    Surface kept0(1, 1), kept1;
    EffectInvocation invocation{context, kept0, kept1, ProcessRect::wholePicture(1, 1)};
    EXPECT_THROW(plan.body(invocation), EffectError);
}

} // namespace
} // namespace lumiran::testing
