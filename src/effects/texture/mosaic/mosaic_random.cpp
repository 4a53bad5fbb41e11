// Blocks dropped at random origins; painted in the order drawn, so later
// blocks average what earlier ones painted.
#include "effects/texture/mosaic/mosaic_walk.h"
#include "effects/texture/mosaic/region_schedule.h"
#include "effects/texture/mosaic/shape_masks.h"
#include "engine/picture_memory.h"

namespace lumiran {

void Class_Mosaic::Mosaic_Random(std::uint8_t width, std::uint8_t height, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t type) {
    const bool ownTrans = blocksIntoOwnTrans_ && !ImageBits.empty();
    guarded([&] {
        const Span span = spanOf({left, top, right, bottom});
        // As many blocks as the regular walk lays, one progress step a row.
        const int blockRows = mosaic::blockRowCount(extentOf({left, top, right, bottom}),
                                                    mosaic::BlockGrid::plain(width, height));
        SetProgressRange(0, blockRows);
        if (blockRows == 0) return;
        const int blockColumns = (span.endColumn - 1 - span.firstColumn) / width + 1;
        const int size = std::max(width, height);
        mosaic::CellRule rule = mosaic::randomRule(type, width, height);
        if (type == 4) rule = mosaic::maskRule(mosaic::dotMask(size), width, height);
        if (type == 5) {
            rule = mosaic::maskRule(
                mosaic::shapeMask(size, static_cast<int>(mosaic::Shape::FirstLozenge)), width,
                height);
        }
        // Every origin is drawn first, a row of blocks a progress step.
        // Origins reach one past the last column and row, where the whole
        // block folds onto the edge.
        const double across = span.endColumn - span.firstColumn + 1;
        const double down = span.endRow - span.firstRow + 1;
        struct Origin {
            int x;
            int y;
        };
        // Picture memory: a huge page rather than hundreds of small ones.
        std::vector<Origin, PictureAllocator<Origin>> origins;
        origins.reserve(static_cast<std::size_t>(blockRows) *
                        static_cast<std::size_t>(blockColumns));
        for (int k = 0; k < blockRows; ++k) {
            for (int m = 0; m < blockColumns; ++m) {
                const int x0 =
                    roundTo<std::int32_t>(across * context().random.next() + span.firstColumn);
                const int y0 =
                    roundTo<std::int32_t>(down * context().random.next() + span.firstRow);
                origins.push_back({x0, y0});
            }
            if (!finishRow()) return;
        }

        Surface& target = ownTrans ? TransBits : ImageBits;
        // A block reads and writes only its own rows, y0 to y0 + height - 1
        // folded onto the last: regions at least that tall hold it or
        // straddle two. A blend may fail on a pixel, and a worker may not
        // throw: then one thread lays them all.
        const int rows = span.endRow - span.firstRow;
        const long long pixels = static_cast<long long>(rows) * (span.endColumn - span.firstColumn);
        const long long bandPixels = std::max(context().threading.bandPixels, 1);
        const int regions = calculationFlag() > 0
                                ? 1
                                : static_cast<int>(std::max<long long>(
                                      1, std::min<long long>({context().threading.threads,
                                                              rows / std::max<int>(height, 1),
                                                              pixels / bandPixels})));
        struct Scratch {
            std::vector<int> rows;
            std::vector<int> columns;
            std::vector<Rgb16> palette;
            std::vector<Pixel> paletteBits;
        };
        std::vector<Scratch> scratch(
            static_cast<std::size_t>(regions),
            Scratch{std::vector<int>(height), std::vector<int>(width),
                    std::vector<Rgb16>(std::max<std::size_t>(rule.classes.count, 1)),
                    std::vector<Pixel>(std::max<std::size_t>(rule.classes.count, 1))});
        const auto lay = [&](Scratch& own, std::uint32_t i) {
            const auto [x0, y0] = origins[i];
            mosaic::foldAxis(y0, span.firstRow, span.endRow, own.rows);
            mosaic::foldAxis(x0, span.firstColumn, span.endColumn, own.columns);
            const int k = static_cast<int>(i) / blockColumns;
            const int m = static_cast<int>(i) % blockColumns;
            const mosaic::Block block{own.rows,
                                      own.columns,
                                      mosaic::blockMean(target, own.rows, own.columns),
                                      mosaic::firstPixel(target, own.rows, own.columns),
                                      k,
                                      m,
                                      own.palette,
                                      own.paletteBits};
            paintRule(target, block, rule);
        };
        if (regions == 1) {
            if (ownTrans) TransBits = ImageBits;
            for (std::uint32_t i = 0; i < origins.size(); ++i)
                lay(scratch[0], i);
            return;
        }

        mosaic::RegionSchedule schedule(regions, span.firstRow, span.endRow);
        schedule.reserve(origins.size());
        for (std::uint32_t i = 0; i < origins.size(); ++i) {
            const int y0 = origins[i].y;
            schedule.add(i, std::min(y0, span.endRow - 1),
                         std::min(y0 + static_cast<int>(height) - 1, span.endRow - 1));
        }
        // The working copy is made by the regions, each its own rows (the
        // first and last also those above and below the span).
        const auto regionRows = [&](int r) {
            const int begin = r == 0 ? 0 : schedule.regionBegin(r);
            const int end = r + 1 == regions ? ImageBits.height() : schedule.regionBegin(r + 1);
            return std::pair{begin, end};
        };
        const auto copyRegion = [&](int r) {
            if (!ownTrans) return;
            const auto [begin, end] = regionRows(r);
            for (int y = begin; y < end; ++y)
                std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
        };
        if (ownTrans) TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
        schedule.run(
            context().workers(), regions, copyRegion,
            [&](int worker, std::uint32_t i) { lay(scratch[static_cast<std::size_t>(worker)], i); },
            [&] { return context().cancelled(); });
        for (int r = 0; r < regions; ++r)
            if (!schedule.entered(r)) copyRegion(r);
    });
    // A run that stopped early still hands on a whole picture.
    if (ownTrans && !TransBits.sameSize(ImageBits)) TransBits = ImageBits;
}

} // namespace lumiran
