#pragma once

// What the reverse-mapping warps share: the centre of a warp, the rows of
// mapped positions and the sampler they go through.
#include "effects/geometry/class_geometry.h"
#include "engine/numeric.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

namespace lumiran {

// The constants of this family, as they stand in its formulas.
inline constexpr double GeometryPi = 3.14159;
inline constexpr double GeometryTwoPi = 6.2831;

// A centre given in percent of the rectangle: round((high - low) / 100 *
// percent + low), the difference taken in 16 bits.
[[nodiscard]] inline int centreOf(std::int16_t low, std::int16_t high, std::int16_t percent) {
    return roundTo<std::int16_t>(wrap16(high - low) / 100.0 * percent + low);
}

struct WarpCentre {
    int x = 0;
    int y = 0;
};

[[nodiscard]] inline WarpCentre centreOf(const ProcessRect& rect, std::int16_t xPercent,
                                         std::int16_t yPercent) {
    return {centreOf(rect.left, rect.right, xPercent), centreOf(rect.top, rect.bottom, yPercent)};
}

// The offsets of one row from a centre, for warps whose values depend on
// the horizontal offset only through its size: those values are worked out
// once for each distance and serve both sides of the centre.
struct RadialRow {
    RadialRow(int y, WarpCentre centre, int firstColumn, std::size_t columns)
        : dy(y - centre.y), firstDx(firstColumn - centre.x) {
        const int lastDx = firstDx + static_cast<int>(columns) - 1;
        nearest = firstDx <= 0 && lastDx >= 0 ? 0 : std::min(std::abs(firstDx), std::abs(lastDx));
        count = std::max(std::abs(firstDx), std::abs(lastDx)) - nearest + 1;
    }

    // The offset of the column i steps from the first, and the index of its
    // distance in the per-distance values.
    [[nodiscard]] int dx(std::size_t i) const { return firstDx + static_cast<int>(i); }
    [[nodiscard]] std::size_t slot(std::size_t i) const {
        return static_cast<std::size_t>(std::abs(dx(i)) - nearest);
    }
    [[nodiscard]] std::size_t distances() const { return static_cast<std::size_t>(count); }
    // sqrt(dx^2 + dy^2) for each distance, into a span of distances().
    std::span<double> radii(std::span<double> r) const {
        for (std::size_t k = 0; k < r.size(); ++k) {
            const double d = nearest + static_cast<double>(k);
            r[k] = std::sqrt(d * d + static_cast<double>(dy) * dy);
        }
        return r;
    }

    int dy = 0;
    int firstDx = 0;
    int nearest = 0;
    int count = 0;
};

// Working rows for the fill of one thread: take(n) hands out n doubles that
// stay valid until the next row; the buffers are kept from row to row, so a
// warp allocates nothing per row (allocations of a row's size would go back
// to the system at each row and cost more than the warp).
class RowScratch {
  public:
    [[nodiscard]] std::span<double> take(std::size_t n) {
        if (next_ == rows_.size()) rows_.emplace_back();
        std::vector<double>& row = rows_[next_++];
        if (row.size() < n) row.resize(n);
        return {row.data(), n};
    }
    // Room for the sampler's source indices of a row.
    [[nodiscard]] std::span<std::uint32_t> indices(std::size_t n) {
        if (indices_.size() < n) indices_.resize(n);
        return {indices_.data(), n};
    }
    void release() { next_ = 0; }

  private:
    std::vector<std::vector<double>> rows_;
    std::vector<std::uint32_t> indices_;
    std::size_t next_ = 0;
};

// fill(y, firstColumn, xs, ys, scratch) writes the mapped positions of the pixels
// firstColumn, firstColumn + 1, ... of row y. Every row reads ImageBits and
// writes its own row of TransBits only, so rows run in any order unless
// the fill draws from the random generator.
//
// A caller may leave TransBits unfetched (dispatch::onSourceWithOwnTrans):
// it is then the source, made here without a copy on one thread first.
// Each row the bands sample takes the source beside the span as it is
// written; rows outside the span are copied before, rows a cancel or a
// failure left out after.
template <RowOrder Order, typename Fill>
void Class_Geometry::warpRows(const ProcessRect& rect, std::uint8_t axes, Fill&& fill) {
    SetProgressRange(rect.top, rect.bottom);
    const Span span = spanOf(rect);
    const bool ownTrans = TransBits.empty() && !ImageBits.empty();
    if (span.empty()) {
        if (ownTrans) TransBits = ImageBits;
        forEachRow(rect, [](int, int, int) {});
        return;
    }
    std::vector<std::uint8_t> rowDone;
    if (ownTrans) {
        TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
        rowDone.assign(static_cast<std::size_t>(ImageBits.height()), 0);
        for (int y = 0; y < ImageBits.height(); ++y) {
            if (y >= span.firstRow && y < span.endRow) continue;
            std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
            rowDone[static_cast<std::size_t>(y)] = 1;
        }
    }
    const auto copyLeftOut = [&] {
        for (std::size_t y = 0; y < rowDone.size(); ++y) {
            if (rowDone[y] == 0) {
                const int row = static_cast<int>(y);
                std::ranges::copy(ImageBits.row(row), TransBits.row(row).begin());
            }
        }
    };
    const SampleBounds bounds = boundsOf(span);
    const BandPlan plan = Order == RowOrder::AnyOrder ? bandPlan(rect) : BandPlan{};
    std::vector<RowScratch> scratch(static_cast<std::size_t>(std::max(plan.workers, 1)));
    try {
        rowsInBands(rect, plan, [&](int worker, int y, int begin, int end) {
            RowScratch& own = scratch[static_cast<std::size_t>(worker)];
            own.release();
            const auto n = static_cast<std::size_t>(end - begin);
            const std::span<double> xs = own.take(n), ys = own.take(n);
            fill(y, begin, xs, ys, own);
            sampleRow(axes, y, begin, xs, ys, bounds, own.indices(n));
            if (ownTrans) {
                const std::span<const Pixel> in = ImageBits.row(y);
                const std::span<Pixel> out = TransBits.row(y);
                std::copy(in.begin(), in.begin() + begin, out.begin());
                std::copy(in.begin() + end, in.end(), out.begin() + end);
                rowDone[static_cast<std::size_t>(y)] = 1;
            }
        });
    } catch (...) {
        copyLeftOut();
        throw;
    }
    copyLeftOut();
}

} // namespace lumiran
