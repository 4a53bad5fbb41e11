// AutumnsColor and SakuraFilter: tints made by adding the spread (largest
// minus smallest channel) to chosen channels, in steps.
#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"

#include <algorithm>

namespace lumiran {
namespace {

int spreadOf(int r, int g, int b) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    return m.max - m.min;
}

int spreadOf(const Channels& c) {
    return spreadOf(c.red, c.green, c.blue);
}

template <int Type>
Rgb16 autumn(int r, int g, int b) {
    Channels c{r, g, b};
    const int d1 = spreadOf(r, g, b);
    if constexpr (Type == 0 || Type == 1 || Type == 3) c.green += d1;
    if constexpr (Type == 2) c.blue += d1;
    const int d2 = spreadOf(c);
    if constexpr (Type == 0 || Type == 2 || Type == 3) c.red += d2;
    if constexpr (Type == 1) c.blue += d2;
    if constexpr (Type == 3) c.red += spreadOf(c);
    return c.fields();
}

// The pink (hue 0) and violet (hue 1) tints of SakuraFilter.
template <int Hue, int Type>
Rgb16 sakura(int r, int g, int b) {
    constexpr bool oneOrThree = Type == 0 || Type == 2;
    Channels c{r, g, b};
    const int d = spreadOf(r, g, b);
    if constexpr (Hue == 0) {
        if constexpr (oneOrThree) c.green += d;
        if constexpr (Type == 1) c.red += d, c.green += d;
    } else {
        if constexpr (oneOrThree) c.blue += d;
        if constexpr (Type == 1) c.green += d, c.blue += d;
    }
    const MaxMin m = MaxMinOfThree(c.red, c.green, c.blue);
    const int d2 = m.max - m.min;
    // A fifth of the spread taken away, rounded half to even.
    auto lessAFifth = [d2](int v) { return roundInRange<std::int32_t>(v - d2 / 5.0); };
    if constexpr (Hue == 0) {
        const bool differs = oneOrThree ? c.green != c.blue : c.red != c.blue;
        if (m.max == c.green && differs) {
            c.red += d2;
            c.green = lessAFifth(c.green);
            c.blue += d2;
        }
        if constexpr (Type == 2) {
            if (c.blue >= c.red) c = {r, g, b};
        }
    } else {
        const bool differs = oneOrThree ? c.red != c.blue : c.green != c.blue;
        if (m.max == c.blue && differs) {
            c.red += d2;
            c.green += d2;
            c.blue = lessAFifth(c.blue);
        }
        if constexpr (Type == 2) {
            if (c.red >= c.green) c = {r, g, b};
        }
    }
    return c.fields();
}

} // namespace

void Class_ColorOp::AutumnsColor(std::uint8_t type, std::int16_t left, std::int16_t top,
                                 std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        auto run = [&](auto rule) { eachPixel<Ending::SharedTail>(rect, rule); };
        switch (type) {
        case 0:
            run([](int r, int g, int b) { return autumn<0>(r, g, b); });
            break;
        case 1:
            run([](int r, int g, int b) { return autumn<1>(r, g, b); });
            break;
        case 2:
            run([](int r, int g, int b) { return autumn<2>(r, g, b); });
            break;
        case 3:
            run([](int r, int g, int b) { return autumn<3>(r, g, b); });
            break;
        default:
            run([](int r, int g, int b) { return autumn<-1>(r, g, b); });
            break; // no step applies: the source stands
        }
    });
}

void Class_ColorOp::SakuraFilter(std::uint8_t hue, std::uint8_t type, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        auto run = [&](auto rule) { eachPixel<Ending::SharedTail>(rect, rule); };
        if (hue > 1 || type > 2) {
            // No step applies: the source stands.
            run([](int r, int g, int b) { return Channels{r, g, b}.fields(); });
        } else if (hue == 0) {
            if (type == 0) run([](int r, int g, int b) { return sakura<0, 0>(r, g, b); });
            if (type == 1) run([](int r, int g, int b) { return sakura<0, 1>(r, g, b); });
            if (type == 2) run([](int r, int g, int b) { return sakura<0, 2>(r, g, b); });
        } else {
            if (type == 0) run([](int r, int g, int b) { return sakura<1, 0>(r, g, b); });
            if (type == 1) run([](int r, int g, int b) { return sakura<1, 1>(r, g, b); });
            if (type == 2) run([](int r, int g, int b) { return sakura<1, 2>(r, g, b); });
        }
    });
}

} // namespace lumiran
