// Sway 1 and Sway 2: rows and columns swayed by waves of the coordinates.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <array>
#include <cmath>

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
        warpRows(
            rect, axes,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                const std::size_t n = xs.size();
                const std::span<double> angles = scratch.take(n);
                const std::span<double> lastX = scratch.take(n), lastY = scratch.take(n);
                // x1 from a wave of y1 (of x1 for the kinds "2"), then y1 from a
                // wave of the new x1 (of y1): first from the pixel's own place,
                // then iterations + 1 times from the last result.
                for (std::size_t i = 0; i < n; ++i) {
                    lastX[i] = first + static_cast<double>(i);
                    lastY[i] = y;
                }
                for (int round = 0; round <= iterations + 1; ++round) {
                    for (std::size_t i = 0; i < n; ++i)
                        angles[i] =
                            (sway.ownCoordinate ? lastX[i] : lastY[i]) * GeometryTwoPi / period;
                    waveTimes(sway.horizontal, amplitude, angles, scratch);
                    for (std::size_t i = 0; i < n; ++i)
                        xs[i] = angles[i] + (first + static_cast<double>(i));
                    // The first round's vertical wave still takes the pixel's own
                    // x; later rounds the x1 just made.
                    const std::span<const double> xFrom = round == 0 ? lastX : xs;
                    for (std::size_t i = 0; i < n; ++i)
                        angles[i] =
                            (sway.ownCoordinate ? lastY[i] : xFrom[i]) * GeometryTwoPi / period;
                    waveTimes(sway.vertical, amplitude, angles, scratch);
                    for (std::size_t i = 0; i < n; ++i)
                        ys[i] = angles[i] + y;
                    std::ranges::copy(xs, lastX.begin());
                    std::ranges::copy(ys, lastY.begin());
                }
            });
    });
}

} // namespace lumiran
