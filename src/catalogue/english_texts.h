#pragma once

#include <string_view>

namespace lumiran {

// The English for a Japanese text that is not in the numbered string table:
// the catalogue's slider labels, list rows, frame captions and window titles,
// and the texts effects and readers show (progress captions, messages).
// Empty when the text has none, so a caller can tell a gap from a translation.
[[nodiscard]] std::string_view englishFor(std::string_view japanese);

} // namespace lumiran
