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

struct SoftenDispatch : SoftenFixture {
    const Surface picture = randomPicture(24, 20);

    Surface caseOn(DialogKind dialog, int code, const V& values) {
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
};

TEST_F(SoftenDispatch, EveryCatalogueCallOfTheClassAloneIsServed) {
    int served = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        if (!entry.call.starts_with("Class_Soften ") ||
            entry.call.find("; Class_") != entry.call.npos)
            continue;
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << entry.caption;
        ++served;
    }
    EXPECT_EQ(served, 13);
}

TEST_F(SoftenDispatch, ListRowsAndSlidersReachTheirArguments) {
    const struct {
        DialogKind dialog;
        int code;
        V values;
        Call direct;
    } cases[] = {
        // Moving Average: rows 0..2 the Smoothing means, 3..5 MovingAverage.
        {DialogKind::Monotone, 24, V{.color = 1},
         [](Class_Soften& e, R r) { e.Smoothing(7, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Monotone, 24, V{.color = 2},
         [](Class_Soften& e, R r) { e.Smoothing(12, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Monotone, 24, V{.color = 5},
         [](Class_Soften& e, R r) { e.MovingAverage(2, 0, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Monotone, 23, V{.color = 2},
         [](Class_Soften& e, R r) { e.Smoothing(2, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Monotone, 26, V{},
         [](Class_Soften& e, R r) { e.Smoothing(13, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Monotone, 21, V{.color = 1},
         [](Class_Soften& e, R r) { e.Sharpen(1, r.left, r.top, r.right, r.bottom); }},
        // Sharpen and the high-pass filters: S1, filter kind, C, rect, E.
        {DialogKind::Emboss, 20, V{.sliders = {3}, .eType = 2, .color = 7},
         [](Class_Soften& e, R r) {
             e.HighpassFilter(3, 0, 7, r.left, r.top, r.right, r.bottom, 2);
         }},
        {DialogKind::Emboss, 22, V{.sliders = {8}, .eType = 6, .color = 4},
         [](Class_Soften& e, R r) {
             e.HighpassFilter(8, 2, 4, r.left, r.top, r.right, r.bottom, 6);
         }},
        {DialogKind::Emboss, 51, V{.eType = 2, .color = 1},
         [](Class_Soften& e, R r) { e.Edge_SavingSmooth(2, 1, r.left, r.top, r.right, r.bottom); }},
        {DialogKind::Negative, 21, V{.sliders = {7}, .color = 4},
         [](Class_Soften& e, R r) { e.Soften_Circle(0, 7, r.left, r.top, r.right, r.bottom, 4); }},
        {DialogKind::Monotone, 61, V{.color = 1},
         [](Class_Soften& e, R r) {
             e.Edge_PreservingSmoothing(1, r.left, r.top, r.right, r.bottom);
         }},
        // The afterimages: the colour row is the smooth type, the type row
        // the direction; the vortex takes its count from S2.
        {DialogKind::Mani, 83, V{.sliders = {30, 40, 20, 70, 5}, .eType = 1, .color = 1},
         [](Class_Soften& e, R r) {
             e.AfterImage_Ripple(5, 1, 1, r.left, r.top, r.right, r.bottom, 30, 40, 20, 70);
         }},
        {DialogKind::Mani, 84, V{.sliders = {3, 9, 50, 50, 4}, .eType = 0, .color = 2},
         [](Class_Soften& e, R r) {
             e.AfterImage_Wave(4, 2, 0, r.left, r.top, r.right, r.bottom, 3, 9, 50, 50);
         }},
        {DialogKind::Mani, 85, V{.sliders = {60, 6, 20, 80}, .eType = 1, .color = 0},
         [](Class_Soften& e, R r) {
             e.AfterImage_Vortex(6, 0, 1, r.left, r.top, r.right, r.bottom, 60, 20, 80);
         }},
    };
    for (const auto& c : cases) {
        const Surface planned = caseOn(c.dialog, c.code, c.values);
        EXPECT_TRUE(planned == run(picture, c.direct)) << dialogName(c.dialog) << " " << c.code;
        EXPECT_FALSE(planned == picture) << dialogName(c.dialog) << " " << c.code;
    }
}

} // namespace
} // namespace lumiran::testing
