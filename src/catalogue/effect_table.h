#pragma once

#include "catalogue/control_values.h"
#include "catalogue/dialog_kind.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

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

// The letter a list goes by: E ETypeList, C ColorList (MonoList), G DistanceCombo.
[[nodiscard]] constexpr char listLetter(ListKind kind) {
    switch (kind) {
    case ListKind::E:
        return 'E';
    case ListKind::C:
        return 'C';
    case ListKind::G:
        return 'G';
    }
    return '?';
}

struct ListSpec {
    ListKind kind = ListKind::C;
    std::string_view caption; // the frame caption
    std::vector<std::string_view> rows;
};

// One menu array of effects.
struct EffectFamily {
    std::string_view menu;       // control array, e.g. "ColorNo"
    std::string_view caption;    // e.g. "Color"
    std::string_view parentMenu; // the menu holding the entry that opens it; empty: top level
    int parentIndex = -1;        // that entry's Index in parentMenu
    int browseCategoryId = 0;    // string id of the family's browser category; 0: none
};

struct EffectEntry {
    int index = 0;            // Index in the menu array
    std::string_view caption; // English menu caption; empty for two composition entries
    int stringId = 0;         // id of the key, 0 for an English literal
    std::string_view key;     // the displayed name
    std::string_view title;   // window title where it is not the key
    PreviewRoutine routine = PreviewRoutine::PreviewStart;
    DialogKind dialog = DialogKind::Monotone;
    int code = 0;
    std::vector<SliderSpec> sliders; // in slider order; absent sliders stay hidden
    std::vector<ListSpec> lists;     // absent lists stay hidden with their frames
    std::string_view call;           // the processing routine's call, argument pattern as written
    // Taken from the menu block the entry stands in.
    std::string_view family{}; // caption of its family, e.g. "Color"
    std::string_view menu{};   // control array, e.g. "ColorNo"

    [[nodiscard]] const ListSpec* list(ListKind kind) const;
    [[nodiscard]] const SliderSpec* slider(int number) const;
    [[nodiscard]] std::string_view windowTitle() const { return title.empty() ? key : title; }
};

// The 25 effect menus in menu order.
[[nodiscard]] std::span<const EffectFamily> effectFamilies();
[[nodiscard]] const EffectFamily* findFamily(std::string_view menu);

// Whether the effect merges the document with the kept image: the rows of
// the composition menu and its steganography submenu.
[[nodiscard]] bool needsKeptImage(const EffectEntry& effect);

// All 262 effects in menu order.
[[nodiscard]] std::span<const EffectEntry> effectCatalogue();

// The values a freshly configured dialog hands on when OK is pressed at
// once: every slider at its default, row 0 of every list.
[[nodiscard]] ControlValues defaultControlValues(const EffectEntry& effect);

// The name a user reads and types: the caption without its accelerator
// ("Mean" for "Mean(&M)"), or the key where there is no caption.
[[nodiscard]] std::string effectName(const EffectEntry& effect);

// The name in English: the caption without its accelerator, or, for the
// entries without a caption, the English of the key's string.
[[nodiscard]] std::string englishEffectName(const EffectEntry& effect);

// By key, or by English caption ignoring case (or the English name of an
// entry without a caption); the first in menu order
// wins. A name that matches neither as typed is compared after NFKC, so
// full-width and half-width forms both find the effect.
[[nodiscard]] const EffectEntry* findEffect(std::string_view name);

// Up to `most` names of effects that come closest to one that was not
// found, closest first: of each effect the caption (without its
// accelerator) or the key, whichever is nearer. Empty when nothing is near.
[[nodiscard]] std::vector<std::string> closestEffectNames(std::string_view name,
                                                          std::size_t most = 3);

// A family by its caption ("Color Table") or menu ("ColorTableNo"),
// ignoring case, after NFKC.
[[nodiscard]] const EffectFamily* findFamilyNamed(std::string_view name);

} // namespace lumiran
