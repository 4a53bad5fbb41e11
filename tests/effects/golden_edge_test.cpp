// Golden hashes of the Class_Edge effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Edge, GoldenDefaults,
                         ::testing::Values(Golden{"Differential Filter", "f7088caaa9b11103"},
                                           Golden{"Edge Extraction 2x2", "11d3e20078600521"},
                                           Golden{"Edge Extraction 3x3", "9199d0b165cd7a21"},
                                           Golden{"Sobel & Rosenfeld Filter", "c4ad0fea086d2361"},
                                           Golden{"Prewitt Filter", "324a5d960da2b022"},
                                           Golden{"Roberts & Fosen Filter", "df72b4589a42b724"},
                                           Golden{"Laplacian Filter", "d6cc0ee66e620a54"},
                                           Golden{"Kirsch Filter", "53737a5a92523b47"},
                                           Golden{"Outlining", "f7088caaa9b11103"}),
                         goldenTestName);

} // namespace lumiran::testing
