// Golden hashes of the colour table effects at their defaults on the bundled
// sample: a guard against accidental change, not a test of the rules.
#include "golden.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

struct Golden {
    const char* caption; // names the test
    const char* key;     // finds the effect: captions repeat across families
    const char* hash;
};

void PrintTo(const Golden& golden, std::ostream* out) {
    *out << golden.caption;
}

class GoldenColorTable : public ::testing::TestWithParam<Golden> {};

TEST_P(GoldenColorTable, DefaultRunOnTheSampleIsUnchanged) {
    const Golden& golden = GetParam();
    const EffectEntry* entry = findEffect(golden.key);
    ASSERT_NE(entry, nullptr) << golden.caption;
    EXPECT_EQ(entry->caption, golden.caption);
    const Surface result = testing::runWithDefaults(golden.key);
    ASSERT_FALSE(result.empty()) << golden.caption << " did not run";
    EXPECT_EQ(testing::pictureHash(result), golden.hash) << golden.caption;
}

INSTANTIATE_TEST_SUITE_P(
    Effects, GoldenColorTable,
    ::testing::Values(Golden{"Negative", "反転", "a7c08632fb28ee16"},
                      Golden{"Posterize", "ﾎﾟｽﾀﾗｲｽﾞ", "6d8263f226359b05"},
                      Golden{"Shade Range Adjust", "範囲濃度調整", "3fbcf1ebe54b2739"},
                      Golden{"Color Range Change", "色の範囲変更", "fab442b871cafc78"},
                      Golden{"Random Color Table", "ﾗﾝﾀﾞﾑ･ｶﾗｰﾃｰﾌﾞﾙ", "ec9cb60fdc1fda2a"},
                      Golden{"Transformation Solarize", "変型ｿﾗﾘ", "8bd9d573bcc196cd"},
                      Golden{"Solarization", "ｿﾗﾘｾﾞｰｼｮﾝ", "67957c05e330ac0c"},
                      Golden{"Level Slice", "ﾚﾍﾞﾙ･ｽﾗｲｽ", "9070cbd233e7a527"},
                      Golden{"R Revision", "R補正", "369d9fcc7601e3f7"},
                      Golden{"Median Level Emphasize", "中間輝度強調", "dd146a0f4b917ca2"},
                      Golden{"Another Color Change", "他色を変換", "9ed9232297bdf3ce"},
                      Golden{"Uni", "うに", "a814ed0c3d252e36"},
                      Golden{"Histgram Expansion", "ﾋｽﾄｸﾞﾗﾑ伸張化", "460ad5f644bd061e"},
                      Golden{"Histgram Equation", "ﾋｽﾄｸﾞﾗﾑ均等化", "a3d1a6eacb666113"},
                      Golden{"Phantom", "幻影", "cc2a3e26ba36a963"},
                      Golden{"Emphasize", "強調", "54a9382baccefaf0"},
                      Golden{"Kani", "かに", "adfdd1a8c83d1093"},
                      Golden{"Shade Range Exchange", "範囲濃度入れ換え", "9bcd9503ed974dad"}),
    [](const ::testing::TestParamInfo<Golden>& param) {
        std::string name = param.param.caption;
        std::erase_if(name, [](char c) { return !std::isalnum(static_cast<unsigned char>(c)); });
        return name;
    });

} // namespace
} // namespace lumiran
