// Blocks shaded as spheres of their mean colour, the glowing blocks, and
// the relief of the picture's own grey.
#include "effects/texture/hide_effect/class_hide_effect.h"
#include "effects/texture/hide_effect/sphere_light.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <vector>

namespace lumiran {
namespace {

using hide::Lighting;

Lighting lightingOf(std::int16_t x, std::int16_t y, std::int16_t z, std::int16_t reflection,
                    std::int16_t ambient) {
    return {hide::lightVector(x, y, z),
            {double(reflection), double(reflection), double(reflection)},
            double(ambient)};
}

mosaic::Extent extentOf(const ProcessRect& rect, const Surface& picture) {
    return {std::max<int>(rect.left, 0), std::min<int>(rect.right, picture.width()),
            std::max<int>(rect.top, 0), std::min<int>(rect.bottom, picture.height())};
}

} // namespace

namespace hide {

// The sphere of radius size / 2 around a block's middle at each of its
// cells, row by row; for the plain path also as arrays, the specular term
// already weighted per channel (w s is the same product either way).
struct BlockTerms {
    int width = 0;
    bool plain = false; // no blend, and the shading cannot overflow
    std::vector<Shade> cells;
    std::vector<double> diffuse;
    std::vector<double> specular[3];
    std::vector<std::uint8_t> inside;
};

} // namespace hide

namespace {

hide::BlockTerms blockTerms(int width, int height, const Lighting& lighting, bool plain) {
    hide::BlockTerms terms;
    terms.width = width;
    terms.plain = plain;
    const auto count = static_cast<std::size_t>(width) * height;
    terms.cells.resize(count);
    terms.diffuse.resize(count);
    for (auto& s : terms.specular)
        s.resize(count);
    terms.inside.resize(count);
    const double radius = std::min(width, height) / 2.0;
    for (int i = 0; i < height; ++i) {
        for (int j = 0; j < width; ++j) {
            const auto k = static_cast<std::size_t>(i) * width + j;
            const hide::Shade shade = hide::sphereShade(lighting.light, j - (width - 1) / 2.0,
                                                        i - (height - 1) / 2.0, radius);
            terms.cells[k] = shade;
            terms.diffuse[k] = shade.diffuse;
            for (int c = 0; c < 3; ++c)
                terms.specular[c][k] = lighting.reflection[c] * shade.specular;
            terms.inside[k] = shade.inside ? 1 : 0;
        }
    }
    return terms;
}

// One row of a block whose columns are a plain run, with no blend and no
// overflow possible: roundTo and the shared tail's clamp are a rounding and
// a clamp. c d + w s + ambient as the scalar rule adds it; the colour is
// the block's mean or, with ownColour, each pixel's own. Without a branch
// and with restrict arrays, the loop vectorises.
void shadePlainRow(const Pixel* __restrict in, Pixel* __restrict out, int count,
                   const double* __restrict diffuse, const double* __restrict red,
                   const double* __restrict green, const double* __restrict blue,
                   const std::uint8_t* __restrict inside, double ambient, bool ownColour,
                   Rgb16 mean) {
    for (int j = 0; j < count; ++j) {
        const Pixel p = in[j];
        const double d = diffuse[j];
        const int r = ownColour ? redOf(p) : mean.red;
        const int g = ownColour ? greenOf(p) : mean.green;
        const int b = ownColour ? blueOf(p) : mean.blue;
        auto lit = [&](int c, double ws) {
            return std::clamp(roundInRange<std::int32_t>(c * d + ws + ambient), 0, 255);
        };
        const Pixel shaded = withColour(out[j], lit(r, red[j]), lit(g, green[j]), lit(b, blue[j]));
        out[j] = inside[j] != 0 ? shaded : out[j];
    }
}

} // namespace

// Cells inside the sphere take the lit colour of the block's mean (type 0)
// or of their own pixel (any other type); cells outside it are left to the
// picture. A folded cell keeps its unfolded place in the sphere, so the
// edge row or column it lands on is painted as often as it folds, the last
// cell inside the sphere winning.
void Class_HideEffect::shadeBlock(std::span<const int> rows, std::span<const int> columns,
                                  std::int16_t type, const Lighting& lighting,
                                  const hide::BlockTerms& terms, Rgb16 mean, int rowBegin,
                                  int rowEnd) {
    const int height = static_cast<int>(rows.size());
    const int width = static_cast<int>(columns.size());
    const bool runOfColumns = terms.plain && mosaic::isPlainRun(columns);
    for (int i = 0; i < height; ++i) {
        const int y = rows[static_cast<std::size_t>(i)];
        if (y == mosaic::SkippedCell || y < rowBegin || y >= rowEnd) continue;
        const Pixel* in = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        const auto first = static_cast<std::size_t>(i) * width;
        if (runOfColumns) {
            const int x0 = columns.front();
            shadePlainRow(in + x0, out + x0, width, terms.diffuse.data() + first,
                          terms.specular[0].data() + first, terms.specular[1].data() + first,
                          terms.specular[2].data() + first, terms.inside.data() + first,
                          lighting.ambient, type != 0, mean);
            continue;
        }
        for (int j = 0; j < width; ++j) {
            const int x = columns[static_cast<std::size_t>(j)];
            if (x == mosaic::SkippedCell) continue;
            const hide::Shade& shade = terms.cells[first + static_cast<std::size_t>(j)];
            if (!shade.inside) continue;
            const Pixel p = in[x];
            const int r = redOf(p), g = greenOf(p), b = blueOf(p);
            const Rgb16 lit =
                type == 0 ? hide::shadeColour(lighting, shade, mean.red, mean.green, mean.blue)
                          : hide::shadeColour(lighting, shade, r, g, b);
            const Rgb16 v = finishPixel<ResultTail::Clamp>(r, g, b, lit);
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        }
    }
}

void Class_HideEffect::shadedWalk(const ProcessRect& rect, const mosaic::BlockGrid& grid,
                                  std::int16_t type, const Lighting& lighting) {
    const mosaic::Extent extent = extentOf(rect, ImageBits);
    const int blockRows = mosaic::blockRowCount(extent, grid);
    SetProgressRange(0, blockRows);
    if (blockRows == 0) return;
    // Every block has the same cells, so their shading is worked out once.
    const hide::BlockTerms terms =
        blockTerms(grid.width, grid.height, lighting,
                   !(calculationFlag() > 0) && hide::shadeFitsSixteenBits(lighting));
    auto rowOfBlocks = [&](int k) {
        std::vector<int> rows(static_cast<std::size_t>(grid.height));
        std::vector<int> columns(static_cast<std::size_t>(grid.width));
        mosaic::forEachBlockInRow(extent, grid, k, rows, columns, [&](int) {
            shadeBlock(rows, columns, type, lighting, terms,
                       mosaic::blockMean(ImageBits, rows, columns), extent.firstRow, extent.endRow);
        });
    };
    if (grid.rowsAreDisjoint()) {
        // One loop row a row of blocks: each writes only the picture rows of
        // its own blocks, folded rows included. Bands are counted in rows of
        // blocks, so both cores get work on a small picture too.
        const ProcessRect blockRowsRect{static_cast<std::int16_t>(extent.firstColumn), 0,
                                        static_cast<std::int16_t>(extent.endColumn),
                                        static_cast<std::int16_t>(blockRows)};
        BandPlan plan = bandPlan(blockRowsRect);
        plan.bandRows = std::max(1, plan.bandRows / std::max(grid.height, 1));
        rowsInBands(blockRowsRect, plan, [&](int, int k, int, int) { rowOfBlocks(k); });
        return;
    }
    for (int k = 0; k < blockRows; ++k) {
        rowOfBlocks(k);
        if (!finishRow()) return;
    }
}

void Class_HideEffect::Mosaic_Shading(std::uint8_t size, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom, std::int16_t type,
                                      std::int16_t lightX, std::int16_t lightY, std::int16_t lightZ,
                                      std::int16_t reflection, std::int16_t ambient) {
    guarded([&] {
        shadedWalk({left, top, right, bottom}, mosaic::BlockGrid::plain(size, size), type,
                   lightingOf(lightX, lightY, lightZ, reflection, ambient));
    });
}

void Class_HideEffect::Mosaic_ShadingGap(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                         std::int16_t top, std::int16_t right, std::int16_t bottom,
                                         std::uint8_t /*reserved1*/, std::uint8_t /*reserved2*/,
                                         std::int16_t lightX, std::int16_t lightY,
                                         std::int16_t lightZ, std::uint8_t /*reserved3*/,
                                         std::int16_t reflection, std::int16_t ambient) {
    guarded([&] {
        mosaic::BlockGrid grid = mosaic::BlockGrid::plain(width, height);
        grid.rowShift[1] = width / 2;
        shadedWalk({left, top, right, bottom}, grid, 0,
                   lightingOf(lightX, lightY, lightZ, reflection, ambient));
    });
}

void Class_HideEffect::Mosaic_ShadingRandom(std::uint8_t size, std::int16_t left, std::int16_t top,
                                            std::int16_t right, std::int16_t bottom,
                                            std::int16_t type, std::int16_t lightX,
                                            std::int16_t lightY, std::int16_t lightZ,
                                            std::int16_t reflection, std::int16_t ambient) {
    // A caller may leave TransBits unfetched: it is then the source, copied
    // here, by bands alongside the painting where the blocks are painted
    // by bands, and whole otherwise, also when the call fails.
    const bool copySource = TransBits.empty();
    guarded([&] {
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflection, ambient);
        const mosaic::Extent extent = extentOf({left, top, right, bottom}, ImageBits);
        const int blockRows = mosaic::blockRowCount(extent, mosaic::BlockGrid::plain(size, size));
        SetProgressRange(0, blockRows);
        if (blockRows == 0) return;
        const int blockColumns = (extent.endColumn - 1 - extent.firstColumn) / size + 1;
        const hide::BlockTerms terms = blockTerms(
            size, size, lighting, !(calculationFlag() > 0) && hide::shadeFitsSixteenBits(lighting));
        if (terms.plain) {
            scatteredShading(extent, blockRows, blockColumns, size, type, lighting, terms,
                             copySource);
            return;
        }
        if (copySource) TransBits = ImageBits;
        std::vector<int> rows(size);
        std::vector<int> columns(size);
        for (int k = 0; k < blockRows; ++k) {
            mosaic::forEachRandomBlockInRow(
                extent, blockColumns, context().random, rows, columns, [&](int, int) {
                    shadeBlock(rows, columns, type, lighting, terms,
                               mosaic::blockMean(ImageBits, rows, columns), extent.firstRow,
                               extent.endRow);
                });
            if (!finishRow()) return;
        }
    });
    if (TransBits.empty()) TransBits = ImageBits;
}

// The sequential walk draws a row of blocks, paints it and counts it. Here
// every row is drawn and counted first, a cancel cutting the rows short
// after the one it follows, and the painting comes after: no one sees the
// picture in between, and with no blend and no overflow possible (and every
// origin inside the extent, so no block is empty) the painting cannot fail.
// So the blocks painted, the draws taken and the steps shown are those of
// the sequential walk; only a cancel that comes during the painting is too
// late, as one after the last row would be.
//
// The blocks lie at random over the whole picture, so painting them in
// drawing order misses the cache at nearly every block. Instead each band
// of picture rows takes the blocks that reach it, in drawing order, and
// paints only its own rows of them, so the last block drawn still wins
// where blocks overlap; bands run on every core. A block's mean is worked
// out in each band it reaches, cheaper than a pass of its own over the
// scattered blocks. Painting in several rounds (to keep progress moving)
// would walk every band once a round and cost more than the effect.
void Class_HideEffect::scatteredShading(const mosaic::Extent& extent, int blockRows,
                                        int blockColumns, int size, std::int16_t type,
                                        const Lighting& lighting, const hide::BlockTerms& terms,
                                        bool copySource) {
    struct Origin {
        int x;
        int y;
    };
    const auto cells = static_cast<std::size_t>(size);
    std::vector<Origin> origins;
    origins.reserve(static_cast<std::size_t>(blockRows) * static_cast<std::size_t>(blockColumns));
    {
        std::vector<int> rows(cells);
        std::vector<int> columns(cells);
        for (int k = 0; k < blockRows; ++k) {
            mosaic::forEachRandomBlockInRow(extent, blockColumns, context().random, rows, columns,
                                            [&](int x0, int y0) {
                                                origins.push_back({x0, y0});
                                            });
            if (!finishRow()) break;
        }
    }

    // Both arrays of a band stay in a core's cache at 4096 columns. Bands
    // are counted from the picture's top, since one that copies the source
    // copies every row of the picture.
    constexpr int BandRows = 32;
    const int bands = (ImageBits.height() + BandRows - 1) / BandRows;
    std::vector<std::vector<std::uint32_t>> byBand(static_cast<std::size_t>(bands));
    const int last = extent.endRow - 1; // rows past the extent fold onto it
    for (std::size_t i = 0; i < origins.size(); ++i) {
        const int top = std::min(origins[i].y, last);
        const int bottom = std::min(origins[i].y + size - 1, last);
        for (int b = top / BandRows; b <= bottom / BandRows; ++b)
            byBand[static_cast<std::size_t>(b)].push_back(static_cast<std::uint32_t>(i));
    }

    const ProcessRect whole{
        static_cast<std::int16_t>(extent.firstColumn), static_cast<std::int16_t>(extent.firstRow),
        static_cast<std::int16_t>(extent.endColumn), static_cast<std::int16_t>(extent.endRow)};
    const int workers = std::max(1, std::min(bandPlan(whole).workers, bands));
    // Each worker's folded cells, made here: a worker may not throw.
    std::vector<std::vector<int>> scratchRows(static_cast<std::size_t>(workers),
                                              std::vector<int>(cells));
    std::vector<std::vector<int>> scratchColumns = scratchRows;
    // The last thing made, so that nothing fails while it is not yet the
    // source.
    if (copySource) TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
    std::atomic<int> nextBand{0};
    auto paint = [&](int worker) {
        std::vector<int>& rows = scratchRows[static_cast<std::size_t>(worker)];
        std::vector<int>& columns = scratchColumns[static_cast<std::size_t>(worker)];
        for (int b = nextBand++; b < bands; b = nextBand++) {
            const int rowBegin = b * BandRows;
            const int rowEnd = std::min(rowBegin + BandRows, ImageBits.height());
            if (copySource) {
                for (int y = rowBegin; y < rowEnd; ++y)
                    std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
            }
            for (const std::uint32_t i : byBand[static_cast<std::size_t>(b)]) {
                mosaic::foldAxis(origins[i].y, extent.firstRow, extent.endRow, rows);
                mosaic::foldAxis(origins[i].x, extent.firstColumn, extent.endColumn, columns);
                shadeBlock(rows, columns, type, lighting, terms,
                           mosaic::blockMean(ImageBits, rows, columns), rowBegin, rowEnd);
            }
        }
    };
    if (workers > 1) {
        context().workers().run(workers, paint);
    } else {
        paint(0);
    }
}

void Class_HideEffect::Mosaic_Glowing(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom,
                                      std::uint8_t /*reserved1*/, std::uint8_t /*reserved2*/) {
    guarded([&] {
        const mosaic::BlockGrid grid = mosaic::BlockGrid::plain(width, height);
        const mosaic::Extent extent = extentOf({left, top, right, bottom}, ImageBits);
        const int blockRows = mosaic::blockRowCount(extent, grid);
        SetProgressRange(0, blockRows);
        if (blockRows == 0) return;
        const double middleX = (width - 1) / 2.0;
        const double middleY = (height - 1) / 2.0;
        const double farthest = std::sqrt(middleX * middleX + middleY * middleY);
        // Every block has the same cells, so the fall of each is worked out
        // once.
        std::vector<double> falls(static_cast<std::size_t>(width) * height);
        for (int i = 1; i <= height - 2; ++i) {
            for (int j = 1; j <= width - 2; ++j) {
                const double d = std::hypot(j - middleX, i - middleY);
                falls[static_cast<std::size_t>(i) * width + static_cast<std::size_t>(j)] =
                    d == 0 ? 0 : 300 / farthest * d;
            }
        }
        // The glow stays within -300 .. 255 and the sums within 16 bits.
        const bool blend = calculationFlag() > 0;
        auto rowOfBlocks = [&](int k) {
            std::vector<int> rows(height);
            std::vector<int> columns(width);
            mosaic::forEachBlockInRow(extent, grid, k, rows, columns, [&](int) {
                const Rgb16 mean = mosaic::blockMean(ImageBits, rows, columns);
                // The block's edge cells stay, the inner ones glow; folded
                // cells glow by their unfolded place, the last one winning.
                for (int i = 1; i <= height - 2; ++i) {
                    const int y = rows[static_cast<std::size_t>(i)];
                    const Pixel* in = ImageBits.row(y).data();
                    Pixel* out = TransBits.row(y).data();
                    const double* fall = falls.data() + static_cast<std::size_t>(i) * width;
                    for (int j = 1; j <= width - 2; ++j) {
                        const int x = columns[static_cast<std::size_t>(j)];
                        const Rgb16 glow{roundInRange<std::int16_t>(mean.red - fall[j]),
                                         roundInRange<std::int16_t>(mean.green - fall[j]),
                                         roundInRange<std::int16_t>(mean.blue - fall[j])};
                        const Pixel p = in[x];
                        const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                        const Rgb16 once = blend ? endPixel<ResultTail::Clamp, true>(r, g, b, glow)
                                                 : clampResult(glow);
                        const Rgb16 twice{static_cast<std::int16_t>(once.red + r),
                                          static_cast<std::int16_t>(once.green + g),
                                          static_cast<std::int16_t>(once.blue + b)};
                        const Rgb16 v = blend ? endPixel<ResultTail::Clamp, true>(r, g, b, twice)
                                              : clampResult(twice);
                        out[x] = withColour(out[x], v.red, v.green, v.blue);
                    }
                }
            });
        };
        // Each row of blocks writes only its own picture rows, folded rows
        // included, so rows of blocks run on every core.
        const ProcessRect blockRowsRect{static_cast<std::int16_t>(extent.firstColumn), 0,
                                        static_cast<std::int16_t>(extent.endColumn),
                                        static_cast<std::int16_t>(blockRows)};
        BandPlan plan = bandPlan(blockRowsRect);
        plan.bandRows = std::max(1, plan.bandRows / std::max<int>(height, 1));
        rowsInBands(blockRowsRect, plan, [&](int, int k, int, int) { rowOfBlocks(k); });
    });
}

void Class_HideEffect::ShadingTexture(std::uint8_t size, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                                      std::int16_t lightY, std::int16_t lightZ,
                                      std::int16_t reflection, std::int16_t ambient) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(top, bottom);
        const Lighting lighting = lightingOf(lightX, lightY, lightZ, reflection, ambient);
        const Span span = spanOf(rect);
        // Grey as height: size is the relief's depth from black to white.
        const double depth = size / 255.0;
        auto grey = [&](int x, int y) {
            x = std::clamp(x, span.firstColumn, span.endColumn - 1);
            y = std::clamp(y, span.firstRow, span.endRow - 1);
            const Pixel p = ImageBits.at(x, y);
            return roundInRange<int>(0.59 * greenOf(p) + 0.3 * redOf(p) + 0.11 * blueOf(p));
        };
        forEachRow(rect, [&](int y, int first, int end) {
            const Pixel* in = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            for (int x = first; x < end; ++x) {
                const double gx = (grey(x + 1, y) - grey(x - 1, y)) / 2.0 * depth;
                const double gy = (grey(x, y + 1) - grey(x, y - 1)) / 2.0 * depth;
                const double n = std::sqrt(gx * gx + gy * gy + 1);
                const hide::Shade shade =
                    hide::shadeNormal(lighting.light, {-gx / n, -gy / n, 1 / n});
                const int r = redOf(in[x]), g = greenOf(in[x]), b = blueOf(in[x]);
                const Rgb16 v = finishPixel<ResultTail::Clamp>(
                    r, g, b, hide::shadeColour(lighting, shade, r, g, b));
                out[x] = withColour(out[x], v.red, v.green, v.blue);
            }
        });
    });
}

} // namespace lumiran
