#include "cli/cli_list.h"

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/english_texts.h"
#include "catalogue/name_folding.h"

#include <algorithm>
#include <cstdio>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace lumiran::cli {
namespace {

bool isAvailable(const EffectEntry& effect) {
    return planEffect(effect.dialog, effect.code, defaultControlValues(effect)).status ==
           EffectPlan::Status::Ready;
}

std::string_view availability(bool available) {
    return available ? "available" : "not available in this version";
}

// A text of the catalogue as the list shows it: the English where there is
// one, unless the program's own texts were asked for.
std::string_view text(std::string_view japanese, bool keys) {
    if (keys) return japanese;
    const std::string_view english = englishFor(japanese);
    return english.empty() ? japanese : english;
}

void printBlock(std::ostream& out, const EffectEntry& effect, bool keys) {
    if (keys) {
        out << effect.key << '\n';
        out << "  name:    " << englishEffectName(effect) << '\n';
    } else {
        out << englishEffectName(effect) << '\n';
    }
    out << "  family:  " << effect.family << " (" << effect.menu << " " << effect.index << ")\n";
    out << "  dialog:  " << dialogName(effect.dialog) << ", code " << effect.code << '\n';
    out << "  status:  " << availability(isAvailable(effect)) << '\n';
    for (const SliderSpec& s : effect.sliders) {
        out << "  slider " << s.number << ": ";
        if (!s.label.empty()) out << text(s.label, keys) << ' ';
        out << s.min << ".." << s.max << ", default " << s.defaultValue << '\n';
    }
    for (const ListSpec& l : effect.lists) {
        out << "  list " << listLetter(l.kind) << ":  ";
        if (!l.caption.empty()) out << text(l.caption, keys) << ": ";
        for (std::size_t i = 0; i < l.rows.size(); ++i)
            out << (i ? " | " : "") << text(l.rows[i], keys);
        out << '\n';
    }
}

// Text as a JSON string; bytes from 0x80 up (UTF-8) pass through.
std::string jsonString(std::string_view text) {
    std::string result = "\"";
    for (const char c : text) {
        switch (c) {
        case '"':
            result += "\\\"";
            break;
        case '\\':
            result += "\\\\";
            break;
        case '\n':
            result += "\\n";
            break;
        case '\t':
            result += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(c) < 0x20) {
                char escaped[8];
                std::snprintf(escaped, sizeof escaped, "\\u%04x", static_cast<unsigned>(c));
                result += escaped;
            } else {
                result += c;
            }
        }
    }
    return result + '"';
}

void printObject(std::ostream& out, const EffectEntry& effect) {
    const bool available = isAvailable(effect);
    out << "{\"family\":" << jsonString(effect.family) << ",\"menu\":" << jsonString(effect.menu)
        << ",\"index\":" << effect.index << ",\"caption\":" << jsonString(effect.caption)
        << ",\"key\":" << jsonString(effect.key)
        << ",\"name\":" << jsonString(englishEffectName(effect))
        << ",\"dialog\":" << jsonString(dialogName(effect.dialog)) << ",\"code\":" << effect.code
        << ",\"available\":" << (available ? "true" : "false")
        << ",\"availability\":" << jsonString(availability(available)) << ",\"sliders\":[";
    for (std::size_t i = 0; i < effect.sliders.size(); ++i) {
        const SliderSpec& s = effect.sliders[i];
        out << (i ? "," : "") << "{\"number\":" << s.number << ",\"label\":" << jsonString(s.label)
            << ",\"min\":" << s.min << ",\"max\":" << s.max << ",\"default\":" << s.defaultValue
            << '}';
    }
    out << "],\"lists\":[";
    for (std::size_t i = 0; i < effect.lists.size(); ++i) {
        const ListSpec& l = effect.lists[i];
        out << (i ? "," : "") << "{\"letter\":" << jsonString(std::string(1, listLetter(l.kind)))
            << ",\"caption\":" << jsonString(l.caption) << ",\"rows\":[";
        for (std::size_t r = 0; r < l.rows.size(); ++r) {
            out << (r ? "," : "") << jsonString(l.rows[r]);
        }
        out << "]}";
    }
    out << "]}";
}

// Columns a terminal gives the text: two for wide characters (kanji,
// full-width kana), one for ASCII and half-width katakana.
std::size_t columns(std::string_view text) {
    std::size_t width = 0;
    for (const char32_t c : decodeUtf8(text))
        width += c >= 0x1100 && !(c >= 0xFF61 && c <= 0xFF9F) ? 2 : 1;
    return width;
}

void pad(std::ostream& out, std::string_view text, std::size_t width) {
    out << text << std::string(width - std::min(width, columns(text)), ' ') << "  ";
}

// One line an effect: family, the name to type (the English name, or the
// key), and a note where it cannot run.
void printLines(std::ostream& out, const std::vector<const EffectEntry*>& effects, bool keys) {
    const auto name = [keys](const EffectEntry& e) {
        return keys ? std::string(e.key) : englishEffectName(e);
    };
    std::size_t familyWidth = 0, nameWidth = 0;
    for (const EffectEntry* e : effects) {
        familyWidth = std::max(familyWidth, columns(e->family));
        nameWidth = std::max(nameWidth, columns(name(*e)));
    }
    for (const EffectEntry* e : effects) {
        pad(out, e->family, familyWidth);
        if (isAvailable(*e)) {
            out << name(*e);
        } else {
            pad(out, name(*e), nameWidth);
            out << '(' << availability(false) << ')';
        }
        out << '\n';
    }
}

std::string familyNames() {
    std::string names;
    for (const EffectFamily& family : effectFamilies())
        names += (names.empty() ? "" : ", ") + std::string(family.caption);
    return names;
}

} // namespace

void printEffectList(std::ostream& out, const ListOptions& options) {
    const EffectFamily* family = nullptr;
    if (!options.family.empty()) {
        family = findFamilyNamed(options.family);
        if (family == nullptr) {
            throw UsageError("list --family: unknown family '" + options.family +
                             "' (families: " + familyNames() + ")");
        }
    }
    std::vector<const EffectEntry*> effects;
    for (const EffectEntry& e : effectCatalogue()) {
        if (family != nullptr && e.menu != family->menu) continue;
        if (options.availableOnly && !isAvailable(e)) continue;
        effects.push_back(&e);
    }
    if (options.compact) {
        printLines(out, effects, options.keys);
        return;
    }
    if (options.json) {
        out << "[\n";
        for (std::size_t i = 0; i < effects.size(); ++i) {
            printObject(out, *effects[i]);
            out << (i + 1 < effects.size() ? ",\n" : "\n");
        }
        out << "]\n";
        return;
    }
    for (std::size_t i = 0; i < effects.size(); ++i) {
        if (i > 0) out << '\n';
        printBlock(out, *effects[i], options.keys);
    }
}

} // namespace lumiran::cli
