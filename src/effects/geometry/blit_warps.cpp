// Sine warps and Nebura: warps that move columns, rows or blocks of kept
// picture 0 onto kept picture 1 with the drawing calls instead of sampling.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"

#include <cmath>

namespace lumiran {
namespace {

// A sine or cosine of exactly 0 is taken as 1 before a division.
double nonZero(double v) {
    return v == 0 ? 1.0 : v;
}

// The shift of the column or row at coordinate i: modes 0/1 plain, 2/3 four
// terms, 4/5 reciprocal, 6/7 absolute (mode / 2 is the form); kinds 0 sin,
// 1 cos, 2 tan, 3 sin and cos.
double waveShift(int form, int kind, double offset, double amplitude, double period, double i) {
    const double full = i * GeometryTwoPi / period;
    const double half = i * GeometryPi / period;
    const auto f = [&](int k, double angle) {
        return k == 0 ? std::sin(angle) : k == 1 ? std::cos(angle) : std::tan(angle);
    };
    const double a = amplitude;
    switch (form) {
    case 0:
        if (kind < 3) return a * f(kind, full) + offset;
        return a / 2 * std::sin(full) + offset + a / 2 * std::cos(half) + offset;
    case 1: {
        const int first = kind == 3 ? 0 : kind;
        const int last = kind == 3 ? 1 : kind;
        return a / 2 * f(first, full) + offset + a * f(first, half) + offset +
               a * f(last, i * 2.28 / period) + a * f(last, 4 * i / period);
    }
    case 2:
        if (kind < 3) return a / nonZero(f(kind, full)) + offset;
        return a / 2 / nonZero(std::sin(full)) + offset + a / 2 / nonZero(std::cos(half)) + offset;
    default:
        if (kind < 3) return a * std::abs(f(kind, full)) + offset;
        return a / 2 * std::abs(std::sin(full)) + offset + a / 2 * std::abs(std::cos(half)) +
               offset;
    }
}

} // namespace

void Class_Geometry::Wave_Sin(std::int16_t offset, std::int16_t amplitude, std::int16_t period,
                              std::uint8_t mode, std::uint8_t kind, std::int16_t left,
                              std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Surface* source = context().kept0;
        Surface* target = context().kept1;
        if (mode > 7 || kind > 3 || source == nullptr || target == nullptr) return;
        const bool alongRows = (mode & 1) != 0;
        const int width = wrap16(right - left), height = wrap16(bottom - top);
        const int first = alongRows ? top : left;
        const int end = alongRows ? bottom : right;
        SetProgressRange(first, end);
        for (int i = first; i < end; ++i) {
            const int shift =
                roundTo<std::int32_t>(waveShift(mode / 2, kind, offset, amplitude, period, i));
            // Columns and rows are copied whole; what they uncover keeps
            // the target's earlier content.
            if (alongRows) {
                StretchBlt(*target, left + shift, i, width, 1, *source, left, i, width, 1, SRCCOPY);
            } else {
                StretchBlt(*target, i, top + shift, 1, height, *source, i, top, 1, height, SRCCOPY);
            }
            if (!finishRow()) return;
        }
    });
}

void Class_Geometry::Nebura(double radius, std::int16_t shift, std::int16_t left, std::int16_t top,
                            std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Surface* source = context().kept0;
        Surface* target = context().kept1;
        if (source == nullptr || target == nullptr) return;
        Cls(*target, RGB(0, 0, 0));
        const double cx = wrap16(right - left) / 2.0 + left;
        const double cy = wrap16(bottom - top) / 2.0 + top;
        const double lastColumn = right - 1, lastRow = bottom - 1;
        const int columns = (wrap16(right - left) + 1) / 2;
        SetProgressRange(0, std::max(columns, 0));
        std::vector<double> t, s, c;
        for (int x = left; x < right; x += 2) {
            const double dx = x - cx;
            t.clear();
            for (int y = top; y < bottom; y += 2) {
                const double dy = y - cy;
                t.push_back(std::sqrt(dx * dx + dy * dy) / (radius / 4) / GeometryPi);
            }
            s.resize(t.size());
            c.resize(t.size());
            trig::sinCos(t, s, c);
            for (std::size_t k = 0; k < t.size(); ++k) {
                const int y = top + 2 * static_cast<int>(k);
                const double dy = y - cy;
                double mx = dx * s[k] + cx - dy * c[k] + shift;
                double my = dx * c[k] + cy + dy * s[k] + shift * 0.5;
                mx = mx > lastColumn ? lastColumn : mx < left ? left : mx;
                my = my > lastRow ? lastRow : my < top ? top : my;
                BitBlt(*target, roundTo<std::int32_t>(mx), roundTo<std::int32_t>(my), 2, 2, *source,
                       x, y, SRCCOPY);
            }
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
