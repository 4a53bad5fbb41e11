// Golden hashes of the Class_HideEffect effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(HideEffect, GoldenDefaults,
                         ::testing::Values(Golden{"Specular", "7c107b8e9ba0a905"},
                                           Golden{"Choco Ball", "8ebd6eaf621571c1"},
                                           Golden{"Choco Ball Gap", "9d91e68f16b0ffc2"},
                                           Golden{"Choco Ball Random", "44520ac89e174044"},
                                           Golden{"Glowing Pixel 1", "af6565eb58371064"},
                                           Golden{"Glowing Pixel 2", "ac6ea8e82d1709d8"},
                                           Golden{"Ball 1", "2a935b412789a0ee"},
                                           Golden{"Ball 2", "d61030e4e470f658"},
                                           Golden{"Ball Random", "c22fd3bae78af3e8"},
                                           Golden{"Random Spot", "7bef80d03170ce01"},
                                           Golden{"Lighting", "c61c26153d12ac55"},
                                           Golden{"Sketch Noise", "f0681931c5010bfa"},
                                           Golden{"Mist", "b7285845feb3839d"},
                                           Golden{"Monochrome Noise", "01d4dc4491d48398"}),
                         goldenTestName);

// Each run starts from a fresh generator, as a fresh program does, and the
// random placements repeat.
TEST(HideEffectRandom, AFreshProgramRepeatsTheSamePicture) {
    for (const char* effect : {"Choco Ball Random", "Glowing Pixel 2", "Ball Random", "Random Spot",
                               "Sketch Noise", "Mist", "Monochrome Noise", "DLA"}) {
        const Surface first = runWithDefaults(effect);
        ASSERT_FALSE(first.empty()) << effect;
        EXPECT_EQ(pictureHash(first), pictureHash(runWithDefaults(effect))) << effect;
        EXPECT_NE(pictureHash(first), pictureHash(bundledSample())) << effect;
    }
}

} // namespace lumiran::testing
