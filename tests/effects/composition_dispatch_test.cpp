// The composition menu's cases: each served and each reading the kept image
// of the run.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

TEST(CompositionDispatch, EveryMergeIsServedAndNeedsTheKeptImage) {
    int merges = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        if (!needsKeptImage(entry)) continue;
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        ASSERT_EQ(plan.status, EffectPlan::Status::Ready) << entry.key;
        ++merges;
        // Without a kept image a merge leaves the picture as it was.
        ProgramState state;
        Document document;
        document.picture = makeVariedPicture(7, 5);
        const Surface before = document.picture;
        runEffect(state, document, plan.body);
        EXPECT_TRUE(std::ranges::equal(document.picture.pixels(), before.pixels())) << entry.key;
    }
    EXPECT_EQ(merges, 14);
}

} // namespace
} // namespace lumiran::testing
