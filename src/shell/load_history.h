#pragma once

#include <array>
#include <string>
#include <string_view>

namespace lumiran {

// The ten most recent loads, newest first; "Nothing" marks an empty slot.
class LoadHistory {
  public:
    static constexpr std::size_t Size = 10;
    static constexpr std::string_view Empty = "Nothing";

    LoadHistory() { clear(); }

    // After a successful load. A path already listed leaves the list as it
    // is; otherwise the entries move down into the first empty slot (or
    // over the last entry) and the path takes the first place.
    void add(const std::string& path);
    void clear();

    [[nodiscard]] const std::string& entry(std::size_t i) const { return entries_.at(i); }
    void setEntry(std::size_t i, std::string value) { entries_.at(i) = std::move(value); }
    [[nodiscard]] bool isEmptySlot(std::size_t i) const { return entries_.at(i) == Empty; }

    // How many menu slots show: those before the first "Nothing".
    [[nodiscard]] std::size_t visibleCount() const;
    // The separator above the entries shows only when the first slot is filled.
    [[nodiscard]] bool separatorVisible() const { return !isEmptySlot(0); }

  private:
    std::array<std::string, Size> entries_;
};

} // namespace lumiran
