#include "effects/colour/class_color_op.h"
#include "engine/colour_models.h"

#include <algorithm>

namespace lumiran {
namespace {

constexpr Rgb16 grey(int v) {
    const auto c = static_cast<std::int16_t>(v);
    return {c, c, c};
}

// Colour difference plus 128: capped above, left to wrap below.
constexpr int chromaGrey(int channel, int y) {
    return std::min(channel - y + 128, 255);
}

} // namespace

void Class_ColorOp::Gray_Effect(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // One loop per kind keeps the choice out of the pixel loop.
        auto run = [&](auto rule) { mapPixels<ResultTail::Raw>(rect, rule); };
        switch (kind) {
        case 0:
            run([](int r, int g, int b) { return grey(averageGrey(r, g, b)); });
            break;
        case 1:
            run([](int r, int, int) { return grey(r); });
            break;
        case 2:
            run([](int, int g, int) { return grey(g); });
            break;
        case 3:
            run([](int, int, int b) { return grey(b); });
            break;
        case 4:
            run([](int, int, int b) { return grey(255 - b); });
            break;
        case 5:
            run([](int r, int, int) { return grey(255 - r); });
            break;
        case 6:
            run([](int, int g, int) { return grey(255 - g); });
            break;
        case 7:
            run([](int r, int g, int b) { return grey(std::max({r, g, b})); });
            break;
        case 8:
            run([](int r, int g, int b) { return grey(programMedian(r, g, b)); });
            break;
        case 9:
            run([](int r, int g, int b) { return grey(std::min({r, g, b})); });
            break;
        case 10:
            run([](int r, int g, int b) {
                const MaxMin m = MaxMinOfThree(r, g, b);
                return grey(lightness(m.max, m.min));
            });
            break;
        case 11:
            run([](int r, int g, int b) { return grey(luminanceY(r, g, b)); });
            break;
        case 12:
            run([](int r, int g, int b) { return grey(chromaGrey(b, luminanceY(r, g, b))); });
            break;
        case 13:
            run([](int r, int g, int b) { return grey(chromaGrey(r, luminanceY(r, g, b))); });
            break;
        default:
            // No kind matched: the result fields keep their initial 0.
            run([](int, int, int) { return grey(0); });
            break;
        }
    });
}

} // namespace lumiran
