// Golden hashes of the colour table effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

namespace lumiran::testing {

INSTANTIATE_TEST_SUITE_P(
    ColorTable, GoldenDefaults,
    ::testing::Values(
        Golden{"反転", "a7c08632fb28ee16"}, Golden{"ﾎﾟｽﾀﾗｲｽﾞ", "6d8263f226359b05"},
        Golden{"範囲濃度調整", "3fbcf1ebe54b2739"}, Golden{"色の範囲変更", "fab442b871cafc78"},
        Golden{"ﾗﾝﾀﾞﾑ･ｶﾗｰﾃｰﾌﾞﾙ", "ec9cb60fdc1fda2a"}, Golden{"変型ｿﾗﾘ", "8bd9d573bcc196cd"},
        Golden{"ｿﾗﾘｾﾞｰｼｮﾝ", "67957c05e330ac0c"}, Golden{"ﾚﾍﾞﾙ･ｽﾗｲｽ", "9070cbd233e7a527"},
        Golden{"R補正", "369d9fcc7601e3f7"}, Golden{"中間輝度強調", "dd146a0f4b917ca2"},
        Golden{"他色を変換", "9ed9232297bdf3ce"}, Golden{"うに", "a814ed0c3d252e36"},
        Golden{"ﾋｽﾄｸﾞﾗﾑ伸張化", "460ad5f644bd061e"}, Golden{"ﾋｽﾄｸﾞﾗﾑ均等化", "a3d1a6eacb666113"},
        Golden{"幻影", "cc2a3e26ba36a963"}, Golden{"強調", "54a9382baccefaf0"},
        Golden{"かに", "adfdd1a8c83d1093"}, Golden{"範囲濃度入れ換え", "9bcd9503ed974dad"}),
    goldenTestName);

} // namespace lumiran::testing
