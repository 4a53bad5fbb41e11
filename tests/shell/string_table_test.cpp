#include "catalogue/effect_table.h"
#include "shell/string_table.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <ranges>
#include <vector>

namespace lumiran {
namespace {

TEST(StringTable, IdsAreUniqueSortedFromOneThousandAndEachHoldsAText) {
    const auto table = stringTable();
    ASSERT_FALSE(table.empty());
    EXPECT_GE(table.front().id, 1000);
    EXPECT_TRUE(std::ranges::adjacent_find(table, std::ranges::greater_equal{}, &StringEntry::id) ==
                table.end());
    for (const StringEntry& entry : table) {
        EXPECT_FALSE(entry.text.empty()) << entry.id;
        EXPECT_NE(entry.text, "?") << entry.id;
    }
}

TEST(StringTable, FromNineteenHundredEachTextHasItsPlaceholderBeside) {
    for (const StringEntry& entry : stringTable()) {
        if (entry.id < FirstPairedStringId) continue;
        if (entry.id % 2 == 0) {
            // The Lighting effect's key is the one text at an even id.
            EXPECT_EQ(entry.id, 4240);
            continue;
        }
        EXPECT_EQ(LoadResString(entry.id - 1), "?") << entry.id;
    }
    EXPECT_EQ(LoadResString(1900), "?");
    EXPECT_EQ(LoadResString(4240), "照射");
    // No placeholder without a text beside it, and none below 1900.
    EXPECT_EQ(LoadResString(1998), "");
    EXPECT_EQ(LoadResString(1128), "");
    EXPECT_EQ(LoadResString(0), "");
    EXPECT_EQ(LoadResString(-2), "");
}

TEST(StringTable, QuotedTextsAreCharacterForCharacter) {
    EXPECT_EQ(LoadResString(1901),
              "表示可能なｳｨﾝﾄﾞｳ数を越えています。不必要なｳｨﾝﾄﾞｳを削除するか、ｵﾌﾟｼｮﾝﾒﾆｭｰからﾛｰﾄﾞでき"
              "るｳｨﾝﾄﾞｳ数を設定し直してから、処理を実行し直してください。");
    EXPECT_EQ(LoadResString(1905), "ﾌｧｲﾙを開けません。 ");
    EXPECT_EQ(LoadResString(1923), "終了しますか？");
    EXPECT_EQ(LoadResString(1929), "ｴﾗｰ");
    EXPECT_EQ(LoadResString(2051), "横 x 高さ  ");
    EXPECT_EQ(LoadResString(2301), "ﾓﾉﾄｰﾝ");
    EXPECT_EQ(LoadResString(3343), "合成\u3000平均");
    EXPECT_EQ(LoadResString(3429), "処理中");
    EXPECT_EQ(LoadResString(3431), "しばらくお待ちください。");
    EXPECT_EQ(LoadResString(3433), "ｷｬﾝｾﾙ(&Z)");
    EXPECT_EQ(LoadResString(1410), "誤差拡散法（描画色）");
    EXPECT_EQ(LoadResString(3623), "Bleeding Filter");
    EXPECT_EQ(errorTitle(6), "ｴﾗｰ6");
}

// The keys of the effect menus: a missing one leaves its dialog unconfigured.
constexpr std::array catalogueIds{
    1129, 1255, 1283, 1285, 1287, 1301, 1303, 1317, 1319, 1394, 1410, 1644, 1645, 2301, 2303, 2305,
    2307, 2309, 2311, 2313, 2315, 2317, 2321, 2323, 2325, 2327, 2331, 2333, 2335, 2337, 2339, 2341,
    2343, 2345, 2347, 2377, 2411, 2455, 2457, 2459, 2461, 2463, 2465, 2467, 2469, 2471, 2473, 2475,
    2477, 2483, 2485, 2487, 2489, 2491, 2493, 2495, 2497, 2499, 2501, 2503, 2505, 2545, 2587, 2589,
    2591, 2593, 2595, 2597, 2599, 2601, 2603, 2611, 2613, 2615, 2663, 2665, 2681, 2683, 2685, 2687,
    2689, 2691, 2693, 2695, 2697, 2699, 2709, 2713, 2723, 2729, 2741, 2743, 2745, 2749, 2751, 2753,
    2755, 2777, 2795, 2811, 2813, 2815, 2817, 2821, 2829, 2837, 2839, 2841, 2845, 2847, 2851, 2873,
    2881, 2883, 2885, 2891, 2893, 2897, 2899, 2901, 2903, 2921, 2927, 2929, 2931, 2955, 2959, 2961,
    2963, 2965, 2967, 2969, 2971, 2973, 2975, 2977, 2987, 2991, 2993, 3001, 3009, 3013, 3019, 3021,
    3023, 3029, 3033, 3051, 3053, 3059, 3061, 3063, 3065, 3067, 3135, 3139, 3145, 3149, 3151, 3153,
    3155, 3165, 3167, 3169, 3177, 3179, 3195, 3203, 3205, 3213, 3225, 3227, 3229, 3231, 3297, 3299,
    3301, 3303, 3317, 3323, 3325, 3331, 3333, 3337, 3339, 3341, 3343, 3349, 3357, 3363, 3371, 3375,
    3383, 3389, 3455, 3523, 3581, 3583, 3589, 3601, 3603, 3609, 3615, 3621, 3623, 3653, 3667, 3669,
    3757, 3901, 3907, 3909, 3913, 3915, 3917, 3919, 3927, 3929, 3931, 3933, 3935, 3949, 3951, 3953,
    3955, 3959, 3971, 3987, 4089, 4091, 4093, 4099, 4101, 4119, 4175, 4199, 4201, 4203, 4205, 4207,
    4211, 4213, 4215, 4240};

// The effect families, which the browser finds by their texts.
constexpr std::array familyIds{4019, 4021, 4023, 4025, 4027, 4029, 4031, 4033, 4035, 4037, 4039,
                               4041, 4043, 4045, 4051, 4053, 4055, 4057, 4059, 4061, 4067, 4071};

TEST(StringTable, EveryEffectMenuKeyAndFamilyResolves) {
    std::vector<int> ids(catalogueIds.begin(), catalogueIds.end());
    ids.insert(ids.end(), familyIds.begin(), familyIds.end());
    for (const int id : ids) {
        const std::string_view text = LoadResString(id);
        EXPECT_FALSE(text.empty()) << id;
        EXPECT_NE(text, "?") << id;
    }
}

TEST(StringTable, CatalogueKeysMatchTheirStrings) {
    for (const EffectEntry& effect : effectCatalogue()) {
        if (effect.stringId != 0) {
            EXPECT_EQ(LoadResString(effect.stringId), effect.key) << effect.caption;
        }
    }
}

} // namespace
} // namespace lumiran
