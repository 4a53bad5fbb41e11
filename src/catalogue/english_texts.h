#pragma once

#include <span>
#include <string_view>

namespace lumiran {

struct TextPair {
    std::string_view japanese;
    std::string_view english;
};

// The English for a Japanese text that is not in the numbered string table:
// the catalogue's slider labels, list rows, frame captions and window titles,
// and the texts effects and readers show (progress captions, messages).
// Empty when the text has none, so a caller can tell a gap from a translation;
// texts that are ASCII already (list rows such as "RGB" or "3x3") have none.
[[nodiscard]] std::string_view englishFor(std::string_view japanese);

// Every pair, sorted by the Japanese bytes.
[[nodiscard]] std::span<const TextPair> allEnglishTexts();

} // namespace lumiran
