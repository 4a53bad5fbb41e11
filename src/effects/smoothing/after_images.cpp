// The afterimages: each pixel the mean of count + 1 samples displaced by a
// wave, a ripple or a vortex.
#include "effects/geometry/vector_trig.h"
#include "effects/smoothing/after_image_runs.h"
#include "effects/smoothing/soften_window.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>
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

// Whether v rounds to the same integer when it moves by less than margin:
// sines and cosines of the vector functions stray from the library's by a
// few units in the last place, which moves a turned point by far less than
// 1e-9 of the offsets it multiplies. A NaN or an infinity is never clear.
[[nodiscard]] inline bool clearOfHalf(double v, double margin) {
    const double half = v + 0.5;
    return std::abs(half - roundHalfEvenInRange(half)) > margin;
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

template <typename SamplesAt>
void Class_Soften::afterImageRow(int count, int type, const ProcessRect& bounds, int y,
                                 int firstColumn, int endColumn, SamplesAt& samplesAt) {
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
}

template <RowOrder Order, typename SamplesAt>
void Class_Soften::afterImageRows(int count, int type, const ProcessRect& rect,
                                  SamplesAt samplesAt) {
    const ProcessRect bounds = soften::cutToPicture(rect, ImageBits.width(), ImageBits.height());
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
    SetProgressRange(centres.top, centres.bottom);
    forEachRow<Order>(centres, [&](int y, int firstColumn, int endColumn) {
        afterImageRow(count, type, bounds, y, firstColumn, endColumn, samplesAt);
    });
}

template <typename SumRun>
void Class_Soften::afterImageRuns(int count, int type, const ProcessRect& rect, SumRun sumRun) {
    const ProcessRect cut = soften::cutToPicture(rect, ImageBits.width(), ImageBits.height());
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
    const Pixel* image = ImageBits.pixels().data();
    const int width = ImageBits.width();
    const soften::SampleBounds bounds{cut.left, cut.top, cut.right, cut.bottom, image, width};
    SetProgressRange(centres.top, centres.bottom);
    forEachRow<RowOrder::AnyOrder>(centres, [&](int y, int firstColumn, int endColumn) {
        Pixel* out = TransBits.row(y).data();
        const Pixel* own = image + static_cast<std::ptrdiff_t>(y) * width;
        for (int x0 = firstColumn; x0 < endColumn; x0 += soften::RunPixels) {
            const int m = std::min(soften::RunPixels, endColumn - x0);
            soften::RunSums run;
            sumRun(run, bounds, y, x0, m);
            run.means(count, type, m);
            for (int i = 0; i < m; ++i) {
                const int x = x0 + i;
                const IntRgb source = channelsOf(own[x]);
                const Rgb16 e = finishPixel<ResultTail::Clamp>(
                    source.r, source.g, source.b,
                    soften::resultFields({run.r[i], run.g[i], run.b[i]}));
                out[x] = withColour(out[x], e.red, e.green, e.blue);
            }
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
        // The shifted column stays within twice the amplitude of x.
        const int spread = 2 * std::abs(amplitude) + 2;
        const int sinFirst = c.left - spread;
        const std::vector<double> sinX =
            tabulate(sinFirst, c.right - c.left + extra + 2 * spread, sine);
        const auto finite = [](const std::vector<double>& t) {
            return std::ranges::all_of(t, [](double v) { return std::isfinite(v); });
        };
        if (count >= 0 && finite(cosX) && finite(sinY) && finite(cosY) && finite(sinX)) {
            // Every place is then a finite double within 2 |amplitude| of
            // the pixel, so it rounds without the range check and its
            // shifted column lies inside sinX.
            const auto waveRuns = [&](auto dir) {
                afterImageRuns(
                    count, type, rect,
                    [&](soften::RunSums& run, const soften::SampleBounds& bounds, int y, int x0,
                        int m) {
                        run.gather(count + 1, m, [&, y, x0](int j) {
                            const double sy = sinY[static_cast<std::size_t>(y + j - c.top)];
                            const double cy = cosY[static_cast<std::size_t>(y + j - c.top)];
                            const double* __restrict cx = cosX.data() + (x0 + j - c.left);
                            const double* __restrict sx = sinX.data();
                            return [=, &bounds](int i) {
                                const int x = x0 + i;
                                int px = roundInRange<std::int32_t>(cx[i] + sy + x);
                                int py = y;
                                if constexpr (decltype(dir)::value != 0)
                                    py = roundInRange<std::int32_t>(cy + sx[px - sinFirst] + y);
                                if constexpr (decltype(dir)::value == 1) px = x;
                                return bounds.at(px, py, x, y);
                            };
                        });
                    });
            };
            switch (direction) {
            case 0:
                return waveRuns(std::integral_constant<int, 0>{});
            case 1:
                return waveRuns(std::integral_constant<int, 1>{});
            default:
                return waveRuns(std::integral_constant<int, 2>{});
            }
        }
        // No number somewhere (a wavelength of 0) or no samples: the pixel
        // by pixel form, whose rounding or division raises the error.
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
        // The sine of a pixel's distance, worked out for a run at once.
        const auto sinesOfRun = [&](int y, int x0, int m, std::span<double> s) {
            const double dy = y - centre.y;
            const auto n = static_cast<std::size_t>(m);
            for (std::size_t i = 0; i < n; ++i) {
                const double dx = x0 + static_cast<int>(i) - centre.x;
                s[i] = std::sqrt(0.6 * (dx * dx) + dy * dy) * k;
            }
            const std::span<const double> t(s.data(), n);
            std::array<double, soften::RunPixels> vector{};
            trig::sine(t, std::span(vector.data(), n));
            // The vector sine strays from the library's by a few units in
            // the last place, which moves a shifted place by far less than
            // 1e-9: where a place lies nearer a half than that, or the sine
            // is no number, the library decides.
            for (std::size_t i = 0; i < n; ++i) {
                const bool clear =
                    clearOfHalf(across * vector[i], 1e-7) & clearOfHalf(down * vector[i], 1e-7);
                s[i] = clear ? vector[i] : std::sin(s[i]);
            }
        };
        const auto rippleRuns = [&](auto dir) {
            afterImageRuns(count, type, rect,
                           [&](soften::RunSums& run, const soften::SampleBounds& bounds, int y,
                               int x0, int m) {
                               std::array<double, soften::RunPixels> s{};
                               sinesOfRun(y, x0, m, s);
                               std::array<double, soften::RunPixels> ox{}, oy{};
                               for (int i = 0; i < m; ++i) {
                                   ox[static_cast<std::size_t>(i)] =
                                       across * s[static_cast<std::size_t>(i)];
                                   oy[static_cast<std::size_t>(i)] =
                                       down * s[static_cast<std::size_t>(i)];
                               }
                               run.gather(count + 1, m, [&, y, x0](int j) {
                                   return [&, y, x0, j](int i) {
                                       const int x = x0 + i;
                                       const auto u = static_cast<std::size_t>(i);
                                       int px = x;
                                       int py = y;
                                       if constexpr (decltype(dir)::value != 1)
                                           px = roundInRange<std::int32_t>(x + j + ox[u]);
                                       if constexpr (decltype(dir)::value != 0)
                                           py = roundInRange<std::int32_t>(y + j + oy[u]);
                                       return bounds.at(px, py, x, y);
                                   };
                               });
                           });
        };
        if (count >= 0 && direction <= 2) {
            // Every place lies within the amplitude of (x + j, y + j): a
            // finite double well inside the 32-bit range.
            switch (direction) {
            case 0:
                return rippleRuns(std::integral_constant<int, 0>{});
            case 1:
                return rippleRuns(std::integral_constant<int, 1>{});
            default:
                return rippleRuns(std::integral_constant<int, 2>{});
            }
        }
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

    [[nodiscard]] double angle(double dx, double dy) const {
        // An amplitude of 0 divides by zero here; the rounding then fails
        // with the overflow error.
        return std::sqrt(0.6 * (dx * dx) + dy * dy) / (amplitude / 4.0) / 3.14;
    }
    [[nodiscard]] double turnedX(double s, double c, double dx, double dy) const {
        return s * dx + centre.x - c * dy;
    }
    [[nodiscard]] double turnedY(double s, double c, double dx, double dy) const {
        return c * dx + centre.y + s * dy;
    }

    [[nodiscard]] Position operator()(int px, int py) const {
        const double dx = px - centre.x;
        const double dy = py - centre.y;
        const double t = angle(dx, dy);
        const double s = std::sin(t);
        const double c = std::cos(t);
        return {roundTo<std::int32_t>(turnedX(s, c, dx, dy)),
                roundTo<std::int32_t>(turnedY(s, c, dx, dy))};
    }
};

// The turned points of count + 1 consecutive rows, so that each point is
// worked out once instead of once for every pixel whose samples reach it.
// A thread keeps rows of its own and must visit its rows in increasing
// order; a row is made on the vector unit, its sines and cosines redone by
// the library only where a point lies too near a rounding boundary to be
// sure.
class VortexRows {
  public:
    VortexRows(const VortexTurn& turn, int firstColumn, int columns, int rows)
        : turn_(turn), firstColumn_(firstColumn), columns_(columns), rows_(rows),
          points_(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)),
          dx_(static_cast<std::size_t>(columns)), t_(dx_.size()), sin_(dx_.size()),
          cos_(dx_.size()), unsure_(dx_.size()) {
        for (std::size_t i = 0; i < dx_.size(); ++i)
            dx_[i] = firstColumn + static_cast<int>(i) - turn.centre.x;
    }

    // The points of rows py .. py + count, by column from the first.
    void rowsFrom(int py, std::span<const Position*> rows) {
        if (filledTo_ < py) filledTo_ = py;
        while (filledTo_ < py + rows_)
            fill(filledTo_++);
        for (std::size_t j = 0; j < rows.size(); ++j)
            rows[j] = points_.data() + slot(py + static_cast<int>(j));
    }

  private:
    [[nodiscard]] std::size_t slot(int py) const {
        return static_cast<std::size_t>(py % rows_) * static_cast<std::size_t>(columns_);
    }
    void fill(int py) {
        // Locals and restrict: the stores may then not alias what the loops
        // read, and the loops vectorise.
        const VortexTurn turn = turn_;
        const double dy = py - turn.centre.y;
        const std::size_t n = dx_.size();
        const double* __restrict dx = dx_.data();
        double* __restrict t = t_.data();
        for (std::size_t i = 0; i < n; ++i)
            t[i] = turn.angle(dx[i], dy);
        trig::sinCos(t_, sin_, cos_);
        const double* __restrict s = sin_.data();
        const double* __restrict c = cos_.data();
        Position* __restrict out = points_.data() + slot(py);
        std::uint8_t* __restrict unsure = unsure_.data();
        for (std::size_t i = 0; i < n; ++i) {
            const double x = turn.turnedX(s[i], c[i], dx[i], dy);
            const double y = turn.turnedY(s[i], c[i], dx[i], dy);
            const double margin = 1e-7 + 1e-9 * (std::abs(dx[i]) + std::abs(dy));
            const bool clear = clearOfHalf(x, margin) & clearOfHalf(y, margin);
            // Also a point redone below must hold a number meanwhile.
            out[i] = {roundInRange<std::int32_t>(clear ? x : 0.0),
                      roundInRange<std::int32_t>(clear ? y : 0.0)};
            unsure[i] = static_cast<std::uint8_t>(!clear);
        }
        for (std::size_t i = 0; i < n; ++i)
            if (unsure[i] != 0) out[i] = turn(firstColumn_ + static_cast<int>(i), py);
    }

    VortexTurn turn_;
    int firstColumn_;
    int columns_;
    int rows_;
    int filledTo_ = 0;
    std::vector<Position> points_;
    std::vector<double> dx_, t_, sin_, cos_;
    std::vector<std::uint8_t> unsure_;
};

// Above this many samples the rows would cost more memory than they save.
constexpr int MaxCachedSamples = 256;

// The samples of a run of pixels of a row: sample j of the run's pixels
// lies in the turned row j, at consecutive places, so the shared run sums
// gather them on the vector unit.
template <typename Dir>
void sumVortexRun(soften::RunSums& run, Dir, std::span<const Position*> rows, int column, int x0,
                  int y, int m, const ProcessRect& bounds, const Pixel* __restrict image,
                  int width) {
    run.gather(static_cast<int>(rows.size()), m, [&](int j) {
        const Position* __restrict p = rows[static_cast<std::size_t>(j)] + column + j;
        return [=, &bounds](int i) {
            const int x = x0 + i;
            int px = Dir::value == 1 ? x : p[i].x;
            int py = Dir::value == 0 ? y : p[i].y;
            // The pixel's own x and y lie inside the bounds.
            px = (px < bounds.left) | (px > bounds.right - 1) ? x : px;
            py = (py < bounds.top) | (py > bounds.bottom - 1) ? y : py;
            return image[py * width + px];
        };
    });
}

} // namespace

void Class_Soften::AfterImage_Vortex(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                                     std::int16_t left, std::int16_t top, std::int16_t right,
                                     std::int16_t bottom, std::int16_t amplitude,
                                     std::int16_t xPercent, std::int16_t yPercent) {
    guardedTrans([&] {
        const ProcessRect rect{left, top, right, bottom};
        const VortexTurn turn{centreOf(rect, xPercent, yPercent), static_cast<double>(amplitude)};
        // Direction 0 keeps the row, 1 the column, 2 neither.
        auto place = [](int x, int y, auto dir, Position turned) -> Position {
            if constexpr (dir == 0) {
                return {turned.x, y};
            } else if constexpr (dir == 1) {
                return {x, turned.y};
            } else {
                return turned;
            }
        };
        const int samples = count + 1;
        if (direction > 2) {
            // No turn: the samples run down the diagonal.
            afterImageRows<RowOrder::AnyOrder>(count, type, rect, [](int x, int y) {
                return [x, y](int j) { return Position{x + j, y + j}; };
            });
            return;
        }
        const auto byDirection = [&](auto run) {
            switch (direction) {
            case 0:
                return run(std::integral_constant<int, 0>{});
            case 1:
                return run(std::integral_constant<int, 1>{});
            default:
                return run(std::integral_constant<int, 2>{});
            }
        };
        if (samples < 1 || samples > MaxCachedSamples) {
            byDirection([&](auto dir) {
                afterImageRows<RowOrder::AnyOrder>(count, type, rect, [&](int x, int y) {
                    return [&, x, y](int j) { return place(x, y, dir, turn(x + j, y + j)); };
                });
            });
            return;
        }
        // Rows in bands of many rows, each thread with turned points of its
        // own: a band makes count rows of points beyond its last row.
        const ProcessRect bounds =
            soften::cutToPicture(rect, ImageBits.width(), ImageBits.height());
        const ProcessRect c = soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
        SetProgressRange(c.top, c.bottom);
        BandPlan plan = bandPlan(c);
        plan.bandRows = std::max(plan.bandRows, 16 * samples);
        std::vector<VortexRows> points(
            static_cast<std::size_t>(std::max(plan.workers, 1)),
            VortexRows(turn, c.left, std::max(c.right - c.left + count, 0), samples));
        const Pixel* image = ImageBits.pixels().data();
        const int width = ImageBits.width();
        byDirection([&](auto dir) {
            rowsInBands(c, plan, [&](int worker, int y, int firstColumn, int endColumn) {
                std::array<const Position*, MaxCachedSamples> rows{};
                const std::span<const Position*> reach(rows.data(),
                                                       static_cast<std::size_t>(samples));
                points[static_cast<std::size_t>(worker)].rowsFrom(y, reach);
                Pixel* out = TransBits.row(y).data();
                for (int x0 = firstColumn; x0 < endColumn; x0 += soften::RunPixels) {
                    const int m = std::min(soften::RunPixels, endColumn - x0);
                    soften::RunSums run;
                    sumVortexRun(run, dir, reach, x0 - c.left, x0, y, m, bounds, image, width);
                    run.means(count, type, m);
                    for (int i = 0; i < m; ++i) {
                        const int x = x0 + i;
                        const IntRgb source = channelsOf(image[y * width + x]);
                        const Rgb16 e = finishPixel<ResultTail::Clamp>(
                            source.r, source.g, source.b,
                            soften::resultFields({run.r[i], run.g[i], run.b[i]}));
                        out[x] = withColour(out[x], e.red, e.green, e.blue);
                    }
                }
            });
        });
    });
}

} // namespace lumiran
