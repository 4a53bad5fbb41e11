// Smoothing kinds 0, 1, 2: fixed weights over the 3x3 window, and kinds 8
// and 9, which store the result fields as they stand.
#include "effects/smoothing/soften_window.h"

namespace lumiran {
namespace {

using soften::Channels;

// By window index: 0 centre, then the ring in reading order (upper left,
// top, upper right, left, right, lower left, bottom, lower right).
using Window = std::array<Channels, 9>;

// Kinds 0, 1, 2: "中央加重", "円形加重", "周辺加重". Kind 1 adds up to
// 0.99 and so dims a little.
constexpr std::array<std::array<double, 9>, 3> Weights{{
    {0.25, 0.0625, 0.125, 0.0625, 0.125, 0.125, 0.0625, 0.125, 0.0625},
    {0.25, 0, 0.19, 0, 0.18, 0.18, 0, 0.19, 0},
    {0.04, 0.15, 0.09, 0.15, 0.09, 0.09, 0.15, 0.09, 0.15},
}};

// The weighted sum as the double loop over the window adds it, rounded
// half to even.
int weightedSum(const std::array<double, 9>& weights, const Window& w, int Channels::*channel) {
    double sum = 0;
    for (int i = 0; i < 9; ++i)
        sum += weights[i] * (w[i].*channel);
    return roundTo<std::int16_t>(sum);
}

// The same worked out on integers. Kind 0's weights are sixteenths, exact
// in binary, so its sum rounds exactly as the integer form; the hundredths
// of kinds 1 and 2 are not, and only where the exact value is a tie does
// the double sum's own error decide, so those few go the double way.
int channelResult(int kind, const Window& w, int Channels::*channel) {
    auto e = [&](int i) { return w[i].*channel; };
    if (kind == 0) {
        const int num = 4 * e(0) + 2 * (e(2) + e(4) + e(5) + e(7)) + e(1) + e(3) + e(6) + e(8);
        const int q = num >> 4;
        const int rest = num & 15;
        return q + ((rest > 8 || (rest == 8 && (q & 1) != 0)) ? 1 : 0);
    }
    // Kinds 1 and 2 in hundredths.
    const int num =
        kind == 1 ? 25 * e(0) + 19 * (e(2) + e(7)) + 18 * (e(4) + e(5))
                  : 4 * e(0) + 15 * (e(1) + e(3) + e(6) + e(8)) + 9 * (e(2) + e(4) + e(5) + e(7));
    const int rest = num % 100;
    if (rest == 50) return weightedSum(Weights[static_cast<std::size_t>(kind)], w, channel);
    return num / 100 + (rest > 50 ? 1 : 0);
}

} // namespace

void Class_Soften::weightedSmoothing(int kind, const ProcessRect& rect) {
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
    SetProgressRange(centres.top, centres.bottom);
    const int firstRow = centres.top;
    forEachRow(centres, [&](int y, int firstColumn, int endColumn) {
        const Pixel* up = ImageBits.row(y - 1).data();
        const Pixel* middle = ImageBits.row(y).data();
        const Pixel* down = ImageBits.row(y + 1).data();
        // The first window of a column takes its centre from the top row of
        // the rectangle; the sliding window then shifts that entry up, so
        // the second pixel of the column sees it as its top entry.
        const Pixel* centreRow = y == firstRow ? up : middle;
        const Pixel* topRow = y == firstRow + 1 ? ImageBits.row(y - 2).data() : up;
        Pixel* out = TransBits.row(y).data();
        for (int x = firstColumn; x < endColumn; ++x) {
            const Window w{soften::channelsOf(centreRow[x]),  soften::channelsOf(up[x - 1]),
                           soften::channelsOf(topRow[x]),     soften::channelsOf(up[x + 1]),
                           soften::channelsOf(middle[x - 1]), soften::channelsOf(middle[x + 1]),
                           soften::channelsOf(down[x - 1]),   soften::channelsOf(down[x]),
                           soften::channelsOf(down[x + 1])};
            const Rgb16 v{wrap16(channelResult(kind, w, &Channels::r)),
                          wrap16(channelResult(kind, w, &Channels::g)),
                          wrap16(channelResult(kind, w, &Channels::b))};
            const Rgb16 e = finishPixel<ResultTail::Clamp>(w[0].r, w[0].g, w[0].b, v);
            out[x] = withColour(out[x], e.red, e.green, e.blue);
        }
    });
}

void Class_Soften::staleResultFields(const ProcessRect& rect) {
    // Neither branch of these kinds sets the result fields, so every pixel
    // of the 5x5 loop stores what the previous one left: zero in a fresh
    // object, or with a calculation type the chain of blends down each
    // column. The chain follows the original's column order.
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 2);
    SetProgressRange(centres.left, centres.right);
    for (int x = centres.left; x < centres.right; ++x) {
        for (int y = centres.top; y < centres.bottom; ++y) {
            const Channels c = soften::channelsOf(ImageBits.at(x, y));
            resultFields_ = finishPixel<ResultTail::Clamp>(c.r, c.g, c.b, resultFields_);
            Pixel& out = TransBits.at(x, y);
            out = withColour(out, resultFields_.red, resultFields_.green, resultFields_.blue);
        }
        if (!finishRow()) return;
    }
}

} // namespace lumiran
