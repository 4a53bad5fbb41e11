#pragma once

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"

#include <gtest/gtest.h>
#include <string_view>

namespace lumiran::testing {

// What OK's body leaves in kept picture 1 for the named effect with these
// values, run on the picture in the context; empty when it is not Ready.
inline Surface runPlanned(RunContext& context, std::string_view name, const ControlValues& values,
                          const Surface& picture) {
    const EffectEntry* entry = findEffect(name);
    EXPECT_NE(entry, nullptr) << name;
    if (entry == nullptr) return {};
    const EffectPlan plan = planEffect(entry->dialog, entry->code, values);
    EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << name;
    if (plan.status != EffectPlan::Status::Ready) return {};
    Surface kept0 = picture;
    Surface kept1 = picture;
    EffectInvocation run{context, kept0, kept1,
                         ProcessRect::wholePicture(picture.width(), picture.height())};
    plan.body(run);
    EXPECT_TRUE(context.failures.empty()) << name;
    return kept1;
}

} // namespace lumiran::testing
