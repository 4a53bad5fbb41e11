// Edge_PreservingSmoothing, "選択的局所平均化": of nine sub-windows of the
// 5x5 window that all hold the centre, the mean of the quietest.
#include "effects/smoothing/soften_window.h"

#include <cmath>

namespace lumiran {
namespace {

// The sub-windows by window position (dy + 2) * 5 + (dx + 2): the centre
// 3x3, four pentagons reaching up, down, left and right, and four hexagons
// reaching into the corners, each of seven pixels with the centre.
struct SubWindow {
    int size = 0;
    std::array<int, 9> cells{};
};

constexpr int cell(int dx, int dy) {
    return (dy + 2) * 5 + (dx + 2);
}

constexpr std::array<SubWindow, 9> SubWindows{{
    {9,
     {cell(-1, -1), cell(0, -1), cell(1, -1), cell(-1, 0), cell(0, 0), cell(1, 0), cell(-1, 1),
      cell(0, 1), cell(1, 1)}},
    {7,
     {cell(-1, -2), cell(0, -2), cell(1, -2), cell(-1, -1), cell(0, -1), cell(1, -1), cell(0, 0)}},
    {7, {cell(-1, 2), cell(0, 2), cell(1, 2), cell(-1, 1), cell(0, 1), cell(1, 1), cell(0, 0)}},
    {7,
     {cell(-2, -1), cell(-2, 0), cell(-2, 1), cell(-1, -1), cell(-1, 0), cell(-1, 1), cell(0, 0)}},
    {7, {cell(2, -1), cell(2, 0), cell(2, 1), cell(1, -1), cell(1, 0), cell(1, 1), cell(0, 0)}},
    {7,
     {cell(-2, -2), cell(-1, -2), cell(-2, -1), cell(-1, -1), cell(0, -1), cell(-1, 0),
      cell(0, 0)}},
    {7, {cell(2, -2), cell(1, -2), cell(2, -1), cell(1, -1), cell(0, -1), cell(1, 0), cell(0, 0)}},
    {7, {cell(-2, 2), cell(-1, 2), cell(-2, 1), cell(-1, 1), cell(0, 1), cell(-1, 0), cell(0, 0)}},
    {7, {cell(2, 2), cell(1, 2), cell(2, 1), cell(1, 1), cell(0, 1), cell(1, 0), cell(0, 0)}},
}};

struct QuietChunk {
    std::array<int, soften::Chunk> r, g, b;
};

// Centres are ranked in blocks of this many, their statistics in L1.
constexpr int Block = 64;

// For each sub-window k and channel ch (index 3 k + ch) of each centre:
// the sum S and n Q - S^2, which is n^2 times the variance.
struct SubWindowStats {
    std::array<std::array<int, Block>, 27> sum;
    std::array<std::array<int, Block>, 27> spread;
};

void subWindowStats(const std::array<const Pixel*, 5>& rows, int start, int count,
                    SubWindowStats& stats) {
    for (int c = 0; c < count; ++c) {
        const int x = start + c;
        std::array<std::array<int, 25>, 3> cells;
#pragma GCC unroll 5
        for (int dy = 0; dy < 5; ++dy) {
#pragma GCC unroll 5
            for (int dx = 0; dx < 5; ++dx) {
                const Pixel p = rows[static_cast<std::size_t>(dy)][x + dx - 2];
                const auto i = static_cast<std::size_t>(dy * 5 + dx);
                cells[0][i] = redOf(p);
                cells[1][i] = greenOf(p);
                cells[2][i] = blueOf(p);
            }
        }
#pragma GCC unroll 9
        for (std::size_t k = 0; k < SubWindows.size(); ++k) {
            const SubWindow& sub = SubWindows[k];
#pragma GCC unroll 3
            for (std::size_t ch = 0; ch < 3; ++ch) {
                int sum = 0, squares = 0;
#pragma GCC unroll 9
                for (int i = 0; i < sub.size; ++i) {
                    const int v =
                        cells[ch][static_cast<std::size_t>(sub.cells[static_cast<std::size_t>(i)])];
                    sum += v;
                    squares += v * v;
                }
                stats.sum[3 * k + ch][static_cast<std::size_t>(c)] = sum;
                stats.spread[3 * k + ch][static_cast<std::size_t>(c)] =
                    sub.size * squares - sum * sum;
            }
        }
    }
}

// The square roots of count integers, in a loop the compiler vectorises.
void squareRoots(const int* in, float* out, int count) {
    for (int c = 0; c < count; ++c)
        out[c] = std::sqrt(static_cast<float>(in[c]));
}

// Measure 0 "分散" ranks the sub-windows by the sum of the channels'
// variances, compared exactly on integers scaled to the common 81 * 49
// (at most 3 * 81 * 49 * 16256, within 32 bits); measure 1 "標準偏差" by
// the sum of their standard deviations, sqrt(n Q - S^2) / n in single
// precision, exact enough for integers below 2^24. The first of equals wins. The mean of the
// winner, an integer quotient, goes to out from index offset.
template <int Measure>
void quietestMeans(const SubWindowStats& stats, int count, QuietChunk& out, int offset) {
    std::array<std::array<float, Block>, 27> roots;
    if constexpr (Measure == 1) {
        for (std::size_t i = 0; i < roots.size(); ++i)
            squareRoots(stats.spread[i].data(), roots[i].data(), count);
    }
    for (int c = 0; c < count; ++c) {
        const auto i = static_cast<std::size_t>(c);
        using Spread = std::conditional_t<Measure == 0, int, float>;
        Spread best = 0;
        std::array<int, 3> sum{};
        bool nine = true;
#pragma GCC unroll 9
        for (std::size_t k = 0; k < SubWindows.size(); ++k) {
            const int n = SubWindows[k].size;
            Spread value;
            if constexpr (Measure == 0) {
                value = (n == 9 ? 49 : 81) * (stats.spread[3 * k][i] + stats.spread[3 * k + 1][i] +
                                              stats.spread[3 * k + 2][i]);
            } else {
                value = (roots[3 * k][i] + roots[3 * k + 1][i] + roots[3 * k + 2][i]) /
                        static_cast<float>(n);
            }
            const bool quieter = k == 0 || value < best;
            best = quieter ? value : best;
            for (std::size_t ch = 0; ch < 3; ++ch)
                sum[ch] = quieter ? stats.sum[3 * k + ch][i] : sum[ch];
            nine = quieter ? n == 9 : nine;
        }
        auto mean = [nine](int s) { return nine ? s / 9 : s / 7; };
        const auto o = static_cast<std::size_t>(offset + c);
        out.r[o] = mean(sum[0]);
        out.g[o] = mean(sum[1]);
        out.b[o] = mean(sum[2]);
    }
}

} // namespace

void Class_Soften::Edge_PreservingSmoothing(std::uint8_t measure, std::int16_t left,
                                            std::int16_t top, std::int16_t right,
                                            std::int16_t bottom) {
    guardedTrans([&] {
        if (measure > 1) return;
        const ProcessRect centres = soften::windowCentres({left, top, right, bottom},
                                                          ImageBits.width(), ImageBits.height(), 2);
        auto fill = [&](QuietChunk& data, int y, int start, int count) {
            std::array<const Pixel*, 5> rows{};
            for (int i = 0; i < 5; ++i)
                rows[static_cast<std::size_t>(i)] = ImageBits.row(y - 2 + i).data();
            SubWindowStats stats;
            for (int done = 0; done < count; done += Block) {
                const int block = std::min(Block, count - done);
                subWindowStats(rows, start + done, block, stats);
                if (measure == 0) {
                    quietestMeans<0>(stats, block, data, done);
                } else {
                    quietestMeans<1>(stats, block, data, done);
                }
            }
        };
        centreRows<QuietChunk>(centres, fill, [](const QuietChunk& data, int c, IntRgb&) {
            return IntRgb{data.r[c], data.g[c], data.b[c]};
        });
    });
}

} // namespace lumiran
