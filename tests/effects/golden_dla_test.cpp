// Golden hash of the Class_DLA effect at its defaults on the bundled sample:
// a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(DLA, GoldenDefaults, ::testing::Values(Golden{"DLA", "ea474d4edf28c489"}),
                         goldenTestName);

} // namespace lumiran::testing
