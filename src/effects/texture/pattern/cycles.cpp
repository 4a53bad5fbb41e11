// FF1 and FF2: waves across and down around the rectangle's centre, made
// one value by a combination and scaled to a colour.
#include "effects/texture/pattern/pattern_frame.h"

#include <algorithm>
#include <span>
#include <vector>

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

// Sines and cosines of one axis's offsets from the centre over a period,
// once a column or a row: types 0..3 pair them without a wave per pixel.
struct AxisWaves {
    std::vector<double> sine;
    std::vector<double> cosine;
};

AxisWaves axisWaves(int first, int end, double centre, double period) {
    AxisWaves w;
    for (int v = first; v < end; ++v) {
        const double angle = (v - centre) * Pi / period;
        w.sine.push_back(std::sin(angle));
        w.cosine.push_back(std::cos(angle));
    }
    return w;
}

// 0..1 from the pair, for a row of pairs: 0 the product, 1 the sum, 2 the
// difference, 3 the larger, 4 the smaller. One loop per combination.
template <typename PairAt>
void combineRow(std::uint8_t combination, int count, double* __restrict t, PairAt pairAt) {
    switch (combination) {
    case 1:
        for (int i = 0; i < count; ++i) {
            const WavePair w = pairAt(i);
            t[i] = (w.a + w.b + 2) / 4;
        }
        return;
    case 2:
        for (int i = 0; i < count; ++i) {
            const WavePair w = pairAt(i);
            t[i] = std::abs(w.a - w.b) / 2;
        }
        return;
    case 3:
        for (int i = 0; i < count; ++i) {
            const WavePair w = pairAt(i);
            t[i] = (std::max(w.a, w.b) + 1) / 2;
        }
        return;
    case 4:
        for (int i = 0; i < count; ++i) {
            const WavePair w = pairAt(i);
            t[i] = (std::min(w.a, w.b) + 1) / 2;
        }
        return;
    default:
        for (int i = 0; i < count; ++i) {
            const WavePair w = pairAt(i);
            t[i] = (w.a * w.b + 1) / 2;
        }
        return;
    }
}

// The combined waves of one type a row at a time. Types 0..3 pair one wave
// of each axis: from tables of the columns and the rows, no wave per pixel.
class CycleWaves {
  public:
    CycleWaves(std::uint8_t type, double cx, double cy, double h, double v, int firstColumn,
               int endColumn, int firstRow, int endRow)
        : type_(type), cx_(cx), cy_(cy), h_(h), v_(v), firstColumn_(firstColumn),
          firstRow_(firstRow) {
        if (type_ < 4) {
            across_ = axisWaves(firstColumn, endColumn, cx, h);
            down_ = axisWaves(firstRow, endRow, cy, v);
        }
    }

    // t for the columns first..end-1 of row y.
    void row(std::uint8_t combination, int y, int first, int end, double* t) const {
        const int count = end - first;
        if (type_ >= 4) {
            return combineRow(combination, count, t, [&](int i) {
                return wavesOf(type_, first + i - cx_, y - cy_, h_, v_);
            });
        }
        const auto i0 = static_cast<std::size_t>(first - firstColumn_);
        const auto j = static_cast<std::size_t>(y - firstRow_);
        const double* as = across_.sine.data() + i0;
        const double* ac = across_.cosine.data() + i0;
        const double ds = down_.sine[j], dc = down_.cosine[j];
        switch (type_) {
        case 0:
            return combineRow(combination, count, t, [&](int i) { return WavePair{as[i], ds}; });
        case 1:
            return combineRow(combination, count, t, [&](int i) { return WavePair{ac[i], dc}; });
        case 2:
            return combineRow(combination, count, t, [&](int i) { return WavePair{as[i], dc}; });
        default:
            return combineRow(combination, count, t, [&](int i) {
                return WavePair{(as[i] + dc) / 2, (ac[i] + ds) / 2};
            });
        }
    }

  private:
    std::uint8_t type_;
    double cx_, cy_, h_, v_;
    int firstColumn_, firstRow_;
    AxisWaves across_, down_;
};

// t is NaN (a period of 0) or within 0..1, so t times a 16-bit colour stays
// in range; NaN is the conversion's overflow error.
void checkCombined(const std::vector<double>& t) {
    bool notANumber = false;
    for (const double v : t)
        notANumber |= v != v;
    if (notANumber) throw EffectError::overflow();
}

// A row of t times a colour into one channel's values.
void scaleRow(const std::vector<double>& t, int colour, std::span<std::int16_t> out) {
    const double* __restrict in = t.data();
    std::int16_t* __restrict values = out.data();
    for (std::size_t i = 0; i < t.size(); ++i)
        values[i] = roundInRange<std::int16_t>(in[i] * colour);
}

// A centre at 50 percent of the rectangle, as FF4 places it.
double centreOf(std::int16_t low, std::int16_t high) {
    return roundTo<std::int32_t>((high - low) / 100.0 * 50 + low);
}

} // namespace

void Class_Pattern::FF1(std::uint8_t type, std::uint8_t combination, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::int16_t horizontal, std::int16_t vertical, std::int16_t red,
                        std::int16_t green, std::int16_t blue, std::int16_t weight) {
    guarded([&] {
        const double cx = centreOf(left, right);
        const double cy = centreOf(top, bottom);
        const ProcessRect rect{left, top, right, bottom};
        const Span s = spanOf(rect);
        const CycleWaves waves(type, cx, cy, horizontal, vertical, s.firstColumn, s.endColumn,
                               s.firstRow, s.endRow);
        blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
            std::vector<double> t(static_cast<std::size_t>(end - first));
            waves.row(combination, y, first, end, t.data());
            checkCombined(t);
            scaleRow(t, red, p.red);
            scaleRow(t, green, p.green);
            scaleRow(t, blue, p.blue);
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
        const ProcessRect rect{left, top, right, bottom};
        const Span s = spanOf(rect);
        auto wavesWith = [&](double h, double v) {
            return CycleWaves(type, cx, cy, h, v, s.firstColumn, s.endColumn, s.firstRow, s.endRow);
        };
        const CycleWaves channels[3] = {wavesWith(redHorizontal, redVertical),
                                        wavesWith(greenHorizontal, greenVertical),
                                        wavesWith(blueHorizontal, blueVertical)};
        blendPatternRows(rect, weight, [&](int y, int first, int end, pattern::RowColours p) {
            std::vector<double> t(static_cast<std::size_t>(end - first));
            const std::span<std::int16_t> out[3] = {p.red, p.green, p.blue};
            for (std::size_t c = 0; c < 3; ++c) {
                channels[c].row(combination, y, first, end, t.data());
                checkCombined(t);
                scaleRow(t, 255, out[c]);
            }
        });
    });
}

} // namespace lumiran
