#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/class_binarization.h"

namespace lumiran {

void Class_Binarization::TransformationBinarize(std::int16_t threshold, std::int16_t left,
                                                std::int16_t top, std::int16_t right,
                                                std::int16_t bottom, std::int16_t mode,
                                                std::int16_t channel) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (!resultReady()) return;
        const int t = threshold;
        const bilevel::Channels chosen = bilevel::chosenChannels(channel);
        // Mode 0 writes every result, -1 only the black ones, 1 only the
        // white ones; any other mode writes none.
        const bool writeBlack = mode == 0 || mode == -1;
        const bool writeWhite = mode == 0 || mode == 1;
        mapOwnPixels(rect, [=](int r, int g, int b) {
            const bool white = (r + g + b) / 3 >= t;
            const bool write = white ? writeWhite : writeBlack;
            return bilevel::replaced(write ? chosen : 0, white ? 255 : 0, r, g, b);
        });
    });
}

} // namespace lumiran
