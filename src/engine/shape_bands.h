#pragma once

#include "engine/picture_memory.h"
#include "engine/worker_pool.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace lumiran {

// Shapes drawn at random are laid in bands of this many picture rows, each
// band taking the shapes that reach it in drawing order, so that a later
// shape still works on what the earlier ones left.
inline constexpr int ShapeBandRows = 32;

// For each band over picture rows firstRow to endRow - 1, the shapes
// 0 .. count - 1 whose rows rowsOf(i).first to .second (inclusive, either
// may lie outside) reach it, in drawing order.
class ShapeBands {
  public:
    template <typename RowsOf>
    ShapeBands(std::size_t count, int firstRow, int endRow, RowsOf rowsOf)
        : firstRow_(firstRow), endRow_(endRow),
          start_(static_cast<std::size_t>(
                     std::max(0, (endRow - firstRow + ShapeBandRows - 1) / ShapeBandRows)) +
                 1) {
        const auto eachBand = [&](std::size_t i, auto&& take) {
            const auto [top, bottom] = rowsOf(i);
            const int first = std::max(top, firstRow) - firstRow;
            const int last = std::min(bottom, endRow - 1) - firstRow;
            for (int b = first / ShapeBandRows; first <= last && b <= last / ShapeBandRows; ++b)
                take(static_cast<std::size_t>(b));
        };
        for (std::size_t i = 0; i < count; ++i)
            eachBand(i, [&](std::size_t b) { ++start_[b + 1]; });
        for (std::size_t b = 1; b < start_.size(); ++b)
            start_[b] += start_[b - 1];
        // One array rather than a list per band growing in many small
        // pieces of fresh memory; a megabyte or so starts at a huge page.
        const std::size_t entries = start_.back();
        const std::size_t huge = HugePageBytes / sizeof(std::uint32_t);
        shapes_.reserve(entries >= huge / 4 ? std::max(entries, huge) : entries);
        shapes_.resize(entries);
        std::vector<std::size_t> next(start_.begin(), start_.end() - 1);
        for (std::size_t i = 0; i < count; ++i)
            eachBand(i, [&](std::size_t b) { shapes_[next[b]++] = static_cast<std::uint32_t>(i); });
    }

    [[nodiscard]] int count() const { return static_cast<int>(start_.size()) - 1; }
    [[nodiscard]] int rowBegin(int band) const { return firstRow_ + band * ShapeBandRows; }
    [[nodiscard]] int rowEnd(int band) const {
        return std::min(rowBegin(band) + ShapeBandRows, endRow_);
    }
    [[nodiscard]] std::span<const std::uint32_t> shapes(int band) const {
        const auto b = static_cast<std::size_t>(band);
        return {shapes_.data() + start_[b], start_[b + 1] - start_[b]};
    }

  private:
    int firstRow_;
    int endRow_;
    std::vector<std::size_t> start_; // band b's shapes are [start_[b], start_[b + 1])
    std::vector<std::uint32_t, PictureAllocator<std::uint32_t>> shapes_;
};

// lay(worker, band) for every band, the bands claimed in turn by workers
// threads of the pool, or on this thread alone when workers is 1.
template <typename LayBand>
void layBands(WorkerPool& pool, int workers, int bands, LayBand&& lay) {
    std::atomic<int> next{0};
    const auto claim = [&](int worker) {
        for (int b = next++; b < bands; b = next++)
            lay(worker, b);
    };
    if (workers > 1) {
        pool.run(workers, claim);
    } else {
        claim(0);
    }
}

} // namespace lumiran
