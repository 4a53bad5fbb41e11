// Golden hashes of the Class_NetMosaic effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

struct Golden {
    const char* effect;
    const char* hash;
};

class GoldenNetMosaic : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenNetMosaic, DefaultRunOnTheSampleIsUnchanged) {
    const Golden& golden = GetParam();
    const Surface result = testing::runWithDefaults(golden.effect);
    ASSERT_FALSE(result.empty()) << golden.effect << " did not run";
    EXPECT_EQ(testing::pictureHash(result), golden.hash) << golden.effect;
}

INSTANTIATE_TEST_SUITE_P(Effects, GoldenNetMosaic,
                         ::testing::Values(Golden{"Fractal Mosaic", "a6f5b8416895ab4e"},
                                           Golden{"Tile Wall Net", "817eb941759a7617"}),
                         [](const auto& info) {
                             std::string name = info.param.effect;
                             std::erase_if(name, [](char c) {
                                 return !std::isalnum(static_cast<unsigned char>(c));
                             });
                             return name;
                         });

} // namespace
} // namespace lumiran
