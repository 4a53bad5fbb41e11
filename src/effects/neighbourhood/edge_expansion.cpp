// Edge_Expansion: each channel shaped by a wave of its ratio to the mean of
// its window.
#include "effects/neighbourhood/class_edge.h"

#include <cmath>

namespace lumiran {
namespace {

// (sin(a pi / b) + 1) / 2 * (cos(a pi / b) + 1) / 2 * a with a the channel
// and b the window's mean (1 where the mean is 0): a flat area, where a
// equals b, gives 0, and a channel away from its surroundings lights up.
std::int16_t shaped(int channel, int mean) {
    const double ratio = channel * 3.14159 / (mean == 0 ? 1 : mean);
    return roundTo<std::int16_t>((std::sin(ratio) + 1) / 2 * (std::cos(ratio) + 1) / 2 * channel);
}

} // namespace

void Class_Edge::Edge_Expansion(std::uint8_t windowKind, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (windowKind > 2) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = windowKind + 1;
        const int count = neighbourhood::windowLength(reach);
        const neighbourhood::Area inner = areaOf(rect).inner(reach);
        SetProgressRange(top, bottom);
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y)) return;
            const Pixel* source = ImageBits.row(y).data();
            for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
                int r = 0, g = 0, b = 0;
                for (int dy = -reach; dy <= reach; ++dy) {
                    const Pixel* row = ImageBits.row(y + dy).data();
                    for (int dx = -reach; dx <= reach; ++dx) {
                        r += redOf(row[x + dx]);
                        g += greenOf(row[x + dx]);
                        b += blueOf(row[x + dx]);
                    }
                }
                const Pixel s = source[x];
                storeTrans(x, y, s,
                           {shaped(redOf(s), r / count), shaped(greenOf(s), g / count),
                            shaped(blueOf(s), b / count)});
            }
        });
    });
}

} // namespace lumiran
