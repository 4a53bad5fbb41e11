// The banded patterns: Wamai, FF4 and the colour tiles.
#include "effects/texture/pattern/pattern_frame.h"

#include <array>

namespace lumiran {
namespace pattern {

BandColours::BandColours(int period, Rgb8 colour) : period_(period), colour_(colour) {
    // m mod 0 is the integer division by zero of the band rule.
    if (period == 0) throw EffectError::divisionByZero();
    if (period > 0) {
        table_.resize(static_cast<std::size_t>(period));
        for (int residue = 0; residue < period; ++residue)
            table_[residue] = colourOf(residue);
    }
}

Rgb16 BandColours::colourOf(int residue) const {
    const double step = 256.0 / period_;
    const auto channel = [&](int c) {
        return roundInRange<std::int16_t>(std::abs(c - step * residue));
    };
    return {channel(colour_.red), channel(colour_.green), channel(colour_.blue)};
}

} // namespace pattern

namespace {

// round(sqrt((right - 1)^2 + (bottom - 1)^2) strength / 255): the period of
// FF4 and ColorTile1, 0 for a small strength on a small picture.
int diagonalPeriod(std::int16_t right, std::int16_t bottom, std::int16_t strength) {
    const double r = right - 1;
    const double b = bottom - 1;
    return roundTo<std::int32_t>(std::sqrt(r * r + b * b) * strength / 255);
}

// A centre at 50 percent of the rectangle.
int centreOf(std::int16_t low, std::int16_t high) {
    return roundTo<std::int32_t>((high - low) / 100.0 * 50 + low);
}

} // namespace

void Class_Pattern::Wamai(std::uint8_t type, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom, std::uint8_t red,
                          std::uint8_t green, std::uint8_t blue, std::int16_t weight,
                          std::int16_t strength) {
    guarded([&] {
        const double exponent = 6 + type;
        // sqrt(x^e) of each column and row once; the pixel adds the two.
        const auto rootsOf = [&](int first, int end) {
            std::vector<double> roots(static_cast<std::size_t>(std::max(end - first, 0)));
            for (int v = first; v < end; ++v)
                roots[v - first] = std::sqrt(std::pow(pattern::atLeastOne(v), exponent));
            return roots;
        };
        const std::vector<double> across = rootsOf(left, right);
        const std::vector<double> down = rootsOf(top, bottom);
        paintBands({left, top, right, bottom}, strength, red, green, blue, weight,
                   [&](int x, int y) {
                       return roundTo<std::int32_t>(std::sqrt(across[x - left] + down[y - top]));
                   });
    });
}

void Class_Pattern::FF4(std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom, std::uint8_t red, std::uint8_t green,
                        std::uint8_t blue, std::int16_t weight, std::int16_t strength) {
    guarded([&] {
        const int cx = centreOf(left, right);
        const int cy = centreOf(top, bottom);
        paintBands({left, top, right, bottom}, diagonalPeriod(right, bottom, strength), red, green,
                   blue, weight, [&](int x, int y) {
                       const double dx = pattern::atLeastOne(std::abs(x - cx));
                       const double dy = pattern::atLeastOne(std::abs(y - cy));
                       return roundTo<std::int32_t>(std::sqrt(dx * dx + dy * dy));
                   });
    });
}

void Class_Pattern::ColorTile1(std::uint8_t type, std::int16_t left, std::int16_t top,
                               std::int16_t right, std::int16_t bottom, std::uint8_t red,
                               std::uint8_t green, std::uint8_t blue, std::int16_t weight,
                               std::int16_t strength) {
    guarded([&] {
        paintBands({left, top, right, bottom}, diagonalPeriod(right, bottom, strength), red, green,
                   blue, weight, [type](int px, int py) -> std::int32_t {
                       const double x = pattern::atLeastOne(px);
                       const double y = pattern::atLeastOne(py);
                       switch (type) {
                       case 0:
                           return roundTo<std::int32_t>(x * y + x + x * y + y);
                       case 1:
                           return roundTo<std::int32_t>(2 * std::sqrt(x * y + x));
                       case 2: // the tenfold wraps as 32-bit arithmetic does
                           return static_cast<std::int32_t>(
                               static_cast<std::uint32_t>(roundTo<std::int32_t>(x * y)) * 10u);
                       case 3:
                           return roundTo<std::int32_t>(x * x + y * y);
                       default:
                           return 0;
                       }
                   });
    });
}

void Class_Pattern::ColorTile2(std::uint8_t type, std::int16_t left, std::int16_t top,
                               std::int16_t right, std::int16_t bottom, std::uint8_t red,
                               std::uint8_t green, std::uint8_t blue, std::int16_t amplitude,
                               std::int16_t wave, std::int16_t strength, std::int16_t power,
                               std::int16_t weight) {
    guarded([&] {
        const auto t = [&](double z) { return z / amplitude * wave; };
        // The terms depend on one coordinate each, so they are worked out
        // once a column and once a row.
        const auto terms = [&](int first, int end, bool across) {
            std::vector<double> values(static_cast<std::size_t>(std::max(end - first, 0)));
            for (int v = first; v < end; ++v) {
                const double z = t(pattern::atLeastOne(v));
                double term = 0;
                switch (type) {
                case 0:
                    term = across ? std::sin(std::sin(z) + z) : std::cos(z);
                    break;
                case 1:
                    term = across ? std::sin(std::cos(z) + z) : std::sin(z);
                    break;
                case 2:
                    term = across ? std::sin(std::atan(z) + z) : std::cos(std::atan(z) + z);
                    break;
                case 3:
                    term = across ? std::tan(std::sin(z) + z) : std::tan(z);
                    break;
                default:
                    break;
                }
                values[v - first] = std::sqrt(
                    std::abs(pattern::atLeastOne(v) / static_cast<double>(strength) + term));
            }
            return values;
        };
        const std::vector<double> across = terms(left, right, true);
        const std::vector<double> down = terms(top, bottom, false);
        paintBands({left, top, right, bottom}, power, red, green, blue, weight, [&](int x, int y) {
            return roundTo<std::int32_t>((across[x - left] + down[y - top]) * 10);
        });
    });
}

} // namespace lumiran
