#pragma once

#include "engine/calculation.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace lumiran {

// Remembers the results of a pixel rule that depends on the colour alone,
// so a picture's repeated colours are worked out once: photographs repeat
// most of theirs, and the HSV and HLS rules cost some hundred cycles each.
// Direct-mapped; a colour whose rule throws is not stored, so the error
// comes again where the loop reaches it next, exactly as without the memo.
template <typename Rule>
class ColourMemo {
  public:
    explicit ColourMemo(Rule rule) : rule_(std::move(rule)), keys_(Slots, Empty), results_(Slots) {}

    Rgb16 operator()(int r, int g, int b) {
        const auto key = static_cast<std::uint32_t>((r << 16) | (g << 8) | b);
        const std::uint32_t slot = (key * 2654435761u) >> (32 - SlotBits);
        if (keys_[slot] == key) return results_[slot];
        const Rgb16 result = rule_(r, g, b);
        keys_[slot] = key;
        results_[slot] = result;
        return result;
    }

  private:
    static constexpr int SlotBits = 16;
    static constexpr std::size_t Slots = std::size_t{1} << SlotBits;
    static constexpr std::uint32_t Empty = 0xFFFFFFFFu; // no colour has this key

    Rule rule_;
    std::vector<std::uint32_t> keys_;
    std::vector<Rgb16> results_;
};

} // namespace lumiran
