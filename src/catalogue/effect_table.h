#pragma once

#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "catalogue/control_values.h"
#include "catalogue/dialog_kind.h"

namespace lumiran {

struct SliderSpec {
    int number = 1; // 1..8
    std::string_view label;
    int min = 0;
    int max = 0;
    int defaultValue = 0;
    int largeChange = 1;
    int smallChange = 1;
};

enum class ListKind { E, C, G };

struct ListSpec {
    ListKind kind = ListKind::C;
    std::string_view caption; // the frame caption
    std::vector<std::string_view> rows;
};

struct EffectEntry {
    std::string_view family;  // Effect1No caption, e.g. "Color"
    std::string_view menu;    // control array, e.g. "ColorNo"
    int index = 0;            // Index in the menu array
    std::string_view caption; // English menu caption
    int stringId = 0;         // odd id of the key, 0 for an English literal
    std::string_view key;     // the displayed name
    std::string_view title;   // window title where it is not the key
    PreviewRoutine routine = PreviewRoutine::PreviewStart;
    DialogKind dialog = DialogKind::Monotone;
    int code = 0;
    std::vector<SliderSpec> sliders;
    std::vector<ListSpec> lists;

    [[nodiscard]] const ListSpec* list(ListKind kind) const;
    [[nodiscard]] const SliderSpec* slider(int number) const;
};

[[nodiscard]] std::span<const EffectEntry> effectCatalogue();

// The values a freshly configured dialog hands on when OK is pressed at
// once: every slider at its default, row 0 of every list.
[[nodiscard]] ControlValues defaultControlValues(const EffectEntry& effect);

// By key, or by English caption ignoring case.
[[nodiscard]] const EffectEntry* findEffect(std::string_view name);

} // namespace lumiran
