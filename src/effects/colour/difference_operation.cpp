#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>

namespace lumiran {
namespace {

constexpr auto MiddleByKey = byOrderKey(MiddleExceptRedGreenAbove);

// The signed difference of a pair as weights of r, g, b, max and min, so
// that the pixel loop has no branch on the pair.
struct PairWeights {
    int red = 0, green = 0, blue = 0, max = 0, min = 0;

    [[nodiscard]] int difference(int r, int g, int b) const {
        return red * r + green * g + blue * b + max * std::max({r, g, b}) +
               min * std::min({r, g, b});
    }
};

// Pair 0 mn - mx, 1 g - r, 2 b - r, 3 b - g; reverse flips the sign. Any
// other pair gives 0.
PairWeights pairWeights(std::uint8_t pair, bool reverse) {
    PairWeights w;
    switch (pair) {
    case 0:
        w = {0, 0, 0, -1, 1};
        break;
    case 1:
        w = {-1, 1, 0, 0, 0};
        break;
    case 2:
        w = {-1, 0, 1, 0, 0};
        break;
    case 3:
        w = {0, -1, 1, 0, 0};
        break;
    default:
        break;
    }
    if (reverse) w = {-w.red, -w.green, -w.blue, -w.max, -w.min};
    return w;
}

Channels addTo(ChannelMask chosen, int r, int g, int b, int d) {
    Channels c{r, g, b};
    c.add(chosen, d);
    return c;
}

} // namespace

void Class_ColorOp::DifferenceOperation(std::uint8_t pair, std::uint8_t use, std::int16_t left,
                                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                                        bool reverse) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const PairWeights weights = pairWeights(pair, reverse);
        auto run = [&](auto useRule) {
            mapPixels<ResultTail::Clamp>(rect, [weights, useRule](int r, int g, int b) {
                return useRule(r, g, b, weights.difference(r, g, b)).fields();
            });
        };
        switch (use) {
        case 0:
            run([](int r, int g, int b, int d) {
                const int v = averageGrey(r, g, b) + d;
                return Channels{v, v, v};
            });
            break;
        case 1:
            run([](int r, int g, int b, int d) { return Channels{r + d, g + d, b + d}; });
            break;
        case 2:
            run([](int, int, int, int d) { return Channels{d + 128, d + 128, d + 128}; });
            break;
        case 3:
            run([](int r, int g, int b, int d) { return Channels{r + d, g, b}; });
            break;
        case 4:
            run([](int r, int g, int b, int d) { return Channels{r, g + d, b}; });
            break;
        case 5:
            run([](int r, int g, int b, int d) { return Channels{r, g, b + d}; });
            break;
        case 6:
            run([](int r, int g, int b, int d) {
                return addTo(largestChannels(r, g, b), r, g, b, d);
            });
            break;
        case 7:
            run([](int r, int g, int b, int d) {
                return addTo(MiddleByKey[static_cast<std::size_t>(orderKey(r, g, b))], r, g, b, d);
            });
            break;
        case 8:
            run([](int r, int g, int b, int d) {
                return addTo(smallestChannels(r, g, b), r, g, b, d);
            });
            break;
        case 9:
            run([](int r, int g, int b, int d) {
                const MaxMin m = MaxMinOfThree(r, g, b);
                const int l = lightness(m.max, m.min);
                const int t = l + d;
                const int divisor = nonZero(l);
                return Channels{scaledChannelInRange(r, divisor, t),
                                scaledChannelInRange(g, divisor, t),
                                scaledChannelInRange(b, divisor, t)};
            });
            break;
        default:
            // No use matched: the result fields keep 0.
            run([](int, int, int, int) { return Channels{}; });
            break;
        }
    });
}

} // namespace lumiran
