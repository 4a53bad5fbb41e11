#include "shell/string_table.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>

namespace lumiran {
namespace {

#include "shell/string_table_ja.inc"

// Strictly ascending: the lookup is a binary search and an id has one text.
static_assert(std::ranges::adjacent_find(japaneseStrings, std::ranges::greater_equal{},
                                         &StringEntry::id) == japaneseStrings.end());

const StringEntry* findEntry(int id) {
    const auto it = std::ranges::lower_bound(japaneseStrings, id, {}, &StringEntry::id);
    return it != japaneseStrings.end() && it->id == id ? &*it : nullptr;
}

} // namespace

std::span<const StringEntry> stringTable() {
    return japaneseStrings;
}

std::string_view LoadResString(int id) {
    if (const StringEntry* entry = findEntry(id)) return entry->text;
    // The even id beside a text is its bare base, a slot of no language.
    if (id >= FirstPairedStringId && id % 2 == 0 && findEntry(id + 1)) return "?";
    return {};
}

std::string errorTitle(int number) {
    return std::string(LoadResString(1929)) + std::to_string(number);
}

} // namespace lumiran
