// The plain window means: Smoothing kinds 3, 7, 12, MovingAverage, and the
// unsharp mask Sharpen built on them.
#include "effects/smoothing/soften_window.h"

namespace lumiran {
namespace {

constexpr int windowSize(int k) {
    return (2 * k + 1) * (2 * k + 1);
}

// The integer quotient of each channel sum by the window's size.
template <int K>
soften::Divider meanDivider() {
    return soften::dividerFor(windowSize(K), windowSize(K) * 255);
}

} // namespace

void Class_Soften::meanSmoothing(int reach, const ProcessRect& rect) {
    windowFilter(reach, rect, [](auto k) {
        const soften::Divider mean = meanDivider<decltype(k)::value>();
        return [mean](IntRgb sum, IntRgb) -> IntRgb {
            return {static_cast<int>(mean(sum.r)), static_cast<int>(mean(sum.g)),
                    static_cast<int>(mean(sum.b))};
        };
    });
}

void Class_Soften::MovingAverage(std::uint8_t sizeKind, std::uint8_t, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guardedTrans([&] {
        // 9x9, 11x11, 13x13, 15x15. The window's top left corner runs from
        // left to right minus the side, so its centre keeps the margins of
        // every other window.
        if (sizeKind > 3) return;
        meanSmoothing(4 + sizeKind, {left, top, right, bottom});
    });
}

void Class_Soften::Sharpen(std::uint8_t sizeKind, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom) {
    guardedTrans([&] {
        if (sizeKind > 2) return;
        windowFilter(sizeKind + 1, {left, top, right, bottom}, [](auto k) {
            const soften::Divider mean = meanDivider<decltype(k)::value>();
            return [mean](IntRgb sum, IntRgb c) -> IntRgb {
                return {2 * c.r - static_cast<int>(mean(sum.r)),
                        2 * c.g - static_cast<int>(mean(sum.g)),
                        2 * c.b - static_cast<int>(mean(sum.b))};
            };
        });
    });
}

} // namespace lumiran
