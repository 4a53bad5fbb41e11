// Golden hashes of the Class_Pattern effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    Pattern, GoldenDefaults,
    ::testing::Values(
        Golden{"Color Spread", "b3f86f9405334739"}, Golden{"Sakuramai", "8718e0887e3256ca"},
        Golden{"Shade Pattern Color", "cf8a8fe54b95f44e"},
        Golden{"Checked Pattern", "6546f146c22a78a2"},
        Golden{"Checked Pattern", "6af2af208f51101a", {}, 3},
        Golden{"Sin Light", "da382cf9cfe0e157"}, Golden{"Smoke Pattern", "2194011ff30e9ee9"},
        Golden{"Cycle 1", "e9ea422d71aba8cf"}, Golden{"Cycle 2", "a97ef706d4f25f27"},
        Golden{"Cycle 3", "5fa0fb7774a5effb"}, Golden{"Color Sway 1", "f2baed7a7d011cdf"},
        Golden{"Color Sway 2", "916045683e6d49a5"}, Golden{"Color Sway 3", "f92a11793e0c5a77"},
        Golden{"Color Sway 4", "3e7882edbb31a25c"}, Golden{"Rinbu", "d10431c4e22a892c"},
        Golden{"Cycle 4", "ed285be1bad4209d"}, Golden{"Color Tile 1", "0bf881242c661c38"},
        Golden{"Color Tile 2", "ef79c88063423839"}, Golden{"Tile Wall Normal", "6f093d6d8557d4be"},
        Golden{"Tile Wall Gap", "fbd820cfdef95a89"},
        Golden{"Tile Wall Arc Crest", "3b784da1c470fdad"},
        Golden{"Tile Wall Lozenge", "4eb4723ba0fed185"},
        Golden{"Tile Wall Shippou-Tunagi", "9ea80ef42d86e731"}),
    goldenTestName);

} // namespace lumiran::testing
