#pragma once

#include <string_view>

namespace lumiran {

// The seven generic parameter forms.
enum class DialogKind { Emboss, Monotone, Sepia, Negative, ColorScale, Level, Mani };

[[nodiscard]] constexpr std::string_view dialogName(DialogKind kind) {
    switch (kind) {
    case DialogKind::Emboss:
        return "frm_Emboss";
    case DialogKind::Monotone:
        return "frm_Monotone";
    case DialogKind::Sepia:
        return "frm_Sepia";
    case DialogKind::Negative:
        return "frm_Negative";
    case DialogKind::ColorScale:
        return "frm_ColorScale";
    case DialogKind::Level:
        return "frm_Level";
    case DialogKind::Mani:
        return "frm_Mani";
    }
    return "";
}

// The configuring routine of a group of effects.
enum class PreviewRoutine {
    PreviewStart,
    PreviewStartKai,
    PreviewStart2,
    PreviewStart2Kai,
    PreviewStart3,
    PreviewStart3Kai,
    PreviewStartAnother,
};

} // namespace lumiran
