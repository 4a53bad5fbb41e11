#pragma once

// The sums of the afterimages taken over a run of pixels of a row, one
// sample index at a time across the run: the places of one index are
// worked out side by side and the pixels gathered, so the loops run on the
// vector unit. Then the means, the integer quotients made as exact
// quotients of doubles (below 2^53 they truncate as the integer division
// does), so that they vectorise too.
#include "engine/channels.h"
#include "engine/effect_error.h"
#include "engine/numeric.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

namespace lumiran::soften {

inline constexpr int RunPixels = 256;

struct RunSums {
    std::array<int, RunPixels> r, g, b;
    std::array<Pixel, RunPixels> first;

    // forSample(j) gives the sampler of index j, whose call with i is the
    // pixel sample j of the run's i-th pixel reads.
    template <typename ForSample>
    void gather(int samples, int m, ForSample forSample) {
        const auto n = static_cast<std::size_t>(m);
        {
            const auto sample = forSample(0);
            for (std::size_t i = 0; i < n; ++i) {
                const Pixel e = sample(static_cast<int>(i));
                first[i] = e;
                const IntRgb v = channelsOf(e);
                r[i] = v.r;
                g[i] = v.g;
                b[i] = v.b;
            }
        }
        for (int j = 1; j < samples; ++j) {
            const auto sample = forSample(j);
            for (std::size_t i = 0; i < n; ++i) {
                const IntRgb v = channelsOf(sample(static_cast<int>(i)));
                r[i] += v.r;
                g[i] += v.g;
                b[i] += v.b;
            }
        }
    }

    // The sums, wrapped to 16 bits, become the means of the smooth type.
    void means(int count, int type, int m) {
        const double samples = count + 1;
        bool zero = false;
        for (std::size_t i = 0; i < static_cast<std::size_t>(m); ++i) {
            const IntRgb sum{wrap16(r[i]), wrap16(g[i]), wrap16(b[i])};
            IntRgb v{quotient(sum.r, samples), quotient(sum.g, samples), quotient(sum.b, samples)};
            if (type != 0) {
                // The first sample counted Weight times, Weight growing with
                // its difference from the mean.
                const IntRgb e = channelsOf(first[i]);
                const int d = std::abs(v.r - e.r) + std::abs(v.g - e.g) + std::abs(v.b - e.b);
                const int weight = std::clamp(d / 3, 0, 128);
                const int divisor = count + weight;
                zero |= divisor == 0;
                const double by = divisor == 0 ? 1.0 : divisor;
                v = {quotient(sum.r - e.r + weight * e.r, by),
                     quotient(sum.g - e.g + weight * e.g, by),
                     quotient(sum.b - e.b + weight * e.b, by)};
            }
            r[i] = v.r;
            g[i] = v.g;
            b[i] = v.b;
        }
        if (zero) throw EffectError::divisionByZero();
    }

    [[nodiscard]] static int quotient(int numerator, double divisor) {
        return static_cast<int>(numerator / divisor);
    }
};

// The pixel at (px, py), an axis outside the bounds falling back to the
// pixel's own (x, y), which lies inside them.
struct SampleBounds {
    int left, top, right, bottom;
    const Pixel* image;
    int width;

    [[nodiscard]] Pixel at(int px, int py, int x, int y) const {
        px = (px < left) | (px > right - 1) ? x : px;
        py = (py < top) | (py > bottom - 1) ? y : py;
        return image[py * width + px];
    }
};

} // namespace lumiran::soften
