#pragma once

#include "engine/worker_pool.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

namespace lumiran::hide {

// Shapes drawn at random are laid in bands of this many picture rows, each
// band taking the shapes that reach it in drawing order, so that a later
// shape still works on what the earlier ones left.
inline constexpr int BandRows = 32;

struct BandLists {
    int firstRow = 0; // the first picture row of band 0
    int endRow = 0;
    std::vector<std::vector<std::uint32_t>> shapes; // indices, by band

    [[nodiscard]] int count() const { return static_cast<int>(shapes.size()); }
    [[nodiscard]] int rowBegin(int band) const { return firstRow + band * BandRows; }
    [[nodiscard]] int rowEnd(int band) const { return std::min(rowBegin(band) + BandRows, endRow); }
};

// The bands over picture rows firstRow to endRow - 1 and, for each, the
// shapes 0 .. count - 1 whose rows rowsOf(i).first to .second (inclusive,
// either may lie outside) reach it.
template <typename RowsOf>
BandLists bandLists(std::size_t count, int firstRow, int endRow, RowsOf rowsOf) {
    BandLists lists{firstRow, endRow, {}};
    lists.shapes.resize(static_cast<std::size_t>((endRow - firstRow + BandRows - 1) / BandRows));
    for (std::size_t i = 0; i < count; ++i) {
        const auto [top, bottom] = rowsOf(i);
        const int first = std::max(top, firstRow) - firstRow;
        const int last = std::min(bottom, endRow - 1) - firstRow;
        for (int b = first / BandRows; first <= last && b <= last / BandRows; ++b)
            lists.shapes[static_cast<std::size_t>(b)].push_back(static_cast<std::uint32_t>(i));
    }
    return lists;
}

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

} // namespace lumiran::hide
