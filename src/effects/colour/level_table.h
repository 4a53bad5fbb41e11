#pragma once

#include "engine/effect_error.h"
#include "engine/numeric.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdint>
#include <cstdlib>
#include <optional>

namespace lumiran {

// A table of 256 signed 16-bit results indexed by a channel value, built
// once per call. An entry whose rule raises a run-time error (an overflow in
// a conversion, say) keeps the error and raises it only when a pixel reaches
// that entry, so a table fails exactly where a rule worked out pixel by
// pixel would.
class LevelTable {
  public:
    static constexpr int Size = 256;

    // rule(level) gives the entry as an int, stored with the 16-bit wrap.
    template <typename Rule>
    [[nodiscard]] static LevelTable build(Rule&& rule) {
        LevelTable table;
        for (int level = 0; level < Size; ++level) {
            try {
                table.values_[level] = wrap16(rule(level));
            } catch (const EffectError& error) {
                table.failed_.set(level);
                if (!table.error_) table.error_ = error;
            }
        }
        return table;
    }

    [[nodiscard]] static LevelTable identity() {
        return build([](int level) { return level; });
    }

    // From ready entries, as the table-building loops of some effects give them.
    [[nodiscard]] static LevelTable fromEntries(const std::array<std::int16_t, Size>& entries) {
        LevelTable table;
        table.values_ = entries;
        return table;
    }

    // The entry for a pixel: raises the entry's error, if it had one.
    [[nodiscard]] std::int16_t at(int level) const {
        if (failed_.test(static_cast<std::size_t>(level))) throw *error_;
        return values_[static_cast<std::size_t>(level)];
    }
    // Unchecked entry; only for tables without failed entries.
    [[nodiscard]] std::int16_t operator[](int level) const {
        return values_[static_cast<std::size_t>(level)];
    }
    [[nodiscard]] bool clean() const { return !error_.has_value(); }
    [[nodiscard]] int largestMagnitude() const {
        int largest = 0;
        for (const std::int16_t v : values_)
            largest = std::max(largest, std::abs(int{v}));
        return largest;
    }

    // The same table with every entry limited to low..high.
    [[nodiscard]] LevelTable limited(std::int16_t low, std::int16_t high) const {
        LevelTable table = *this;
        for (std::int16_t& v : table.values_)
            v = v > high ? high : (v < low ? low : v);
        return table;
    }

  private:
    std::array<std::int16_t, Size> values_{};
    std::bitset<Size> failed_;
    std::optional<EffectError> error_;
};

struct ChannelTables {
    LevelTable red;
    LevelTable green;
    LevelTable blue;

    [[nodiscard]] bool clean() const { return red.clean() && green.clean() && blue.clean(); }
};

} // namespace lumiran
