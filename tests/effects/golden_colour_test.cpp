// Golden hashes of the colour effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

struct Golden {
    const char* effect;
    const char* hash;
};

class GoldenColour : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenColour, DefaultRunOnTheSampleIsUnchanged) {
    const Surface result = testing::runWithDefaults(GetParam().effect);
    ASSERT_FALSE(result.empty()) << GetParam().effect << " did not run";
    EXPECT_EQ(testing::pictureHash(result), GetParam().hash) << GetParam().effect;
}

INSTANTIATE_TEST_SUITE_P(Effects, GoldenColour,
                         ::testing::Values(Golden{"Monotone", "2a6fbb1197760964"}),
                         [](const auto& test) {
                             std::string name = test.param.effect;
                             std::erase_if(name, [](char c) {
                                 return !std::isalnum(static_cast<unsigned char>(c));
                             });
                             return name;
                         });

} // namespace
} // namespace lumiran
