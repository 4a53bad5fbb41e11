// The sampler of the reverse-mapping warps.
#include "effects/geometry/warp_rows.h"

#include <algorithm>

namespace lumiran {
namespace {

// The clamp of the sampler, upper bound first; a NaN stays a NaN.
double clampTo(double value, double low, double high) {
    if (value > high) value = high;
    if (value < low) value = low;
    return value;
}

} // namespace

Class_Geometry::SampleBounds Class_Geometry::boundsOf(const Span& span) const {
    return {static_cast<double>(span.firstColumn), static_cast<double>(span.firstRow),
            static_cast<double>(span.endColumn - 1), static_cast<double>(span.endRow - 1)};
}

void Class_Geometry::WarpSample(std::uint8_t axes, int x, int y, double mappedX, double mappedY,
                                std::int16_t left, std::int16_t top, std::int16_t right,
                                std::int16_t bottom) {
    guarded([&] {
        const Span span = spanOf({left, top, right, bottom});
        if (span.empty() || x < 0 || y < 0 || x >= TransBits.width() || y >= TransBits.height())
            return;
        const double xs[] = {mappedX};
        const double ys[] = {mappedY};
        std::uint32_t index[1];
        sampleRow(axes, y, x, xs, ys, boundsOf(span), index);
    });
}

void Class_Geometry::sampleRow(std::uint8_t axes, int y, int firstColumn,
                               std::span<const double> xs, std::span<const double> ys,
                               const SampleBounds& bounds, std::span<std::uint32_t> index) {
    const std::size_t n = xs.size();
    // A NaN cannot be rounded: the conversion's overflow error ends the run.
    // It is noted here and raised after the row, so that the loops have no
    // exit and vectorise; the row's other pixels do not matter then.
    int notANumber = 0;
    for (std::size_t i = 0; i < n; ++i)
        notANumber |= static_cast<int>(xs[i] != xs[i]) | static_cast<int>(ys[i] != ys[i]);
    if (notANumber != 0) throw EffectError::overflow();
    if (axes > 2) return;
    // First the source index of every pixel, then the copies: the index
    // loop vectorises, and the copies, which wait on memory, overlap.
    const auto width = static_cast<std::uint32_t>(ImageBits.width());
    const double firstX = firstColumn;
    for (std::size_t i = 0; i < n; ++i) {
        const double sx =
            axes == 1 ? firstX + static_cast<double>(i) : clampTo(xs[i], bounds.left, bounds.right);
        const double sy = axes == 0 ? y : clampTo(ys[i], bounds.top, bounds.bottom);
        index[i] = static_cast<std::uint32_t>(roundInRange<std::int32_t>(sy)) * width +
                   static_cast<std::uint32_t>(roundInRange<std::int32_t>(sx));
    }
    const Pixel* source = ImageBits.pixels().data();
    Pixel* out = TransBits.row(y).data() + firstColumn;
    for (std::size_t i = 0; i < n; ++i)
        out[i] = source[index[i]];
}

} // namespace lumiran
