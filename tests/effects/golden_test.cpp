#include "golden.h"

namespace lumiran::testing {
namespace {

TEST_P(GoldenDefaults, RunOnTheSampleIsUnchanged) {
    const Golden& golden = GetParam();
    const EffectEntry* entry = findEffect(golden.effect);
    ASSERT_NE(entry, nullptr) << golden.effect;
    ControlValues values = defaultControlValues(*entry);
    if (golden.colourRow) values.color = *golden.colourRow;
    const Surface result = runWithDefaults(golden.effect, &values);
    ASSERT_FALSE(result.empty()) << golden.effect << " did not run";
    EXPECT_EQ(pictureHash(result), golden.hash) << golden.effect;
}

} // namespace
} // namespace lumiran::testing
