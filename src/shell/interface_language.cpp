#include "shell/interface_language.h"

#include "engine/ascii_case.h"

#include <algorithm>
#include <string>

namespace lumiran {

std::string_view interfaceLanguageCode(InterfaceLanguage language) {
    return language == InterfaceLanguage::English ? "en" : "ja";
}

std::optional<InterfaceLanguage> parseInterfaceLanguage(std::string_view code) {
    const auto first = code.find_first_not_of(" \t");
    if (first == std::string_view::npos) return std::nullopt;
    code = code.substr(first, code.find_last_not_of(" \t") - first + 1);
    const std::string lower = asciiLower(code);
    if (lower == "ja") return InterfaceLanguage::Japanese;
    if (lower == "en") return InterfaceLanguage::English;
    return std::nullopt;
}

InterfaceLanguage chooseInterfaceLanguage(InterfaceLanguage stored, const char* environment) {
    if (environment == nullptr) return stored;
    return parseInterfaceLanguage(environment).value_or(stored);
}

} // namespace lumiran
