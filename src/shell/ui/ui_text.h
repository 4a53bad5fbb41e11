#pragma once

#include "shell/string_table.h"

#include <QString>

namespace lumiran {

// A text of the string table for display.
[[nodiscard]] inline QString res(int id) {
    const std::string_view text = LoadResString(id);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

[[nodiscard]] inline QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace lumiran
