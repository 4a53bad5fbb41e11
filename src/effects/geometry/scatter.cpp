// Scatterize and Lattice Glass: pixels taken from places nearby, by chance
// or by a lattice of tangents.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace lumiran {

void Class_Geometry::Scatterize(std::uint8_t direction, std::int16_t range, std::int16_t left,
                                std::int16_t top, std::int16_t right, std::int16_t bottom) {
    // A caller may leave TransBits unfetched: it is then the source. The
    // rows the bands sample take the source beside the span as they are
    // written; every other row (outside the span, or not reached after a
    // cancel or a failure) is copied at the end.
    const bool copySource = TransBits.empty();
    std::vector<std::uint8_t> rowDone;
    bool copiedWhole = false;
    guarded([&] {
        if (direction > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const bool movesX = direction != 1, movesY = direction != 0;
        const std::size_t perPixel = movesX && movesY ? 2 : 1;
        const double scale = range + 1, half = range / 2.0;
        // One draw per moved axis and pixel, x before y, rows in order. The
        // generator's sequence can be entered anywhere, so each row makes
        // its own draws from where the sequence stands at its first pixel,
        // and the rows run on every core; the generator moves on a few rows
        // at a time, as a cancel may stop after any of them.
        const auto fill = [&](int y, int first, std::span<const double> draws, std::span<double> xs,
                              std::span<double> ys) {
            const double* dx = draws.data();
            const double* dy = draws.data() + (perPixel - 1);
            for (std::size_t i = 0; i < xs.size(); ++i) {
                // The offsets fit 32 bits whatever the range: no check.
                const double ox = roundInRange<std::int32_t>(scale * dx[i * perPixel] - half);
                const double oy = roundInRange<std::int32_t>(scale * dy[i * perPixel] - half);
                xs[i] = first + static_cast<double>(i) + (movesX ? ox : 0.0);
                ys[i] = y + (movesY ? oy : 0.0);
            }
        };
        const Span span = spanOf(rect);
        const int endRow = loopEnd(rect.bottom);
        if (span.empty() || endRow > std::numeric_limits<std::int16_t>::max()) {
            if (copySource) {
                TransBits = ImageBits;
                copiedWhole = true;
            }
            warpRows<RowOrder::TopToBottom>(rect, direction,
                                            [&](int y, int first, std::span<double> xs,
                                                std::span<double> ys, RowScratch& scratch) {
                                                const std::span<double> draws =
                                                    scratch.take(xs.size() * perPixel);
                                                context().random.take(draws);
                                                fill(y, first, draws, xs, ys);
                                            });
            return;
        }
        SetProgressRange(rect.top, rect.bottom);
        for (int y = rect.top; y < span.firstRow; ++y)
            if (!finishRow()) return;
        constexpr int ChunkRows = 32;
        const BandPlan whole = bandPlan(rect);
        const auto columns = static_cast<std::size_t>(span.endColumn - span.firstColumn);
        const std::size_t rowDraws = columns * perPixel;
        const SampleBounds bounds = boundsOf(span);
        std::vector<RowScratch> scratch(
            static_cast<std::size_t>(std::max(context().threading.threads, 1)));
        RandomGenerator& random = context().random;
        if (copySource) {
            TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
            rowDone.assign(static_cast<std::size_t>(ImageBits.height()), 0);
        }
        for (int chunk = span.firstRow; chunk < span.endRow; chunk += ChunkRows) {
            const int rows = std::min(ChunkRows, span.endRow - chunk);
            const RandomGenerator first = random;
            random.skip(rowDraws * static_cast<std::size_t>(rows));
            const ProcessRect chunkRect{left, static_cast<std::int16_t>(chunk), right,
                                        static_cast<std::int16_t>(chunk + rows)};
            // Bands of a few rows: a thread the system stops for a while
            // holds up little of the chunk.
            const BandPlan plan{std::min(whole.workers, rows),
                                std::clamp(whole.bandRows, 1, ChunkRows / 8)};
            const bool done =
                rowsInBands(chunkRect, plan, [&](int worker, int y, int begin, int end) {
                    RowScratch& own = scratch[static_cast<std::size_t>(worker)];
                    own.release();
                    const auto n = static_cast<std::size_t>(end - begin);
                    const std::span<double> draws = own.take(rowDraws);
                    first.ahead(static_cast<std::size_t>(y - chunk) * rowDraws).take(draws);
                    const std::span<double> xs = own.take(n), ys = own.take(n);
                    fill(y, begin, draws, xs, ys);
                    sampleRow(direction, y, begin, xs, ys, bounds, own.indices(n));
                    if (copySource) {
                        const std::span<const Pixel> in = ImageBits.row(y);
                        const std::span<Pixel> out = TransBits.row(y);
                        std::copy(in.begin(), in.begin() + begin, out.begin());
                        std::copy(in.begin() + end, in.end(), out.begin() + end);
                        rowDone[static_cast<std::size_t>(y)] = 1;
                    }
                });
            if (!done) return;
        }
        for (int y = span.endRow; y < endRow; ++y)
            if (!finishRow()) return;
    });
    if (!copySource || copiedWhole) return;
    if (rowDone.size() != static_cast<std::size_t>(ImageBits.height()) ||
        !TransBits.sameSize(ImageBits)) {
        TransBits = ImageBits;
        return;
    }
    for (int y = 0; y < ImageBits.height(); ++y) {
        if (rowDone[static_cast<std::size_t>(y)] == 0)
            std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
    }
}

void Class_Geometry::LatticeGlass(std::int16_t cell, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::uint8_t kind) {
    guarded([&] {
        if (kind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const double c = cell;
        // The shift of a coordinate v: tan(v + c) for kind 0, otherwise
        // |c f(c^2 / (v + 1)) + c f(v + c)| with f cos, tan, sin.
        const auto shifts = [&](std::span<double> v, RowScratch& scratch) {
            const std::span<double> near = scratch.take(v.size()), far = scratch.take(v.size());
            for (std::size_t i = 0; i < v.size(); ++i) {
                near[i] = v[i] + c;
                far[i] = c * c / (v[i] + 1);
            }
            if (kind == 0) {
                trig::tangent(near, v);
                return;
            }
            const int function = kind == 1 ? 1 : kind == 2 ? 2 : 0;
            trig::byFunction(function, near, near);
            trig::byFunction(function, far, far);
            for (std::size_t i = 0; i < v.size(); ++i)
                v[i] = std::abs(c * far[i] + c * near[i]);
        };
        const Span span = spanOf(rect);
        std::vector<double> byColumn(
            static_cast<std::size_t>(std::max(span.endColumn - span.firstColumn, 0)));
        for (std::size_t i = 0; i < byColumn.size(); ++i)
            byColumn[i] = span.firstColumn + static_cast<double>(i);
        RowScratch columnScratch;
        shifts(byColumn, columnScratch);
        warpRows(
            rect, 2,
            [&](int y, int first, std::span<double> xs, std::span<double> ys, RowScratch& scratch) {
                double byRow = y;
                shifts(std::span<double>(&byRow, 1), scratch);
                const double* column = byColumn.data() + (first - span.firstColumn);
                for (std::size_t i = 0; i < xs.size(); ++i) {
                    xs[i] = first + static_cast<double>(i) + column[i];
                    ys[i] = y + byRow;
                }
            });
    });
}

} // namespace lumiran
