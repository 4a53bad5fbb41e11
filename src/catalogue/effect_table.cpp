#include "catalogue/effect_table.h"

#include "catalogue/name_folding.h"
#include "engine/ascii_case.h"
#include "shell/string_table.h"

#include <algorithm>
#include <string>

namespace lumiran {
namespace {

struct FamilyBlock {
    EffectFamily family;
    std::vector<EffectEntry> entries;
};

std::vector<FamilyBlock> catalogueBlocks() {
    using enum PreviewRoutine;
    using enum DialogKind;
    using enum ListKind;
    return {
#include "catalogue/effect_table_data.inc"
    };
}

struct Catalogue {
    std::vector<EffectFamily> families;
    std::vector<EffectEntry> entries;
};

Catalogue buildCatalogue() {
    Catalogue catalogue;
    for (FamilyBlock& block : catalogueBlocks()) {
        for (EffectEntry& entry : block.entries) {
            entry.family = block.family.caption;
            entry.menu = block.family.menu;
            catalogue.entries.push_back(std::move(entry));
        }
        catalogue.families.push_back(block.family);
    }
    return catalogue;
}

const Catalogue& catalogue() {
    static const Catalogue built = buildCatalogue();
    return built;
}

std::string withoutAccelerator(std::string_view caption) {
    std::string plain(caption);
    if (const auto open = plain.find("(&"); open != std::string::npos) {
        const auto close = plain.find(')', open);
        if (close != std::string::npos) plain.erase(open, close - open + 1);
    }
    std::erase(plain, '&');
    return plain;
}

} // namespace

const ListSpec* EffectEntry::list(ListKind kind) const {
    const auto it = std::ranges::find(lists, kind, &ListSpec::kind);
    return it == lists.end() ? nullptr : &*it;
}

const SliderSpec* EffectEntry::slider(int number) const {
    const auto it = std::ranges::find(sliders, number, &SliderSpec::number);
    return it == sliders.end() ? nullptr : &*it;
}

std::span<const EffectFamily> effectFamilies() {
    return catalogue().families;
}

const EffectFamily* findFamily(std::string_view menu) {
    const auto families = effectFamilies();
    const auto it = std::ranges::find(families, menu, &EffectFamily::menu);
    return it == families.end() ? nullptr : &*it;
}

std::span<const EffectEntry> effectCatalogue() {
    return catalogue().entries;
}

ControlValues defaultControlValues(const EffectEntry& effect) {
    ControlValues values;
    for (const SliderSpec& s : effect.sliders)
        values.sliders[s.number - 1] = s.defaultValue;
    return values;
}

std::string effectName(const EffectEntry& effect) {
    return effect.caption.empty() ? std::string(effect.key) : withoutAccelerator(effect.caption);
}

std::string englishEffectName(const EffectEntry& effect) {
    if (!effect.caption.empty()) return withoutAccelerator(effect.caption);
    const std::string_view english = LoadResString(effect.stringId, InterfaceLanguage::English);
    return std::string(effect.stringId != 0 && !english.empty() ? english : effect.key);
}

const EffectEntry* findEffect(std::string_view name) {
    // Two composition entries have no caption; an empty name finds nothing.
    if (name.empty()) return nullptr;
    const auto table = effectCatalogue();
    for (const EffectEntry& e : table) {
        if (e.key == name) return &e;
    }
    for (const EffectEntry& e : table) {
        if (equalIgnoringAsciiCase(e.caption, name)) return &e;
    }
    // "Mean" finds the menu caption "Mean(&M)": the accelerator is not part of the name.
    for (const EffectEntry& e : table) {
        if (equalIgnoringAsciiCase(withoutAccelerator(e.caption), name)) return &e;
    }
    for (const EffectEntry& e : table) {
        if (e.caption.empty() && equalIgnoringAsciiCase(englishEffectName(e), name)) return &e;
    }
    // Typed with the other width: "モノトーン" for "ﾓﾉﾄｰﾝ", "Ｍｏｎｏｔｏｎｅ".
    const std::string folded = foldedName(name);
    for (const EffectEntry& e : table) {
        if (foldedName(e.key) == folded) return &e;
    }
    for (const EffectEntry& e : table) {
        if (!e.caption.empty() && foldedName(withoutAccelerator(e.caption)) == folded) return &e;
    }
    return nullptr;
}

std::vector<std::string> closestEffectNames(std::string_view name, std::size_t most) {
    const std::u32string typed = decodeUtf8(foldedName(name));
    if (typed.empty()) return {};
    // Near means within about a third of the typed length of a whole name,
    // or one step further of a part of one ("Mosaic" of "Normal Mosaic").
    // Only the nearest are offered, the first in menu order; a name must
    // keep at least one of the typed characters.
    const std::size_t reach =
        std::min(std::max<std::size_t>(1, typed.size() / 3), typed.size() - 1);
    std::size_t nearest = reach + 1;
    std::vector<std::string> names;
    for (const EffectEntry& e : effectCatalogue()) {
        std::size_t best = reach + 1;
        std::string shown;
        auto consider = [&](std::string form) {
            const std::u32string candidate = decodeUtf8(foldedName(form));
            std::size_t distance = editDistance(typed, candidate);
            if (typed.size() >= 4) {
                distance = std::min(distance, partDistance(typed, candidate) + 1);
            }
            if (distance < best) {
                best = distance;
                shown = std::move(form);
            }
        };
        if (!e.caption.empty()) consider(withoutAccelerator(e.caption));
        consider(std::string(e.key));
        if (shown.empty() || best > nearest) continue;
        if (best < nearest) {
            nearest = best;
            names.clear();
        }
        if (names.size() < most && std::ranges::find(names, shown) == names.end()) {
            names.push_back(std::move(shown));
        }
    }
    return names;
}

const EffectFamily* findFamilyNamed(std::string_view name) {
    const std::string folded = foldedName(name);
    for (const EffectFamily& family : effectFamilies()) {
        if (foldedName(family.caption) == folded || foldedName(family.menu) == folded) {
            return &family;
        }
    }
    return nullptr;
}

bool needsKeptImage(const EffectEntry& effect) {
    return effect.menu == "mnueditanding" || effect.menu == "suteganono";
}

} // namespace lumiran
