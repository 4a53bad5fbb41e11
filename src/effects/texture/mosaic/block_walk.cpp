#include "effects/texture/mosaic/block_walk.h"

#include "engine/effect_error.h"

#include <algorithm>
#include <cstddef>

namespace lumiran::mosaic {
namespace {

// round(sum / count) half to even, exactly, for sums of channels.
std::int16_t roundedMean(std::int64_t sum, std::int64_t count) {
    std::int64_t quotient = sum / count;
    const std::int64_t twice = 2 * (sum % count);
    if (twice > count || (twice == count && (quotient & 1) != 0)) ++quotient;
    return static_cast<std::int16_t>(quotient);
}

struct Sums {
    std::int64_t red = 0;
    std::int64_t green = 0;
    std::int64_t blue = 0;
};

// A row of at most 257 pixels summed two channels to a 32-bit lane each, so
// that the loop vectorises: red and blue share one word, green has its own.
void addPlainRow(const Pixel* row, int count, Sums& sums) {
    std::uint32_t redBlue = 0;
    std::uint32_t green = 0;
    for (int j = 0; j < count; ++j) {
        redBlue += row[j] & 0x00FF00FFu;
        green += (row[j] >> 8) & 0xFFu;
    }
    sums.red += redBlue >> 16;
    sums.blue += redBlue & 0xFFFFu;
    sums.green += green;
}

} // namespace

void foldAxis(int origin, int first, int end, std::span<int> cells) {
    for (std::size_t k = 0; k < cells.size(); ++k) {
        const int index = origin + static_cast<int>(k);
        cells[k] = index < first ? SkippedCell : index > end - 1 ? end - 1 : index;
    }
}

int blockRowCount(const Extent& extent, const BlockGrid& grid) {
    if (grid.width < 1 || grid.height < 1 || grid.stepX < 1 || grid.stepY < 1) {
        throw EffectError::overflow();
    }
    if (extent.empty()) return 0;
    // Columns shifted up need rows of blocks further down to reach the bottom.
    const int rise = std::max(grid.columnShift[0], grid.columnShift[1]);
    return (extent.endRow - 1 + rise - extent.firstRow - grid.firstRow) / grid.stepY + 1;
}

bool isPlainRun(std::span<const int> cells) {
    return !cells.empty() && cells.front() >= 0 &&
           cells.back() - cells.front() == static_cast<int>(cells.size()) - 1;
}

Rgb16 blockMean(const Surface& source, std::span<const int> rows, std::span<const int> columns) {
    Sums sums;
    std::int64_t count = 0;
    const bool plain = isPlainRun(columns) && columns.size() <= 257;
    for (const int y : rows) {
        if (y == SkippedCell) continue;
        const Pixel* row = source.row(y).data();
        if (plain) {
            addPlainRow(row + columns.front(), static_cast<int>(columns.size()), sums);
            count += static_cast<std::int64_t>(columns.size());
            continue;
        }
        for (const int x : columns) {
            if (x == SkippedCell) continue;
            sums.red += redOf(row[x]);
            sums.green += greenOf(row[x]);
            sums.blue += blueOf(row[x]);
            ++count;
        }
    }
    if (count == 0) throw EffectError::overflow();
    return {roundedMean(sums.red, count), roundedMean(sums.green, count),
            roundedMean(sums.blue, count)};
}

Pixel firstPixel(const Surface& source, std::span<const int> rows, std::span<const int> columns) {
    for (const int y : rows) {
        if (y == SkippedCell) continue;
        for (const int x : columns) {
            if (x != SkippedCell) return source.at(x, y);
        }
    }
    return 0;
}

} // namespace lumiran::mosaic
