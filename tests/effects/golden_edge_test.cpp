// Golden hashes of the Class_Edge effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Edge, GoldenDefaults,
                         ::testing::Values(Golden{"Differential Filter", "f7088caaa9b11103"},
                                           Golden{"Edge Extraction 2x2", "11d3e20078600521"},
                                           Golden{"Edge Extraction 3x3", "38fbcb3f4ff066b9"},
                                           Golden{"Sobel & Rosenfeld Filter", "865c04039ece6ca1"},
                                           Golden{"Prewitt Filter", "ee54209803ba12ae"},
                                           Golden{"Roberts & Fosen Filter", "df72b4589a42b724"},
                                           Golden{"Laplacian Filter", "c53f910308a153fc"},
                                           Golden{"Kirsch Filter", "b0c49d058194ad7a"},
                                           Golden{"Outlining", "f7088caaa9b11103"}),
                         goldenTestName);

} // namespace lumiran::testing
