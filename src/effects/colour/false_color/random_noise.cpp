#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/noise_stamps.h"

#include <algorithm>
#include <cstdint>

namespace lumiran {
namespace {

// Stamps laid for an amount of 1..255 over an area: a dot for every
// 1020 / amount pixels (4 % at the default 42), marks an eighth as many,
// since each covers about eight times the pixels.
std::int64_t stampCount(std::int64_t area, int amount, bool dot) {
    const std::int64_t count = area * std::max(amount, 0) / 1020;
    return dot ? count : count / 8;
}

} // namespace

// Draws from the one generator in a fixed order per stamp: column, row,
// then whatever the colour takes. Each row of the rectangle is a share of
// the stamps for progress and cancel.
template <typename Colour>
void Class_FalseColor::stamps(std::int16_t amount, std::uint8_t type, const ProcessRect& rect,
                              Colour&& colour) {
    SetProgressRange(rect.top, rect.bottom);
    const Span span = spanOf(rect);
    const int rows = std::max(rect.bottom - rect.top, 0);
    if (rows == 0) return;
    const int width = rect.right - rect.left;
    const int height = rect.bottom - rect.top;
    const Surface stamp = noiseStamp(type);
    const int half = stamp.width() / 2;
    const std::int64_t count = stampCount(static_cast<std::int64_t>(std::max(width, 0)) * height,
                                          amount, stamp.width() == 1);
    RandomGenerator& random = context().random;
    std::int64_t laid = 0;
    for (int row = 0; row < rows; ++row) {
        const std::int64_t share = count * (row + 1) / rows;
        for (; laid < share; ++laid) {
            const int x = static_cast<int>(random.next() * width) + rect.left - half;
            const int y = static_cast<int>(random.next() * height) + rect.top - half;
            const Rgb16 c = colour(random);
            for (int sy = 0; sy < stamp.height(); ++sy) {
                const int py = y + sy;
                if (py < span.firstRow || py >= span.endRow) continue;
                for (int sx = 0; sx < stamp.width(); ++sx) {
                    const int px = x + sx;
                    if (px < span.firstColumn || px >= span.endColumn) continue;
                    if ((stamp.at(sx, sy) & 0xFFFFFF) != 0) continue;
                    Pixel& pixel = ImageBits.at(px, py);
                    const Rgb16 v = finishPixel<ResultTail::Clamp>(redOf(pixel), greenOf(pixel),
                                                                   blueOf(pixel), c);
                    pixel = withColour(pixel, v.red, v.green, v.blue);
                }
            }
        }
        if (!finishRow()) return;
    }
}

void Class_FalseColor::RandamNoise_Mono(std::int16_t amount, std::uint8_t colour, std::uint8_t type,
                                        std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom) {
    guarded([&] {
        stamps(amount, type, {left, top, right, bottom}, [colour](RandomGenerator& random) {
            std::int16_t level = colour == 2 ? 0 : 255;
            if (colour == 0) level = random.next() < 0.5 ? 0 : 255;
            return Rgb16{level, level, level};
        });
    });
}

void Class_FalseColor::RandamNoise_Color(std::int16_t amount, std::uint8_t mode, std::int16_t red,
                                         std::int16_t green, std::int16_t blue, std::uint8_t type,
                                         std::int16_t left, std::int16_t top, std::int16_t right,
                                         std::int16_t bottom) {
    guarded([&] {
        stamps(amount, type, {left, top, right, bottom}, [=](RandomGenerator& random) {
            if (mode == 1) return Rgb16{red, green, blue};
            const auto channel = [&random] {
                return static_cast<std::int16_t>(random.next() * 256);
            };
            const std::int16_t r = channel();
            const std::int16_t g = channel();
            return Rgb16{r, g, channel()};
        });
    });
}

} // namespace lumiran
