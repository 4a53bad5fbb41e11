// Golden hashes of the entries that run several effect calls in a row, at
// their defaults on the bundled sample: a guard against accidental change,
// not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Sequences, GoldenDefaults,
                         ::testing::Values(Golden{"Shade Revision", "73201aed1e36a60c"},
                                           Golden{"Water Noise", "1080a7ff036743d2"},
                                           Golden{"Water Noise", "1aa7b256960f3414", 1},
                                           Golden{"Water Noise", "62f251ce3b320d24", {}, 3},
                                           // Only the first type names a colour call.
                                           Golden{"Water Noise", "67b405e1acb47e4f", 0, 1},
                                           Golden{"Water Noise", "67b405e1acb47e4f", 1, 1},
                                           Golden{"Stone Emboss", "4ace06033902f59d"},
                                           Golden{"Concrete Emboss", "f4a12ee778b612e1"},
                                           Golden{"Glass Painting", "ce7c5f420738fad6"},
                                           Golden{"Glass Painting", "a3a3637e93753556", 1},
                                           Golden{"Glass Painting", "dc1748b620a689c5", 2},
                                           Golden{"Glass Painting", "c64346618c7a6197", 3},
                                           Golden{"Glass Painting", "0d7f914744292dc5", 4},
                                           Golden{"Glass Painting", "725eac53890525b6", 5}),
                         goldenTestName);

} // namespace lumiran::testing
