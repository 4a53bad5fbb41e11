#include "effects/halftone/dithering/diffusion_kernel.h"

#include <algorithm>
#include <cmath>

namespace lumiran {

DiffusionKernel::DiffusionKernel(const KernelSpec& spec, int pictureWidth) {
    taps_.reserve(spec.taps.size());
    for (const KernelTap& t : spec.taps) {
        const double weight = static_cast<double>(t.weight) / spec.divisor;
        taps_.push_back(
            {t.dx, t.dy, weight, static_cast<std::ptrdiff_t>(t.dy) * pictureWidth + t.dx});
        reachLeft_ = std::max(reachLeft_, -t.dx);
        reachRight_ = std::max(reachRight_, static_cast<int>(t.dx));
        reachDown_ = std::max(reachDown_, static_cast<int>(t.dy));
    }
    shifts_.resize(taps_.size() * RowLength);
    for (std::size_t tap = 0; tap < taps_.size(); ++tap) {
        for (int error = -ErrorRange; error <= ErrorRange; ++error) {
            // Adding an old value of at most 255 moves the fraction by far
            // less than this margin, so outside it the rounding cannot turn.
            const double share = error * taps_[tap].weight;
            const double fraction = share - std::floor(share);
            const bool nearHalf = std::abs(fraction - 0.5) < 1e-9;
            shifts_[tap * RowLength + static_cast<std::size_t>(error + ErrorRange)] =
                nearHalf ? static_cast<std::int16_t>(NoShift) : roundInRange<std::int16_t>(share);
        }
    }
}

} // namespace lumiran
