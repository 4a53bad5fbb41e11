#include "effects/smoothing/class_soften.h"

namespace lumiran {

void Class_Soften::Smoothing(std::uint8_t kind, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom) {
    guardedTrans([&] {
        const ProcessRect rect{left, top, right, bottom};
        switch (kind) {
        case 0:
        case 1:
        case 2:
            weightedSmoothing(kind, rect);
            break;
        case 3:
            meanSmoothing(1, rect);
            break;
        case 7:
            meanSmoothing(2, rect);
            break;
        case 12:
            meanSmoothing(3, rect);
            break;
        case 8:
        case 9:
            staleResultFields(rect);
            break;
        case 10:
            adaptiveSmoothing(1, rect);
            break;
        case 11:
            adaptiveSmoothing(2, rect);
            break;
        case 14:
            adaptiveSmoothing(3, rect);
            break;
        case 13:
            savitzkyGolay(rect);
            break;
        default:
            // 4, 5 and 6 have no case; other kinds none either.
            break;
        }
    });
}

} // namespace lumiran
