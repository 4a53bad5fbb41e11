// Smoothing that keeps edges: the ring of a window averaged with the centre
// counted Weight times, Weight growing with the centre's difference from
// the window (Smoothing kinds 10, 11, 14 and Edge_SavingSmooth).
#include "effects/smoothing/soften_window.h"

#include <cstdlib>

namespace lumiran {
namespace {

constexpr int windowSize(int k) {
    return (2 * k + 1) * (2 * k + 1);
}

// ClampWeights: each weight limited to 1..128.
constexpr int clampWeight(int w) {
    return std::clamp(w, 1, 128);
}

// (ring + weight * centre) / (weight + n - 1), integer quotient.
constexpr int weightedCentre(int sum, int centre, int weight, int n) {
    return (sum - centre + weight * centre) / (weight + n - 1);
}

} // namespace

void Class_Soften::adaptiveSmoothing(int reach, const ProcessRect& rect) {
    windowFilter(reach, rect, [reach](auto k) {
        constexpr int n = windowSize(decltype(k)::value);
        const int limit = reach == 1 ? 128 : 255;
        return [limit](IntRgb sum, IntRgb c) -> IntRgb {
            const IntRgb m{sum.r / n, sum.g / n, sum.b / n};
            // At 3x3 the root of the square, the absolute difference; the
            // larger windows limit the squares themselves to 1..128.
            auto difference = [](int mean, int centre) {
                const int d = mean - centre;
                return n == 9 ? std::abs(d) : clampWeight(d * d);
            };
            const int d = difference(m.r, c.r) + difference(m.g, c.g) + difference(m.b, c.b);
            const int weight = std::clamp(d / 3 - 64, 1, limit);
            return {weightedCentre(sum.r, c.r, weight, n), weightedCentre(sum.g, c.g, weight, n),
                    weightedCentre(sum.b, c.b, weight, n)};
        };
    });
}

void Class_Soften::channelWeightedSmoothing(int reach, const ProcessRect& rect) {
    windowFilter(reach, rect, [](auto k) {
        constexpr int n = windowSize(decltype(k)::value);
        return [](IntRgb sum, IntRgb c) -> IntRgb {
            // |centre (n - 1) - ring| / 8 at every size.
            auto channel = [](int s, int centre) {
                const int weight = clampWeight(std::abs(centre * (n - 1) - (s - centre)) / 8);
                return weightedCentre(s, centre, weight, n);
            };
            return {channel(sum.r, c.r), channel(sum.g, c.g), channel(sum.b, c.b)};
        };
    });
}

void Class_Soften::Edge_SavingSmooth(std::uint8_t size, std::uint8_t type, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guardedTrans([&] {
        if (size > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        if (type == 0) {
            adaptiveSmoothing(size + 1, rect);
        } else if (type == 1) {
            channelWeightedSmoothing(size + 1, rect);
        }
    });
}

} // namespace lumiran
