// Golden hashes of the Class_Mosaic effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(Mosaic, GoldenDefaults,
                         ::testing::Values(Golden{"Normal Mosaic", "4059b97f16fb63ab"},
                                           Golden{"Tile Mosaic", "84fc0af1187b0855"},
                                           Golden{"Gradation Mosaic 1", "69c226d684b732de"},
                                           Golden{"Gradation Mosaic 2", "ba07ce57809750af"},
                                           Golden{"Random Mosaic", "0ba101cf4c70df8f"},
                                           Golden{"Random Mosaic", "06639f2839d6f45d", {}, 1},
                                           Golden{"Random Mosaic", "74cb97f030b3b1a1", {}, 4},
                                           Golden{"Random Mosaic", "038bd3977c1255ed", {}, 5},
                                           Golden{"Gap Mosaic", "a896922ad557bc8b"},
                                           Golden{"Circle Mosaic", "9c09d332d97159d8"},
                                           Golden{"Pyramid Mosaic", "6fbe2fc25372f6ee"},
                                           Golden{"Lozenge Mosaic 1", "1f38b5316f6c3a9c"},
                                           Golden{"Circle Gap Mosaic", "a554864ca22437cb"},
                                           Golden{"Triangle Mosaic", "2365e42f26a4629c"},
                                           Golden{"Lozenge Mosaic 2", "a1f403893e0fe83c"},
                                           Golden{"Gradation Mosaic 3", "0afe27276ad689f3"},
                                           Golden{"Shippou-Tunagi Mosaic", "b55d4c4a488d07b0"},
                                           Golden{"Nico Block", "9be74b6b433ebac4"},
                                           Golden{"Osero", "311fb3395262956a"}),
                         goldenTestName);

} // namespace lumiran::testing
