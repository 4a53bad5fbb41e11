#pragma once

// Exchange networks for the rank filters, built at compile time.
//
// The rank filters select from a window sorted by the program's partial
// Shell sort: descending, gaps n/2, n/4, ..., and a counter of insertions
// that ended on a comparison. Each insertion either stops at an element at
// least as large as the one inserted (the counter goes up) or carries the
// element to the head of its chain, which happens exactly when it is larger
// than every element before it in the chain. The counter reaches 12 (n = 9)
// or 54 (n = 25) only when every insertion of the passes before gap 1
// stopped, since those passes make exactly 12 and 54 insertions; then gap 1
// is skipped. So the result is the element at the rank of the array after
// the passes before gap 1 when no insertion ran through, and the element at
// the rank of the fully sorted array otherwise. Both are computed here by
// exchange networks, without branches, for a block of pixels at once.
#include "effects/neighbourhood/lanes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace lumiran::neighbourhood {

// After the exchange, element `high` holds the larger value.
struct Exchange {
    std::uint8_t high = 0;
    std::uint8_t low = 0;
};

struct Network {
    static constexpr std::size_t Capacity = 1024;
    std::array<Exchange, Capacity> steps{};
    std::size_t count = 0;
    constexpr void add(int high, int low) {
        steps[count++] = {static_cast<std::uint8_t>(high), static_cast<std::uint8_t>(low)};
    }
};

// Batcher's odd-even merge sort of the given positions into descending
// order along the list. It is built for the next power of two; exchanges
// with a position past the list would meet an element smaller than all and
// change nothing, so they are left out.
constexpr void addSort(Network& net, const int* positions, int length) {
    int wires = 1;
    while (wires < length)
        wires *= 2;
    for (int p = 1; p < wires; p *= 2) {
        for (int k = p; k >= 1; k /= 2) {
            for (int j = k % p; j + k < wires; j += 2 * k) {
                for (int i = 0; i < k; ++i) {
                    const int a = i + j, b = i + j + k;
                    if (a / (2 * p) == b / (2 * p) && b < length) {
                        net.add(positions[a], positions[b]);
                    }
                }
            }
        }
    }
}

// Only the exchanges that can reach the element at `output`.
constexpr Network pruneTo(const Network& net, int output) {
    std::array<bool, 64> live{};
    std::array<bool, Network::Capacity> keep{};
    live[static_cast<std::size_t>(output)] = true;
    for (std::size_t s = net.count; s-- > 0;) {
        const Exchange e = net.steps[s];
        if (live[e.high] || live[e.low]) {
            keep[s] = true;
            live[e.high] = live[e.low] = true;
        }
    }
    Network pruned;
    for (std::size_t s = 0; s < net.count; ++s) {
        if (keep[s]) pruned.add(net.steps[s].high, net.steps[s].low);
    }
    return pruned;
}

constexpr Network wholeSort(int length) {
    std::array<int, 64> positions{};
    for (int i = 0; i < length; ++i)
        positions[static_cast<std::size_t>(i)] = i;
    Network net;
    addSort(net, positions.data(), length);
    return net;
}

// A whole sort of `side` columns of `side` values each, every column
// already sorted descending (slot column * side + j holds its j-th largest),
// reduced to what the element at `rank` needs. The sort is Batcher's on
// columns padded to eight wires with values below all others, so that its
// first stages sort columns that are sorted already; exchanges whose outcome
// the known order decides are dropped (or become a relabelling of the two
// wires), and the order learnt from each kept exchange is carried on. The
// element at `rank` ends in slot `output`.
struct SortedColumnsSelection {
    Network net;
    int output = 0;
};

constexpr SortedColumnsSelection selectFromSortedColumns(int side, int rank) {
    constexpr int padded = 8;
    constexpr int wires = 64;
    // known[i][j]: the value on wire i is at least the value on wire j.
    std::array<std::array<bool, wires>, wires> known{};
    std::array<int, wires> slot{}; // the slot a wire's value is held in; -1 padding
    auto real = [&](int wire) { return wire / padded < side && wire % padded < side; };
    for (int i = 0; i < wires; ++i) {
        slot[static_cast<std::size_t>(i)] = real(i) ? (i / padded) * side + i % padded : -1;
        for (int j = 0; j < wires; ++j) {
            const bool sameColumn = i / padded == j / padded && i <= j;
            known[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] =
                i == j || !real(j) || (real(i) && sameColumn);
        }
    }
    std::array<int, wires> all{};
    for (int i = 0; i < wires; ++i)
        all[static_cast<std::size_t>(i)] = i;
    Network whole;
    addSort(whole, all.data(), wires);

    Network kept;
    for (std::size_t s = 0; s < whole.count; ++s) {
        const std::size_t h = whole.steps[s].high, l = whole.steps[s].low;
        if (known[h][l]) continue;
        if (known[l][h]) {
            std::swap(slot[h], slot[l]);
            std::swap(known[h], known[l]);
            for (auto& row : known)
                std::swap(row[h], row[l]);
            continue;
        }
        kept.add(slot[h], slot[l]);
        const auto before = known;
        for (std::size_t z = 0; z < wires; ++z) {
            if (z == h || z == l) continue;
            known[z][h] = before[z][h] && before[z][l];
            known[z][l] = before[z][h] || before[z][l];
            known[h][z] = before[h][z] || before[l][z];
            known[l][z] = before[h][z] && before[l][z];
        }
        known[h][l] = true;
        known[l][h] = false;
    }
    // The sorted order is wire order; the wire of the rank among real values
    // is the rank itself, since the padding sorts below every real value.
    const int output = slot[static_cast<std::size_t>(rank)];
    return {pruneTo(kept, output), output};
}

// The gaps before gap 1: 4, 2 for a 3x3 window; 12, 6, 3 for 5x5.
constexpr int gapOfPass(int length, int pass) {
    int gap = length / 2;
    for (int p = 0; p < pass; ++p)
        gap /= 2;
    return gap;
}
constexpr int passesBeforeGapOne(int length) {
    int passes = 0;
    for (int gap = length / 2; gap > 1; gap /= 2)
        ++passes;
    return passes;
}

// The chains of one pass, each sorted descending along its positions.
constexpr Network chainSorts(int length, int gap) {
    Network net;
    for (int k = 0; k < gap; ++k) {
        std::array<int, 64> chain{};
        int chainLength = 0;
        for (int i = k; i < length; i += gap)
            chain[static_cast<std::size_t>(chainLength++)] = i;
        addSort(net, chain.data(), chainLength);
    }
    return net;
}

// The positions of one pass in insertion order, each chain starting anew:
// an element larger than all before it in its chain runs through.
struct ChainWalk {
    struct Step {
        std::uint8_t position = 0;
        bool chainStart = false;
    };
    std::array<Step, 64> steps{};
    std::size_t count = 0;
};

constexpr ChainWalk chainWalk(int length, int gap) {
    ChainWalk walk;
    for (int k = 0; k < gap; ++k) {
        for (int i = k; i < length; i += gap) {
            walk.steps[walk.count++] = {static_cast<std::uint8_t>(i), i == k};
        }
    }
    return walk;
}

template <int Length, int Pass>
inline constexpr Network passSort = chainSorts(Length, gapOfPass(Length, Pass));
template <int Length, int Pass>
inline constexpr ChainWalk passWalk = chainWalk(Length, gapOfPass(Length, Pass));
template <int Length, int Rank>
inline constexpr Network lastPassTo =
    pruneTo(chainSorts(Length, gapOfPass(Length, passesBeforeGapOne(Length) - 1)), Rank);

template <const Network& Net, typename V, std::size_t... I>
[[gnu::always_inline]] inline void runNetwork(V* a, std::index_sequence<I...>) {
    auto exchange = [a]<std::size_t S>() {
        constexpr Exchange e = Net.steps[S];
        const V high = largest(a[e.high], a[e.low]);
        a[e.low] = smallest(a[e.high], a[e.low]);
        a[e.high] = high;
    };
    (exchange.template operator()<I>(), ...);
}
template <const Network& Net, typename V>
[[gnu::always_inline]] inline void runNetwork(V* a) {
    runNetwork<Net>(a, std::make_index_sequence<Net.count>{});
}

// All ones in the lanes where some insertion of the pass runs through.
template <const ChainWalk& Walk, typename V, std::size_t... I>
[[gnu::always_inline]] inline V runsThrough(const V* a, std::index_sequence<I...>) {
    V any{};
    V chainMax{};
    auto step = [&]<std::size_t S>() {
        constexpr ChainWalk::Step s = Walk.steps[S];
        if constexpr (s.chainStart) {
            chainMax = a[s.position];
        } else {
            any |= greaterMask(a[s.position], chainMax);
            chainMax = largest(chainMax, a[s.position]);
        }
    };
    (step.template operator()<I>(), ...);
    return any;
}
template <const ChainWalk& Walk, typename V>
[[gnu::always_inline]] inline V runsThrough(const V* a) {
    return runsThrough<Walk>(a, std::make_index_sequence<Walk.count>{});
}

template <int Side, int Rank>
inline constexpr SortedColumnsSelection columnSelection = selectFromSortedColumns(Side, Rank);
template <int Side, int Rank>
inline constexpr Network columnSelectionNetwork = columnSelection<Side, Rank>.net;
template <int Side>
inline constexpr Network columnSort = wholeSort(Side);

// True when every lane is set.
[[nodiscard]] inline bool allSet(Lanes mask) {
    Lanes unset = ~mask;
    std::uint64_t parts[sizeof(Lanes) / sizeof(std::uint64_t)];
    std::memcpy(parts, &unset, sizeof parts);
    std::uint64_t any = 0;
    for (const std::uint64_t part : parts)
        any |= part;
    return any == 0;
}
[[nodiscard]] constexpr bool allSet(std::uint32_t mask) {
    return mask == ~0u;
}

// The passes from Pass on: the lanes where an insertion runs through, and
// `a` sorted as the passes before gap 1 leave it (the last pass only as far
// as the element at Rank needs).
template <int Length, int Rank, int Pass, typename V>
[[gnu::always_inline]] inline V passesFrom(V* a) {
    constexpr int last = passesBeforeGapOne(Length) - 1;
    const V ran = runsThrough<passWalk<Length, Pass>>(a);
    if constexpr (Pass == last) {
        runNetwork<lastPassTo<Length, Rank>>(a);
        return ran;
    } else {
        runNetwork<passSort<Length, Pass>>(a);
        return ran | passesFrom<Length, Rank, Pass + 1>(a);
    }
}

// The element at Rank after the partial Shell sort with its early stop, for
// Length 9 or 25. `window` is the window in its array order;
// `wholeSortRank()` gives the element at Rank of the whole sort. Most
// windows of a picture with detail have an insertion that runs through in
// the first pass already; a block where every lane does needs no more.
template <int Length, int Rank, typename V, typename WholeSort>
[[gnu::always_inline]] inline V partialSortRank(std::array<V, Length> window,
                                                WholeSort wholeSortRank) {
    V ran = runsThrough<passWalk<Length, 0>>(window.data());
    const V whole = wholeSortRank();
    if (allSet(ran)) return whole;
    runNetwork<passSort<Length, 0>>(window.data());
    if constexpr (passesBeforeGapOne(Length) > 1) {
        ran |= passesFrom<Length, Rank, 1>(window.data());
    }
    return choose(ran, whole, window[Rank]);
}

// The element at Rank of a window whose columns are sorted descending
// (slot column * side + j holds a column's j-th largest).
template <int Side, int Rank, typename V>
[[gnu::always_inline]] inline V rankOfSortedColumns(std::array<V, Side * Side> slots) {
    runNetwork<columnSelectionNetwork<Side, Rank>>(slots.data());
    return slots[static_cast<std::size_t>(columnSelection<Side, Rank>.output)];
}

} // namespace lumiran::neighbourhood
