#include "effects/halftone/dithering/class_dithering.h"

#include <algorithm>
#include <array>
#include <span>

namespace lumiran {
namespace {

// The sign of the change of each value of a 2 x 2 block, in the order
// (x, y), (x + 1, y), (x, y + 1), (x + 1, y + 1), by the block's mean.
using Signs = std::array<int, 4>;

constexpr Signs signsFor(int mean) {
    if (mean < 51) return {-1, -1, -1, -1};
    if (mean < 102) return {-1, -1, 1, -1};
    if (mean < 153) return {-1, 1, 1, -1};
    if (mean < 204) return {-1, 1, 1, 1};
    return {1, 1, 1, 1};
}

// The four values of one channel (or the four greys) moved by d.
std::array<int, 4> pattern(const std::array<int, 4>& values, double d) {
    const Signs signs = signsFor((values[0] + values[1] + values[2] + values[3]) / 4);
    std::array<int, 4> moved{};
    for (std::size_t i = 0; i < 4; ++i)
        moved[i] = toChannel(roundTo<std::int16_t>(values[i] + signs[i] * d));
    return moved;
}

// A value moved up or down by the step, for every value 0..255: the
// rounding and the clamp of the rule, worked out once.
struct DotsTables {
    explicit DotsTables(double d) {
        for (std::size_t v = 0; v < 256; ++v) {
            const auto value = static_cast<int>(v);
            up[v] = toChannel(roundTo<std::int16_t>(value + d));
            down[v] = toChannel(roundTo<std::int16_t>(value - d));
        }
    }
    std::array<int, 256> up{};
    std::array<int, 256> down{};

    [[nodiscard]] int moved(int value, int sign) const {
        const auto v = static_cast<std::size_t>(value);
        return sign > 0 ? up[v] : down[v];
    }
};

// The mono result of a grey moved down (rise 0) or up (rise 1), through the
// level table, as the colour bits of a pixel.
template <typename LevelTable>
std::array<Pixel, 512> monoPatterns(const DotsTables& tables, const LevelTable& monoLevels) {
    std::array<Pixel, 512> patterns{};
    for (std::size_t v = 0; v < 256; ++v) {
        const auto value = static_cast<int>(v);
        for (const int rise : {0, 1}) {
            const int level =
                monoLevels[static_cast<std::size_t>(tables.moved(value, rise * 2 - 1))];
            patterns[static_cast<std::size_t>(rise) * 256 + v] = withColour(0, level, level, level);
        }
    }
    return patterns;
}

// The block mean from which each place of a block rises (signsFor as
// thresholds), in the order of signsFor.
constexpr std::array<int, 4> RiseFrom{204, 102, 51, 153};

// The rows the blocks are laid over, the end row excluded.
struct PairRows {
    int firstRow;
    int endRow;
};

// The first row of a pair of rows takes the upper half of each block.
int pairTopOf(const PairRows& span, int y) {
    return span.firstRow + (y - span.firstRow) / 2 * 2;
}

// The rule as written, for a step the tables cannot hold.
template <typename LevelTable>
void dotsRowByRule(const Surface& image, Surface& trans, const PairRows& span, bool mono, double d,
                   const LevelTable& monoLevels, int y, int x0, int x1) {
    const int pairTop = pairTopOf(span, y);
    if (pairTop + 1 >= span.endRow) return;
    const std::size_t half = y == pairTop ? 0 : 2;
    const Pixel* upper = image.row(pairTop).data();
    const Pixel* lower = image.row(pairTop + 1).data();
    Pixel* out = trans.row(y).data();
    for (int x = x0; x + 1 < x1; x += 2) {
        const std::array<Pixel, 4> block{upper[x], upper[x + 1], lower[x], lower[x + 1]};
        if (mono) {
            std::array<int, 4> greys{};
            for (std::size_t i = 0; i < 4; ++i)
                greys[i] = ditherGrey(redOf(block[i]), greenOf(block[i]), blueOf(block[i]));
            const std::array<int, 4> moved = pattern(greys, d);
            for (std::size_t i = 0; i < 2; ++i) {
                const int v = monoLevels[static_cast<std::size_t>(moved[half + i])];
                out[x + static_cast<int>(i)] = withColour(out[x + static_cast<int>(i)], v, v, v);
            }
        } else {
            auto channel = [&](auto of) {
                return pattern({of(block[0]), of(block[1]), of(block[2]), of(block[3])}, d);
            };
            const std::array<int, 4> r = channel(redOf), g = channel(greenOf), b = channel(blueOf);
            for (std::size_t i = 0; i < 2; ++i) {
                Pixel& p = out[x + static_cast<int>(i)];
                p = withColour(p, r[half + i], g[half + i], b[half + i]);
            }
        }
    }
}

// The mono rule by chunks: the greys of both rows of the blocks first, a
// vector loop, then each block's mean and this row's two places.
void dotsRowMono(const Surface& image, Surface& trans, const PairRows& span,
                 const std::array<Pixel, 512>& patterns, int y, int x0, int x1) {
    const int pairTop = pairTopOf(span, y);
    if (pairTop + 1 >= span.endRow) return;
    const std::size_t half = y == pairTop ? 0 : 2;
    const int riseFirst = RiseFrom[half], riseSecond = RiseFrom[half + 1];
    const Pixel* __restrict upper = image.row(pairTop).data();
    const Pixel* __restrict lower = image.row(pairTop + 1).data();
    Pixel* __restrict out = trans.row(y).data();
    constexpr int Chunk = 128;
    std::array<int, Chunk> greysUpper{}, greysLower{};
    // Whole blocks only: a last odd column keeps the source.
    const int end = x0 + (x1 - x0) / 2 * 2;
    for (int x = x0; x < end; x += Chunk) {
        const int count = std::min(Chunk, end - x);
        for (int i = 0; i < count; ++i) {
            const Pixel a = upper[x + i], b = lower[x + i];
            greysUpper[static_cast<std::size_t>(i)] =
                ditherGreyBranchless(redOf(a), greenOf(a), blueOf(a));
            greysLower[static_cast<std::size_t>(i)] =
                ditherGreyBranchless(redOf(b), greenOf(b), blueOf(b));
        }
        const std::array<int, Chunk>& own = half == 0 ? greysUpper : greysLower;
        for (int i = 0; i < count; i += 2) {
            const auto at = static_cast<std::size_t>(i);
            const int mean =
                (greysUpper[at] + greysUpper[at + 1] + greysLower[at] + greysLower[at + 1]) / 4;
            const std::size_t first =
                (mean >= riseFirst ? 256u : 0u) + static_cast<std::size_t>(own[at]);
            const std::size_t second =
                (mean >= riseSecond ? 256u : 0u) + static_cast<std::size_t>(own[at + 1]);
            out[x + i] = (out[x + i] & 0xFF000000u) | patterns[first];
            out[x + i + 1] = (out[x + i + 1] & 0xFF000000u) | patterns[second];
        }
    }
}

template <typename LevelTable>
void dotsRow(const Surface& image, Surface& trans, const PairRows& span, bool mono,
             const DotsTables& tables, const LevelTable& monoLevels, int y, int x0, int x1) {
    const int pairTop = pairTopOf(span, y);
    if (pairTop + 1 >= span.endRow) return;
    const std::size_t half = y == pairTop ? 0 : 2;
    const Pixel* upper = image.row(pairTop).data();
    const Pixel* lower = image.row(pairTop + 1).data();
    Pixel* out = trans.row(y).data();
    // The two values of this row's half of a block, moved by the block's mean.
    auto movedPair = [&](int a, int b, int c, int e, int& first, int& second) {
        const Signs signs = signsFor((a + b + c + e) / 4);
        const std::array<int, 4> values{a, b, c, e};
        first = tables.moved(values[half], signs[half]);
        second = tables.moved(values[half + 1], signs[half + 1]);
    };
    for (int x = x0; x + 1 < x1; x += 2) {
        const Pixel p0 = upper[x], p1 = upper[x + 1], p2 = lower[x], p3 = lower[x + 1];
        if (mono) {
            int v0 = 0, v1 = 0;
            movedPair(ditherGrey(redOf(p0), greenOf(p0), blueOf(p0)),
                      ditherGrey(redOf(p1), greenOf(p1), blueOf(p1)),
                      ditherGrey(redOf(p2), greenOf(p2), blueOf(p2)),
                      ditherGrey(redOf(p3), greenOf(p3), blueOf(p3)), v0, v1);
            const int m0 = monoLevels[static_cast<std::size_t>(v0)];
            const int m1 = monoLevels[static_cast<std::size_t>(v1)];
            out[x] = withColour(out[x], m0, m0, m0);
            out[x + 1] = withColour(out[x + 1], m1, m1, m1);
        } else {
            int r0 = 0, r1 = 0, g0 = 0, g1 = 0, b0 = 0, b1 = 0;
            movedPair(redOf(p0), redOf(p1), redOf(p2), redOf(p3), r0, r1);
            movedPair(greenOf(p0), greenOf(p1), greenOf(p2), greenOf(p3), g0, g1);
            movedPair(blueOf(p0), blueOf(p1), blueOf(p2), blueOf(p3), b0, b1);
            out[x] = withColour(out[x], r0, g0, b0);
            out[x + 1] = withColour(out[x + 1], r1, g1, b1);
        }
    }
}

} // namespace

void Class_Dithering::DotsPatternMethod(std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom, std::int16_t colourMode,
                                        std::int16_t level) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const bool mono = colourMode == 0;
        BuildLevelTable(level, colourMode);
        SetProgressRange(rect.top, rect.bottom);
        // Unfetched, the result starts as the source's copy: the rows of
        // the rectangle are copied by the thread that works on them, while
        // the row is at hand, the others before, on every core.
        const Span span = spanOf(rect);
        const bool ownResult = TransBits.empty() && !ImageBits.empty();
        if (ownResult) makeTransOutside(span);
        if (!arraysReady()) return;
        const double d = 256.0 / level;
        const PairRows rows{span.firstRow, span.endRow};
        if (level == 0) {
            // The step is infinite: the first block raises the error.
            forEachRow(rect, [&](int y, int x0, int x1) {
                if (ownResult) copyRowToTrans(y);
                dotsRowByRule(ImageBits, TransBits, rows, mono, d, MonoLevelTable, y, x0, x1);
            });
            return;
        }
        const DotsTables tables(d);
        if (mono) {
            const std::array<Pixel, 512> patterns = monoPatterns(tables, MonoLevelTable);
            forEachRow(rect, [&](int y, int x0, int x1) {
                if (ownResult) copyRowToTrans(y);
                dotsRowMono(ImageBits, TransBits, rows, patterns, y, x0, x1);
            });
            return;
        }
        forEachRow(rect, [&](int y, int x0, int x1) {
            if (ownResult) copyRowToTrans(y);
            dotsRow(ImageBits, TransBits, rows, mono, tables, MonoLevelTable, y, x0, x1);
        });
    });
}

} // namespace lumiran
