// Smoothing kind 13, "Savity-Goray･ﾌｨﾙﾀ 7x7": the 7x7 weights by ring
// 11; 9, 10, 9, 10, 10, 9, 10, 9; 3, 6, 7, 6, 3, ... add up to 147.
#include "effects/smoothing/soften_window.h"

namespace lumiran {
namespace {

using soften::Chunk;

// The weight table is the quadratic 11 - dx^2 - dy^2 over the window, so
// the weighted sum is 11 S - sum(dx^2 p) - sum(dy^2 p): three window sums
// that fit the 16-bit fields (at most 196 * 255).
struct QuadraticSums {
    std::array<std::uint32_t, Chunk> plainLow, plainHigh;
    std::array<std::uint32_t, Chunk> dxLow, dxHigh;
    std::array<std::uint32_t, Chunk> dyLow, dyHigh;
};

constexpr std::array<std::uint32_t, 7> Squares{9, 4, 1, 0, 1, 4, 9};

void quadraticSums(const Surface& source, int y, int start, int count, QuadraticSums& s) {
    std::array<const Pixel*, 7> rows{};
    for (int i = 0; i < 7; ++i)
        rows[i] = source.row(y - 3 + i).data() + (start - 3);
    std::array<std::uint32_t, Chunk + 6> low, high, dyLow, dyHigh;
    for (int j = 0; j < count + 6; ++j) {
        std::uint32_t l = 0, h = 0, wl = 0, wh = 0;
        for (int i = 0; i < 7; ++i) {
            const std::uint32_t pl = soften::lowFields(rows[i][j]);
            const std::uint32_t ph = soften::highFields(rows[i][j]);
            l += pl;
            h += ph;
            wl += Squares[i] * pl;
            wh += Squares[i] * ph;
        }
        low[j] = l;
        high[j] = h;
        dyLow[j] = wl;
        dyHigh[j] = wh;
    }
    for (int c = 0; c < count; ++c) {
        std::uint32_t l = 0, h = 0, xl = 0, xh = 0, yl = 0, yh = 0;
        for (int d = 0; d < 7; ++d) {
            l += low[c + d];
            h += high[c + d];
            xl += Squares[d] * low[c + d];
            xh += Squares[d] * high[c + d];
            yl += dyLow[c + d];
            yh += dyHigh[c + d];
        }
        s.plainLow[c] = l;
        s.plainHigh[c] = h;
        s.dxLow[c] = xl;
        s.dxHigh[c] = xh;
        s.dyLow[c] = yl;
        s.dyHigh[c] = yh;
    }
}

} // namespace

void Class_Soften::savitzkyGolay(const ProcessRect& rect) {
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 3);
    centreRows<QuadraticSums>(
        centres,
        [this](QuadraticSums& s, int y, int start, int count) {
            quadraticSums(ImageBits, y, start, count, s);
        },
        [](const QuadraticSums& s, int c, IntRgb) -> IntRgb {
            const IntRgb plain = soften::fieldSums(s.plainLow[c], s.plainHigh[c]);
            const IntRgb dx = soften::fieldSums(s.dxLow[c], s.dxHigh[c]);
            const IntRgb dy = soften::fieldSums(s.dyLow[c], s.dyHigh[c]);
            // The integer quotient truncates toward zero, also below zero.
            return {(11 * plain.r - dx.r - dy.r) / 147, (11 * plain.g - dx.g - dy.g) / 147,
                    (11 * plain.b - dx.b - dy.b) / 147};
        });
}

} // namespace lumiran
