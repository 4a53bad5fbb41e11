#pragma once

// A slow, literal model of the Class_Soften window filters: the window as
// an array by rings, walked down each column by shifting its entries up a
// row and reading the new bottom row, weights as doubles summed in index
// order. The class computes the same by rows, sums and integer forms; the
// tests hold the two against each other.
#include "engine/calculation.h"
#include "engine/surface.h"

#include <cmath>
#include <cstdlib>
#include <functional>
#include <vector>

namespace lumiran::testing::reference {

struct Entry {
    int r = 0, g = 0, b = 0;
};

// Index 0 the centre, then each ring out to the reach in reading order.
inline std::vector<std::pair<int, int>> ringOffsets(int reach) {
    std::vector<std::pair<int, int>> offsets{{0, 0}};
    for (int ring = 1; ring <= reach; ++ring) {
        for (int dy = -ring; dy <= ring; ++dy) {
            for (int dx = -ring; dx <= ring; ++dx) {
                if (std::max(std::abs(dx), std::abs(dy)) == ring) offsets.emplace_back(dx, dy);
            }
        }
    }
    return offsets;
}

// The result of a centre from its window (by ring index) and the threshold
// of the filters that have one; the centre for the blend may be changed.
using Rule = std::function<Entry(const std::vector<Entry>&, Entry&)>;

inline Entry entryOf(Pixel p) {
    return {redOf(p), greenOf(p), blueOf(p)};
}

// Runs rule over the centres of the whole picture, column by column.
// quirk: the first window of a column reads its centre from the top row.
inline Surface windowFilter(const Surface& in, int reach, bool quirk, const Rule& rule,
                            std::uint8_t calculationFlag = 0) {
    Surface out = in;
    const auto offsets = ringOffsets(reach);
    const int side = 2 * reach + 1;
    std::vector<int> indexAt(static_cast<std::size_t>(side * side));
    for (std::size_t i = 0; i < offsets.size(); ++i) {
        indexAt[static_cast<std::size_t>((offsets[i].second + reach) * side + offsets[i].first +
                                         reach)] = static_cast<int>(i);
    }
    auto slot = [&](int dx, int dy) -> std::size_t {
        return static_cast<std::size_t>(
            indexAt[static_cast<std::size_t>((dy + reach) * side + dx + reach)]);
    };
    std::vector<Entry> w(offsets.size());
    for (int x = reach; x < in.width() - reach; ++x) {
        const int first = reach;
        for (const auto& [dx, dy] : offsets)
            w[slot(dx, dy)] = entryOf(in.at(x + dx, first + dy));
        if (quirk) w[0] = entryOf(in.at(x, first - 1));
        for (int y = first; y < in.height() - reach; ++y) {
            if (y > first) {
                for (int dy = -reach; dy < reach; ++dy) {
                    for (int dx = -reach; dx <= reach; ++dx)
                        w[slot(dx, dy)] = w[slot(dx, dy + 1)];
                }
                for (int dx = -reach; dx <= reach; ++dx)
                    w[slot(dx, reach)] = entryOf(in.at(x + dx, y + reach));
            }
            Entry centre = w[0];
            const Entry v = rule(w, centre);
            Rgb16 result{static_cast<std::int16_t>(v.r), static_cast<std::int16_t>(v.g),
                         static_cast<std::int16_t>(v.b)};
            result = calculationFlag > 0 ? applyCalculationType(calculationFlag, centre.r, centre.g,
                                                                centre.b, result)
                                         : clampResult(result);
            out.at(x, y) = withColour(out.at(x, y), result.red, result.green, result.blue);
        }
    }
    return out;
}

// The sum of weight times entry over the window, in index order.
inline Entry weighted(const std::vector<double>& weights, const std::vector<Entry>& w,
                      bool roundEachProduct = false) {
    double r = 0, g = 0, b = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        auto term = [&](int c) {
            const double p = weights[i] * c;
            return roundEachProduct ? std::nearbyint(p) : p;
        };
        r += term(w[i].r);
        g += term(w[i].g);
        b += term(w[i].b);
    }
    return {static_cast<int>(std::nearbyint(r)), static_cast<int>(std::nearbyint(g)),
            static_cast<int>(std::nearbyint(b))};
}

inline Entry windowSum(const std::vector<Entry>& w) {
    Entry s;
    for (const Entry& e : w) {
        s.r += e.r;
        s.g += e.g;
        s.b += e.b;
    }
    return s;
}

} // namespace lumiran::testing::reference
