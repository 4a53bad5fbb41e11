// Golden hashes of the Class_Transform effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Transform, GoldenDefaults,
                         ::testing::Values(Golden{"Trapezoid Horizontal", "6b093b69157d4a81"},
                                           Golden{"Trapezoid Horizontal", "01ee2bdbdbf554f8", 1, 1},
                                           Golden{"Trapezoid Vertical", "af714a7a2093b25f"},
                                           Golden{"Triangle Horizontal", "65b81a30ed58c18e"},
                                           Golden{"Triangle Vertical", "fe524ef15e1f2faa", {}, 1},
                                           Golden{"Ellipse", "c50e423b6fd8ab41"},
                                           Golden{"Ellipse", "40be7a626204c835", 1, 1},
                                           Golden{"Ellipse", "72714197c4b5e703", {}, 3},
                                           Golden{"X(Cross)", "a568c507683eb8fd"},
                                           Golden{"X(Cross)", "30cc7bea893e50cf", 3}),
                         goldenTestName);

} // namespace lumiran::testing
