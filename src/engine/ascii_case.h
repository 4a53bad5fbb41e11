#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace lumiran {

// Extensions, option values, settings codes and MIME types compare without
// regard to case, and only their ASCII letters have one that matters; other
// bytes (UTF-8 names) pass unchanged, whatever the locale says.
[[nodiscard]] constexpr char asciiLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

[[nodiscard]] inline std::string asciiLower(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) { return asciiLower(c); });
    return lower;
}

[[nodiscard]] constexpr bool equalIgnoringAsciiCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](char x, char y) { return asciiLower(x) == asciiLower(y); });
}

} // namespace lumiran
