#pragma once

// The per-pixel frame of Class_Pattern's colour fields: the weight blend and
// the band rule. Included by the units of its operations.
#include "effects/texture/pattern/class_pattern.h"
#include "effects/texture/pattern/weight_blend_row.h"
#include "engine/numeric.h"

#include <cmath>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

namespace lumiran {
namespace pattern {

// round(((10 - w) P + w c) / 10), the products and their sum held in
// 16 bits; the rounding half to even done in integers, so that pixel loops
// vectorise.
[[nodiscard]] inline std::int16_t weightBlend(int patternChannel, int source, int weight) {
    const int sum = wrap16(wrap16((10 - weight) * patternChannel) + wrap16(weight * source));
    const int quotient = sum / 10;
    const int rest = sum - quotient * 10;
    const int odd = quotient & 1;
    return static_cast<std::int16_t>(quotient + (rest > 5) - (rest < -5) + ((rest == 5) & odd) -
                                     ((rest == -5) & odd));
}

// The largest whole number a 32-bit conversion takes; beyond it (after
// rounding) the conversion is the overflow error.
inline constexpr double Largest32 = 2147483647.0;

// Throws the overflow error of the 32-bit conversion when a measure can
// reach beyond it (or is not a number), checked once before the loop
// rather than at every pixel: a failed run is discarded whole.
inline void checkMeasure(double largest) {
    if (!(roundHalfEvenInRange(largest) <= Largest32)) throw EffectError::overflow();
}

// The band rule round(|C - 256 / p * residue|) and the weight blend for
// one colour.
class Bands {
  public:
    Bands(int period, std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::int16_t weight)
        : period_(period),
          step_(256.0 / period), colour_{static_cast<double>(red), static_cast<double>(green),
                                         static_cast<double>(blue)},
          weight_(weight) {}
    [[nodiscard]] double period() const { return period_; }
    [[nodiscard]] double step() const { return step_; }
    [[nodiscard]] double colour(int c) const { return colour_[c]; }
    [[nodiscard]] std::int16_t weight() const { return weight_; }

  private:
    double period_;
    double step_;
    double colour_[3];
    std::int16_t weight_;
};

// A row of pattern values P, one span per channel.
struct RowColours {
    std::span<std::int16_t> red;
    std::span<std::int16_t> green;
    std::span<std::int16_t> blue;
};

// A value of 0 raised to 1, as the banded effects take x and y.
[[nodiscard]] inline int atLeastOne(int v) {
    return v == 0 ? 1 : v;
}

} // namespace pattern

template <RowOrder Order, typename Pattern>
void Class_Pattern::blendPattern(const ProcessRect& rect, std::int16_t weight, Pattern&& pattern) {
    mapPixels<ResultTail::Clamp, Destination::InPlace, Order>(
        rect, [&pattern, weight](int x, int y, int& r, int& g, int& b) {
            const Rgb16 p = pattern(x, y);
            return Rgb16{pattern::weightBlend(p.red, r, weight),
                         pattern::weightBlend(p.green, g, weight),
                         pattern::weightBlend(p.blue, b, weight)};
        });
}

template <RowOrder Order, typename FillRow>
void Class_Pattern::blendPatternRows(const ProcessRect& rect, std::int16_t weight,
                                     FillRow&& fillRow) {
    SetProgressRange(rect.top, rect.bottom);
    const bool blend = calculationFlag() > 0;
    forEachRow<Order>(rect, [&](int y, int first, int end) {
        const auto count = static_cast<std::size_t>(end - first);
        // Every value is written by fillRow: no clearing.
        const auto colours = std::make_unique_for_overwrite<std::int16_t[]>(3 * count);
        pattern::RowColours p{{colours.get(), count},
                              {colours.get() + count, count},
                              {colours.get() + 2 * count, count}};
        fillRow(y, first, end, p);
        Pixel* row = ImageBits.row(y).data() + first;
        if (blend) {
            blendRow<true>(row, colours.get(), static_cast<int>(count), weight);
        } else {
            blendRow<false>(row, colours.get(), static_cast<int>(count), weight);
        }
    });
}

template <bool Blend>
void Class_Pattern::blendRow(Pixel* __restrict row, const std::int16_t* __restrict p, int count,
                             int weight) const {
    if constexpr (!Blend) {
        pattern::blendRowClamped(row, p, count, weight);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const Pixel source = row[i];
        const int r = redOf(source), g = greenOf(source), b = blueOf(source);
        const Rgb16 v{pattern::weightBlend(p[i], r, weight),
                      pattern::weightBlend(p[count + i], g, weight),
                      pattern::weightBlend(p[2 * count + i], b, weight)};
        const Rgb16 out = endPixel<ResultTail::Clamp, Blend>(r, g, b, v);
        row[i] = withColour(source, out.red, out.green, out.blue);
    }
}

template <typename RowMeasure>
void Class_Pattern::paintBands(const ProcessRect& rect, int period, std::uint8_t red,
                               std::uint8_t green, std::uint8_t blue, std::int16_t weight,
                               RowMeasure&& rowMeasure) {
    SetProgressRange(rect.top, rect.bottom);
    // m mod 0 is the integer division by zero of the band rule, met at the
    // first pixel.
    if (spanOf(rect).empty()) return;
    if (period == 0) throw EffectError::divisionByZero();
    const bool blend = calculationFlag() > 0;
    forEachRow(rect, [&](int y, int first, int end) {
        const auto m =
            std::make_unique_for_overwrite<double[]>(static_cast<std::size_t>(end - first));
        rowMeasure(y, first, end, m.get());
        Pixel* row = ImageBits.row(y).data() + first;
        const pattern::Bands bands(period, red, green, blue, weight);
        if (blend) {
            paintBandRow<true>(bands, row, m.get(), end - first);
        } else {
            paintBandRow<false>(bands, row, m.get(), end - first);
        }
    });
}

// The band rule and the weight blend over a row, in two loops that each
// vectorise: the band colours in floating point (m and p are whole numbers
// below 2^31, so the quotient's truncation and the residue are exact), then
// the blends in integers.
template <bool Blend>
void Class_Pattern::paintBandRow(const pattern::Bands& shared, Pixel* __restrict row,
                                 double* __restrict m, int count) const {
    const double period = shared.period();
    const double step = shared.step();
    const double c0 = shared.colour(0), c1 = shared.colour(1), c2 = shared.colour(2);
    // The weight blend keeps the low 16 bits of its products, so 16-bit
    // values give the same blends.
    const auto colours =
        std::make_unique_for_overwrite<std::int16_t[]>(static_cast<std::size_t>(count) * 3);
    std::int16_t* __restrict p = colours.get();
    const double inverse = 1 / period;
    for (int i = 0; i < count; ++i) {
        const double whole = roundHalfEvenInRange(m[i]);
        // The truncated quotient through a 64-bit integer (std::trunc keeps
        // the compiler from vectorising), from the product with the
        // reciprocal, which is at most one off: moved so that the residue
        // takes the sign of the measure and stays below the period.
        double quotient = static_cast<double>(static_cast<std::int64_t>(whole * inverse));
        const double rest = whole - period * quotient;
        const double toward = (whole < 0) != (period < 0) ? -1.0 : 1.0;
        quotient += std::abs(rest) >= std::abs(period) ? toward : 0.0;
        quotient -= rest != 0 && (rest < 0) != (whole < 0) ? toward : 0.0;
        const double residue = whole - period * quotient;
        p[i] = wrap16(roundInRange<std::int32_t>(std::abs(c0 - step * residue)));
        p[count + i] = wrap16(roundInRange<std::int32_t>(std::abs(c1 - step * residue)));
        p[2 * count + i] = wrap16(roundInRange<std::int32_t>(std::abs(c2 - step * residue)));
    }
    blendRow<Blend>(row, p, count, shared.weight());
}
} // namespace lumiran
