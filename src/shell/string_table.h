#pragma once

#include "shell/interface_language.h"

#include <span>
#include <string>
#include <string_view>

namespace lumiran {

// Ids are formed as an even base plus the language number. The ids keep the
// Japanese sum, so every lookup names an odd id; the English table uses the
// same ids rather than a second offset.
constexpr int Language = 1;

// Below this id every id is a text of its own; from it on the even ids are
// the placeholders beside the texts.
constexpr int FirstPairedStringId = 1900;

struct StringEntry {
    int id;
    std::string_view text;
};

// The texts of a language, sorted by id, without the "?" placeholders. Both
// tables hold the same ids.
[[nodiscard]] std::span<const StringEntry>
stringTable(InterfaceLanguage language = InterfaceLanguage::Japanese);

// The program's numbered texts. Ids from 1000; from 1900 on an even id whose
// odd neighbour is a text reads "?". An unknown id gives an empty text, as a
// missing resource would be shown.
[[nodiscard]] std::string_view LoadResString(int id);
[[nodiscard]] std::string_view LoadResString(int id, InterfaceLanguage language);

// The id of a Japanese text of the table, the lowest where several share it;
// 0 when the text is not in the table.
[[nodiscard]] int japaneseStringId(std::string_view text);

// The message title of a run-time error: "ｴﾗｰ" followed by the number.
[[nodiscard]] std::string errorTitle(int number);
[[nodiscard]] std::string errorTitle(int number, InterfaceLanguage language);

} // namespace lumiran
