#pragma once

#include "effects/halftone/dithering/diffusion_kernel.h"
#include "effects/halftone/dithering/level_tables.h"
#include "engine/pixel.h"

#include <algorithm>
#include <array>

namespace lumiran::diffusion {

// Entry 0's new colour and the error each channel hands on.
struct Quantised {
    int red = 0;
    int green = 0;
    int blue = 0;
    int errorRed = 0;
    int errorGreen = 0;
    int errorBlue = 0;
};

// The part of the picture a diffusion works in; positions are clamped
// into it, right and bottom exclusive.
struct Bounds {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

// One share laid on a neighbour, each channel limited to 0..255.
template <bool OneError>
[[nodiscard]] Pixel spreadInto(Pixel old, const DiffusionKernel& kernel, std::size_t tap,
                               const Quantised& q) {
    const int r = redOf(old), g = greenOf(old), b = blueOf(old);
    if constexpr (OneError) {
        // One error for all three channels: one lookup.
        const int s = kernel.shift(tap, q.errorRed);
        if (s != DiffusionKernel::NoShift) {
            return withColour(old, toChannel(r + s), toChannel(g + s), toChannel(b + s));
        }
    }
    return withColour(old, toChannel(kernel.spread(tap, q.errorRed, r)),
                      toChannel(kernel.spread(tap, q.errorGreen, g)),
                      toChannel(kernel.spread(tap, q.errorBlue, b)));
}

// Diffuses one row in place, left to right. quantise(r, g, b) gives entry
// 0's colour and errors; with OneError the three errors are equal.
//
// Where the kernel reaches past the bounds its positions are clamped into
// them: every entry is read first, the shares are worked out from those
// values, and the entries are written from the last back to entry 0, so
// of two shares clamped onto one pixel the earlier in list order stands,
// and a share clamped onto the pixel itself vanishes under entry 0.
template <bool OneError, typename Quantise>
void diffuseRow(Pixel* picture, int width, const Bounds& bounds, int y,
                const DiffusionKernel& kernel, Quantise&& quantise) {
    const auto& taps = kernel.taps();
    const std::size_t tapCount = taps.size();
    Pixel* row = picture + static_cast<std::ptrdiff_t>(y) * width;
    const bool rowsInside = y + kernel.reachDown() <= bounds.bottom - 1;
    const int fastFrom = bounds.left + kernel.reachLeft();
    const int fastTo = bounds.right - 1 - kernel.reachRight();
    for (int x = bounds.left; x < bounds.right; ++x) {
        Pixel* self = row + x;
        const Quantised q = quantise(redOf(*self), greenOf(*self), blueOf(*self));
        if (rowsInside && x >= fastFrom && x <= fastTo) {
            for (std::size_t t = 0; t < tapCount; ++t) {
                Pixel* n = self + taps[t].offset;
                *n = spreadInto<OneError>(*n, kernel, t, q);
            }
        } else {
            std::array<Pixel*, 16> at{};
            std::array<Pixel, 16> value{};
            for (std::size_t t = 0; t < tapCount; ++t) {
                const int nx = std::clamp(x + taps[t].dx, bounds.left, bounds.right - 1);
                const int ny = std::clamp(y + taps[t].dy, bounds.top, bounds.bottom - 1);
                at[t] = picture + static_cast<std::ptrdiff_t>(ny) * width + nx;
                value[t] = *at[t];
            }
            for (std::size_t t = 0; t < tapCount; ++t)
                value[t] = spreadInto<OneError>(value[t], kernel, t, q);
            for (std::size_t t = tapCount; t-- > 0;)
                *at[t] = value[t];
        }
        *self = withColour(*self, toChannel(q.red), toChannel(q.green), toChannel(q.blue));
    }
}

} // namespace lumiran::diffusion
