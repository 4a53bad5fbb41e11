// Golden hashes of the Class_Binarization effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    Binarization, GoldenDefaults,
    ::testing::Values(Golden{"Binarization", "d5fb332ac2589df1"},
                      Golden{"Transformation Binarize", "8d6cc67476b628f3"},
                      Golden{"Dilation", "b2aeebe7629c86de"}, Golden{"Erosion", "4dffb3bb4621c071"},
                      Golden{"Border Following Monotone 8 Connected", "f8b7d486f055ad0f"},
                      Golden{"Border Following Color 8 Connected", "057a9ab11ed2d3fb"},
                      Golden{"Border Featuring Monotone", "80fc96811c49bffb"},
                      Golden{"Border Featuring RGB", "379c3024146cbc9d"},
                      Golden{"Binarization(Drawing Color)", "eeaf9f5775fabb2b"}),
    goldenTestName);

} // namespace lumiran::testing
