#include "cli/cli_list.h"

#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"

#include <cstdio>
#include <ostream>
#include <string>
#include <string_view>

namespace lumiran::cli {
namespace {

bool isAvailable(const EffectEntry& effect) {
    return planEffect(effect.dialog, effect.code, defaultControlValues(effect)).status ==
           EffectPlan::Status::Ready;
}

std::string_view availability(bool available) {
    return available ? "available" : "not available yet";
}

// The two composition entries without a caption go by their key.
std::string_view heading(const EffectEntry& effect) {
    return effect.caption.empty() ? effect.key : effect.caption;
}

void printBlock(std::ostream& out, const EffectEntry& effect) {
    out << heading(effect) << '\n';
    out << "  family:  " << effect.family << " (" << effect.menu << " " << effect.index << ")\n";
    out << "  key:     " << effect.key << '\n';
    out << "  dialog:  " << dialogName(effect.dialog) << ", code " << effect.code << '\n';
    out << "  status:  " << availability(isAvailable(effect)) << '\n';
    for (const SliderSpec& s : effect.sliders) {
        out << "  slider " << s.number << ": ";
        if (!s.label.empty()) out << s.label << ' ';
        out << s.min << ".." << s.max << ", default " << s.defaultValue << '\n';
    }
    for (const ListSpec& l : effect.lists) {
        out << "  list " << listLetter(l.kind) << ":  ";
        if (!l.caption.empty()) out << l.caption << ": ";
        for (std::size_t i = 0; i < l.rows.size(); ++i)
            out << (i ? " | " : "") << l.rows[i];
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

} // namespace

void printEffectList(std::ostream& out, bool json) {
    const auto effects = effectCatalogue();
    if (json) {
        out << "[\n";
        for (std::size_t i = 0; i < effects.size(); ++i) {
            printObject(out, effects[i]);
            out << (i + 1 < effects.size() ? ",\n" : "\n");
        }
        out << "]\n";
        return;
    }
    for (std::size_t i = 0; i < effects.size(); ++i) {
        if (i > 0) out << '\n';
        printBlock(out, effects[i]);
    }
}

} // namespace lumiran::cli
