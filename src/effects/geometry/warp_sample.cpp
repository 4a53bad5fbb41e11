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
    const Span span = spanOf({left, top, right, bottom});
    if (span.empty() || x < 0 || y < 0 || x >= TransBits.width() || y >= TransBits.height())
        return;
    const SampleBounds bounds = boundsOf(span);
    const double xs[] = {mappedX};
    const double ys[] = {mappedY};
    sampleRow(axes, y, x, xs, ys, bounds);
}

void Class_Geometry::sampleRow(std::uint8_t axes, int y, int firstColumn,
                               std::span<const double> xs, std::span<const double> ys,
                               const SampleBounds& bounds) {
    const int n = static_cast<int>(xs.size());
    const Pixel* source = ImageBits.pixels().data();
    Pixel* out = TransBits.row(y).data() + firstColumn;
    const long long width = ImageBits.width();
    // A NaN cannot be rounded: the conversion's overflow error ends the run.
    // It is noted here and raised after the row, so that the loop has no
    // exit and vectorises; the row's other pixels do not matter then.
    bool notANumber = false;
    const auto rounded = [&](double value, double low, double high) {
        const bool nan = !(value == value);
        notANumber |= nan;
        return static_cast<long long>(roundInRange<std::int32_t>(clampTo(nan ? low : value, low, high)));
    };
    switch (axes) {
    case 0:
        for (int i = 0; i < n; ++i) {
            const long long sx = rounded(xs[i], bounds.left, bounds.right);
            notANumber |= !(ys[i] == ys[i]);
            out[i] = source[y * width + sx];
        }
        break;
    case 1:
        for (int i = 0; i < n; ++i) {
            const long long sy = rounded(ys[i], bounds.top, bounds.bottom);
            notANumber |= !(xs[i] == xs[i]);
            out[i] = source[sy * width + firstColumn + i];
        }
        break;
    case 2:
        for (int i = 0; i < n; ++i) {
            const long long sx = rounded(xs[i], bounds.left, bounds.right);
            const long long sy = rounded(ys[i], bounds.top, bounds.bottom);
            out[i] = source[sy * width + sx];
        }
        break;
    default:
        for (int i = 0; i < n; ++i)
            notANumber |= !(xs[i] == xs[i]) || !(ys[i] == ys[i]);
        break;
    }
    if (notANumber) throw EffectError::overflow();
}

} // namespace lumiran
