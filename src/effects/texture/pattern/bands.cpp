// The banded patterns: Wamai, FF4 and the colour tiles. Each measure is
// worked out a row at a time from tables of the columns and rows where it
// separates, and its range is checked once against the 32-bit conversion.
#include "effects/texture/pattern/pattern_frame.h"

#include <algorithm>
#include <cmath>

namespace lumiran {
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

// A function of the coordinate for every column (or row) of the rectangle
// that lies in the picture, indexed from the first of them.
template <typename F>
std::vector<double> along(int first, int end, F f) {
    std::vector<double> values(static_cast<std::size_t>(std::max(end - first, 0)));
    for (int v = first; v < end; ++v)
        values[v - first] = f(v);
    return values;
}

// The largest magnitude of the values; not a number if any is one.
double largest(const std::vector<double>& values) {
    double most = 0;
    for (const double v : values)
        most = std::isnan(v) || std::isnan(most) ? NAN : std::max(most, std::abs(v));
    return most;
}

double atLeastOne(int v) {
    return pattern::atLeastOne(v);
}

} // namespace

void Class_Pattern::Wamai(std::uint8_t type, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom, std::uint8_t red,
                          std::uint8_t green, std::uint8_t blue, std::int16_t weight,
                          std::int16_t strength) {
    guarded([&] {
        const Span s = spanOf({left, top, right, bottom});
        const double exponent = 6 + type;
        // m = round(sqrt(sqrt(x^e) + sqrt(y^e))): the inner roots once a
        // column and once a row.
        const auto root = [&](int v) { return std::sqrt(std::pow(atLeastOne(v), exponent)); };
        const std::vector<double> across = along(s.firstColumn, s.endColumn, root);
        const std::vector<double> down = along(s.firstRow, s.endRow, root);
        pattern::checkMeasure(std::sqrt(largest(across) + largest(down)));
        paintBands({left, top, right, bottom}, strength, red, green, blue, weight,
                   [&](int y, int first, int end, double* m) {
                       const double d = down[y - s.firstRow];
                       for (int x = first; x < end; ++x)
                           m[x - first] = std::sqrt(across[x - s.firstColumn] + d);
                   });
    });
}

void Class_Pattern::FF4(std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom, std::uint8_t red, std::uint8_t green,
                        std::uint8_t blue, std::int16_t weight, std::int16_t strength) {
    guarded([&] {
        const Span s = spanOf({left, top, right, bottom});
        const int cx = centreOf(left, right);
        const int cy = centreOf(top, bottom);
        // m = round(sqrt(dx^2 + dy^2)), a 0 in dx or dy raised to 1; the
        // distances stay below 2^17, well inside the range.
        const auto square = [](int d) {
            const double v = atLeastOne(std::abs(d));
            return v * v;
        };
        const std::vector<double> across =
            along(s.firstColumn, s.endColumn, [&](int x) { return square(x - cx); });
        paintBands({left, top, right, bottom}, diagonalPeriod(right, bottom, strength), red, green,
                   blue, weight, [&](int y, int first, int end, double* m) {
                       const double dy = square(y - cy);
                       for (int x = first; x < end; ++x)
                           m[x - first] = std::sqrt(across[x - s.firstColumn] + dy);
                   });
    });
}

void Class_Pattern::ColorTile1(std::uint8_t type, std::int16_t left, std::int16_t top,
                               std::int16_t right, std::int16_t bottom, std::uint8_t red,
                               std::uint8_t green, std::uint8_t blue, std::int16_t weight,
                               std::int16_t strength) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const int period = diagonalPeriod(right, bottom, strength);
        const Span s = spanOf(rect);
        // The measures grow with x and y, so the far corner bounds them.
        const double mx = atLeastOne(std::max(s.endColumn - 1, 0));
        const double my = atLeastOne(std::max(s.endRow - 1, 0));
        switch (type) {
        case 0: // x y + x + x y + y
            pattern::checkMeasure(mx * my + mx + mx * my + my);
            paintBands(rect, period, red, green, blue, weight,
                       [&](int y, int first, int end, double* m) {
                           const double yy = atLeastOne(y);
                           for (int x = first; x < end; ++x) {
                               const double xx = atLeastOne(x);
                               m[x - first] = xx * yy + xx + xx * yy + yy;
                           }
                       });
            break;
        case 1: // 2 sqrt(x y + x)
            paintBands(rect, period, red, green, blue, weight,
                       [&](int y, int first, int end, double* m) {
                           const double yy = atLeastOne(y);
                           for (int x = first; x < end; ++x) {
                               const double xx = atLeastOne(x);
                               m[x - first] = 2 * std::sqrt(xx * yy + xx);
                           }
                       });
            break;
        case 2: // round(x y) times 10, wrapping as 32-bit arithmetic does
            pattern::checkMeasure(mx * my);
            paintBands(
                rect, period, red, green, blue, weight, [&](int y, int first, int end, double* m) {
                    const double yy = atLeastOne(y);
                    for (int x = first; x < end; ++x) {
                        const auto product =
                            static_cast<std::uint32_t>(roundHalfEvenInRange(atLeastOne(x) * yy));
                        m[x - first] =
                            static_cast<double>(static_cast<std::int32_t>(product * 10u));
                    }
                });
            break;
        case 3: // x^2 + y^2
            pattern::checkMeasure(mx * mx + my * my);
            paintBands(rect, period, red, green, blue, weight,
                       [&](int y, int first, int end, double* m) {
                           const double yy = atLeastOne(y);
                           for (int x = first; x < end; ++x) {
                               const double xx = atLeastOne(x);
                               m[x - first] = xx * xx + yy * yy;
                           }
                       });
            break;
        default:
            paintBands(
                rect, period, red, green, blue, weight,
                [](int, int first, int end, double* m) { std::fill(m, m + (end - first), 0.0); });
            break;
        }
    });
}

void Class_Pattern::ColorTile2(std::uint8_t type, std::int16_t left, std::int16_t top,
                               std::int16_t right, std::int16_t bottom, std::uint8_t red,
                               std::uint8_t green, std::uint8_t blue, std::int16_t amplitude,
                               std::int16_t wave, std::int16_t strength, std::int16_t power,
                               std::int16_t weight) {
    guarded([&] {
        const Span s = spanOf({left, top, right, bottom});
        const auto t = [&](double z) { return z / amplitude * wave; };
        // A = sqrt(|x / s + f(x)|), B likewise down: one column and one row
        // at a time; m = round((A + B) 10).
        const auto term = [&](int v, bool across) {
            const double z = t(atLeastOne(v));
            double f = 0;
            switch (type) {
            case 0:
                f = across ? std::sin(std::sin(z) + z) : std::cos(z);
                break;
            case 1:
                f = across ? std::sin(std::cos(z) + z) : std::sin(z);
                break;
            case 2:
                f = across ? std::sin(std::atan(z) + z) : std::cos(std::atan(z) + z);
                break;
            case 3:
                f = across ? std::tan(std::sin(z) + z) : std::tan(z);
                break;
            default:
                break;
            }
            return std::sqrt(std::abs(atLeastOne(v) / static_cast<double>(strength) + f));
        };
        const std::vector<double> across =
            along(s.firstColumn, s.endColumn, [&](int v) { return term(v, true); });
        const std::vector<double> down =
            along(s.firstRow, s.endRow, [&](int v) { return term(v, false); });
        pattern::checkMeasure((largest(across) + largest(down)) * 10);
        paintBands({left, top, right, bottom}, power, red, green, blue, weight,
                   [&](int y, int first, int end, double* m) {
                       const double b = down[y - s.firstRow];
                       for (int x = first; x < end; ++x)
                           m[x - first] = (across[x - s.firstColumn] + b) * 10;
                   });
    });
}

} // namespace lumiran
