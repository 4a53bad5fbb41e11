// Golden hashes of the Class_Transform effects at their defaults on the
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

class GoldenTransform : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenTransform, DefaultRunOnTheSampleIsUnchanged) {
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

INSTANTIATE_TEST_SUITE_P(Effects, GoldenTransform,
                         ::testing::Values(Golden{"Trapezoid Horizontal", "6b093b69157d4a81"},
                                           Golden{"Trapezoid Horizontal", "01ee2bdbdbf554f8", 1, 1},
                                           Golden{"Trapezoid Vertical", "af714a7a2093b25f"},
                                           Golden{"Triangle Horizontal", "65b81a30ed58c18e"},
                                           Golden{"Triangle Vertical", "fe524ef15e1f2faa", 1},
                                           Golden{"Ellipse", "c50e423b6fd8ab41"},
                                           Golden{"Ellipse", "40be7a626204c835", 1, 1},
                                           Golden{"Ellipse", "72714197c4b5e703", 3},
                                           Golden{"X(Cross)", "a568c507683eb8fd"},
                                           Golden{"X(Cross)", "30cc7bea893e50cf", {}, 3}),
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
