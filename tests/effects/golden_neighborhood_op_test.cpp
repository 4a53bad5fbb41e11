// Golden hashes of the Class_NeighborhoodOp effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    NeighborhoodOp, GoldenDefaults,
    ::testing::Values(
        Golden{"Color Shift", "ee9996a2507567bf"}, Golden{"Cold Seed", "175e06229f5a00af"},
        Golden{"Snow White", "a7b7809cb1fa8bbb"}, Golden{"Moire", "97d3bf0c1628e4b4"},
        Golden{"Force Fields", "190a4c3887ff5745"}, Golden{"Pencil Outline", "aba22781a9328161"},
        Golden{"Outline Expansion", "be2da989b3507710"},
        Golden{"Normal Emboss", "0e9b2eaeb1f0a605"}, Golden{"Monotone Emboss", "844ec122430ca724"},
        Golden{"Sine Emboss", "19f3bb19e0fc4e50"}, Golden{"RGB Average Emboss", "08caa761f8f0463b"},
        Golden{"Relief Emboss 1", "e622f1361f00dd70"},
        Golden{"Relief Emboss 2", "d0bc5d08b37699f4"}, Golden{"Piece Emboss", "c86feedd72904e86"},
        Golden{"Brightness Emboss", "dc7befc60ab64773"}, Golden{"Wall Emboss", "d7b1d51408be86b2"},
        Golden{"Rank Filter 3x3", "cfa5ce531e258974"},
        Golden{"Rank Filter 5x5", "9de3b4272fd891d7"}, Golden{"Count Filter", "fa0a28f0e4e80781"},
        Golden{"Fugu", "d0cfac24fae1762f"}, Golden{"Median Color", "b76593e5329934ec"},
        Golden{"Bleeding Filter", "d226db3cb4492473"}, Golden{"Fiasco", "44a232f4abcf3f5f"},
        Golden{"Gather 3x3", "af9637a5e78b087a"}),
    goldenTestName);

} // namespace lumiran::testing
