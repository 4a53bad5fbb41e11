// Edge_PreservingSmoothing, "選択的局所平均化": of nine sub-windows of the
// 5x5 window that all hold the centre, the mean of the quietest.
#include "effects/smoothing/soften_window.h"

#include <cmath>

namespace lumiran {
namespace {

using soften::Channels;

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

} // namespace

void Class_Soften::Edge_PreservingSmoothing(std::uint8_t measure, std::int16_t left,
                                            std::int16_t top, std::int16_t right,
                                            std::int16_t bottom) {
    guardedTrans([&] {
        // 0 "分散" ranks the sub-windows by the sum of the channels'
        // variances, 1 "標準偏差" by the sum of their standard deviations.
        if (measure > 1) return;
        const ProcessRect centres = soften::windowCentres({left, top, right, bottom},
                                                          ImageBits.width(), ImageBits.height(), 2);
        SetProgressRange(centres.top, centres.bottom);
        forEachRow(centres, [&](int y, int firstColumn, int endColumn) {
            Pixel* out = TransBits.row(y).data();
            for (int x = firstColumn; x < endColumn; ++x) {
                std::array<Channels, 25> w;
                for (int dy = -2; dy <= 2; ++dy) {
                    const Pixel* row = ImageBits.row(y + dy).data();
                    for (int dx = -2; dx <= 2; ++dx)
                        w[static_cast<std::size_t>(cell(dx, dy))] = soften::channelsOf(row[x + dx]);
                }
                double best = 0;
                Channels bestSum;
                int bestSize = 1;
                for (std::size_t k = 0; k < SubWindows.size(); ++k) {
                    const SubWindow& sub = SubWindows[k];
                    Channels sum, squares;
                    for (int i = 0; i < sub.size; ++i) {
                        const Channels& p = w[static_cast<std::size_t>(sub.cells[i])];
                        sum.r += p.r;
                        sum.g += p.g;
                        sum.b += p.b;
                        squares.r += p.r * p.r;
                        squares.g += p.g * p.g;
                        squares.b += p.b * p.b;
                    }
                    const int n = sub.size;
                    auto variance = [n](int s, int q) {
                        return static_cast<double>(n * q - s * s) / (n * n);
                    };
                    const double vr = variance(sum.r, squares.r);
                    const double vg = variance(sum.g, squares.g);
                    const double vb = variance(sum.b, squares.b);
                    const double spread =
                        measure == 0 ? vr + vg + vb : std::sqrt(vr) + std::sqrt(vg) + std::sqrt(vb);
                    if (k == 0 || spread < best) {
                        best = spread;
                        bestSum = sum;
                        bestSize = n;
                    }
                }
                const Channels c = soften::channelsOf(ImageBits.at(x, y));
                const Rgb16 v{wrap16(bestSum.r / bestSize), wrap16(bestSum.g / bestSize),
                              wrap16(bestSum.b / bestSize)};
                const Rgb16 e = finishPixel<ResultTail::Clamp>(c.r, c.g, c.b, v);
                out[x] = withColour(out[x], e.red, e.green, e.blue);
            }
        });
    });
}

} // namespace lumiran
