// Golden hashes of the Class_NetMosaic effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(NetMosaic, GoldenDefaults,
                         ::testing::Values(Golden{"Fractal Mosaic", "a6f5b8416895ab4e"},
                                           Golden{"Tile Wall Net", "817eb941759a7617"}),
                         goldenTestName);

} // namespace lumiran::testing
