// Golden hashes of the Class_3DMapping effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>
#include <optional>

namespace lumiran {
namespace {

struct Golden {
    const char* effect;
    const char* hash;
    std::optional<int> typeRow{};   // an ETypeList row other than the default
    std::optional<int> colourRow{}; // a ColorList row other than the default
};

class Golden3DMapping : public ::testing::TestWithParam<Golden> {};

TEST_P(Golden3DMapping, DefaultRunOnTheSampleIsUnchanged) {
    const Golden& golden = GetParam();
    const EffectEntry* entry = findEffect(golden.effect);
    ASSERT_NE(entry, nullptr) << golden.effect;
    ControlValues values = defaultControlValues(*entry);
    if (golden.typeRow) values.eType = *golden.typeRow;
    if (golden.colourRow) values.color = *golden.colourRow;
    const Surface result = testing::runWithDefaults(golden.effect, &values);
    ASSERT_FALSE(result.empty()) << golden.effect << " did not run";
    EXPECT_EQ(testing::pictureHash(result), golden.hash) << golden.effect;
}

INSTANTIATE_TEST_SUITE_P(Effects, Golden3DMapping,
                         ::testing::Values(Golden{"3D Ripple", "dfa01dbf3ea25764"},
                                           Golden{"3D Ripple", "0281cbaec7b58c12", 1},
                                           Golden{"Thin Book", "105335ca36ab3b7f"}),
                         [](const auto& testInfo) {
                             std::string name = testInfo.param.effect;
                             std::erase_if(name, [](char c) {
                                 return !std::isalnum(static_cast<unsigned char>(c));
                             });
                             if (testInfo.param.typeRow)
                                 name += "Type" + std::to_string(*testInfo.param.typeRow);
                             if (testInfo.param.colourRow)
                                 name += "Row" + std::to_string(*testInfo.param.colourRow);
                             return name;
                         });

} // namespace
} // namespace lumiran
