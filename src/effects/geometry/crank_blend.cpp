// Crank's blending kinds (Pelican): each pixel of ImageBits against the
// sample at the triangle walk's offset, written into TransBits row by row
// on every core.
#include "effects/geometry/class_geometry.h"
#include "effects/geometry/crank_walk.h"

#include <algorithm>
#include <array>
#include <vector>

namespace lumiran {
namespace {

// (2 sample - own) / 2 rounded half to even, in integers: an odd numerator
// lies halfway, and the even neighbour of the floor wins.
[[nodiscard]] inline int mixChannel(int sample, int own) {
    const int twice = 2 * sample - own;
    const int half = twice >> 1;
    return half + (twice & half & 1);
}

[[nodiscard]] inline int clampByte(int v) {
    return std::clamp(v, 0, 255);
}

} // namespace

template <bool Blend>
void Class_Geometry::crankBlendRow(std::uint8_t kind, int step, const ProcessRect& rect,
                                   const Span& span, std::span<const int> columnShifts, int y) {
    const Pixel* in = ImageBits.row(y).data();
    Pixel* out = TransBits.row(y).data();
    const Pixel* picture = ImageBits.elements().data();
    const auto width = static_cast<std::ptrdiff_t>(ImageBits.width());
    // The walk moves the sample across by the row's index (kinds 3, 5) and
    // down by the column's (kinds 4, 5); a sample beyond the rectangle is
    // the pixel itself. Samples are gathered a chunk at a time, so that the
    // arithmetic runs over two plain arrays and vectorises.
    const int dx = kind != 4 ? geometry::triangle(y - rect.top, step) : 0;
    const int first = span.firstColumn, end = span.endColumn;
    constexpr int Chunk = 256;
    std::array<Pixel, Chunk> samples{};
    for (int x0 = first; x0 < end; x0 += Chunk) {
        const int n = std::min(Chunk, end - x0);
        if (kind == 3) {
            // Along the row: in the picture up to end - dx, the pixel itself after.
            const int shifted = std::clamp(end - dx - x0, 0, n);
            std::copy(in + x0 + dx, in + x0 + dx + shifted, samples.begin());
            std::copy(in + x0 + shifted, in + x0 + n, samples.begin() + shifted);
        } else {
            const int* shifts = columnShifts.data() + (x0 - first);
            for (int i = 0; i < n; ++i) {
                const int sx = x0 + i + dx, sy = y + shifts[i];
                samples[static_cast<std::size_t>(i)] =
                    sx < end && sy < span.endRow ? picture[sy * width + sx] : in[x0 + i];
            }
        }
        const Pixel* own = in + x0;
        Pixel* to = out + x0;
        for (int i = 0; i < n; ++i) {
            const Pixel o = own[i], sample = samples[static_cast<std::size_t>(i)];
            const int r = redOf(o), g = greenOf(o), b = blueOf(o);
            if constexpr (Blend) {
                const Rgb16 mixed{static_cast<std::int16_t>(mixChannel(redOf(sample), r)),
                                  static_cast<std::int16_t>(mixChannel(greenOf(sample), g)),
                                  static_cast<std::int16_t>(mixChannel(blueOf(sample), b))};
                const Rgb16 v = endPixel<ResultTail::Clamp, true>(r, g, b, mixed);
                to[i] = withColour(o, v.red, v.green, v.blue);
            } else {
                to[i] = withColour(o, clampByte(mixChannel(redOf(sample), r)),
                                   clampByte(mixChannel(greenOf(sample), g)),
                                   clampByte(mixChannel(blueOf(sample), b)));
            }
        }
    }
}

void Class_Geometry::crankBlend(std::uint8_t kind, int step, const ProcessRect& rect) {
    const Span span = spanOf(rect);
    // Left unfetched, TransBits starts as the source: the rows of the
    // rectangle copy what lies beside it as they go, the rest is copied here.
    const bool copySource = TransBits.empty() || !TransBits.sameSize(ImageBits);
    std::vector<char> rowDone;
    if (copySource) {
        TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
        rowDone.assign(static_cast<std::size_t>(ImageBits.height()), 0);
    }
    std::vector<int> columnShifts;
    if (kind != 3 && !span.empty()) {
        columnShifts.resize(static_cast<std::size_t>(span.endColumn - span.firstColumn));
        for (int x = span.firstColumn; x < span.endColumn; ++x)
            columnShifts[static_cast<std::size_t>(x - span.firstColumn)] =
                geometry::triangle(x - rect.left, step);
    }
    const bool blend = calculationFlag() > 0;
    SetProgressRange(rect.top, rect.bottom);
    forEachRow<RowOrder::AnyOrder>(rect, [&](int y, int first, int end) {
        if (blend) {
            crankBlendRow<true>(kind, step, rect, span, columnShifts, y);
        } else {
            crankBlendRow<false>(kind, step, rect, span, columnShifts, y);
        }
        if (!copySource) return;
        const std::span<const Pixel> in = ImageBits.row(y);
        const std::span<Pixel> out = TransBits.row(y);
        std::copy(in.begin(), in.begin() + first, out.begin());
        std::copy(in.begin() + end, in.end(), out.begin() + end);
        rowDone[static_cast<std::size_t>(y)] = 1;
    });
    if (!copySource) return;
    // Rows beside the rectangle, and after a cancel the rows it never reached.
    for (int y = 0; y < ImageBits.height(); ++y) {
        if (rowDone[static_cast<std::size_t>(y)] == 0)
            std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
    }
}

} // namespace lumiran
