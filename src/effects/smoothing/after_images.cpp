// The afterimages: each pixel the mean of count + 1 samples displaced by a
// wave, a ripple or a vortex.
#include "effects/smoothing/soften_window.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

struct Position {
    int x = 0;
    int y = 0;
};

// The centre from the percentages: round((right - left) / 100 * p + left).
Position centreOf(const ProcessRect& rect, int xPercent, int yPercent) {
    return {roundTo<std::int32_t>(wrap16(rect.right - rect.left) / 100.0 * xPercent + rect.left),
            roundTo<std::int32_t>(wrap16(rect.bottom - rect.top) / 100.0 * yPercent + rect.top)};
}

// values[i] = f(first + i) for a run of integers.
template <typename F>
std::vector<double> tabulate(int first, int count, F f) {
    std::vector<double> values(static_cast<std::size_t>(std::max(count, 0)));
    for (int i = 0; i < count; ++i)
        values[static_cast<std::size_t>(i)] = f(first + i);
    return values;
}

} // namespace

template <RowOrder Order, typename SamplesAt>
void Class_Soften::afterImageRows(int count, int type, const ProcessRect& rect,
                                  SamplesAt samplesAt) {
    const ProcessRect bounds = soften::cutToPicture(rect, ImageBits.width(), ImageBits.height());
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
    SetProgressRange(centres.top, centres.bottom);
    forEachRow<Order>(centres, [&](int y, int firstColumn, int endColumn) {
        Pixel* out = TransBits.row(y).data();
        for (int x = firstColumn; x < endColumn; ++x) {
            auto sample = samplesAt(x, y);
            int sumR = 0, sumG = 0, sumB = 0;
            IntRgb first{};
            for (int j = 0; j <= count; ++j) {
                Position p = sample(j);
                if (p.x < bounds.left) p.x = x;
                if (p.y < bounds.top) p.y = y;
                if (p.x > bounds.right - 1) p.x = x;
                if (p.y > bounds.bottom - 1) p.y = y;
                const IntRgb e = channelsOf(ImageBits.at(p.x, p.y));
                if (j == 0) first = e;
                sumR += e.r;
                sumG += e.g;
                sumB += e.b;
            }
            // The sums are 16-bit fields and wrap.
            const IntRgb sum{wrap16(sumR), wrap16(sumG), wrap16(sumB)};
            const int samples = count + 1;
            IntRgb v{checkedDivide(sum.r, samples), checkedDivide(sum.g, samples),
                     checkedDivide(sum.b, samples)};
            if (type != 0) {
                // The first sample counted Weight times, Weight growing with
                // its difference from the mean.
                const int d =
                    std::abs(v.r - first.r) + std::abs(v.g - first.g) + std::abs(v.b - first.b);
                const int weight = std::clamp(d / 3, 0, 128);
                auto channel = [&](int s, int e) {
                    return checkedDivide(s - e + weight * e, count + weight);
                };
                v = {channel(sum.r, first.r), channel(sum.g, first.g), channel(sum.b, first.b)};
            }
            const IntRgb c = channelsOf(ImageBits.at(x, y));
            const Rgb16 e = finishPixel<ResultTail::Clamp>(c.r, c.g, c.b, soften::resultFields(v));
            out[x] = withColour(out[x], e.red, e.green, e.blue);
        }
    });
}

void Class_Soften::AfterImage_Wave(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                                   std::int16_t left, std::int16_t top, std::int16_t right,
                                   std::int16_t bottom, std::int16_t amplitude,
                                   std::int16_t wavelength, std::int16_t xPercent,
                                   std::int16_t yPercent) {
    guardedTrans([&] {
        // The percentages place a centre that the wave never reads.
        (void)xPercent;
        (void)yPercent;
        const ProcessRect rect{left, top, right, bottom};
        const double a = amplitude;
        const double w = wavelength;
        auto cosine = [&](int v) { return a * std::cos(v * 6.28 / w); };
        auto sine = [&](int v) { return a * std::sin(v * 6.28 / w); };
        // Every term depends on one coordinate: tables over the columns and
        // rows the samples reach, the same doubles the formula gives.
        const ProcessRect c = soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
        const int extra = std::max<int>(count, 0);
        const std::vector<double> cosX = tabulate(c.left, c.right - c.left + extra, cosine);
        const std::vector<double> sinY = tabulate(c.top, c.bottom - c.top + extra, sine);
        const std::vector<double> cosY = tabulate(c.top, c.bottom - c.top + extra, cosine);
        // The shifted column stays within twice the amplitude of x + j.
        const int spread = 2 * std::abs(amplitude) + 2;
        const int sinFirst = c.left - spread;
        const std::vector<double> sinX =
            tabulate(sinFirst, c.right - c.left + extra + 2 * spread, sine);
        auto sinOfColumn = [&](int v) {
            const auto i = static_cast<std::size_t>(v - sinFirst);
            return v >= sinFirst && i < sinX.size() ? sinX[i] : sine(v);
        };
        auto samplesAt = [&](int x, int y) {
            return [&, x, y](int j) {
                const auto col = static_cast<std::size_t>(x + j - c.left);
                const auto row = static_cast<std::size_t>(y + j - c.top);
                Position p;
                p.x = roundTo<std::int32_t>(cosX[col] + sinY[row] + x);
                p.y = direction == 0 ? y : roundTo<std::int32_t>(cosY[row] + sinOfColumn(p.x) + y);
                if (direction == 1) p.x = x;
                return p;
            };
        };
        afterImageRows<RowOrder::AnyOrder>(count, type, rect, samplesAt);
    });
}

void Class_Soften::AfterImage_Ripple(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                                     std::int16_t left, std::int16_t top, std::int16_t right,
                                     std::int16_t bottom, std::int16_t amplitude,
                                     std::int16_t wavelength, std::int16_t xPercent,
                                     std::int16_t yPercent) {
    guardedTrans([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Position centre = centreOf(rect, xPercent, yPercent);
        const double k = 1.0 - wavelength / 100.0;
        // The divisors 5.0 across and 8.0 down differ on purpose.
        const double across = amplitude / 5.0;
        const double down = amplitude / 8.0;
        auto samplesAt = [&](int x, int y) {
            const double dx = x - centre.x;
            const double dy = y - centre.y;
            const double s = std::sin(std::sqrt(0.6 * (dx * dx) + dy * dy) * k);
            return [=](int j) -> Position {
                switch (direction) {
                case 0:
                    return {roundTo<std::int32_t>(x + j + across * s), y};
                case 1:
                    return {x, roundTo<std::int32_t>(y + j + down * s)};
                case 2:
                    return {roundTo<std::int32_t>(x + j + across * s),
                            roundTo<std::int32_t>(y + j + down * s)};
                default:
                    return {x + j, y + j};
                }
            };
        };
        afterImageRows<RowOrder::AnyOrder>(count, type, rect, samplesAt);
    });
}

namespace {

// A sample of the vortex depends on its point (x + j, y + j) alone: the
// point turned about the centre by an angle growing with its distance.
struct VortexTurn {
    Position centre;
    double amplitude = 0;

    [[nodiscard]] Position operator()(int px, int py) const {
        const double dx = px - centre.x;
        const double dy = py - centre.y;
        // An amplitude of 0 divides by zero here; the rounding below then
        // fails with the overflow error.
        const double t = std::sqrt(0.6 * (dx * dx) + dy * dy) / (amplitude / 4.0) / 3.14;
        const double s = std::sin(t);
        const double c = std::cos(t);
        return {roundTo<std::int32_t>(s * dx + centre.x - c * dy),
                roundTo<std::int32_t>(c * dx + centre.y + s * dy)};
    }
};

// The turned points of count + 1 consecutive rows, so that each point is
// worked out once instead of once for every pixel whose samples reach it.
// The rows are filled in order: the loop must run top to bottom.
class VortexRows {
  public:
    VortexRows(const VortexTurn& turn, int firstColumn, int columns, int rows)
        : turn_(turn), firstColumn_(firstColumn), columns_(columns), rows_(rows),
          points_(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

    [[nodiscard]] Position at(int px, int py) {
        while (filledTo_ <= py)
            fill(filledTo_++);
        return points_[slot(py) + static_cast<std::size_t>(px - firstColumn_)];
    }

    void startAt(int row) {
        if (filledTo_ < row) filledTo_ = row;
    }

  private:
    [[nodiscard]] std::size_t slot(int py) const {
        return static_cast<std::size_t>(py % rows_) * static_cast<std::size_t>(columns_);
    }
    void fill(int py) {
        const std::size_t base = slot(py);
        for (int i = 0; i < columns_; ++i)
            points_[base + static_cast<std::size_t>(i)] = turn_(firstColumn_ + i, py);
    }

    VortexTurn turn_;
    int firstColumn_;
    int columns_;
    int rows_;
    int filledTo_ = 0;
    std::vector<Position> points_;
};

// Above this many samples the rows would cost more memory than they save.
constexpr int MaxCachedSamples = 256;

} // namespace

void Class_Soften::AfterImage_Vortex(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                                     std::int16_t left, std::int16_t top, std::int16_t right,
                                     std::int16_t bottom, std::int16_t amplitude,
                                     std::int16_t xPercent, std::int16_t yPercent) {
    guardedTrans([&] {
        const ProcessRect rect{left, top, right, bottom};
        const VortexTurn turn{centreOf(rect, xPercent, yPercent), static_cast<double>(amplitude)};
        auto place = [direction](int x, int y, int j, auto turned) -> Position {
            switch (direction) {
            case 0:
                return {turned().x, y};
            case 1:
                return {x, turned().y};
            case 2:
                return turned();
            default:
                return {x + j, y + j};
            }
        };
        const int samples = count + 1;
        const ProcessRect c = soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
        if (samples < 1 || samples > MaxCachedSamples) {
            auto samplesAt = [&](int x, int y) {
                return
                    [&, x, y](int j) { return place(x, y, j, [&] { return turn(x + j, y + j); }); };
            };
            afterImageRows<RowOrder::AnyOrder>(count, type, rect, samplesAt);
            return;
        }
        VortexRows rows(turn, c.left, c.right - c.left + count, samples);
        rows.startAt(c.top);
        auto samplesAt = [&](int x, int y) {
            return
                [&, x, y](int j) { return place(x, y, j, [&] { return rows.at(x + j, y + j); }); };
        };
        afterImageRows<RowOrder::TopToBottom>(count, type, rect, samplesAt);
    });
}

} // namespace lumiran
