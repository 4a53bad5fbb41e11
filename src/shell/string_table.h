#pragma once

#include <span>
#include <string>
#include <string_view>

namespace lumiran {

// Ids are formed as an even base plus the language number. The program runs in
// Japanese only, so the sum is fixed and every lookup names an odd id.
constexpr int Language = 1;

// Below this id every id is a text of its own; from it on the even ids are
// the placeholders beside the texts.
constexpr int FirstPairedStringId = 1900;

struct StringEntry {
    int id;
    std::string_view text;
};

// The texts of `Language`, sorted by id, without the "?" placeholders.
[[nodiscard]] std::span<const StringEntry> stringTable();

// The program's numbered texts. Ids from 1000; from 1900 on an even id whose
// odd neighbour is a text reads "?". An unknown id gives an empty text, as a
// missing resource would be shown.
[[nodiscard]] std::string_view LoadResString(int id);

// The message title of a run-time error: "ｴﾗｰ" followed by the number.
[[nodiscard]] std::string errorTitle(int number);

} // namespace lumiran
