#include "effects/halftone/binarization/bilevel_map.h"

#include "effects/halftone/binarization/binarization_support.h"

namespace lumiran {

BilevelMap foregroundMap(const Surface& source, int left, int top, int right, int bottom,
                         int measure, int polarity, int threshold) {
    BilevelMap map(left, top, right, bottom);
    for (int y = top; y < bottom; ++y) {
        for (int x = left; x < right; ++x) {
            const int v = bilevel::measured(measure, source.at(x, y));
            const bool background = polarity == 0 ? v < threshold : v > threshold;
            map.set(x, y, background ? 0 : 1);
        }
    }
    return map;
}

} // namespace lumiran
