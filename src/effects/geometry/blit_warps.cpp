// Sine warps: warps that move columns or rows of kept picture 0 onto kept
// picture 1 with the drawing calls instead of sampling.
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>

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

constexpr int ShiftBlock = 64;

// An unscaled StretchBlt (same extents, same signs: an extent counts back
// from its origin when negative) as the BitBlt it amounts to, without the
// stretch's per-pixel mapping. A target origin far outside the picture is
// held where it still lies outside.
void moveStrip(Surface& target, std::int64_t x, std::int64_t y, int width, int height,
               const Surface& source, int xSrc, int ySrc) {
    constexpr std::int64_t Far = std::int64_t{1} << 30;
    if (width < 0) {
        x += width;
        xSrc += width;
        width = -width;
    }
    if (height < 0) {
        y += height;
        ySrc += height;
        height = -height;
    }
    BitBlt(target, static_cast<int>(std::clamp(x, -Far, Far)),
           static_cast<int>(std::clamp(y, -Far, Far)), width, height, source, xSrc, ySrc, SRCCOPY);
}

// The columns firstColumn, firstColumn + 1, .. of source copied onto
// target, each moved down by its shift: what a 1 x height copy of each
// column does, clipped to both pictures as that copy is, drawn row by row.
// Source and target must be different pictures.
void shiftColumns(Surface& target, const Surface& source, int firstColumn,
                  std::span<const std::int32_t> shifts, int top, int height) {
    if (height == 0) return;
    const std::int64_t spanTop = height > 0 ? top : std::int64_t{top} + height;
    const std::int64_t rows = std::abs(std::int64_t{height});
    const int columns = std::min(target.width(), source.width());
    // The target rows each column reaches.
    struct Run {
        int column;
        std::int64_t shift;
        std::int64_t begin;
        std::int64_t end;
    };
    std::array<Run, ShiftBlock> runs{};
    std::size_t count = 0;
    std::int64_t firstRow = target.height(), endRow = 0;
    for (std::size_t k = 0; k < shifts.size(); ++k) {
        const int column = firstColumn + static_cast<int>(k);
        if (column < 0 || column >= columns) continue;
        const std::int64_t shift = shifts[k];
        const std::int64_t at = spanTop + shift;
        const std::int64_t begin = std::max<std::int64_t>({at, 0, shift});
        const std::int64_t end = std::min<std::int64_t>(
            {at + rows, target.height(), std::int64_t{source.height()} + shift});
        if (begin >= end) continue;
        runs[count++] = {column, shift, begin, end};
        firstRow = std::min(firstRow, begin);
        endRow = std::max(endRow, end);
    }
    const std::span<const Run> reached(runs.data(), count);
    const Pixel* from = source.pixels().data();
    const auto sourceWidth = static_cast<std::int64_t>(source.width());
    // Rows that every column reaches are copied without a test; in them,
    // column k of the block reads offsets[k] elements after the row's start.
    constexpr std::int64_t Ahead = 16;
    std::int64_t allBegin = firstRow, allEnd = endRow;
    std::array<int, ShiftBlock> placed{};
    std::array<std::int64_t, ShiftBlock> offsets{};
    for (std::size_t k = 0; k < count; ++k) {
        allBegin = std::max(allBegin, runs[k].begin);
        allEnd = std::min(allEnd, runs[k].end);
        placed[k] = runs[k].column;
        offsets[k] = runs[k].column - runs[k].shift * sourceWidth;
    }
    for (std::int64_t y = firstRow; y < endRow; ++y) {
        Pixel* out = target.row(static_cast<int>(y)).data();
        const std::int64_t start = y * sourceWidth;
        if (y >= allBegin && y + Ahead < allEnd) {
            // The columns' next lines are fetched ahead: each column
            // reads another row, which no prefetcher foresees.
            const std::int64_t ahead = start + Ahead * sourceWidth;
            for (std::size_t k = 0; k < count; k += 4)
                __builtin_prefetch(from + ahead + offsets[k]);
            for (std::size_t k = 0; k < count; ++k)
                out[placed[k]] = from[start + offsets[k]];
            continue;
        }
        for (const Run& run : reached) {
            if (y >= run.begin && y < run.end)
                out[run.column] = from[(y - run.shift) * sourceWidth + run.column];
        }
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
        // A strip lands on row (column) round(v) of the target, whatever the
        // rectangle's top (left): its shift from its own place is that less
        // the edge. Far beyond the picture it stays far beyond.
        const int edge = alongRows ? left : top;
        const auto shiftOf = [&](int i) {
            const std::int64_t to =
                roundTo<std::int32_t>(waveShift(mode / 2, kind, offset, amplitude, period, i));
            constexpr std::int64_t Far = std::int64_t{1} << 30;
            return static_cast<std::int32_t>(std::clamp(to - edge, -Far, Far));
        };
        // Columns and rows are copied whole; what they uncover keeps the
        // target's earlier content.
        if (alongRows || source == target) {
            for (int i = first; i < end; ++i) {
                const std::int64_t shift = shiftOf(i);
                if (alongRows) {
                    moveStrip(*target, left + shift, i, width, 1, *source, left, i);
                } else {
                    moveStrip(*target, i, top + shift, 1, height, *source, i, top);
                }
                if (!finishRow()) return;
            }
            return;
        }
        // Columns go a block at a time, each block row by row: a column
        // alone reaches a new cache line in every row. The columns of a
        // block are apart, so the order of their pixels does not matter.
        std::array<std::int32_t, ShiftBlock> shifts{};
        for (int block = first; block < end; block += ShiftBlock) {
            const int count = std::min(ShiftBlock, end - block);
            int ready = 0;
            const auto drawReady = [&] {
                shiftColumns(*target, *source, block, std::span(shifts).first(ready), top, height);
                for (int k = 0; k < ready; ++k)
                    if (!finishRow()) return false;
                return true;
            };
            try {
                for (; ready < count; ++ready)
                    shifts[ready] = shiftOf(block + ready);
            } catch (const EffectError&) {
                // The columns before the failing one are drawn, as they
                // would be one at a time.
                drawReady();
                throw;
            }
            if (!drawReady()) return;
        }
    });
}

} // namespace lumiran
