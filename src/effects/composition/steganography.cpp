// Hiding the kept image in the document by small changes of its channels,
// and getting it back as the difference against the untouched carrier.
#include "effects/composition/class_composition.h"
#include "effects/composition/composition_support.h"

#include <cstdlib>

namespace lumiran {
namespace {

using composition::rgb16;

// A step added below the carrier's limit and taken away from it on, so the
// channel never leaves 0..255 and the difference stays the step.
[[nodiscard]] constexpr int carry(int c, int step, int limit) {
    return c < limit ? c + step : c - step;
}

// The twelve levels of grey: the bounds 21, 42, .. 252 are the multiples of
// 21, and level n spreads as n / 3 on each channel with the remainder going
// to red, then green: 1 (1, 0, 0), 2 (1, 1, 0), 3 (1, 1, 1), 4 (2, 1, 1) ..
// 12 (4, 4, 4).
struct TwelveLevels {
    [[nodiscard]] Rgb16 operator()(int r, int g, int b, int r1, int g1, int b1) const {
        const int level = std::min((r1 + g1 + b1) / 3 / 21, 12);
        return rgb16(carry(r, (level + 2) / 3, 250), carry(g, (level + 1) / 3, 250),
                     carry(b, level / 3, 250));
    }
};

} // namespace

void Class_Composition::Suteganography_Hide(std::uint8_t type, std::int16_t left, std::int16_t top,
                                            std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect area = sharedArea(left, top, right, bottom);
        switch (type) {
        case 0:
            // Two levels, in red alone.
            mergeRows(area, [](int r, int g, int b, int r1, int g1, int b1) {
                const int bit = roundInRange<int>((r1 + g1 + b1) / 3.0) >= 128 ? 1 : 0;
                return rgb16(carry(r, bit, 255), g, b);
            });
            break;
        case 1:
            mergeRows(area, TwelveLevels{});
            break;
        case 2:
            // Eight levels a channel: 32 values of the hidden channel a step.
            mergeRows(area, [](int r, int g, int b, int r1, int g1, int b1) {
                return rgb16(carry(r, r1 / 32, 247), carry(g, g1 / 32, 247),
                             carry(b, b1 / 32, 247));
            });
            break;
        default:
            break;
        }
    });
}

void Class_Composition::Suteganography_Extraction(std::uint8_t type, std::int16_t left,
                                                  std::int16_t top, std::int16_t right,
                                                  std::int16_t bottom) {
    guarded([&] {
        const ProcessRect area = sharedArea(left, top, right, bottom);
        switch (type) {
        case 0:
            mergeRows(area, [](int r, int, int, int r1, int, int) {
                const int v = r1 != r ? 255 : 0;
                return rgb16(v, v, v);
            });
            break;
        case 1:
            mergeRows(area, [](int r, int g, int b, int r1, int g1, int b1) {
                const int d = (std::abs(r1 - r) + std::abs(g1 - g) + std::abs(b1 - b)) * 7;
                const int v = std::min(d * 3, 255);
                return rgb16(v, v, v);
            });
            break;
        case 2:
            mergeRows(area, [](int r, int g, int b, int r1, int g1, int b1) {
                return rgb16(std::abs(r1 - r) * 32, std::abs(g1 - g) * 32, std::abs(b1 - b) * 32);
            });
            break;
        default:
            break;
        }
    });
}

} // namespace lumiran
