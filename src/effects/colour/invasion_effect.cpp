#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>

namespace lumiran {
namespace {

// What a write puts into its channels: the source value S of the effect,
// the pixel's extremes, or one of its channels.
enum class Value : std::uint8_t { S, Max, Min, SourceRed, SourceGreen, SourceBlue };

struct Write {
    ChannelMask channels = NoChannel;
    Value value = Value::S;
};

// One or two writes per pixel, chosen by the order of its channels.
struct Action {
    Write first;
    Write second;
};

using Actions = ByOrder<Action>;

constexpr Action writeS(ChannelMask channels) {
    return {{channels, Value::S}, {}};
}
constexpr Action allTo(Value value) {
    return {{AllChannels, value}, {}};
}
constexpr Action nothing() {
    return {};
}

constexpr bool isStrict(ChannelOrder order) {
    return order <= ChannelOrder::GRB;
}

constexpr ChannelMask largestOf(ChannelOrder order) {
    const auto& p = entryFor(OrderRepresentative, order);
    return channelsEqualTo(std::max({p[0], p[1], p[2]}), p[0], p[1], p[2]);
}
constexpr ChannelMask smallestOf(ChannelOrder order) {
    const auto& p = entryFor(OrderRepresentative, order);
    return channelsEqualTo(std::min({p[0], p[1], p[2]}), p[0], p[1], p[2]);
}
constexpr ChannelMask middleOf(ChannelOrder order) {
    return static_cast<ChannelMask>(AllChannels & ~largestOf(order) & ~smallestOf(order));
}

// Middle under the sources red, green, blue (columns), written as the
// program writes it.
constexpr ByOrder<std::array<ChannelMask, 3>> MiddleOfChannelSource{{
    /* r > g > b */ {Green, NoChannel, Green},
    /* r > b > g */ {Blue, Blue, NoChannel},
    /* b > r > g */ {Green, Red, Red | Green},
    /* b > g > r */ {Green, NoChannel, Green},
    /* g > b > r */ {Blue, Blue, NoChannel},
    /* g > r > b */ {NoChannel, Red, Red},
    /* r = b > g */ {Green, NoChannel, Green},
    /* r > g = b */ {Green | Blue, Red | Blue, NoChannel},
    /* g > r = b */ {NoChannel, Red | Blue, NoChannel},
    /* g = b > r */ {NoChannel, Red, NoChannel},
    /* r = g > b */ {Blue, Blue, NoChannel},
    /* b > r = g */ {NoChannel, NoChannel, Red | Green},
    /* r = g = b */ {NoChannel, NoChannel, NoChannel},
}};

// The channel that takes the minimum under source 5, targets 3 and 4, by
// strict order; the list's names fit only where blue is smallest.
constexpr ByOrder<std::array<ChannelMask, 2>> MinimumTaker{{
    /* r > g > b */ {Red, Green},
    /* r > b > g */ {Blue, Red},
    /* b > r > g */ {Red, Blue},
    /* b > g > r */ {Green, Blue},
    /* g > b > r */ {Blue, Green},
    /* g > r > b */ {Green, Green},
}};

constexpr Action lightnessTo(ChannelMask channels) {
    return writeS(channels);
}
constexpr Action lightnessAnd(ChannelMask channels, ChannelMask moved, Value from) {
    return {{channels, Value::S}, {moved, from}};
}

// Source 6, targets 3 (largest), 4 (middle), 5 (smallest); in two rows a
// source channel also lands in another channel.
constexpr ByOrder<std::array<Action, 3>> LightnessWrites{{
    /* r > g > b */ {lightnessTo(Red), lightnessTo(Green), lightnessTo(Blue)},
    /* r > b > g */ {lightnessTo(Red), lightnessTo(Blue), lightnessTo(Green)},
    /* b > r > g */
    {lightnessAnd(Blue, Green, Value::SourceBlue), lightnessTo(Red), lightnessTo(Green)},
    /* b > g > r */
    {lightnessAnd(Blue, Red, Value::SourceBlue), lightnessTo(Blue), lightnessTo(Red)},
    /* g > b > r */ {lightnessTo(Green), lightnessTo(Blue), lightnessTo(Red)},
    /* g > r > b */ {lightnessTo(Green), lightnessTo(Red), lightnessTo(Blue)},
    /* r = b > g */
    {lightnessAnd(Red | Blue, Green, Value::SourceRed), lightnessTo(Green), lightnessTo(Green)},
    /* r > g = b */ {lightnessTo(Red), lightnessTo(Green | Blue), lightnessTo(Green | Blue)},
    /* g > r = b */ {lightnessTo(Green), lightnessTo(Red | Blue), lightnessTo(Red | Blue)},
    /* g = b > r */ {lightnessTo(Green | Blue), lightnessTo(Red), lightnessTo(Red)},
    /* r = g > b */ {lightnessTo(Red | Green), lightnessTo(Blue), lightnessTo(Blue)},
    /* b > r = g */ {lightnessTo(Blue), lightnessTo(Red | Green), lightnessTo(Red | Green)},
    /* r = g = b */ {nothing(), nothing(), nothing()},
}};

constexpr std::array<ChannelMask, 3> ChannelOf{Red, Green, Blue};

// Targets 2..4 under sources 0..2: largest, middle, smallest.
Action channelSourceRole(std::uint8_t source, std::uint8_t target, ChannelOrder order) {
    using enum ChannelOrder;
    switch (target) {
    case 2:
        // Red with green = blue above it writes nothing.
        if (source == 0 && order == GB_R) return nothing();
        return writeS(largestOf(order));
    case 3:
        return writeS(entryFor(MiddleOfChannelSource, order)[source]);
    default:
        // Blue with red = green below it writes red only.
        if (source == 2 && order == B_RG) return writeS(Red);
        return writeS(smallestOf(order));
    }
}

Action maximumSourceRole(std::uint8_t target, ChannelOrder order) {
    if (order == ChannelOrder::Same) return nothing();
    if (!isStrict(order)) return allTo(Value::Max);
    return writeS(target == 3 ? middleOf(order) : smallestOf(order));
}

Action medianSourceRole(std::uint8_t target, ChannelOrder order) {
    using enum ChannelOrder;
    if (order == Same) return nothing();
    if (isStrict(order)) return writeS(target == 3 ? largestOf(order) : smallestOf(order));
    if (target == 3) return allTo(Value::Min);
    switch (order) {
    case RB_G:
        return allTo(Value::Min);
    case RG_B:
    case B_RG:
        return allTo(Value::Max);
    case G_RB:
        return {{Red, Value::Max}, {}};
    default:
        return nothing();
    }
}

Action minimumSourceRole(std::uint8_t target, ChannelOrder order) {
    using enum ChannelOrder;
    if (order == Same) return nothing();
    if (isStrict(order)) return writeS(entryFor(MinimumTaker, order)[target - 3]);
    if (target == 3 && (order == RG_B || order == B_RG)) return allTo(Value::Max);
    return allTo(Value::Min);
}

// The writes of targets 0..4 (sources 0..5) and 0..5 (source 6).
Actions actionsFor(std::uint8_t source, std::uint8_t target) {
    Actions actions{};
    for (std::size_t i = 0; i < ChannelOrderCount; ++i) {
        const auto order = static_cast<ChannelOrder>(i);
        Action& action = actions[i];
        if (source <= 2 && target <= 1) {
            // The two channels other than the source, in list order.
            std::array<ChannelMask, 2> others{};
            std::size_t n = 0;
            for (std::size_t c = 0; c < 3; ++c) {
                if (c != source) others[n++] = ChannelOf[c];
            }
            action = writeS(others[target]);
        } else if (source <= 2) {
            action = channelSourceRole(source, target, order);
        } else if (target <= 2) {
            action = writeS(ChannelOf[target]);
        } else if (source == 3) {
            action = maximumSourceRole(target, order);
        } else if (source == 4) {
            action = medianSourceRole(target, order);
        } else if (source == 5) {
            action = minimumSourceRole(target, order);
        } else {
            action = entryFor(LightnessWrites, order)[target - 3];
        }
    }
    return actions;
}

// An action packed into one word, spread over the order keys, so that the
// pixel loop looks it up without branching: mask and value of the first
// write in bits 0..5, of the second in bits 6..11.
using PackedActions = std::array<std::uint32_t, OrderKeyCount>;

PackedActions packed(const Actions& actions) {
    ByOrder<std::uint32_t> words{};
    for (std::size_t i = 0; i < ChannelOrderCount; ++i) {
        const Action& a = actions[i];
        words[i] = a.first.channels | static_cast<std::uint32_t>(a.first.value) << 3 |
                   static_cast<std::uint32_t>(a.second.channels) << 6 |
                   static_cast<std::uint32_t>(a.second.value) << 9;
    }
    return byOrderKey(words);
}

// The value S of a source: r, g, b, max, the program's median, min, lightness.
template <int Source>
int sourceValue(int r, int g, int b, const MaxMin& m) {
    if constexpr (Source == 0) return r;
    if constexpr (Source == 1) return g;
    if constexpr (Source == 2) return b;
    if constexpr (Source == 3) return m.max;
    if constexpr (Source == 4) return programMedianOf(r, g, b);
    if constexpr (Source == 5) return m.min;
    if constexpr (Source == 6) return lightness(m.max, m.min);
    return 0;
}

template <int Source>
Rgb16 applyActions(const PackedActions& actions, int r, int g, int b) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    const int s = sourceValue<Source>(r, g, b, m);
    const std::uint32_t word = actions[static_cast<std::size_t>(orderKey(r, g, b))];
    // A sum of products rather than a chain of selects, which is more than
    // the vectoriser takes.
    auto valueOf = [&](std::uint32_t v) {
        return (v == 0) * s + (v == 1) * m.max + (v == 2) * m.min + (v == 3) * r + (v == 4) * g +
               (v == 5) * b;
    };
    const int first = valueOf((word >> 3) & 7u);
    const int second = valueOf((word >> 9) & 7u);
    auto channel = [&](ChannelMask which, int c) {
        return ((word >> 6) & which) != 0 ? second : ((word & which) != 0 ? first : c);
    };
    return Channels{channel(Red, r), channel(Green, g), channel(Blue, b)}.fields();
}

// All channels by brightness, the source channel itself kept.
template <int Source>
Rgb16 byBrightness(int r, int g, int b) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    const int s = sourceValue<Source>(r, g, b, m);
    const int divisor = nonZero(lightness(m.max, m.min));
    auto channel = [&](int index, int c) {
        return index == Source ? c : scaledChannelInRange(c, divisor, s);
    };
    return Channels{channel(0, r), channel(1, g), channel(2, b)}.fields();
}

} // namespace

void Class_ColorOp::Invasion_Effect(std::uint8_t source, std::uint8_t target, std::int16_t left,
                                    std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const bool known = source <= 6 && target <= 5;
        const bool brightness = known && source <= 5 && target == 5;
        const PackedActions actions =
            known && !brightness ? packed(actionsFor(source, target)) : PackedActions{};
        auto run = [&]<int Source>() {
            if (brightness) {
                mapPixels<ResultTail::Clamp>(
                    rect, [](int r, int g, int b) { return byBrightness<Source>(r, g, b); });
            } else if (known && Source == 6) {
                mapPixels<ResultTail::Clamp>(rect, [&actions](int r, int g, int b) {
                    return applyActions<Source>(actions, r, g, b);
                });
            } else {
                // Straight into the array's bytes: no clamp, no calculation
                // type. Rows the list does not have write nothing.
                mapPixels<ResultTail::StoreOnly>(rect, [&actions](int r, int g, int b) {
                    return applyActions<Source>(actions, r, g, b);
                });
            }
        };
        switch (source) {
        case 0:
            run.template operator()<0>();
            break;
        case 1:
            run.template operator()<1>();
            break;
        case 2:
            run.template operator()<2>();
            break;
        case 3:
            run.template operator()<3>();
            break;
        case 4:
            run.template operator()<4>();
            break;
        case 5:
            run.template operator()<5>();
            break;
        case 6:
            run.template operator()<6>();
            break;
        default:
            run.template operator()<7>();
            break;
        }
    });
}

} // namespace lumiran
