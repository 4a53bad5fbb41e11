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

// A pixel of each order, to read which channels hold the extremes.
constexpr ByOrder<std::array<int, 3>> Representative{{
    {3, 2, 1},
    {3, 1, 2},
    {2, 1, 3},
    {1, 2, 3},
    {1, 3, 2},
    {2, 3, 1}, // strict orders
    {2, 1, 2},
    {2, 1, 1},
    {1, 2, 1},
    {1, 2, 2},
    {2, 2, 1},
    {1, 1, 2}, // two equal
    {1, 1, 1},
}};

constexpr bool isStrict(ChannelOrder order) {
    return order <= ChannelOrder::GRB;
}

constexpr ChannelMask largestOf(ChannelOrder order) {
    const auto& p = entryFor(Representative, order);
    return channelsEqualTo(std::max({p[0], p[1], p[2]}), p[0], p[1], p[2]);
}
constexpr ChannelMask smallestOf(ChannelOrder order) {
    const auto& p = entryFor(Representative, order);
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

struct PixelValues {
    int s, max, min, r, g, b;
    [[nodiscard]] int of(Value v) const {
        switch (v) {
        case Value::S:
            return s;
        case Value::Max:
            return max;
        case Value::Min:
            return min;
        case Value::SourceRed:
            return r;
        case Value::SourceGreen:
            return g;
        default:
            return b;
        }
    }
};

PixelValues valuesOf(std::uint8_t source, int r, int g, int b) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    int s = 0;
    switch (source) {
    case 0:
        s = r;
        break;
    case 1:
        s = g;
        break;
    case 2:
        s = b;
        break;
    case 3:
        s = m.max;
        break;
    case 4:
        s = programMedian(r, g, b);
        break;
    case 5:
        s = m.min;
        break;
    default:
        s = lightness(m.max, m.min);
        break;
    }
    return {s, m.max, m.min, r, g, b};
}

} // namespace

void Class_ColorOp::Invasion_Effect(std::uint8_t source, std::uint8_t target, std::int16_t left,
                                    std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const bool known = source <= 6 && target <= 5;
        const bool byBrightness = source <= 5 && target == 5;
        const Actions actions = known && !byBrightness ? actionsFor(source, target) : Actions{};
        auto write = [&](int r, int g, int b) {
            const PixelValues values = valuesOf(source, r, g, b);
            const Action& action = entryFor(actions, channelOrder(r, g, b));
            Channels c{r, g, b};
            c.set(action.first.channels, values.of(action.first.value));
            c.set(action.second.channels, values.of(action.second.value));
            return c.fields();
        };

        if (byBrightness) {
            // All channels by brightness, the source channel itself kept.
            eachPixel<Ending::SharedTail>(rect, [source](int r, int g, int b) {
                const PixelValues values = valuesOf(source, r, g, b);
                const int divisor = nonZero(lightness(values.max, values.min));
                auto channel = [&](int index, int c) {
                    return index == source ? c : scaledChannelInRange(c, divisor, values.s);
                };
                return Channels{channel(0, r), channel(1, g), channel(2, b)}.fields();
            });
        } else if (known && source == 6) {
            eachPixel<Ending::SharedTail>(rect, write);
        } else {
            // Straight into the array's bytes: no clamp, no calculation type.
            // Rows the list does not have write nothing.
            eachPixel<Ending::Store>(rect, write);
        }
    });
}

} // namespace lumiran
