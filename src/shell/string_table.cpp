#include "shell/string_table.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>

namespace lumiran {
namespace {

#include "shell/string_table_en.inc"
#include "shell/string_table_ja.inc"

// Strictly ascending: the lookup is a binary search and an id has one text.
static_assert(std::ranges::adjacent_find(japaneseStrings, std::ranges::greater_equal{},
                                         &StringEntry::id) == japaneseStrings.end());
static_assert(std::ranges::adjacent_find(englishStrings, std::ranges::greater_equal{},
                                         &StringEntry::id) == englishStrings.end());

const StringEntry* findEntry(std::span<const StringEntry> table, int id) {
    const auto it = std::ranges::lower_bound(table, id, {}, &StringEntry::id);
    return it != table.end() && it->id == id ? &*it : nullptr;
}

} // namespace

std::span<const StringEntry> stringTable(InterfaceLanguage language) {
    if (language == InterfaceLanguage::English) return englishStrings;
    return japaneseStrings;
}

std::string_view LoadResString(int id) {
    return LoadResString(id, InterfaceLanguage::Japanese);
}

std::string_view LoadResString(int id, InterfaceLanguage language) {
    const std::span<const StringEntry> table = stringTable(language);
    if (const StringEntry* entry = findEntry(table, id)) return entry->text;
    // The even id beside a text is its bare base, a slot of no language.
    if (id >= FirstPairedStringId && id % 2 == 0 && findEntry(table, id + 1)) return "?";
    return {};
}

int japaneseStringId(std::string_view text) {
    const auto it = std::ranges::find(japaneseStrings, text, &StringEntry::text);
    return it != japaneseStrings.end() ? it->id : 0;
}

std::string errorTitle(int number) {
    return errorTitle(number, InterfaceLanguage::Japanese);
}

std::string errorTitle(int number, InterfaceLanguage language) {
    return std::string(LoadResString(1929, language)) + std::to_string(number);
}

} // namespace lumiran
