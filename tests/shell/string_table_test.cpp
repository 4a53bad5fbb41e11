#include "shell/string_table.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace lumiran {
namespace {

// The effect keys and family texts the catalogue fetches are checked against
// this table by the catalogue's own tests.

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
    // No placeholder without a text beside it, and none below 1900; unknown ids give "".
    for (const int id : {1998, 1128, 0, -2})
        EXPECT_EQ(LoadResString(id), "") << id;
}

TEST(StringTable, QuotedTextsAreCharacterForCharacter) {
    for (const auto& [id, text] : std::initializer_list<std::pair<int, std::string_view>>{
             {1901, "表示可能なｳｨﾝﾄﾞｳ数を越えています。不必要なｳｨﾝﾄﾞｳを削除するか、ｵﾌﾟｼｮﾝﾒﾆｭｰからﾛ"
                    "ｰﾄﾞできるｳｨﾝﾄﾞｳ数を設定し直してから、処理を実行し直してください。"},
             {1905, "ﾌｧｲﾙを開けません。 "},  // trailing space kept
             {2051, "横 x 高さ  "},          // two trailing spaces kept
             {3343, "合成\u3000平均"},       // ideographic space
             {1410, "誤差拡散法（描画色）"}, // below the paired range
             {1923, "終了しますか？"},
             {3429, "処理中"},
             {3433, "ｷｬﾝｾﾙ(&Z)"},          // accelerator kept
             {3623, "Bleeding Filter"}}) { // English text in the table
        EXPECT_EQ(LoadResString(id), text) << id;
    }
    EXPECT_EQ(errorTitle(6), "ｴﾗｰ6");
}

} // namespace
} // namespace lumiran
