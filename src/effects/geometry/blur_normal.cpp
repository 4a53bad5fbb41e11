// Blur and Gaussian Blur: the mean of a pixel and samples at a fixed
// offset, once or in passes of shrinking offsets.
#include "effects/geometry/blur_passes.h"

#include <algorithm>
#include <utility>

namespace lumiran {
namespace {

// The mean of a row with every sample inside: branch-free, so it vectorises.
template <int Count>
void meanRun(const Pixel* own, const std::array<const Pixel*, 4>& rows,
             const std::array<int, 4>& dxs, Pixel* out, int first, int end) {
    for (int x = first; x < end; ++x) {
        const Pixel p = own[x];
        std::uint32_t r = p & 0xFF, g = (p >> 8) & 0xFF, b = (p >> 16) & 0xFF;
        for (int k = 0; k < Count - 1; ++k) {
            const Pixel s = rows[static_cast<std::size_t>(k)][x + dxs[static_cast<std::size_t>(k)]];
            r += s & 0xFF;
            g += (s >> 8) & 0xFF;
            b += (s >> 16) & 0xFF;
        }
        out[x] = (out[x] & 0xFF000000u) | blur::mean(r, Count) | (blur::mean(g, Count) << 8) |
                 (blur::mean(b, Count) << 16);
    }
}

// The offsets of Blur_Normal's directions, as unit steps.
constexpr std::array<std::array<blur::Tap, 2>, 4> NormalSteps{{
    {{{1, 0}, {-1, 0}}},
    {{{0, 1}, {0, -1}}},
    {{{1, 1}, {-1, -1}}},
    {{{-1, 1}, {1, -1}}},
}};

// Gaussian kinds 0..7: the single sample's step.
constexpr std::array<blur::Tap, 8> GaussianSteps{
    {{0, -1}, {0, 1}, {1, 0}, {-1, 0}, {1, 1}, {-1, 1}, {1, -1}, {-1, -1}}};

} // namespace

void Class_Geometry::fixedMeanPass(const ProcessRect& rect, std::span<const int> dxs,
                                   std::span<const int> dys) {
    const Span span = spanOf(rect);
    const int count = static_cast<int>(dxs.size()) + 1;
    const bool blend = calculationFlag() > 0;
    forEachRow(rect, [&](int y, int first, int end) {
        const Pixel* own = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        std::array<const Pixel*, 4> rows{own, own, own, own};
        std::array<int, 4> shifts{};
        int inFirst = first, inEnd = end;
        for (std::size_t k = 0; k < dxs.size(); ++k) {
            const int sy = blur::within(y, y + dys[k], span.firstRow, span.endRow);
            rows[k] = ImageBits.row(sy).data();
            shifts[k] = dxs[k];
            inFirst = std::max(inFirst, first - dxs[k]);
            inEnd = std::min(inEnd, end - dxs[k]);
        }
        // The edges, where a sample falls back to the pixel's own column,
        // and every pixel when a calculation type blends.
        const auto edge = [&](int x) {
            const Pixel p = own[x];
            std::uint32_t r = redOf(p), g = greenOf(p), b = blueOf(p);
            for (std::size_t k = 0; k < dxs.size(); ++k) {
                const Pixel s = rows[k][blur::within(x, x + shifts[k], first, end)];
                r += redOf(s);
                g += greenOf(s);
                b += blueOf(s);
            }
            const Rgb16 v =
                finishPixel<ResultTail::Clamp>(redOf(p), greenOf(p), blueOf(p),
                                               {static_cast<std::int16_t>(blur::mean(r, count)),
                                                static_cast<std::int16_t>(blur::mean(g, count)),
                                                static_cast<std::int16_t>(blur::mean(b, count))});
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        };
        if (blend || inFirst >= inEnd) {
            for (int x = first; x < end; ++x)
                edge(x);
            return;
        }
        for (int x = first; x < inFirst; ++x)
            edge(x);
        switch (count) {
        case 2:
            meanRun<2>(own, rows, shifts, out, inFirst, inEnd);
            break;
        case 3:
            meanRun<3>(own, rows, shifts, out, inFirst, inEnd);
            break;
        default:
            meanRun<5>(own, rows, shifts, out, inFirst, inEnd);
            break;
        }
        for (int x = inEnd; x < end; ++x)
            edge(x);
    });
}

void Class_Geometry::nextPass() {
    // Outside the rectangle both arrays hold the picture, and the next pass
    // writes every pixel inside it: a swap serves as the copy.
    ImageBits.swap(TransBits);
}

void Class_Geometry::Blur_Normal(std::uint8_t direction, std::int16_t distance, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (direction > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(top, bottom);
        const auto& steps = NormalSteps[direction];
        const std::array<int, 2> dxs{steps[0].dx * distance, steps[1].dx * distance};
        const std::array<int, 2> dys{steps[0].dy * distance, steps[1].dy * distance};
        fixedMeanPass(rect, dxs, dys);
    });
}

void Class_Geometry::Blur_Gaussian(std::uint8_t kind, std::int16_t radius, std::int16_t left,
                                   std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 11) return;
        const ProcessRect rect{left, top, right, bottom};
        for (int d = radius; d >= 1; --d) {
            if (d != radius) nextPass();
            ProgressCount = 0;
            SetProgressRange(top, bottom);
            if (kind < 8) {
                const int dx = GaussianSteps[kind].dx * d, dy = GaussianSteps[kind].dy * d;
                fixedMeanPass(rect, std::span<const int>(&dx, 1), std::span<const int>(&dy, 1));
            } else if (kind == 8) {
                // Along the row at d and at half of it: a wide horizontal mean.
                const std::array<int, 4> dxs{d, -d, d / 2, -(d / 2)};
                const std::array<int, 4> dys{};
                fixedMeanPass(rect, dxs, dys);
            } else {
                // Vertical, falling to the left, falling to the right.
                const auto& steps = NormalSteps[kind == 9 ? 1 : kind == 10 ? 3 : 2];
                const std::array<int, 2> dxs{steps[0].dx * d, steps[1].dx * d};
                const std::array<int, 2> dys{steps[0].dy * d, steps[1].dy * d};
                fixedMeanPass(rect, dxs, dys);
            }
            if (context().cancelled()) return;
        }
    });
}

} // namespace lumiran
