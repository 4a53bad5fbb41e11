// Blocks dropped at random origins; painted in place in the order drawn,
// so later blocks average what earlier ones painted.
#include "effects/texture/mosaic/mosaic_walk.h"
#include "effects/texture/mosaic/shape_masks.h"
#include "engine/random_generator.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <limits>
#include <mutex>
#include <thread>

namespace lumiran {
namespace {

// The rows of the span cut into bands, one a worker, each at least two
// blocks high so that a block reaches into one band or two neighbours.
struct BlockRowBands {
    std::vector<int> starts; // band i is [starts[i], starts[i + 1])

    BlockRowBands(int firstRow, int endRow, int bands) {
        for (int i = 0; i <= bands; ++i)
            starts.push_back(
                firstRow + static_cast<int>(static_cast<long long>(endRow - firstRow) * i / bands));
    }
    [[nodiscard]] int count() const { return static_cast<int>(starts.size()) - 1; }
    [[nodiscard]] int bandOf(int y) const {
        const auto after = std::ranges::upper_bound(starts.begin() + 1, starts.end() - 1, y);
        return static_cast<int>(after - starts.begin()) - 1;
    }
};

} // namespace

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
        // The working copy is made by the workers, each copying the rows of
        // its band: its fresh pages are faulted in on every core.
        if (ownTrans) TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
        Surface& target = ownTrans ? TransBits : ImageBits;
        // Origins reach one past the last column and row, where the whole
        // block folds onto the edge.
        const double across = span.endColumn - span.firstColumn + 1;
        const double down = span.endRow - span.firstRow + 1;

        // A block changes only the rows it covers, so blocks in different
        // bands of rows commute: each worker paints the blocks of its band in
        // the order drawn, and a block across two bands is painted by the
        // upper one once the lower has come to it, the lower waiting until it
        // is painted. Every pixel sees the same blocks in the same order as
        // on one thread. Painting draws nothing, so each worker draws every
        // origin from its own copy of the generator.
        const RowThreading& threading = context().threading;
        const long long pixels = static_cast<long long>(span.endRow - span.firstRow) *
                                 (span.endColumn - span.firstColumn);
        const int bandCount =
            pixels < 2LL * std::max(threading.bandPixels, 1) || context().workers().runsInTurn()
                ? 1
                : std::clamp((span.endRow - span.firstRow) / (2 * height), 1,
                             std::max(threading.threads, 1));
        const BlockRowBands bands(span.firstRow, span.endRow, bandCount);
        const long long blocks = static_cast<long long>(blockRows) * blockColumns;
        // Each band's next block not yet painted, published at blocks across
        // bands; -1 until its rows are copied.
        std::vector<std::atomic<long long>> reached(static_cast<std::size_t>(bandCount));
        for (auto& r : reached)
            r = -1;
        std::vector<std::atomic<int>> rowsPassed(static_cast<std::size_t>(blockRows));
        std::atomic<bool> stop{false};
        std::mutex progress;
        std::exception_ptr failure;
        const auto waitUntil = [&](int band, auto&& done) {
            while (!done(reached[static_cast<std::size_t>(band)].load(std::memory_order_acquire))) {
                if (stop.load(std::memory_order_relaxed)) return false;
                std::this_thread::yield();
            }
            return true;
        };
        const auto work = [&](int band) {
            if (ownTrans) {
                const int first = band == 0 ? 0 : bands.starts[band];
                const int end = band + 1 == bandCount ? ImageBits.height() : bands.starts[band + 1];
                for (int y = first; y < end; ++y)
                    std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
            }
            std::atomic<long long>& mine = reached[static_cast<std::size_t>(band)];
            mine.store(0, std::memory_order_release);
            std::vector<int> rows(height);
            std::vector<int> columns(width);
            std::vector<Rgb16> palette(std::max<std::size_t>(rule.classes.count, 1));
            std::vector<Pixel> paletteBits(palette.size());
            RandomBlocks draws(context().random);
            long long j = 0;
            for (int k = 0; k < blockRows; ++k) {
                for (int m = 0; m < blockColumns; ++m, ++j) {
                    const int x0 = roundTo<std::int32_t>(across * draws.next() + span.firstColumn);
                    const int y0 = roundTo<std::int32_t>(down * draws.next() + span.firstRow);
                    const int upper = bands.bandOf(std::min(y0, span.endRow - 1));
                    const int lower = bands.bandOf(std::min(y0 + height - 1, span.endRow - 1));
                    if (upper != band && lower != band) continue;
                    if (upper != lower) {
                        mine.store(j, std::memory_order_release);
                        if (lower == band) {
                            if (!waitUntil(upper, [j](long long at) { return at > j; })) return;
                            continue;
                        }
                        if (!waitUntil(lower, [j](long long at) { return at >= j; })) return;
                    }
                    mosaic::foldAxis(y0, span.firstRow, span.endRow, rows);
                    mosaic::foldAxis(x0, span.firstColumn, span.endColumn, columns);
                    const mosaic::Block block{rows,
                                              columns,
                                              mosaic::blockMean(target, rows, columns),
                                              mosaic::firstPixel(target, rows, columns),
                                              k,
                                              m,
                                              palette,
                                              paletteBits};
                    paintRule(target, block, rule);
                    if (upper != lower) mine.store(j + 1, std::memory_order_release);
                }
                if (rowsPassed[static_cast<std::size_t>(k)].fetch_add(1) + 1 == bandCount) {
                    const std::scoped_lock lock(progress);
                    if (!finishRow()) stop = true;
                }
                if (stop.load(std::memory_order_relaxed)) return;
            }
        };
        context().workers().run(bandCount, [&](int band) {
            try {
                work(band);
            } catch (...) {
                const std::scoped_lock lock(progress);
                if (!failure) failure = std::current_exception();
                stop = true;
            }
            // Nobody waits on a band that has stopped.
            reached[static_cast<std::size_t>(band)].store(std::numeric_limits<long long>::max(),
                                                          std::memory_order_release);
        });
        context().random.skip(static_cast<std::uint64_t>(2 * blocks));
        if (failure) std::rethrow_exception(failure);
    });
    // A run that stopped before the copy still hands on a whole picture.
    if (ownTrans && !TransBits.sameSize(ImageBits)) TransBits = ImageBits;
}

} // namespace lumiran
