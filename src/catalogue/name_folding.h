#pragma once

#include <string>
#include <string_view>

namespace lumiran {

// Unicode NFKC for the characters a Japanese keyboard and the program's
// own names bring: full-width ASCII and space, half-width katakana with
// their sound marks, the half-width and full-width signs. "ﾓﾉﾄｰﾝ" and
// "モノトーン" both become "モノトーン", "ﾃﾞ" and "テ" + U+3099 both "デ".
// Other characters pass unchanged; malformed UTF-8 becomes U+FFFD.
[[nodiscard]] std::string nfkc(std::string_view utf8);

// The form effect and family names are compared in: NFKC, then ASCII
// letters in lower case.
[[nodiscard]] std::string foldedName(std::string_view utf8);

// The code points of UTF-8 text; malformed bytes become U+FFFD.
[[nodiscard]] std::u32string decodeUtf8(std::string_view utf8);

// The least number of code points to insert, delete or replace to turn
// one text into the other.
[[nodiscard]] std::size_t editDistance(std::u32string_view a, std::u32string_view b);

// The least edit distance between `part` and any stretch of `text`: 0 when
// text contains part.
[[nodiscard]] std::size_t partDistance(std::u32string_view part, std::u32string_view text);

} // namespace lumiran
