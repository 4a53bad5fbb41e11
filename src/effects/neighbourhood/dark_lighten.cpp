// DarkLighten: each channel folded about a level that the grey of the pixel
// or of its window sets.
#include "effects/neighbourhood/class_neighborhood_op.h"

#include <algorithm>
#include <cstdlib>

namespace lumiran {
namespace {

using neighbourhood::Area;

// The fold: v = 255 - a for a grey a of 128 and above, else 0; the level
// a2 = |a - (v - a)| up to 255; each channel |255 - |c - a2||.
Pixel fold(Pixel p, int a) {
    const int v = a >= 128 ? 255 - a : 0;
    const int level = std::min(std::abs(a - (v - a)), 255);
    auto channel = [level](int c) { return std::abs(255 - std::abs(c - level)); };
    return withColour(p, channel(redOf(p)), channel(greenOf(p)), channel(blueOf(p)));
}

// The truncated mean grey (r + g + b) / 3 of the window around (x, y).
int windowGrey(const Surface& picture, int x, int y, int reach) {
    int sum = 0;
    for (int dy = -reach; dy <= reach; ++dy) {
        const Pixel* row = picture.row(y + dy).data();
        for (int dx = -reach; dx <= reach; ++dx) {
            const Pixel p = row[x + dx];
            sum += redOf(p) + greenOf(p) + blueOf(p);
        }
    }
    return sum / (3 * neighbourhood::windowLength(reach));
}

} // namespace

void Class_NeighborhoodOp::DarkLighten(std::uint8_t kind, std::uint8_t form, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::int16_t upper, std::int16_t lower) {
    guarded([&] {
        if (kind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = kind; // kind 0 is the pixel alone, 1..3 windows 3x3..7x7
        const Area inner = areaOf(rect).inner(reach);
        // One step: the fold where the grey lies within lower..upper.
        auto step = [&](const Surface& picture, int x, int y) {
            const Pixel p = picture.at(x, y);
            const int a = windowGrey(picture, x, y, reach);
            return a >= lower && a <= upper ? fold(p, a) : p;
        };
        const int rows = bottom - top;
        // Form 1 folds the result once more: the first pass goes to a copy,
        // the second reads its windows from there. Progress counts both.
        Surface once;
        if (form == 1) {
            once = ImageBits;
            SetProgressRange(0, 2 * rows);
            const bool done = forEachRow(rect, [&](int y, int, int) {
                if (!inner.containsRow(y)) return;
                for (int x = inner.firstColumn; x < inner.endColumn; ++x)
                    once.at(x, y) = step(ImageBits, x, y);
            });
            if (!done) return;
        } else {
            SetProgressRange(top, bottom);
        }
        const Surface& input = form == 1 ? once : ImageBits;
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y)) return;
            const Pixel* source = ImageBits.row(y).data();
            for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
                const Pixel p = step(input, x, y);
                storeTrans(x, y, source[x],
                           {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))});
            }
        });
    });
}

} // namespace lumiran
