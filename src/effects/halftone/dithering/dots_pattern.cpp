#include "effects/halftone/dithering/class_dithering.h"

#include <array>

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

} // namespace

void Class_Dithering::DotsPatternMethod(std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom, std::int16_t colourMode,
                                        std::int16_t level) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const bool mono = colourMode == 0;
        BuildLevelTable(level, colourMode);
        SetProgressRange(rect.top, rect.bottom);
        if (!arraysReady()) return;
        const Span span = spanOf(rect);
        const double d = 256.0 / level;
        // Blocks of two rows from the top; a last single row or column
        // stays as it is. Each row works out its blocks and writes its half.
        forEachRow(rect, [&](int y, int x0, int x1) {
            const int pairTop = span.firstRow + (y - span.firstRow) / 2 * 2;
            if (pairTop + 1 >= span.endRow) return;
            const std::size_t half = y == pairTop ? 0 : 2;
            const Pixel* upper = ImageBits.row(pairTop).data();
            const Pixel* lower = ImageBits.row(pairTop + 1).data();
            Pixel* out = TransBits.row(y).data();
            for (int x = x0; x + 1 < x1; x += 2) {
                const std::array<Pixel, 4> block{upper[x], upper[x + 1], lower[x], lower[x + 1]};
                if (mono) {
                    std::array<int, 4> greys{};
                    for (std::size_t i = 0; i < 4; ++i)
                        greys[i] = ditherGrey(redOf(block[i]), greenOf(block[i]), blueOf(block[i]));
                    const std::array<int, 4> moved = pattern(greys, d);
                    for (std::size_t i = 0; i < 2; ++i) {
                        const int v = MonoLevelTable[static_cast<std::size_t>(moved[half + i])];
                        out[x + static_cast<int>(i)] =
                            withColour(out[x + static_cast<int>(i)], v, v, v);
                    }
                } else {
                    auto channel = [&](auto of) {
                        return pattern({of(block[0]), of(block[1]), of(block[2]), of(block[3])}, d);
                    };
                    const std::array<int, 4> r = channel(redOf), g = channel(greenOf),
                                             b = channel(blueOf);
                    for (std::size_t i = 0; i < 2; ++i) {
                        Pixel& p = out[x + static_cast<int>(i)];
                        p = withColour(p, r[half + i], g[half + i], b[half + i]);
                    }
                }
            }
        });
    });
}

} // namespace lumiran
