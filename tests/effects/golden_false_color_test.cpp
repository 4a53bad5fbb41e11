// Golden hashes of the Class_FalseColor effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

struct Golden {
    const char* effect;
    const char* hash;
};

class GoldenFalseColor : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenFalseColor, DefaultRunOnTheSampleIsUnchanged) {
    const Golden& golden = GetParam();
    const Surface result = testing::runWithDefaults(golden.effect);
    ASSERT_FALSE(result.empty()) << golden.effect << " did not run";
    EXPECT_EQ(testing::pictureHash(result), golden.hash) << golden.effect;
}

INSTANTIATE_TEST_SUITE_P(
    Effects, GoldenFalseColor,
    ::testing::Values(
        Golden{"Pseudo", "51bef39537f46376"}, Golden{"Color Adjust", "6d1b6d4d8a32da3e"},
        Golden{"Fluorescence Color", "1cb0a5559c62e0a8"},
        Golden{"Retrospection", "67fd618c5d489902"}, Golden{"Reddish Purple", "cfb6a6b494ef34a9"},
        Golden{"Sunset Color", "18426b2de533b27c"}, Golden{"Lemon Yellow", "e9ff3f2c60e3e96d"},
        Golden{"Photo Sepia", "13f4944368d24fff"}, Golden{"Purplish Red", "3cff21dc554fa6b5"},
        Golden{"Night-fall Color", "46e95ce20e5e35b0"}, Golden{"Sax Blue", "177e71342dc9587d"},
        Golden{"Marine Snow", "84180330a29f96fb"}, Golden{"Monotone Noise", "cfd9a20e310dbc4c"},
        Golden{"Color Noise Random", "9fc4bb2e9138c7a4"},
        Golden{"Color Noise Normal", "b54e1ba41e282209"},
        Golden{"Noise Corrdinate", "0def83397b004e32"}),
    [](const auto& testInfo) {
        std::string name = testInfo.param.effect;
        std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
        return name;
    });

// The generator is never seeded: every fresh program draws the same noise.
TEST(FalseColorNoise, AFreshProgramRepeatsTheSameNoise) {
    for (const char* effect :
         {"Monotone Noise", "Color Noise Random", "Color Noise Normal", "Noise Corrdinate"}) {
        const Surface first = testing::runWithDefaults(effect);
        ASSERT_FALSE(first.empty()) << effect;
        EXPECT_EQ(testing::pictureHash(first),
                  testing::pictureHash(testing::runWithDefaults(effect)))
            << effect;
        EXPECT_NE(testing::pictureHash(first), testing::pictureHash(testing::bundledSample()))
            << effect;
    }
}

} // namespace
} // namespace lumiran
