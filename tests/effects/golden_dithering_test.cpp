// Golden hashes of the Class_Dithering effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    Dithering, GoldenDefaults,
    ::testing::Values(Golden{"Ordered Dither 4x4", "867b18c49b73df8d"},
                      Golden{"Ordered Dither 8x8", "1118f3afd442f8d2"},
                      Golden{"Error Diffusion", "547640f9aefd2383"},
                      Golden{"Random Dither", "4721d1414258a2da"},
                      Golden{"Random Error Diffusion", "08925524d013ca9e"},
                      Golden{"Limit The Mean Value", "8f67a5387fd4b408"},
                      Golden{"Minimize Mean Square Errors", "ae83296b902bab4e"},
                      Golden{"Transformation Dots Pattern Method", "cb6d2fcfeaa02b79"},
                      Golden{"Fixed Error Diffusion", "bcb033e531c2197f"},
                      Golden{"Dinamic Thresholding", "9e62384fdfa4668d"},
                      Golden{"Color Paint Dither", "ea9851f386455fad"}),
    goldenTestName);

} // namespace lumiran::testing
