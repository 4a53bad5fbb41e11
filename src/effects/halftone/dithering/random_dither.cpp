#include "effects/halftone/dithering/class_dithering.h"

namespace lumiran {

void Class_Dithering::randomDither(const ProcessRect& rect, bool mono, std::int16_t level) {
    BuildLevelTable(level, mono ? 0 : 1);
    SetProgressRange(rect.top, rect.bottom);
    if (!resultReady()) return;
    Surface& target = result();
    RandomGenerator& random = context().random;
    const double band = 256.0 / level;
    // One offset per pixel, in scan order from the one generator, spread
    // evenly over about one band either way.
    forEachRow<RowOrder::TopToBottom>(rect, [&](int y, int x0, int x1) {
        Pixel* row = target.row(y).data();
        for (int x = x0; x < x1; ++x) {
            const int drawn = roundTo<std::int16_t>(2 * band * random.next() + 1);
            const int n = roundTo<std::int16_t>(drawn - band);
            const Pixel p = row[x];
            if (mono) {
                const auto grey = static_cast<std::size_t>(
                    toChannel(ditherGrey(redOf(p), greenOf(p), blueOf(p)) + n));
                const int v = MonoLevelTable[grey];
                row[x] = withColour(p, v, v, v);
            } else {
                row[x] =
                    withColour(p, LevelTableR[static_cast<std::size_t>(toChannel(redOf(p) + n))],
                               LevelTableG[static_cast<std::size_t>(toChannel(greenOf(p) + n))],
                               LevelTableB[static_cast<std::size_t>(toChannel(blueOf(p) + n))]);
            }
        }
    });
}

} // namespace lumiran
