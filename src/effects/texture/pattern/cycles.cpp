// FF1 and FF2: waves across and down around the rectangle's centre, made
// one value by a combination and scaled to a colour.
#include "effects/texture/pattern/pattern_frame.h"

#include <algorithm>

namespace lumiran {
namespace {

constexpr double Pi = 3.14159;

// The two waves at offsets dx, dy from the centre for periods h and v, each
// within -1..1: 0 sines, 1 cosines, 2 a sine across and a cosine down, 3
// both mixed, 4 each bent by the arc tangent of the other, 5 rings.
struct WavePair {
    double a = 0;
    double b = 0;
};

WavePair wavesOf(std::uint8_t type, double dx, double dy, double h, double v) {
    const double across = dx * Pi / h;
    const double down = dy * Pi / v;
    switch (type) {
    case 0:
        return {std::sin(across), std::sin(down)};
    case 1:
        return {std::cos(across), std::cos(down)};
    case 2:
        return {std::sin(across), std::cos(down)};
    case 3:
        return {(std::sin(across) + std::cos(down)) / 2, (std::cos(across) + std::sin(down)) / 2};
    case 4:
        return {std::sin(across + std::atan(down)), std::cos(down + std::atan(across))};
    default: {
        const double r = std::sqrt(dx * dx + dy * dy);
        return {std::sin(r * Pi / h), std::cos(r * Pi / v)};
    }
    }
}

// 0..1 from the pair: 0 the product, 1 the sum, 2 the difference, 3 the
// larger, 4 the smaller.
double combined(std::uint8_t combination, const WavePair& w) {
    switch (combination) {
    case 1:
        return (w.a + w.b + 2) / 4;
    case 2:
        return std::abs(w.a - w.b) / 2;
    case 3:
        return (std::max(w.a, w.b) + 1) / 2;
    case 4:
        return (std::min(w.a, w.b) + 1) / 2;
    default:
        return (w.a * w.b + 1) / 2;
    }
}

// A centre at 50 percent of the rectangle, as FF4 places it.
double centreOf(std::int16_t low, std::int16_t high) {
    return roundTo<std::int32_t>((high - low) / 100.0 * 50 + low);
}

std::int16_t scaled(double t, int colour) {
    return roundTo<std::int16_t>(t * colour);
}

} // namespace

void Class_Pattern::FF1(std::uint8_t type, std::uint8_t combination, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::int16_t horizontal, std::int16_t vertical, std::int16_t red,
                        std::int16_t green, std::int16_t blue, std::int16_t weight) {
    guarded([&] {
        const double cx = centreOf(left, right);
        const double cy = centreOf(top, bottom);
        blendPattern({left, top, right, bottom}, weight, [&](int x, int y) {
            const double t =
                combined(combination, wavesOf(type, x - cx, y - cy, horizontal, vertical));
            return Rgb16{scaled(t, red), scaled(t, green), scaled(t, blue)};
        });
    });
}

void Class_Pattern::FF2(std::uint8_t type, std::uint8_t combination, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::int16_t redHorizontal, std::int16_t redVertical,
                        std::int16_t greenHorizontal, std::int16_t greenVertical,
                        std::int16_t blueHorizontal, std::int16_t blueVertical,
                        std::int16_t weight) {
    guarded([&] {
        const double cx = centreOf(left, right);
        const double cy = centreOf(top, bottom);
        blendPattern({left, top, right, bottom}, weight, [&](int x, int y) {
            const auto channel = [&](double h, double v) {
                return scaled(combined(combination, wavesOf(type, x - cx, y - cy, h, v)), 255);
            };
            return Rgb16{channel(redHorizontal, redVertical),
                         channel(greenHorizontal, greenVertical),
                         channel(blueHorizontal, blueVertical)};
        });
    });
}

} // namespace lumiran
