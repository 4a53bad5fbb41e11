#include "effects/halftone/binarization/bilevel_map.h"

#include "effects/halftone/binarization/binarization_support.h"
#include "engine/shared_rows.h"

#include <algorithm>

namespace lumiran {
namespace {

template <typename Measure>
void measureRows(RunContext& context, const Surface& source, BilevelMap& map, int right, int bottom,
                 int polarity, int threshold, Measure measure) {
    const int left = map.left();
    const int columns = right - left;
    auto foreground = [&](Pixel p) -> std::uint8_t {
        const int v = measure(p);
        return polarity == 0 ? (v >= threshold ? 1 : 0) : (v <= threshold ? 1 : 0);
    };
    forEachRowShared(context, map.top(), bottom + 1, columns, [&](int y) {
        std::uint8_t* out = map.row(y);
        if (y == bottom) {
            std::fill_n(out, map.width(), std::uint8_t{0});
            return;
        }
        const Pixel* in = source.row(y).data() + left;
        for (int i = 0; i < columns; ++i)
            out[i] = foreground(in[i]);
        out[columns] = 0;
    });
}

} // namespace

BilevelMap foregroundMap(RunContext& context, const Surface& source, int left, int top, int right,
                         int bottom, int measure, int polarity, int threshold) {
    BilevelMap map = BilevelMap::unfilled(left, top, right, bottom);
    auto run = [&](auto measureOf) {
        measureRows(context, source, map, right, bottom, polarity, threshold, measureOf);
    };
    // The measure is chosen once, outside the pixel loop.
    switch (measure) {
    case 2:
        run([](Pixel p) { return redOf(p); });
        break;
    case 3:
        run([](Pixel p) { return greenOf(p); });
        break;
    case 4:
        run([](Pixel p) { return blueOf(p); });
        break;
    default:
        run([measure](Pixel p) { return bilevel::measured(measure, p); });
        break;
    }
    return map;
}

} // namespace lumiran
