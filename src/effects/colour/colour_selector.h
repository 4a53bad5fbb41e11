#pragma once

#include "effects/colour/channel_order.h"

namespace lumiran {

// The colour selector rows: 0 "RGB", 1 "赤", 2 "緑", 3 "青", 4 "赤&緑",
// 5 "緑&青", 6 "赤&青", 7 "光度".
inline constexpr int BrightnessSelector = 7;

// The channels of selector rows 0..6; any other row selects none.
[[nodiscard]] constexpr ChannelMask selectedChannels(int selector) {
    constexpr std::array<ChannelMask, 7> rows{AllChannels, Red,          Green,     Blue,
                                              Red | Green, Green | Blue, Red | Blue};
    return selector >= 0 && selector < static_cast<int>(rows.size())
               ? rows[static_cast<std::size_t>(selector)]
               : NoChannel;
}

// The channel lists of "Emphasize" and "Another Color Change": 0 "赤",
// 1 "緑", 2 "青", 3 "赤&緑", 4 "緑&青", 5 "赤&青".
[[nodiscard]] constexpr ChannelMask namedChannels(int kind) {
    return kind >= 0 && kind <= 5 ? selectedChannels(kind + 1) : NoChannel;
}

} // namespace lumiran
