// Golden hashes of the Class_Geometry warps at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    Geometry, GoldenDefaults,
    ::testing::Values(
        Golden{"Sea Wave", "5b58796176c15cc3"}, Golden{"Blow Up", "8a671dfdaeb2ab83"},
        Golden{"Suck In", "3e467d3b1d363e4e"}, Golden{"Suck In", "e0cd0ae5e60d0992", 1, 2},
        Golden{"Sway 1", "d6b690af7a552e37"}, Golden{"Sway 2", "0d4690e147d83ca8"},
        Golden{"Sphere", "d992a3bd520f1ea2"},
        // The type list reaches no argument: the call passes kind 0.
        Golden{"Sphere", "d992a3bd520f1ea2", {}, 3}, Golden{"Power Hole", "aad30baa75f0c001"},
        Golden{"Power Hole", "61dfd8dffac64b70", 2, 3}, Golden{"Ripploid", "bf07e07d9abaf683"},
        Golden{"Whirlpool", "92e1928312f314dd"}, Golden{"Eddying Current", "b393fc09141c0bcf"},
        Golden{"Vortex", "1df855e27357cacd"}, Golden{"Vortex", "887a0f12771c7a98", 6, 2},
        Golden{"Nebura", "b7c278fadb9a7847"}, Golden{"Jiggle", "31773357352f7ef6"},
        Golden{"Jiggle", "7bd0ecf49c590289", 3, 4}, Golden{"Jiggle", "d22cfc8e640f36f1", 9, 1},
        Golden{"Lattice Glass", "0bcbc5467197c53d"}, Golden{"Rotate", "d237aea366467589"},
        Golden{"Rotate", "f3c6327928c9cbc5", {}, 2}, Golden{"Vertical Wave", "ad2adec81349f248"},
        Golden{"Scatterize", "65f8ff459ec3d8de"}, Golden{"Sine Warp", "cbb8e78ad3af16cf"},
        Golden{"Cosine Warp", "860f73852f9881be", {}, 3},
        Golden{"Tangent Warp", "b32a016652c246e6", {}, 4},
        Golden{"Sine & Cosine Warp", "3fb1ffcbef550a9e", {}, 7}),
    goldenTestName);

} // namespace lumiran::testing
