// Golden hashes of the Class_ColorOp effects at their defaults on the
// bundled sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    ColorOp, GoldenDefaults,
    ::testing::Values(
        Golden{"Monotone", "2a6fbb1197760964"}, Golden{"Monotone", "377ef90d46131d60", 14},
        Golden{"Monotone", "b7a109555b9fc0f1", 15}, Golden{"HSV Cycle", "91f9a1a1e9a0075d"},
        Golden{"HSV Invert", "40afa420e0a70be8"}, Golden{"One Color Scale", "083f9c741a551164"},
        Golden{"Color Exchange", "7e7f0964669dfc50"}, Golden{"Deterioration", "8db228abba8da1d8"},
        Golden{"Black Widow", "4d441f206256a8cd"},
        Golden{"Difference Addition", "69f37d11b01a1489"},
        Golden{"Difference Subtraction", "f7e4e01a5062b760"},
        Golden{"Blackend", "407c6eaf1df0e455"}, Golden{"Pink", "f99caba34c963d5d"},
        Golden{"Mount Marilyn", "558f0c7c93a743be"}, Golden{"Autumns Yellow", "e5fdb32f66bf286f"},
        Golden{"Cyan Adjust", "0b2db2589f54e0ce"}, Golden{"Silver Mountain", "c2736b60f230317c"},
        Golden{"Hue And Gray", "dbef0dcef6a18ee5"},
        Golden{"Gray at Saturation", "095a854566e04823"},
        Golden{"Brightness Adjust", "6d1b6d4d8a32da3e"}, Golden{"Momo", "6aca466898c21f2d"},
        Golden{"色のﾊﾞﾗﾝｽ調整 RGB", "6d1b6d4d8a32da3e"},
        Golden{"色のﾊﾞﾗﾝｽ調整 YCbCr", "9c4ed12bcf68611b"},
        Golden{"色のﾊﾞﾗﾝｽ調整 HSV", "6d1b6d4d8a32da3e"},
        Golden{"色のﾊﾞﾗﾝｽ調整 HLS", "a257eefa82f8c8a1"},
        Golden{"色のﾊﾞﾗﾝｽ調整 CMYK", "6d1b6d4d8a32da3e"},
        Golden{"色のﾊﾞﾗﾝｽ調整 YUV", "541d7032c0c6103b"}, Golden{"Invasion Red", "81652c749cfe972d"},
        Golden{"Invasion Green", "f5977b962ed1c9bf"}, Golden{"Invasion Blue", "c216a967a7e8ccd3"},
        Golden{"Invasion Max", "bb19c1ad118810de"}, Golden{"Invasion Middle", "f093b1013d1e0301"},
        Golden{"Invasion Min", "6aa3b1aec9371c8a"},
        Golden{"Invasion Blightness", "050bb459900d83b1"}),
    goldenTestName);

} // namespace lumiran::testing
