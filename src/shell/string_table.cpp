#include "shell/string_table.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace lumiran {
namespace {

struct StringEntry {
    int id;
    std::string_view text;
};

// Sorted by id.
constexpr std::array strings{
    StringEntry{1929, "ｴﾗｰ"},
    StringEntry{2301, "ﾓﾉﾄｰﾝ"},
    StringEntry{3429, "処理中"},
    StringEntry{3431, "しばらくお待ちください。"},
    StringEntry{3433, "ｷｬﾝｾﾙ(&Z)"},
};

static_assert(std::ranges::is_sorted(strings, {}, &StringEntry::id));

} // namespace

std::string_view LoadResString(int id) {
    const auto it = std::ranges::lower_bound(strings, id, {}, &StringEntry::id);
    return it != strings.end() && it->id == id ? it->text : std::string_view{};
}

std::string errorTitle(int number) { return std::string(LoadResString(1929)) + std::to_string(number); }

} // namespace lumiran
