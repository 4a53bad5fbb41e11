#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>

namespace lumiran {
namespace {

// The result channel for each grey 0..255: style 0 runs from the colour at
// grey 0 to white at 255, style 1 is the mean of colour and grey. An
// unknown style never sets the result fields, which keep 0.
std::array<std::int16_t, 256> channelByGrey(std::uint8_t style, int colour) {
    std::array<std::int16_t, 256> table{};
    for (int v = 0; v < 256; ++v) {
        if (style == 0) {
            table[v] = roundTo<std::int16_t>((255 - colour) / 255.0 * v + colour);
        } else if (style == 1) {
            table[v] = roundTo<std::int16_t>((colour + v) / 2.0);
        }
    }
    return table;
}

int greyByBasis(std::uint8_t basis, int r, int g, int b) {
    switch (basis) {
    case 0:
        return luminanceY(r, g, b);
    case 1:
        return std::max({r, g, b});
    case 2:
        return std::min({r, g, b});
    default:
        return 0; // the grey field is never set
    }
}

} // namespace

void Class_ColorOp::OneColorStyle(std::uint8_t basis, std::uint8_t style, std::int16_t red,
                                  std::int16_t green, std::int16_t blue, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const auto reds = channelByGrey(style, red);
        const auto greens = channelByGrey(style, green);
        const auto blues = channelByGrey(style, blue);
        const std::uint8_t flag = calculationFlag();
        const Span span = spanOf(rect);

        // Columns outside, rows inside: progress and the cancel test come
        // after each column, against the range of rows.
        SetProgressRange(top, bottom);
        const int endColumn = loopEnd(right);
        for (int x = left; x < endColumn; ++x) {
            if (x >= 0 && x < ImageBits.width()) {
                for (int y = span.firstRow; y < span.endRow; ++y) {
                    Pixel& pixel = ImageBits.at(x, y);
                    const int r = redOf(pixel), g = greenOf(pixel), b = blueOf(pixel);
                    const int v = greyByBasis(basis, r, g, b);
                    const Rgb16 result{reds[v], greens[v], blues[v]};
                    const Rgb16 stored = flag > 0 ? applyCalculationType(flag, r, g, b, result)
                                                  : clampResult(result);
                    pixel = withColour(pixel, stored.red, stored.green, stored.blue);
                }
            }
            if (!finishRow()) break;
        }
    });
}

} // namespace lumiran
