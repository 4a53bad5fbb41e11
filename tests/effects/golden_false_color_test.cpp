// Golden hashes of the Class_FalseColor effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    FalseColor, GoldenDefaults,
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
        Golden{"Noise Corrdinate", "3b84dddeb81b9c2e"}),
    goldenTestName);

// Each run starts from a fresh generator, as a fresh program does.
TEST(FalseColorNoise, AFreshProgramRepeatsTheSameNoise) {
    for (const char* effect :
         {"Monotone Noise", "Color Noise Random", "Color Noise Normal", "Noise Corrdinate"}) {
        const Surface first = runWithDefaults(effect);
        ASSERT_FALSE(first.empty()) << effect;
        EXPECT_EQ(pictureHash(first), pictureHash(runWithDefaults(effect))) << effect;
        EXPECT_NE(pictureHash(first), pictureHash(bundledSample())) << effect;
    }
}

} // namespace lumiran::testing
