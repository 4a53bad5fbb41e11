#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace lumiran {

// The language of the editor's texts. Japanese is the program's own; English
// is a second table beside it.
enum class InterfaceLanguage : std::uint8_t { Japanese, English };

// "ja" or "en", the form the settings and LUMIRAN_LANG use.
[[nodiscard]] std::string_view interfaceLanguageCode(InterfaceLanguage language);

// The language of a stored or given code, ignoring case and surrounding
// blanks; nothing for any other text.
[[nodiscard]] std::optional<InterfaceLanguage> parseInterfaceLanguage(std::string_view code);

// The language a start uses: the environment's choice when it names one,
// otherwise the stored one. `environment` is null when the variable is unset.
[[nodiscard]] InterfaceLanguage chooseInterfaceLanguage(InterfaceLanguage stored,
                                                        const char* environment);

} // namespace lumiran
