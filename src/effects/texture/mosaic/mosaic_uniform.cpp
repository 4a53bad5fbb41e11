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

} // namespace

void Class_Mosaic::uniformMosaic(const ProcessRect& rect, int w, int height) {
    const mosaic::Extent extent = extentOf(rect);
    const int blockRows = mosaic::blockRowCount(extent, mosaic::BlockGrid::plain(w, height));
    SetProgressRange(0, blockRows);
    if (blockRows == 0) return;
    const int blocks = (extent.endColumn - extent.firstColumn - 1) / w + 1;
    const int cells = w * height;
    const ProcessRect blockRowsRect{static_cast<std::int16_t>(extent.firstColumn), 0,
                                    static_cast<std::int16_t>(extent.endColumn),
                                    static_cast<std::int16_t>(blockRows)};
    forEachRow(blockRowsRect, [&](int k, int, int) {
        // Local copies: the stores below could otherwise alias the captured
        // counts, which keeps the compiler from vectorising.
        const int across = extent.endColumn - extent.firstColumn;
        const int width = w;
        std::vector<int> rows(static_cast<std::size_t>(height));
        mosaic::foldAxis(extent.firstRow + k * height, extent.firstRow, extent.endRow, rows);
        // Column sums first, red and blue sharing a 32-bit lane (at most 255
        // rows of 255 fit 16 bits), so the pass over the rows vectorises;
        // then the blocks add up their columns, the last block folding its
        // overhang onto the last column.
        std::vector<std::uint32_t> redBlue(static_cast<std::size_t>(across));
        std::vector<std::uint32_t> green(static_cast<std::size_t>(across));
        for (const int y : rows) {
            const Pixel* __restrict row = ImageBits.row(y).data() + extent.firstColumn;
            std::uint32_t* __restrict rb = redBlue.data();
            std::uint32_t* __restrict gg = green.data();
            for (int x = 0; x < across; ++x) {
                rb[x] += row[x] & 0x00FF00FFu;
                gg[x] += (row[x] >> 8) & 0xFFu;
            }
        }
        std::vector<Sums> sums(static_cast<std::size_t>(blocks));
        for (int m = 0; m < blocks; ++m) {
            Sums& s = sums[m];
            for (int j = 0; j < width; ++j) {
                const int x = std::min(m * width + j, across - 1);
                s.red += static_cast<std::int32_t>(redBlue[x] >> 16);
                s.blue += static_cast<std::int32_t>(redBlue[x] & 0xFFFFu);
                s.green += static_cast<std::int32_t>(green[x]);
            }
        }
        // The means: an exact half-to-even rounding of the double quotient
        // (a tie is exact in double and no other quotient can round across
        // one), in a loop that vectorises where integer division would not.
        std::vector<std::int16_t> means(static_cast<std::size_t>(blocks) * 3);
        const double count = cells;
        for (int m = 0; m < blocks; ++m) {
            means[3 * m] = roundInRange<std::int16_t>(sums[m].red / count);
            means[3 * m + 1] = roundInRange<std::int16_t>(sums[m].green / count);
            means[3 * m + 2] = roundInRange<std::int16_t>(sums[m].blue / count);
        }
        // One row of the blocks' colours, then every row of the blocks laid
        // over it in one pass; folded rows and the folded column take their
        // block's one colour however often they fold, so each is painted once.
        std::vector<Pixel> pattern(static_cast<std::size_t>(across));
        const Pixel* firstRow = ImageBits.row(rows.front()).data() + extent.firstColumn;
        for (int m = 0; m < blocks; ++m) {
            const Pixel first = firstRow[m * width];
            const Rgb16 v =
                finishPixel<ResultTail::Clamp>(redOf(first), greenOf(first), blueOf(first),
                                               {means[3 * m], means[3 * m + 1], means[3 * m + 2]});
            const Pixel bits = makePixel(v.red, v.green, v.blue);
            std::fill(pattern.begin() + m * width,
                      pattern.begin() + std::min((m + 1) * width, across), bits);
        }
        const int endRow = std::min(extent.firstRow + (k + 1) * height, extent.endRow);
        for (int y = rows.front(); y < endRow; ++y) {
            Pixel* __restrict row = ImageBits.row(y).data() + extent.firstColumn;
            const Pixel* __restrict colours = pattern.data();
            for (int x = 0; x < across; ++x)
                row[x] = (row[x] & 0xFF000000u) | colours[x];
        }
    });
}

} // namespace lumiran
