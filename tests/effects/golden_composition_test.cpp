// Golden hashes of the merges with the kept image at their defaults on the
// bundled sample, with the generated kept image of golden.h.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    Composition, GoldenDefaults,
    ::testing::Values(
        Golden{"ﾗｽﾀ演算による合成", "1700fd486d51318a"},
        Golden{"ﾗｽﾀ演算による合成", "cf320069000c543e", 1, 6},
        Golden{"ﾗｽﾀ演算による合成", "53d07c8ab7e9c536", 2, 1},
        Golden{"合成　平均", "868d2edd833354ac"}, Golden{"合成　平均", "17532121d2d9698d", 7},
        Golden{"合成　加算", "207818bae09a025b"}, Golden{"合成　加算", "6a52d1a93f134078", {}, 1},
        Golden{"合成　加算", "21574d2ef723f8c4", 7, 2}, Golden{"合成　減算", "a37b238af517f07b"},
        Golden{"合成　減算", "7d38262b4eecefbc", {}, 3}, Golden{"合成　比較", "23d5916cf541c652"},
        Golden{"合成　比較", "cf2cab3a1cf59514", {}, 3},
        Golden{"合成　乗算&商算", "f858ecf27ae0ae97"},
        Golden{"合成　乗算&商算", "aa25fd849c594439", {}, 1}, Golden{"ﾀｲﾙ", "42f6536183a67b4b"},
        Golden{"ﾀｲﾙ", "05b6efc726216b6f", 1}, Golden{"波紋座標", "69bcd47e2babf18d"},
        Golden{"波紋座標", "84248245a59d2db3", 2, 6}, Golden{"合成　拡散", "24335c40acb4baab"},
        Golden{"合成　ｴﾝﾎﾞｽ", "34fad0c063f43feb"}, Golden{"範囲濃度切り替え", "5cbe8624652e77f8"},
        Golden{"範囲濃度切り替え", "50bccc1ca3d2a050", {}, 1},
        Golden{"同一色入れ換え", "c2de4ff9022a9236"}, Golden{"透かし　隠す", "aafd189e1366f122"},
        Golden{"透かし　隠す", "0d634dd263a1c32f", 1},
        Golden{"透かし　隠す", "a505f42204ca9c87", 2},
        Golden{"透かし　摘出する", "5135f92abbe76d7c"}),
    goldenTestName);

} // namespace lumiran::testing
