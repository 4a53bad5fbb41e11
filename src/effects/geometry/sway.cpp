// Sway 1 and Sway 2: rows and columns swayed by waves of the coordinates.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/vector_trig_kernel.h"
#include "effects/geometry/warp_rows.h"

#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

enum class Wave : std::uint8_t { Sin, Cos, Tan, AbsSin, SinPlusCos };

// The eleven kinds of the list: the wave of the horizontal offset and of
// the vertical one, and whether each is a wave of the other coordinate
// (rows swayed sideways, columns up and down) or, for the kinds named "2",
// of its own (pixels pushed together and apart along the axis).
struct SwayKind {
    Wave horizontal;
    Wave vertical;
    bool ownCoordinate;
};

constexpr std::array<SwayKind, 11> SwayKinds = {{
    {Wave::Sin, Wave::Sin, false},               // ｻｲﾝ
    {Wave::Cos, Wave::Cos, false},               // ｺｻｲﾝ
    {Wave::Tan, Wave::Tan, false},               // ﾀﾝｼﾞｪﾝﾄ
    {Wave::Sin, Wave::Cos, false},               // ｻｲﾝ&ｺｻｲﾝ
    {Wave::AbsSin, Wave::AbsSin, false},         // ｻｲﾝ（絶対値）
    {Wave::Sin, Wave::Sin, true},                // ｻｲﾝ 2
    {Wave::Cos, Wave::Cos, true},                // ｺｻｲﾝ 2
    {Wave::Tan, Wave::Tan, true},                // ﾀﾝｼﾞｪﾝﾄ 2
    {Wave::Sin, Wave::Cos, true},                // ｻｲﾝ&ｺｻｲﾝ 2
    {Wave::SinPlusCos, Wave::SinPlusCos, false}, // ｻｲﾝ&ｺｻｲﾝ 3
    {Wave::AbsSin, Wave::AbsSin, true},          // ｻｲﾝ(絶対値) 2
}};

// amplitude * wave(angle) for each angle, in place.
void waveTimes(Wave wave, double amplitude, std::span<double> angles, RowScratch& scratch) {
    switch (wave) {
    case Wave::Sin:
        trig::sine(angles, angles);
        break;
    case Wave::Cos:
        trig::cosine(angles, angles);
        break;
    case Wave::Tan:
        trig::tangent(angles, angles);
        break;
    case Wave::AbsSin:
        trig::sine(angles, angles);
        for (double& v : angles)
            v = std::abs(v);
        break;
    case Wave::SinPlusCos: {
        const std::span<double> c = scratch.take(angles.size());
        trig::sinCos(angles, angles, c);
        for (std::size_t i = 0; i < angles.size(); ++i)
            angles[i] = angles[i] + c[i];
        break;
    }
    }
    for (double& v : angles)
        v = amplitude * v;
}

// The offset a coordinate gives in Sway 1: the kind's wave and the
// harmonics, always of sin.
double swayOffset(Wave wave, double amplitude, double period, int harmonics, double coordinate,
                  RowScratch& scratch) {
    double angle = coordinate * GeometryTwoPi / period;
    waveTimes(wave, amplitude, std::span<double>(&angle, 1), scratch);
    double offset = angle;
    if (harmonics >= 1) offset += amplitude * std::sin(coordinate * GeometryTwoPi / (period / 2));
    if (harmonics >= 2) offset += amplitude / 2 * std::sin(coordinate * GeometryTwoPi / period);
    if (harmonics >= 3)
        offset += 2 * amplitude * std::sin(coordinate * GeometryTwoPi / (2 * period));
    return offset;
}

double limited(double position) {
    if (position > 32768) position = 32768;
    if (position < -32768) position = -32768;
    return position;
}

// What a wave's value has added: nothing, the column of each value (the
// first given, one more for each next value), or one constant.
enum class Added : std::uint8_t { None, Column, Constant };

// The rounds of Sway 2: to[i] = amplitude * wave(from[i] 6.2831 / period)
// + the added term, as waveTimes gives the wave, with the trigonometric
// kernel inline: Sway 2 needs eight or more of these a pixel. Angles the
// kernel cannot reduce go to the library, as in vector_trig.
template <Wave W, Added Add>
void waveRound(std::span<const double> from, std::span<double> to, double amplitude, double period,
               double added) {
    namespace k = trig::kernels;
    const std::size_t n = from.size();
    const auto term = [&](std::size_t i) {
        if constexpr (Add == Added::Column) return added + static_cast<double>(i);
        if constexpr (Add == Added::Constant) return added;
        return 0.0;
    };
    const auto end = [&](std::size_t i, double wave) {
        if constexpr (Add == Added::None) {
            to[i] = amplitude * wave;
        } else {
            to[i] = amplitude * wave + term(i);
        }
    };
    int unreducible = 0;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = from[i] * GeometryTwoPi / period;
        unreducible |= static_cast<int>(!k::reducible(angle));
        const k::SinCos v = k::kernel(angle);
        if constexpr (W == Wave::Sin) end(i, v.sin);
        if constexpr (W == Wave::Cos) end(i, v.cos);
        if constexpr (W == Wave::Tan) end(i, v.sin / v.cos);
        if constexpr (W == Wave::AbsSin) end(i, std::abs(v.sin));
        if constexpr (W == Wave::SinPlusCos) end(i, v.sin + v.cos);
    }
    if (unreducible == 0) return;
    for (std::size_t i = 0; i < n; ++i) {
        const double angle = from[i] * GeometryTwoPi / period;
        if (k::reducible(angle)) continue;
        if constexpr (W == Wave::Sin) end(i, std::sin(angle));
        if constexpr (W == Wave::Cos) end(i, std::cos(angle));
        if constexpr (W == Wave::Tan) end(i, std::tan(angle));
        if constexpr (W == Wave::AbsSin) end(i, std::abs(std::sin(angle)));
        if constexpr (W == Wave::SinPlusCos) end(i, std::sin(angle) + std::cos(angle));
    }
}

struct SwayWaves {
    double amplitude = 0;
    double period = 0;

    // from and to must not overlap.
    void round(Wave wave, std::span<const double> from, std::span<double> to, Added add,
               double added) const {
        using Round = void (*)(std::span<const double>, std::span<double>, double, double, double);
        static constexpr std::array<std::array<Round, 3>, 5> rounds = {{
            {waveRound<Wave::Sin, Added::None>, waveRound<Wave::Sin, Added::Column>,
             waveRound<Wave::Sin, Added::Constant>},
            {waveRound<Wave::Cos, Added::None>, waveRound<Wave::Cos, Added::Column>,
             waveRound<Wave::Cos, Added::Constant>},
            {waveRound<Wave::Tan, Added::None>, waveRound<Wave::Tan, Added::Column>,
             waveRound<Wave::Tan, Added::Constant>},
            {waveRound<Wave::AbsSin, Added::None>, waveRound<Wave::AbsSin, Added::Column>,
             waveRound<Wave::AbsSin, Added::Constant>},
            {waveRound<Wave::SinPlusCos, Added::None>, waveRound<Wave::SinPlusCos, Added::Column>,
             waveRound<Wave::SinPlusCos, Added::Constant>},
        }};
        rounds[static_cast<std::size_t>(wave)][static_cast<std::size_t>(add)](from, to, amplitude,
                                                                              period, added);
    }
};

} // namespace

void Class_Geometry::Sway1(std::uint8_t axes, std::uint8_t kind, std::int16_t amplitude,
                           std::int16_t period, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom, std::uint8_t harmonics) {
    guarded([&] {
        if (kind >= SwayKinds.size()) return;
        const SwayKind sway = SwayKinds[kind];
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        // Each offset is a wave of one coordinate: a table over the columns
        // serves every row.
        const auto columns =
            static_cast<std::size_t>(std::max(span.endColumn - span.firstColumn, 0));
        std::vector<double> byColumn(columns);
        const Wave columnWave = sway.ownCoordinate ? sway.horizontal : sway.vertical;
        RowScratch columnScratch;
        for (std::size_t i = 0; i < columns; ++i) {
            columnScratch.release();
            byColumn[i] = swayOffset(columnWave, amplitude, period, harmonics,
                                     span.firstColumn + static_cast<double>(i), columnScratch);
        }
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const Wave rowWave = sway.ownCoordinate ? sway.vertical : sway.horizontal;
                const double byRow = swayOffset(rowWave, amplitude, period, harmonics, y, scratch);
                const double* column = byColumn.data() + (first - span.firstColumn);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    const double x = first + static_cast<double>(i);
                    xs[i] = limited(x + (sway.ownCoordinate ? column[i] : byRow));
                    ys[i] = limited(y + (sway.ownCoordinate ? byRow : column[i]));
                }
            });
    });
}

void Class_Geometry::Sway2(std::uint8_t axes, std::uint8_t kind, std::int16_t amplitude,
                           std::int16_t period, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom, std::uint8_t iterations) {
    guarded([&] {
        if (kind >= SwayKinds.size()) return;
        const SwayKind sway = SwayKinds[kind];
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        const SwayWaves waves{static_cast<double>(amplitude), static_cast<double>(period)};
        // x1 from a wave of y1 (of x1 for the kinds "2"), then y1 from a wave
        // of the new x1 (of y1): first from the pixel's own place, then
        // iterations + 1 times from the last result.
        const int rounds = iterations + 2;
        const auto columns =
            static_cast<std::size_t>(std::max(span.endColumn - span.firstColumn, 0));
        std::vector<double> byColumn(columns), spare(columns);
        for (std::size_t i = 0; i < columns; ++i)
            byColumn[i] = span.firstColumn + static_cast<double>(i);
        if (sway.ownCoordinate) {
            // Each axis follows its own coordinate only: the rounds run once
            // over the columns and once for each row.
            std::vector<double> own = byColumn;
            for (int round = 0; round < rounds; ++round) {
                waves.round(sway.horizontal, own, spare, Added::Column, span.firstColumn);
                std::swap(own, spare);
            }
            warpRows(
                rect, axes,
                [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch&) {
                    double lastY = y, next = 0;
                    for (int round = 0; round < rounds; ++round) {
                        waves.round(sway.vertical, std::span(&lastY, 1), std::span(&next, 1),
                                    Added::Constant, y);
                        lastY = next;
                    }
                    const double* column = own.data() + (first - span.firstColumn);
                    for (std::size_t i = 0; i < xs.size(); ++i) {
                        xs[i] = column[i];
                        ys[i] = lastY;
                    }
                });
            return;
        }
        // The first round's waves are of the pixel's own y and x: one value
        // a row and a table over the columns.
        waves.round(sway.vertical, byColumn, spare, Added::None, 0);
        const std::vector<double>& firstVertical = spare;
        warpRows(rect, axes,
                 [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch&) {
                     double firstHorizontal = 0;
                     const double row = y;
                     waves.round(sway.horizontal, std::span(&row, 1),
                                 std::span(&firstHorizontal, 1), Added::None, 0);
                     const double* column = firstVertical.data() + (first - span.firstColumn);
                     // A piece of the row at a time, so that its rounds stay in
                     // the nearest cache.
                     constexpr std::size_t Piece = 512;
                     for (std::size_t start = 0; start < xs.size(); start += Piece) {
                         const std::size_t n = std::min(Piece, xs.size() - start);
                         const std::span<double> x1 = xs.subspan(start, n),
                                                 y1 = ys.subspan(start, n);
                         const int firstX = first + static_cast<int>(start);
                         for (std::size_t i = 0; i < n; ++i) {
                             x1[i] = firstHorizontal + (firstX + static_cast<double>(i));
                             y1[i] = column[start + i] + y;
                         }
                         for (int round = 1; round < rounds; ++round) {
                             waves.round(sway.horizontal, y1, x1, Added::Column, firstX);
                             waves.round(sway.vertical, x1, y1, Added::Constant, y);
                         }
                     }
                 });
    });
}

} // namespace lumiran
