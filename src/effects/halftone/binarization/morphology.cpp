#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/class_binarization.h"

#include <array>
#include <span>

namespace lumiran {
namespace {

struct Offset {
    int dx;
    int dy;
};

constexpr std::array<Offset, 5> Cross{{{0, 0}, {-1, 0}, {1, 0}, {0, -1}, {0, 1}}};
constexpr std::array<Offset, 9> Square{
    {{-1, -1}, {0, -1}, {1, -1}, {-1, 0}, {0, 0}, {1, 0}, {-1, 1}, {0, 1}, {1, 1}}};

} // namespace

void Class_Binarization::morphology(std::int16_t shape, const ProcessRect& rect,
                                    std::int16_t channel, bool dilate, std::int16_t threshold) {
    SetProgressRange(rect.top, rect.bottom);
    if (!arraysReady() || (shape != 0 && shape != 1)) return;
    const std::span<const Offset> offsets =
        shape == 0 ? std::span<const Offset>(Cross) : std::span<const Offset>(Square);
    const Span s = spanOf(rect);
    const bilevel::Channels chosen = bilevel::chosenChannels(channel);
    const int value = dilate ? 255 : 0;
    // Centres are the interior pixels, so a shape never leaves the
    // rectangle. A pixel changes when any centre whose shape covers it
    // passes the test; the shapes are symmetric, so those centres lie in
    // the pixel's own shape. Every covering centre writes the same value,
    // blended with the pixel's own source, so the order of centres does
    // not matter.
    auto passes = [&](int x, int y) {
        if (x < s.firstColumn + 1 || x > s.endColumn - 2 || y < s.firstRow + 1 ||
            y > s.endRow - 2) {
            return false;
        }
        const Pixel p = ImageBits.at(x, y);
        const int m = (redOf(p) + greenOf(p) + blueOf(p)) / 3;
        return dilate ? m >= threshold : m <= threshold;
    };
    forEachRow(rect, [&](int y, int x0, int x1) {
        Pixel* out = TransBits.row(y).data();
        for (int x = x0; x < x1; ++x) {
            bool covered = false;
            for (const Offset o : offsets)
                covered = covered || passes(x + o.dx, y + o.dy);
            if (!covered) continue;
            const Pixel p = ImageBits.at(x, y);
            const int r = redOf(p), g = greenOf(p), b = blueOf(p);
            const Rgb16 v =
                finishPixel<ResultTail::Clamp>(r, g, b, bilevel::replaced(chosen, value, r, g, b));
            out[x] = withColour(out[x], v.red, v.green, v.blue);
        }
    });
}

void Class_Binarization::Dilatation(std::int16_t shape, std::int16_t threshold, std::int16_t left,
                                    std::int16_t top, std::int16_t right, std::int16_t bottom,
                                    std::int16_t channel) {
    guarded([&] { morphology(shape, {left, top, right, bottom}, channel, true, threshold); });
}

void Class_Binarization::Erosion(std::int16_t shape, std::int16_t threshold, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::int16_t channel) {
    guarded([&] { morphology(shape, {left, top, right, bottom}, channel, false, threshold); });
}

} // namespace lumiran
