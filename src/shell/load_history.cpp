#include "shell/load_history.h"

#include <algorithm>

namespace lumiran {

void LoadHistory::add(const std::string& path) {
    if (std::ranges::find(entries_, path) != entries_.end()) return;
    const auto firstEmpty = std::ranges::find(entries_, Empty);
    const std::size_t last = firstEmpty == entries_.end()
                                 ? Size - 1
                                 : static_cast<std::size_t>(firstEmpty - entries_.begin());
    for (std::size_t i = last; i > 0; --i)
        entries_[i] = std::move(entries_[i - 1]);
    entries_[0] = path;
}

void LoadHistory::clear() {
    entries_.fill(std::string(Empty));
}

std::size_t LoadHistory::visibleCount() const {
    return static_cast<std::size_t>(std::ranges::find(entries_, Empty) - entries_.begin());
}

} // namespace lumiran
