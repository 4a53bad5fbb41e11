#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/class_binarization.h"

namespace lumiran {

void Class_Binarization::DrawingColorBinarization(std::int16_t threshold, std::int16_t kind,
                                                  std::int16_t form, std::int16_t left,
                                                  std::int16_t top, std::int16_t right,
                                                  std::int16_t bottom, std::uint8_t red,
                                                  std::uint8_t green, std::uint8_t blue) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (!resultReady() || kind < 0 || kind > 3) return;
        const int t = threshold;
        const Rgb16 colour{red, green, blue};
        // Form 1 keeps the source where form 0 puts black or white.
        const bool keepSource = form != 0;
        mapOwnPixels(rect, [=](int r, int g, int b) {
            const Rgb16 source{static_cast<std::int16_t>(r), static_cast<std::int16_t>(g),
                               static_cast<std::int16_t>(b)};
            auto plain = [&](std::int16_t grey) {
                return keepSource ? source : Rgb16{grey, grey, grey};
            };
            switch (kind) {
            case 0:
                return bilevel::luminance(r, g, b) >= t ? colour : plain(0);
            case 1:
                return bilevel::luminance(r, g, b) < t ? colour : plain(255);
            default: {
                // Each channel apart: kind 2 puts the colour above the
                // threshold, kind 3 below it.
                const bool colourAbove = kind == 2;
                auto one = [&](int value, std::int16_t drawn, std::int16_t own) {
                    const bool above = value >= t;
                    if (above == colourAbove) return drawn;
                    return keepSource ? own : std::int16_t{0};
                };
                return Rgb16{one(r, colour.red, source.red), one(g, colour.green, source.green),
                             one(b, colour.blue, source.blue)};
            }
            }
        });
    });
}

} // namespace lumiran
