// Golden hashes of the effects that filter Class_FalseColor's noise with
// Class_NeighborhoodOp, at their defaults on the bundled sample: a guard
// against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(NoiseFilter, GoldenDefaults,
                         ::testing::Values(Golden{"Water Noise", "1080a7ff036743d2"},
                                           Golden{"Water Noise", "1aa7b256960f3414", 1},
                                           Golden{"Stone Emboss", "c7e936c87c1dc7c9"},
                                           Golden{"Concrete Emboss", "ca66c8236e8ef7d1"}),
                         goldenTestName);

} // namespace lumiran::testing
