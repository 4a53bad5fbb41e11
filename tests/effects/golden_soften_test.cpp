// Golden hashes of the Class_Soften effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>
#include <optional>

namespace lumiran {
namespace {

struct Golden {
    const char* effect;
    const char* hash;
    std::optional<int> colourRow{}; // a list row other than the default
};

class GoldenSoften : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenSoften, DefaultRunOnTheSampleIsUnchanged) {
    const Golden& golden = GetParam();
    const EffectEntry* entry = findEffect(golden.effect);
    ASSERT_NE(entry, nullptr) << golden.effect;
    ControlValues values = defaultControlValues(*entry);
    if (golden.colourRow) values.color = *golden.colourRow;
    const Surface result = testing::runWithDefaults(golden.effect, &values);
    ASSERT_FALSE(result.empty()) << golden.effect << " did not run";
    EXPECT_EQ(testing::pictureHash(result), golden.hash) << golden.effect;
}

INSTANTIATE_TEST_SUITE_P(Effects, GoldenSoften,
                         ::testing::Values(Golden{"Smooth", "e30f1d0548d10635"},
                                           Golden{"Smooth", "132a248312fcb30d", 1},
                                           Golden{"Moving Average", "fd439fe6c0e0c50f"},
                                           Golden{"Moving Average", "28d51e73cc854852", 5},
                                           Golden{"Sharpen", "231d62557612827d"},
                                           Golden{"Highpass Filter 3x3", "b3013f7a1abce090"},
                                           Golden{"Highpass Filter 5x5", "9bd3cfd53bc09ac2"},
                                           Golden{"Highpass Filter 3x3", "b291ee4652f47508", 7},
                                           Golden{"Unsharp Masking", "b0ad564f757bed50"},
                                           Golden{"Savity-Goray Filter 7x7", "c6a4b0c73be82fd9"},
                                           Golden{"Special Soften", "d4a8a45c66425768"},
                                           Golden{"Edge Saving Smooth", "24ed03c7b3f2d209"},
                                           Golden{"Selective Local Averaging", "554408b4c244680d"},
                                           Golden{"AfterImage Ripple", "173598baa13d1166"},
                                           Golden{"AfterImage Wave", "f886a392f8337c13"},
                                           Golden{"AfterImage Vortex", "f5252c2320634dd9"}),
                         [](const auto& testInfo) {
                             std::string name = testInfo.param.effect;
                             std::erase_if(name, [](char c) {
                                 return !std::isalnum(static_cast<unsigned char>(c));
                             });
                             if (testInfo.param.colourRow)
                                 name += "Row" + std::to_string(*testInfo.param.colourRow);
                             return name;
                         });

} // namespace
} // namespace lumiran
