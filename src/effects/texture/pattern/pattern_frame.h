#pragma once

// The per-pixel frame of Class_Pattern's colour fields: the weight blend and
// the band rule. Included by the units of its operations.
#include "effects/texture/pattern/class_pattern.h"
#include "engine/numeric.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace pattern {

// round(((10 - w) P + w c) / 10), the products and their sum held in
// 16 bits.
[[nodiscard]] inline std::int16_t weightBlend(int patternChannel, int source, int weight) {
    const std::int16_t sum =
        wrap16(wrap16((10 - weight) * patternChannel) + wrap16(weight * source));
    return roundInRange<std::int16_t>(sum / 10.0);
}

// The band rule for one colour: round(|C - 256 / p * (m mod p)|) per
// channel, looked up for the residues of a positive period.
class BandColours {
  public:
    BandColours(int period, Rgb8 colour);
    [[nodiscard]] Rgb16 at(int m) const {
        const int residue = m % period_;
        if (residue >= 0 && residue < static_cast<int>(table_.size())) return table_[residue];
        return colourOf(residue);
    }

  private:
    [[nodiscard]] Rgb16 colourOf(int residue) const;
    int period_;
    Rgb8 colour_;
    std::vector<Rgb16> table_;
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

template <typename Measure>
void Class_Pattern::paintBands(const ProcessRect& rect, int period, std::uint8_t red,
                               std::uint8_t green, std::uint8_t blue, std::int16_t weight,
                               Measure&& measure) {
    const pattern::BandColours bands(period, Rgb8{red, green, blue});
    blendPattern(rect, weight, [&](int x, int y) { return bands.at(measure(x, y)); });
}

} // namespace lumiran
