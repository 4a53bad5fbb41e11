#include "shell/string_table.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <string_view>
#include <utility>
#include <vector>

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

bool hasJapanese(std::string_view text) {
    // Every Japanese character in UTF-8 starts with E3 (kana, CJK symbols),
    // E4-E9 (CJK ideographs) or EF BD/BE (half-width katakana, full-width forms).
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        if (c >= 0xE3 && c <= 0xE9) return true;
        if (c == 0xEF && i + 1 < text.size() &&
            (static_cast<unsigned char>(text[i + 1]) & 0xFC) == 0xBC)
            return true;
    }
    return false;
}

std::vector<std::string_view> placeholders(std::string_view text) {
    std::vector<std::string_view> found;
    for (std::size_t at = text.find('%'); at != std::string_view::npos && at + 1 < text.size();
         at = text.find('%', at + 1)) {
        if (text[at + 1] >= '1' && text[at + 1] <= '9') found.push_back(text.substr(at, 2));
    }
    std::ranges::sort(found);
    return found;
}

// "&" before an ASCII letter or digit; "&" in "ｻｲﾝ&ｺｻｲﾝ" or "Sine & Cosine" is
// a plain character.
bool hasAccelerator(std::string_view text) {
    for (std::size_t at = text.find('&'); at != std::string_view::npos && at + 1 < text.size();
         at = text.find('&', at + 1)) {
        if (std::isalnum(static_cast<unsigned char>(text[at + 1]))) return true;
    }
    return false;
}

bool startsBlank(std::string_view t) {
    return t.starts_with(' ') || t.starts_with("\u3000");
}

// Both tables hold the same ids, so no text is ever missing in one language;
// an English text keeps what the program builds around it: its %n
// arguments, an accelerator, the blanks it is joined by.
TEST(StringTable, EveryIdHasATextInBothLanguagesThatFitsTheSamePlace) {
    const auto japanese = stringTable(InterfaceLanguage::Japanese);
    const auto english = stringTable(InterfaceLanguage::English);
    ASSERT_EQ(japanese.size(), english.size());
    for (std::size_t i = 0; i < japanese.size(); ++i) {
        const StringEntry& ja = japanese[i];
        const StringEntry& en = english[i];
        ASSERT_EQ(ja.id, en.id) << "the tables part at " << ja.id;
        EXPECT_FALSE(en.text.empty()) << en.id;
        EXPECT_NE(en.text, "?") << en.id;
        EXPECT_FALSE(hasJapanese(en.text)) << en.id << " " << en.text;
        EXPECT_EQ(placeholders(ja.text), placeholders(en.text)) << en.id;
        EXPECT_EQ(hasAccelerator(ja.text), hasAccelerator(en.text)) << en.id << " " << en.text;
        EXPECT_EQ(startsBlank(ja.text), startsBlank(en.text)) << en.id;
        // A value follows the English word or colon after a blank where the
        // Japanese needs none (the error number, the status panels' flags).
        const bool joinedAfterBlank = en.text.ends_with(": ") || en.id == 1929;
        if (!joinedAfterBlank) EXPECT_EQ(ja.text.ends_with(' '), en.text.ends_with(' ')) << en.id;
    }
}

// The "?" beside a text and the empty text of an unknown id are the same in
// both languages.
TEST(StringTable, PlaceholdersAndGapsAreTheSameInEnglish) {
    for (const StringEntry& entry : stringTable(InterfaceLanguage::Japanese)) {
        for (const int id : {entry.id - 1, entry.id, entry.id + 1}) {
            const bool placeholder = LoadResString(id) == "?";
            const bool gap = LoadResString(id).empty();
            EXPECT_EQ(LoadResString(id, InterfaceLanguage::English) == "?", placeholder) << id;
            EXPECT_EQ(LoadResString(id, InterfaceLanguage::English).empty(), gap) << id;
        }
    }
    EXPECT_EQ(LoadResString(1929, InterfaceLanguage::Japanese), LoadResString(1929));
    EXPECT_EQ(errorTitle(6, InterfaceLanguage::English), "Error 6");
    EXPECT_EQ(japaneseStringId("ﾂｰﾙ:"), 5093);
    EXPECT_EQ(japaneseStringId("貼り付け"), 1947); // the first of the ids sharing it
    EXPECT_EQ(japaneseStringId("not a text of the table"), 0);
}

} // namespace
} // namespace lumiran
