// Smoothing kinds 0, 1, 2: fixed weights over the 3x3 window, and kinds 8
// and 9, which store the result fields as they stand.
#include "effects/smoothing/soften_window.h"

namespace lumiran {
namespace {

// By window index: 0 centre, then the ring in reading order (upper left,
// top, upper right, left, right, lower left, bottom, lower right).
using Window = std::array<IntRgb, 9>;

// Kinds 0, 1, 2: "中央加重", "円形加重", "周辺加重". Kind 1 adds up to
// 0.99 and so dims a little.
constexpr std::array<std::array<double, 9>, 3> Weights{{
    {0.25, 0.0625, 0.125, 0.0625, 0.125, 0.125, 0.0625, 0.125, 0.0625},
    {0.25, 0, 0.19, 0, 0.18, 0.18, 0, 0.19, 0},
    {0.04, 0.15, 0.09, 0.15, 0.09, 0.09, 0.15, 0.09, 0.15},
}};

// The weighted sum as the double loop over the window adds it, rounded
// half to even.
int weightedSum(const std::array<double, 9>& weights, const Window& w, int IntRgb::*channel) {
    double sum = 0;
    for (int i = 0; i < 9; ++i)
        sum += weights[i] * (w[i].*channel);
    return roundTo<std::int16_t>(sum);
}

// The three rows of a window, with the entries the first windows of a
// column take from the top row of the rectangle.
struct WindowRows {
    const Pixel* up;
    const Pixel* middle;
    const Pixel* down;
    const Pixel* centre; // where entry 0 comes from
    const Pixel* top;    // where entry 2 comes from

    [[nodiscard]] Window at(int x) const {
        return {channelsOf(centre[x]),   channelsOf(up[x - 1]),     channelsOf(top[x]),
                channelsOf(up[x + 1]),   channelsOf(middle[x - 1]), channelsOf(middle[x + 1]),
                channelsOf(down[x - 1]), channelsOf(down[x]),       channelsOf(down[x + 1])};
    }
};

struct WeightedChunk {
    std::array<int, soften::Chunk> r, g, b;
    std::array<Pixel, soften::Chunk> centre;
    std::array<int, soften::Chunk> ties; // channels whose exact sum is a tie
};

// The weighted sums worked out on integers, all three channels at once in
// the 16-bit fields (at most 100 * 255). Kind 0's weights are sixteenths,
// exact in binary, so its sum rounds exactly as the integer form; the
// hundredths of kinds 1 and 2 are not, and only where the exact value is a
// tie does the double sum's own error decide: those few go the double way.
template <int Kind>
void weightedSums(const WindowRows& w, int start, int count, WeightedChunk& out) {
    using soften::highFields;
    using soften::lowFields;
    constexpr std::uint32_t Denominator = Kind == 0 ? 16 : 100;
    const soften::Divider divide = soften::dividerFor(Denominator, 100 * 255);
    for (int c = 0; c < count; ++c) {
        const int x = start + c;
        auto numerator = [&](auto fields) {
            const std::uint32_t centre = fields(w.centre[x]);
            const std::uint32_t corners = fields(w.up[x - 1]) + fields(w.up[x + 1]) +
                                          fields(w.down[x - 1]) + fields(w.down[x + 1]);
            const std::uint32_t upDown = fields(w.top[x]) + fields(w.down[x]);
            const std::uint32_t sides = fields(w.middle[x - 1]) + fields(w.middle[x + 1]);
            if constexpr (Kind == 0) return 4 * centre + 2 * (upDown + sides) + corners;
            if constexpr (Kind == 1) return 25 * centre + 19 * upDown + 18 * sides;
            return 4 * centre + 15 * corners + 9 * (upDown + sides);
        };
        const std::uint32_t low = numerator(lowFields);
        const std::uint32_t high = numerator(highFields);
        int ties = 0;
        auto rounded = [&](std::uint32_t n, int bit) {
            const std::uint32_t q = divide(n);
            const std::uint32_t twice = 2 * (n - q * Denominator);
            if constexpr (Kind != 0) ties |= twice == Denominator ? bit : 0;
            return static_cast<int>(q) +
                   ((twice > Denominator || (twice == Denominator && (q & 1) != 0)) ? 1 : 0);
        };
        out.r[c] = rounded(low >> 16, 1);
        out.g[c] = rounded(high & 0xFFFFu, 2);
        out.b[c] = rounded(low & 0xFFFFu, 4);
        out.ties[c] = ties;
        out.centre[c] = w.centre[x];
    }
    if constexpr (Kind != 0) {
        const auto& weights = Weights[Kind];
        for (int c = 0; c < count; ++c) {
            if (out.ties[c] == 0) continue;
            const Window window = w.at(start + c);
            if ((out.ties[c] & 1) != 0) out.r[c] = weightedSum(weights, window, &IntRgb::r);
            if ((out.ties[c] & 2) != 0) out.g[c] = weightedSum(weights, window, &IntRgb::g);
            if ((out.ties[c] & 4) != 0) out.b[c] = weightedSum(weights, window, &IntRgb::b);
        }
    }
}

} // namespace

void Class_Soften::weightedSmoothing(int kind, const ProcessRect& rect) {
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), 1);
    const int firstRow = centres.top;
    auto fill = [&](WeightedChunk& data, int y, int start, int count) {
        const Pixel* up = ImageBits.row(y - 1).data();
        const Pixel* middle = ImageBits.row(y).data();
        // The first window of a column takes its centre from the top row of
        // the rectangle; the sliding window then shifts that entry up, so
        // the second pixel of the column sees it as its top entry.
        const WindowRows rows{up, middle, ImageBits.row(y + 1).data(), y == firstRow ? up : middle,
                              y == firstRow + 1 ? ImageBits.row(y - 2).data() : up};
        if (kind == 0) {
            weightedSums<0>(rows, start, count, data);
        } else if (kind == 1) {
            weightedSums<1>(rows, start, count, data);
        } else {
            weightedSums<2>(rows, start, count, data);
        }
    };
    // The blend sees the window's centre entry as the source.
    centreRows<WeightedChunk>(centres, fill, [](const WeightedChunk& data, int c, IntRgb& centre) {
        centre = channelsOf(data.centre[c]);
        return IntRgb{data.r[c], data.g[c], data.b[c]};
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
            const IntRgb c = channelsOf(ImageBits.at(x, y));
            resultFields_ = finishPixel<ResultTail::Clamp>(c.r, c.g, c.b, resultFields_);
            Pixel& out = TransBits.at(x, y);
            out = withColour(out, resultFields_.red, resultFields_.green, resultFields_.blue);
        }
        if (!finishRow()) return;
    }
}

} // namespace lumiran
