// The 3x3 kernels of Class_Edge: Edge_Matrix9, Edge_Kirsch, Edge_Extraction.
#include "effects/neighbourhood/class_edge.h"

#include <algorithm>

namespace lumiran {
namespace {

using neighbourhood::Area;
using Kernel = Class_Edge::Kernel;

// Edge_Extraction's eight directions: the ring weights in units of w.
constexpr std::array<std::array<int, 8>, 8> ExtractionRings{{
    {1, 1, 1, 0, 0, -1, -1, -1},
    {-1, -1, -1, 0, 0, 1, 1, 1},
    {1, 0, -1, 1, -1, 1, 0, -1},
    {-1, 0, 1, -1, 1, -1, 0, 1},
    {1, 1, 0, 1, -1, 0, -1, -1},
    {0, 1, 1, -1, 1, -1, -1, 0},
    {-1, -1, 0, -1, 1, 0, 1, 1},
    {0, -1, -1, 1, -1, 1, 1, 0},
}};

struct KirschCase {
    int angle;
    std::array<int, 8> ring;
};
constexpr std::array<KirschCase, 9> KirschKernels{{
    {0, {5, 5, 5, -3, -3, -3, -3, -3}},
    {45, {5, 5, -3, 5, -3, -3, -3, -3}},
    {90, {5, -3, -3, 5, -3, 5, -3, -3}},
    {135, {-3, -3, -3, 5, -3, 5, 5, -3}},
    {180, {-3, -3, -3, -3, -3, 5, 5, 5}},
    {225, {-3, -3, -3, -3, 5, -3, 5, 5}},
    {270, {-3, -3, 5, -3, 5, -3, -3, 5}},
    {315, {-3, 5, 5, -3, 5, -3, -3, -3}},
    {360, {5, 5, 5, -3, -3, -3, -3, -3}},
}};

Kernel withRing(int centre, const std::array<int, 8>& ring, int unit = 1) {
    Kernel k{centre};
    for (std::size_t i = 0; i < ring.size(); ++i)
        k[i + 1] = ring[i] * unit;
    return k;
}

// One channel of the kernel's sum, 16-bit as the result field keeps it.
struct Taps {
    const Pixel* above;
    const Pixel* middle;
    const Pixel* below;
    const Pixel* centre; // the row the centre entry is read from
    const Pixel* top;    // the row the top entry (position 2) is read from
};

[[gnu::always_inline]] inline int kernelSum(const Kernel& k, const Taps& t, int x, int shift) {
    auto v = [shift](const Pixel* row, int at) {
        return static_cast<int>((row[at] >> shift) & 0xFFu);
    };
    return wrap16(k[0] * v(t.centre, x) + k[1] * v(t.above, x - 1) + k[2] * v(t.top, x) +
                  k[3] * v(t.above, x + 1) + k[4] * v(t.middle, x - 1) + k[5] * v(t.middle, x + 1) +
                  k[6] * v(t.below, x - 1) + k[7] * v(t.below, x) + k[8] * v(t.below, x + 1));
}

// Without a blend the clamped sums are stored straight, with vector
// operations.
void clampedKernelRow(const Kernel& k, const Taps& t, Pixel* __restrict out, int from, int to) {
    for (int x = from; x < to; ++x) {
        auto channel = [&](int shift) {
            return static_cast<Pixel>(std::clamp(kernelSum(k, t, x, shift), 0, 255)) << shift;
        };
        out[x] = (out[x] & 0xFF000000u) | channel(16) | channel(8) | channel(0);
    }
}

} // namespace

void Class_Edge::convolve(const Kernel& kernel, const ProcessRect& rect) {
    const Area area = areaOf(rect);
    const Area inner = area.inner(1);
    SetProgressRange(rect.top, rect.bottom);
    forEachRow(rect, [&](int y, int, int) {
        if (!inner.containsRow(y)) return;
        // The column's entering window takes its centre from the top row;
        // sliding down, the window shifts that entry up, so the second pixel
        // of the column sees it again as its top entry.
        const Taps taps{ImageBits.row(y - 1).data(), ImageBits.row(y).data(),
                        ImageBits.row(y + 1).data(),
                        ImageBits.row(y == inner.firstRow ? area.firstRow : y).data(),
                        ImageBits.row(y == inner.firstRow + 1 ? area.firstRow : y - 1).data()};
        if (!blending()) {
            clampedKernelRow(kernel, taps, TransBits.row(y).data(), inner.firstColumn,
                             inner.endColumn);
            return;
        }
        for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
            storeTrans(x, y, taps.middle[x],
                       {wrap16(kernelSum(kernel, taps, x, 16)),
                        wrap16(kernelSum(kernel, taps, x, 8)),
                        wrap16(kernelSum(kernel, taps, x, 0))});
        }
    });
}

void Class_Edge::Edge_Matrix9(std::int16_t centre, std::int16_t w1, std::int16_t w2,
                              std::int16_t w3, std::int16_t w4, std::int16_t w5, std::int16_t w6,
                              std::int16_t w7, std::int16_t w8, std::int16_t left, std::int16_t top,
                              std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        convolve({centre, w1, w2, w3, w4, w5, w6, w7, w8}, {left, top, right, bottom});
    });
}

void Class_Edge::Edge_Kirsch(std::int16_t angle, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const auto known =
            std::ranges::find(KirschKernels, static_cast<int>(angle), &KirschCase::angle);
        if (known != KirschKernels.end()) kirsch_ = withRing(0, known->ring);
        convolve(kirsch_, {left, top, right, bottom});
    });
}

void Class_Edge::Edge_Extraction(std::uint8_t direction, std::int16_t left, std::int16_t top,
                                 std::int16_t right, std::int16_t bottom, std::int16_t weight) {
    guarded([&] {
        if (direction > 7) return;
        convolve(withRing(0, ExtractionRings[direction], weight), {left, top, right, bottom});
    });
}

} // namespace lumiran
