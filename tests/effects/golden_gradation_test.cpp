// Golden hashes of the Class_Gradation effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Gradation, GoldenDefaults,
                         ::testing::Values(Golden{"Gradation", "1e6ae03ffb4f612b"},
                                           Golden{"Gradation Blend (Mean)", "7f2f1464d35ad36f"},
                                           Golden{"Gradation Blend (Addition)", "f1bb073077f10dbc"},
                                           Golden{"Gradation Blend (Subtraction)",
                                                  "73ad2fec5569727e"},
                                           Golden{"Gradation Blend (Negative)", "234224d605854be9"},
                                           Golden{"Gradation Blend (Xor)", "5a4c56e610b26ff6"}),
                         goldenTestName);

} // namespace lumiran::testing
