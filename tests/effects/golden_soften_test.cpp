// Golden hashes of the Class_Soften effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

class GoldenSoften : public ::testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(GoldenSoften, DefaultRunOnTheSampleIsUnchanged) {
    const auto& [effect, hash] = GetParam();
    const Surface result = testing::runWithDefaults(effect);
    ASSERT_FALSE(result.empty()) << effect << " did not run";
    EXPECT_EQ(testing::pictureHash(result), hash) << effect;
}

INSTANTIATE_TEST_SUITE_P(
    Effects, GoldenSoften,
    ::testing::Values(std::pair{"Smooth", "e30f1d0548d10635"},
                      std::pair{"Moving Average", "fd439fe6c0e0c50f"},
                      std::pair{"Sharpen", "231d62557612827d"},
                      std::pair{"Highpass Filter 3x3", "b3013f7a1abce090"},
                      std::pair{"Highpass Filter 5x5", "9bd3cfd53bc09ac2"},
                      std::pair{"Unsharp Masking", "b0ad564f757bed50"},
                      std::pair{"Savity-Goray Filter 7x7", "c6a4b0c73be82fd9"},
                      std::pair{"Special Soften", "d4a8a45c66425768"},
                      std::pair{"Edge Saving Smooth", "24ed03c7b3f2d209"},
                      std::pair{"Selective Local Averaging", "554408b4c244680d"},
                      std::pair{"AfterImage Ripple", "173598baa13d1166"},
                      std::pair{"AfterImage Wave", "f886a392f8337c13"},
                      std::pair{"AfterImage Vortex", "f5252c2320634dd9"}),
    [](const auto& testInfo) {
        std::string name = testInfo.param.first;
        std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
        return name;
    });

} // namespace
} // namespace lumiran
