#include "effects/geometry/transform/column_copies.h"

#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace lumiran {
namespace {

// How many rows ahead the lines of the source and target are fetched: each
// column of a block reads another source row, which no prefetcher foresees.
constexpr std::int64_t Ahead = 8;

// The target rows a copy reaches and the source row of each, walked as
// the quotient and remainder of the stretch's numerator: target row top + i
// reads source row sourceTop + floor((2 i + 1) sourceHeight / (2 height)).
struct Run {
    int column = 0;
    std::int64_t begin = 0;
    std::int64_t end = 0;
    std::int64_t row = 0;
    std::int64_t rest = 0;
    std::int64_t stepRows = 0;
    std::int64_t stepRest = 0;
    std::int64_t divisor = 0;
    // About how many source rows Ahead target rows move on.
    std::int64_t aheadRows = 0;

    void advance() {
        row += stepRows;
        rest += stepRest;
        if (rest >= divisor) {
            rest -= divisor;
            ++row;
        }
    }
};

bool straightforward(const ColumnCopy& copy) {
    return copy.height >= 0 && copy.sourceHeight >= 0;
}

// The rows of the copy inside both pictures: the source row grows with the
// target row, so they are one stretch, found by halving.
bool runOf(const ColumnCopy& copy, const Surface& target, const Surface& source, Run& run) {
    if (copy.height == 0 || copy.sourceHeight == 0) return false;
    if (copy.column < 0 || copy.column >= target.width() || copy.column >= source.width())
        return false;
    const std::int64_t top = copy.top, height = copy.height, sourceHeight = copy.sourceHeight;
    const auto sourceRow = [&](std::int64_t t) {
        return copy.sourceTop + stretchSourceOffset(t - top, height, sourceHeight);
    };
    // The first row of [low, high) whose source row reaches limit.
    const auto firstReaching = [&](std::int64_t low, std::int64_t high, std::int64_t limit) {
        while (low < high) {
            const std::int64_t middle = low + (high - low) / 2;
            if (sourceRow(middle) >= limit) {
                high = middle;
            } else {
                low = middle + 1;
            }
        }
        return low;
    };
    std::int64_t begin = std::max<std::int64_t>(top, 0);
    std::int64_t end = std::min<std::int64_t>(top + height, target.height());
    begin = firstReaching(begin, end, 0);
    end = firstReaching(begin, end, source.height());
    if (begin >= end) return false;
    const std::int64_t divisor = 2 * height;
    const std::int64_t numerator = (2 * (begin - top) + 1) * sourceHeight;
    run = {copy.column,
           begin,
           end,
           copy.sourceTop + numerator / divisor,
           numerator % divisor,
           2 * sourceHeight / divisor,
           2 * sourceHeight % divisor,
           divisor,
           Ahead * 2 * sourceHeight / divisor};
    return true;
}

} // namespace

void drawColumnCopies(Surface& target, const Surface& source, std::span<const ColumnCopy> copies) {
    if (&target == &source || !std::ranges::all_of(copies, straightforward)) {
        for (const ColumnCopy& c : copies)
            StretchBlt(target, c.column, c.top, 1, c.height, source, c.column, c.sourceTop, 1,
                       c.sourceHeight, SRCCOPY);
        return;
    }
    std::vector<Run> runs;
    runs.reserve(copies.size());
    std::int64_t firstRow = target.height(), endRow = 0;
    for (const ColumnCopy& copy : copies) {
        Run run;
        if (!runOf(copy, target, source, run)) continue;
        runs.push_back(run);
        firstRow = std::min(firstRow, run.begin);
        endRow = std::max(endRow, run.end);
    }
    if (runs.empty()) return;
    const Pixel* from = source.pixels().data();
    const auto sourceWidth = static_cast<std::int64_t>(source.width());
    const std::int64_t lastSourceRow = source.height() - 1;
    const auto [low, high] = std::ranges::minmax(runs, {}, &Run::column);
    for (std::int64_t y = firstRow; y < endRow; ++y) {
        Pixel* out = target.row(static_cast<int>(y)).data();
        if (y + Ahead < endRow) {
            const Pixel* ahead = target.row(static_cast<int>(y + Ahead)).data();
            for (int column = low.column; column <= high.column; column += 16)
                __builtin_prefetch(ahead + column, 1);
        }
        for (Run& run : runs) {
            if (y < run.begin || y >= run.end) continue;
            const std::int64_t next = std::min(run.row + run.aheadRows, lastSourceRow);
            __builtin_prefetch(from + next * sourceWidth + run.column);
            out[run.column] = from[run.row * sourceWidth + run.column];
            run.advance();
        }
    }
}

} // namespace lumiran
