// The Class_Soften cases of the dialogs' switches: which values reach which
// argument.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "soften_fixture.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using V = ControlValues;
using R = const ProcessRect&;

TEST_F(SoftenFixture, DialogValuesReachTheirArguments) {
    const struct {
        DialogKind dialog;
        int code;
        V values;
        Call direct;
    } cases[] = {
        // "Moving Average": rows 0..2 the Smoothing means, 3..5 MovingAverage.
        {DialogKind::Monotone, 24, V{.color = 2},
         [](auto& e, R r) { e.Smoothing(12, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Monotone, 24, V{.color = 4},
         [](auto& e, R r) { e.MovingAverage(1, 0, r.left, r.top, r.right, r.bottom); }},
        // The high-pass filters: S1, filter kind, C, rect, E.
        {DialogKind::Emboss, 22, V{.sliders = {8}, .eType = 6, .color = 4},
         [](auto& e, R r) { e.HighpassFilter(8, 2, 4, r.left, r.top, r.right, r.bottom, 6); }},
        {DialogKind::Emboss, 51, V{.eType = 2, .color = 1},
         [](auto& e, R r) { e.Edge_SavingSmooth(2, 1, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Negative, 21, V{.sliders = {7}, .color = 4},
         [](auto& e, R r) { e.Soften_Circle(0, 7, r.left, r.top, r.right, r.bottom, 4); }},
        // The afterimages: the colour row is the smooth type, the type row
        // the direction; the vortex takes its count from S2.
        {DialogKind::Mani, 83, V{.sliders = {30, 40, 20, 70, 5}, .eType = 1, .color = 1},
         [](auto& e, R r) {
             e.AfterImage_Ripple(5, 1, 1, r.left, r.top, r.right, r.bottom, 30, 40, 20, 70);
         }},
        {DialogKind::Mani, 85, V{.sliders = {60, 6, 20, 80}, .eType = 1, .color = 2},
         [](auto& e, R r) {
             e.AfterImage_Vortex(6, 2, 1, r.left, r.top, r.right, r.bottom, 60, 20, 80);
         }},
    };
    const Surface picture = randomPicture(24, 20);
    for (const auto& c : cases) {
        const EffectPlan plan = planEffect(c.dialog, c.code, c.values);
        ASSERT_EQ(plan.status, EffectPlan::Status::Ready) << c.code;
        Surface kept0 = picture, kept1;
        EffectInvocation invocation{context, kept0, kept1, ProcessRect::wholePicture(24, 20)};
        plan.body(invocation);
        EXPECT_TRUE(kept1 == run(picture, c.direct)) << dialogName(c.dialog) << " " << c.code;
        EXPECT_FALSE(kept1 == picture) << dialogName(c.dialog) << " " << c.code;
    }
}

} // namespace
} // namespace lumiran::testing
