// The plain mosaic in one colour a block, at memory speed: a row of blocks
// is summed row by row across the whole width, then painted row by row.
#include "effects/texture/mosaic/mosaic_walk.h"

#include <algorithm>

namespace lumiran {
namespace {

struct Sums {
    std::int32_t red = 0;
    std::int32_t green = 0;
    std::int32_t blue = 0;
};

// The three channels of a run of at most 257 pixels, red and blue sharing a
// 32-bit lane each so that the loop vectorises.
void addRun(const Pixel* run, int count, Sums& sums) {
    std::uint32_t redBlue = 0;
    std::uint32_t green = 0;
    for (int j = 0; j < count; ++j) {
        redBlue += run[j] & 0x00FF00FFu;
        green += (run[j] >> 8) & 0xFFu;
    }
    sums.red += static_cast<std::int32_t>(redBlue >> 16);
    sums.blue += static_cast<std::int32_t>(redBlue & 0xFFFFu);
    sums.green += static_cast<std::int32_t>(green);
}

// round(sum / count) half to even.
std::int16_t roundedMean(std::int32_t sum, std::int32_t count) {
    std::int32_t quotient = sum / count;
    const std::int32_t twice = 2 * (sum % count);
    if (twice > count || (twice == count && (quotient & 1) != 0)) ++quotient;
    return static_cast<std::int16_t>(quotient);
}

} // namespace

void Class_Mosaic::uniformMosaic(const ProcessRect& rect, int width, int height) {
    const mosaic::Extent extent = extentOf(rect);
    const int blockRows = mosaic::blockRowCount(extent, mosaic::BlockGrid::plain(width, height));
    SetProgressRange(0, blockRows);
    if (blockRows == 0) return;
    const int across = extent.endColumn - extent.firstColumn;
    const int blocks = (across - 1) / width + 1;
    // The last block folds its overhang onto the last column; the others
    // are whole runs. Wide blocks are summed a run of 257 at a time.
    const int wholeBlocks = across / width;
    const int cells = width * height;
    const ProcessRect blockRowsRect{static_cast<std::int16_t>(extent.firstColumn), 0,
                                    static_cast<std::int16_t>(extent.endColumn),
                                    static_cast<std::int16_t>(blockRows)};
    forEachRow(blockRowsRect, [&](int k, int, int) {
        std::vector<int> rows(static_cast<std::size_t>(height));
        mosaic::foldAxis(extent.firstRow + k * height, extent.firstRow, extent.endRow, rows);
        std::vector<Sums> sums(static_cast<std::size_t>(blocks));
        for (const int y : rows) {
            const Pixel* row = ImageBits.row(y).data() + extent.firstColumn;
            for (int m = 0; m < wholeBlocks; ++m) {
                for (int j = 0; j < width; j += 257)
                    addRun(row + m * width + j, std::min(257, width - j), sums[m]);
            }
            if (wholeBlocks < blocks) {
                Sums& last = sums[wholeBlocks];
                for (int j = 0; j < width; ++j) {
                    const Pixel p = row[std::min(wholeBlocks * width + j, across - 1)];
                    last.red += redOf(p);
                    last.green += greenOf(p);
                    last.blue += blueOf(p);
                }
            }
        }
        std::vector<Pixel> colours(static_cast<std::size_t>(blocks));
        const Pixel* firstRow = ImageBits.row(rows.front()).data() + extent.firstColumn;
        for (int m = 0; m < blocks; ++m) {
            const Pixel first = firstRow[m * width];
            const Rgb16 v = finishPixel<ResultTail::Clamp>(
                redOf(first), greenOf(first), blueOf(first),
                {roundedMean(sums[m].red, cells), roundedMean(sums[m].green, cells),
                 roundedMean(sums[m].blue, cells)});
            colours[m] = makePixel(v.red, v.green, v.blue);
        }
        // Folded rows and the folded column take their block's one colour
        // however often they are painted, so each pixel is painted once.
        const int endRow = std::min(extent.firstRow + (k + 1) * height, extent.endRow);
        for (int y = rows.front(); y < endRow; ++y) {
            Pixel* __restrict row = ImageBits.row(y).data() + extent.firstColumn;
            for (int m = 0; m < blocks; ++m) {
                const Pixel bits = colours[m];
                const int end = std::min((m + 1) * width, across);
                for (int x = m * width; x < end; ++x)
                    row[x] = (row[x] & 0xFF000000u) | bits;
            }
        }
    });
}

} // namespace lumiran
