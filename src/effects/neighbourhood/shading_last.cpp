// ShadingLast: the end of the shade correction.
#include "effects/neighbourhood/class_neighborhood_op.h"

namespace lumiran {

// The array holds the background estimate (a rank filter and a smoothing of
// the picture); the picture itself is the kept source. Each channel becomes
// source / background * colour, rounded, and 0 where the background is 0.
// Without a kept source of the same size the array stands for both.
void Class_NeighborhoodOp::ShadingLast(std::int16_t left, std::int16_t top, std::int16_t right,
                                       std::int16_t bottom, std::int16_t red, std::int16_t green,
                                       std::int16_t blue) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Surface* kept = context().kept0;
        const Surface& original = kept != nullptr && kept->sameSize(ImageBits) ? *kept : ImageBits;
        auto ratio = [](int source, int work, int colour) -> std::int16_t {
            if (work == 0) return 0;
            return roundTo<std::int16_t>(static_cast<double>(source) / work * colour);
        };
        mapPixels<ResultTail::Clamp>(rect, [&](int x, int y, int& r, int& g, int& b) {
            const Pixel s = original.at(x, y);
            const Rgb16 result{ratio(redOf(s), r, red), ratio(greenOf(s), g, green),
                               ratio(blueOf(s), b, blue)};
            // The blend sees the picture, not the background estimate.
            r = redOf(s);
            g = greenOf(s);
            b = blueOf(s);
            return result;
        });
    });
}

} // namespace lumiran
