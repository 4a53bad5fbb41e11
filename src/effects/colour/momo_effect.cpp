#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace lumiran {
namespace {

// The run's constants: the centre, K and the floors added per channel.
struct MomoTerms {
    int cx = 0;
    int cy = 0;
    int k = 0;
    double halfK = 0;
    std::array<int, 3> adds{};
};

// The rule as it reads, every conversion range-checked: a K of 0 or a
// result beyond 16 bits raises the overflow error at its pixel.
struct CheckedMomo {
    MomoTerms terms;

    Rgb16 operator()(int x, int y, int& r, int& g, int& b) const {
        const double dx = x - terms.cx, dy = y - terms.cy;
        const double dist = std::sqrt(dx * dx + dy * dy);
        const MaxMin m = MaxMinOfThree(r, g, b);
        const int t = roundTo<std::int16_t>((terms.halfK + m.max) / 2);
        const int l = lightness(m.max, m.min);
        if (l == 0) r = g = b = 1;
        const int divisor = nonZero(l);
        auto channel = [&](int c, int add) -> int {
            const int scaled = scaledChannel(c, divisor, t);
            int v = roundTo<std::int16_t>(scaled * dist / terms.k);
            if (v < add) v = wrap16(v + add);
            return v;
        };
        return Channels{channel(r, terms.adds[0]), channel(g, terms.adds[1]),
                        channel(b, terms.adds[2])}
            .fields();
    }
};

// The same rule where no conversion can leave its range (see fitsUnchecked):
// the same operations in the same order without the checks and branches,
// so that the row loop runs in the vector unit.
struct UncheckedMomo {
    MomoTerms terms;
    double dySquared = 0;

    void startRow(int y) {
        const double dy = y - terms.cy;
        dySquared = dy * dy;
    }

    Rgb16 operator()(int x, int, int& r, int& g, int& b) const {
        const double dx = x - terms.cx;
        const double dist = std::sqrt(dx * dx + dySquared);
        const int max = std::max({r, g, b});
        const int min = std::min({r, g, b});
        const auto t = roundInRange<std::int32_t>((terms.halfK + max) / 2);
        const int l = lightness(max, min);
        const bool dark = l == 0;
        r = chooseWithoutBranch(dark, 1, r);
        g = chooseWithoutBranch(dark, 1, g);
        b = chooseWithoutBranch(dark, 1, b);
        const int divisor = nonZero(l);
        const double k = terms.k;
        auto channel = [&](int c, int add) -> int {
            const int scaled = scaledChannelInRange(c, divisor, t);
            const int v = roundInRange<std::int32_t>(scaled * dist / k);
            return v < add ? wrap16(v + add) : v;
        };
        return Channels{channel(r, terms.adds[0]), channel(g, terms.adds[1]),
                        channel(b, terms.adds[2])}
            .fields();
    }
};

// Whether every conversion of the rule stays in range over the span: T is
// at most |K / 2| / 2 + 128, a channel over its lightness divisor at most
// 2.5 (5 over 2), so the scaled channel is below 3 |T| + 1, and the result
// is that times the largest distance over |K|.
bool fitsUnchecked(const MomoTerms& terms, int firstColumn, int endColumn, int firstRow,
                   int endRow) {
    if (terms.k == 0) return false;
    const double tMax = std::abs(terms.halfK) / 2 + 128 + 1;
    const double dx =
        std::max(std::abs(firstColumn - terms.cx), std::abs(endColumn - 1 - terms.cx));
    const double dy = std::max(std::abs(firstRow - terms.cy), std::abs(endRow - 1 - terms.cy));
    const double bound = (3 * tMax + 1) * std::sqrt(dx * dx + dy * dy) / std::abs(terms.k) + 1;
    return bound < 16384;
}

} // namespace

void Class_ColorOp::Momo_Effect(std::int16_t amount, std::int16_t addRed, std::int16_t addGreen,
                                std::int16_t addBlue, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::int16_t xPercent,
                                std::int16_t yPercent) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        MomoTerms terms;
        terms.cx = roundTo<std::int16_t>(wrap16(right - left) / 100.0 * xPercent + left);
        terms.cy = roundTo<std::int16_t>(wrap16(bottom - top) / 100.0 * yPercent + top);
        const double lastRow = wrap16(bottom - 1);
        const double lastColumn = wrap16(right - 1);
        // A K of 0 makes every pixel an infinity or a NaN, which ends the
        // run through the handler at the first pixel.
        terms.k = roundTo<std::int16_t>(std::sqrt(lastRow * lastRow + lastColumn * lastColumn) *
                                        amount / 360);
        terms.halfK = terms.k / 2.0;
        terms.adds = {addRed, addGreen, addBlue};

        const Span span = spanOf(rect);
        if (span.empty() ||
            fitsUnchecked(terms, span.firstColumn, span.endColumn, span.firstRow, span.endRow)) {
            mapPixels<ResultTail::Clamp>(rect, UncheckedMomo{terms});
        } else {
            mapPixels<ResultTail::Clamp>(rect, CheckedMomo{terms});
        }
    });
}

} // namespace lumiran
