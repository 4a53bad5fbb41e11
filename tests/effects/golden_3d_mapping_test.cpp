// Golden hashes of the Class_3DMapping effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Mapping3D, GoldenDefaults,
                         ::testing::Values(Golden{"3D Ripple", "dfa01dbf3ea25764"},
                                           Golden{"3D Ripple", "0281cbaec7b58c12", {}, 1},
                                           Golden{"Thin Book", "105335ca36ab3b7f"}),
                         goldenTestName);

} // namespace lumiran::testing
