#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>

namespace lumiran {
namespace {

// The channels that take the lightness in kinds 11..13 and the channel
// whose old value scales the others. The program's choice on some orders
// is not the named role; it is kept as it is.
struct Replacement {
    ChannelMask replaced = NoChannel;
    ChannelMask scale = NoChannel;
};

constexpr Replacement only(ChannelMask channel) {
    return {channel, channel};
}
constexpr Replacement two(ChannelMask replaced, ChannelMask scale) {
    return {replaced, scale};
}
// Three equal channels stay: each takes the lightness, which is their value.
constexpr Replacement allThree() {
    return {AllChannels, NoChannel};
}

// Columns: kind 11 (largest), 12 (middle), 13 (smallest).
constexpr ByOrder<std::array<Replacement, 3>> ReplacedByOrder{{
    /* r > g > b */ {only(Red), only(Green), only(Blue)},
    /* r > b > g */ {only(Red), only(Blue), only(Green)},
    /* b > r > g */ {only(Blue), only(Red), only(Green)},
    /* b > g > r */ {only(Blue), only(Blue), only(Green)},
    /* g > b > r */ {only(Green), only(Blue), only(Red)},
    /* g > r > b */ {only(Green), only(Red), only(Blue)},
    /* r = b > g */ {two(Red | Blue, Blue), only(Green), two(Green | Blue, Green)},
    /* r > g = b */ {only(Red), two(Green | Blue, Blue), two(Green | Blue, Green)},
    /* g > r = b */ {only(Green), two(Red | Blue, Red), two(Red | Blue, Red)},
    /* g = b > r */ {two(Green | Blue, Blue), only(Red), two(Green | Blue, Green)},
    /* r = g > b */ {two(Red | Green, Red), only(Blue), only(Blue)},
    /* b > r = g */ {only(Blue), two(Red | Green, Red), two(Red | Green, Red)},
    /* r = g = b */ {allThree(), allThree(), allThree()},
}};

// The choices of kinds 11..13 by order key, packed as replaced channels in
// bits 0..2 and the scale channel in bits 3..5.
constexpr std::array<std::array<std::uint32_t, OrderKeyCount>, 3> ReplacedByKey = [] {
    std::array<std::array<std::uint32_t, OrderKeyCount>, 3> keyed{};
    for (std::size_t kind = 0; kind < 3; ++kind) {
        ByOrder<std::uint32_t> words{};
        for (std::size_t i = 0; i < ChannelOrderCount; ++i) {
            const Replacement& choice = ReplacedByOrder[i][kind];
            words[i] = choice.replaced | static_cast<std::uint32_t>(choice.scale) << 3;
        }
        keyed[kind] = byOrderKey(words);
    }
    return keyed;
}();

// A sum of products rather than selects, which keeps the loop vectorised.
constexpr int channelValue(std::uint32_t channel, int r, int g, int b) {
    return (channel == Red) * r + (channel == Green) * g + (channel == Blue) * b;
}

// Swaps the values p and q wherever a channel holds one of them.
constexpr int swapValues(int channel, int p, int q) {
    return channel == p ? q : channel == q ? p : channel;
}

// Kinds 5..7 swap two roles; on two equal channels all three kinds swap
// the largest and the smallest value, and three equal channels stay.
template <int Kind>
Rgb16 swapRoles(int r, int g, int b) {
    const int mx = std::max({r, g, b});
    const int mn = std::min({r, g, b});
    const int md = r + g + b - mx - mn;
    const bool tie = r == g || g == b || r == b;
    int p = mx, q = mn;
    if (Kind == 6 && !tie) q = md;
    if (Kind == 7 && !tie) p = md;
    return Channels{swapValues(r, p, q), swapValues(g, p, q), swapValues(b, p, q)}.fields();
}

// Kinds 8..13: the replaced channels take the lightness, the others are
// rescaled by the old value of the scale channel. With kinds 8..10 three
// equal channels stay by the rule itself: the lightness is then the channel
// value and the quotient exactly 1.
Rgb16 replaceByLightness(int r, int g, int b, std::uint32_t replaced, std::uint32_t scale) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    const int l = lightness(m.max, m.min);
    const int divisor = nonZero(l);
    const int x = channelValue(scale, r, g, b);
    auto channel = [&](ChannelMask which, int c) -> int {
        return chooseWithoutBranch((replaced & which) != 0, l, scaledChannelInRange(c, divisor, x));
    };
    return Channels{channel(Red, r), channel(Green, g), channel(Blue, b)}.fields();
}

} // namespace

void Class_ColorOp::RGBExchange(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        auto swap = [&](auto rule) { mapPixels<ResultTail::StoreOnly>(rect, rule); };
        auto replace = [&](auto rule) { mapPixels<ResultTail::ClampOnly>(rect, rule); };
        auto fields = [](int r, int g, int b) { return Channels{r, g, b}.fields(); };
        switch (kind) {
        case 0:
            swap([=](int r, int g, int b) { return fields(g, r, b); });
            break;
        case 1:
            swap([=](int r, int g, int b) { return fields(b, g, r); });
            break;
        case 2:
            swap([=](int r, int g, int b) { return fields(r, b, g); });
            break;
        case 3:
            swap([=](int r, int g, int b) { return fields(b, r, g); });
            break;
        case 4:
            swap([=](int r, int g, int b) { return fields(g, b, r); });
            break;
        case 5:
            swap([](int r, int g, int b) { return swapRoles<5>(r, g, b); });
            break;
        case 6:
            swap([](int r, int g, int b) { return swapRoles<6>(r, g, b); });
            break;
        case 7:
            swap([](int r, int g, int b) { return swapRoles<7>(r, g, b); });
            break;
        case 8:
        case 9:
        case 10: {
            const std::uint32_t channel = kind == 8 ? Red : kind == 9 ? Green : Blue;
            replace([channel](int r, int g, int b) {
                return replaceByLightness(r, g, b, channel, channel);
            });
            break;
        }
        case 11:
        case 12:
        case 13: {
            const auto& choices = ReplacedByKey[kind - 11];
            replace([&choices](int r, int g, int b) {
                const std::uint32_t word = choices[static_cast<std::size_t>(orderKey(r, g, b))];
                return replaceByLightness(r, g, b, word & 7u, word >> 3);
            });
            break;
        }
        default:
            // Any other kind changes nothing.
            swap(fields);
            break;
        }
    });
}

} // namespace lumiran
