#pragma once

// The row kernels behind rank_rows.h, instantiated for every rank of one
// window size in a unit of its own (they are large; the two sizes build in
// parallel).
#include "effects/neighbourhood/lanes.h"
#include "effects/neighbourhood/rank_rows.h"
#include "effects/neighbourhood/sorting_network.h"

#include <array>
#include <type_traits>
#include <utility>

namespace lumiran::neighbourhood {

using RankKernel = void (*)(const RankChunk& chunk, std::uint32_t* out);

template <typename V>
[[gnu::always_inline]] inline V loadSample(const std::uint32_t* at) {
    if constexpr (std::is_same_v<V, Lanes>) {
        return loadLanes(at);
    } else {
        return *at;
    }
}

// Each column of a chunk sorted descending: row j holds the j-th largest of
// the column. Sorted once, each column serves all the windows that hold it.
template <int Reach>
class SortedColumns {
  public:
    static constexpr int Side = windowSide(Reach);
    static constexpr int Stride = WindowChunk<Reach>::Stride;

    explicit SortedColumns(const WindowChunk<Reach>& rows) {
        int c = 0;
        for (; c + LaneCount <= rows.columns(); c += LaneCount)
            sortColumns<Lanes>(rows, c);
        for (; c < rows.columns(); ++c)
            sortColumns<std::uint32_t>(rows, c);
    }

    // The slots of the window around local column `centre`: column dx + Reach
    // at slots (dx + Reach) * Side .. + Side - 1.
    template <typename V, std::size_t... S>
    [[gnu::always_inline]] std::array<V, Side * Side> window(int centre,
                                                             std::index_sequence<S...>) const {
        return {loadSample<V>(values_.data() + (S % Side) * Stride + centre - Reach +
                              static_cast<int>(S / Side))...};
    }

  private:
    template <typename V>
    void sortColumns(const WindowChunk<Reach>& rows, int c) {
        std::array<V, Side> column;
        for (int j = 0; j < Side; ++j)
            column[static_cast<std::size_t>(j)] = loadSample<V>(rows.row(j - Reach) + c);
        runNetwork<columnSort<Side>>(column.data());
        for (int j = 0; j < Side; ++j) {
            std::uint32_t* at = values_.data() + j * Stride + c;
            if constexpr (std::is_same_v<V, Lanes>) {
                storeLanes(at, column[static_cast<std::size_t>(j)]);
            } else {
                *at = column[static_cast<std::size_t>(j)];
            }
        }
    }

    std::array<std::uint32_t, static_cast<std::size_t>(Side* Stride)> values_;
};

template <int Reach, bool Partial, int Rank, typename V, std::size_t... K>
[[gnu::always_inline]] inline V windowRank(const WindowChunk<Reach>& rows,
                                           const SortedColumns<Reach>& columns, int at,
                                           std::index_sequence<K...> samples) {
    constexpr int side = windowSide(Reach);
    auto whole = [&] {
        return rankOfSortedColumns<side, Rank>(columns.template window<V>(at, samples));
    };
    if constexpr (Partial) {
        constexpr auto& ring = ringOrder<Reach>;
        const std::array<V, windowLength(Reach)> window{
            loadSample<V>(rows.row(ring[K].dy) + at + ring[K].dx)...};
        return partialSortRank<windowLength(Reach), Rank>(window, whole);
    } else {
        return whole();
    }
}

template <int Reach, bool Partial, int Rank>
void rankKernel(const RankChunk& chunk, std::uint32_t* out) {
    constexpr auto samples = std::make_index_sequence<windowLength(Reach)>{};
    const WindowChunk<Reach> rows(chunk.picture, chunk.kind, chunk.y, chunk.firstCentre,
                                  chunk.centres);
    const SortedColumns<Reach> columns(rows);
    const int end = chunk.centres + Reach;
    int i = Reach;
    for (; i + LaneCount <= end; i += LaneCount) {
        storeLanes(out + i - Reach,
                   windowRank<Reach, Partial, Rank, Lanes>(rows, columns, i, samples));
    }
    for (; i < end; ++i) {
        out[i - Reach] = windowRank<Reach, Partial, Rank, std::uint32_t>(rows, columns, i, samples);
    }
}

template <int Reach, bool Partial, std::size_t... Rank>
constexpr std::array<RankKernel, sizeof...(Rank)> rankKernelTable(std::index_sequence<Rank...>) {
    return {&rankKernel<Reach, Partial, static_cast<int>(Rank)>...};
}

template <int Reach, bool Partial>
inline constexpr auto
    rankKernels = rankKernelTable<Reach, Partial>(std::make_index_sequence<windowLength(Reach)>{});

// The kernels of one window size, defined in rank_rows_3x3.cpp and rank_rows_5x5.cpp.
RankKernel partialSortKernel3(int rank);
RankKernel sortedKernel3(int rank);
RankKernel partialSortKernel5(int rank);
RankKernel sortedKernel5(int rank);

} // namespace lumiran::neighbourhood
