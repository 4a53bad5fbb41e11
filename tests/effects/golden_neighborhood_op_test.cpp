// Golden hashes of the Class_NeighborhoodOp effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    NeighborhoodOp, GoldenDefaults,
    ::testing::Values(
        Golden{"Color Shift", "ee9996a2507567bf"}, Golden{"Cold Seed", "175e06229f5a00af"},
        Golden{"Snow White", "a7b7809cb1fa8bbb"}, Golden{"Moire", "97d3bf0c1628e4b4"},
        Golden{"Force Fields", "e36b32ed32ca5d3b"}, Golden{"Pencil Outline", "aba22781a9328161"},
        Golden{"Outline Expansion", "be2da989b3507710"},
        Golden{"Normal Emboss", "e9b74c1a9bc0a631"}, Golden{"Monotone Emboss", "96a31d5c59e21310"},
        Golden{"Sine Emboss", "d89dd8eb1e11eb42"}, Golden{"RGB Average Emboss", "2c1736132d419f86"},
        Golden{"Relief Emboss 1", "ef7afb7342a86683"},
        Golden{"Relief Emboss 2", "0cc502aa0a559cc9"}, Golden{"Piece Emboss", "6f917de77e41edac"},
        Golden{"Brightness Emboss", "21284e14de536fcf"}, Golden{"Wall Emboss", "df451f33b6a9f2a5"},
        Golden{"Rank Filter 3x3", "cfa5ce531e258974"},
        Golden{"Rank Filter 5x5", "9de3b4272fd891d7"}, Golden{"Count Filter", "fa0a28f0e4e80781"},
        Golden{"Fugu", "d0cfac24fae1762f"}, Golden{"Median Color", "b76593e5329934ec"},
        Golden{"Bleeding Filter", "d226db3cb4492473"}, Golden{"Fiasco", "44a232f4abcf3f5f"},
        Golden{"Gather 3x3", "af9637a5e78b087a"}),
    goldenTestName);

} // namespace lumiran::testing
