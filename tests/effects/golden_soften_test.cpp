// Golden hashes of the Class_Soften effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Soften, GoldenDefaults,
                         ::testing::Values(Golden{"Smooth", "e30f1d0548d10635"},
                                           Golden{"Moving Average", "fd439fe6c0e0c50f"},
                                           // The named pairs: the plain sliding means.
                                           Golden{"Moving Average", "6969817556c16408", 3},
                                           Golden{"Moving Average", "28d51e73cc854852", 5},
                                           Golden{"Sharpen", "231d62557612827d"},
                                           Golden{"Highpass Filter 3x3", "b3013f7a1abce090"},
                                           Golden{"Highpass Filter 5x5", "9bd3cfd53bc09ac2"},
                                           Golden{"Unsharp Masking", "b0ad564f757bed50"},
                                           Golden{"Savity-Goray Filter 7x7", "c6a4b0c73be82fd9"},
                                           Golden{"Special Soften", "d4a8a45c66425768"},
                                           Golden{"Edge Saving Smooth", "24ed03c7b3f2d209"},
                                           Golden{"Selective Local Averaging", "554408b4c244680d"},
                                           Golden{"AfterImage Ripple", "173598baa13d1166"},
                                           Golden{"AfterImage Wave", "f886a392f8337c13"},
                                           Golden{"AfterImage Vortex", "f5252c2320634dd9"}),
                         goldenTestName);

} // namespace lumiran::testing
