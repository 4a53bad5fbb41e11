#include "effects/halftone/dithering/class_dithering.h"
#include "effects/halftone/dithering/mean_window.h"

#include <algorithm>
#include <span>

namespace lumiran {
namespace {

// The threshold of a mean by the weight list "0", "0.05", "0.1"; other
// weights take the mean as it is.
int weightedThreshold(int mean, std::int16_t weight) {
    switch (weight) {
    case 1:
        return roundTo<std::int16_t>(0.9 * mean + 12.75);
    case 2:
        return roundTo<std::int16_t>(0.8 * mean + 25.5);
    default:
        return mean;
    }
}

} // namespace

void Class_Dithering::LimitTheMeanValue(std::int16_t colourMode, std::int16_t weight,
                                        std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(rect.top, rect.bottom);
        if (!arraysReady()) return;
        const Span s = spanOf(rect);
        const bool mono = colourMode == 0;
        const std::span<const Pixel> elements = ImageBits.elements();
        const auto width = static_cast<std::ptrdiff_t>(ImageBits.width());
        const auto lastElement = static_cast<std::ptrdiff_t>(elements.size()) - 1;
        // Every column is scanned, so the window reaches one column past
        // each side. The window entering a column (rows top to top + 2)
        // is clamped into the rectangle; the rows read as it slides down
        // are taken by their flat index, so one past the side is the
        // neighbouring row's far end, as in the row-major array.
        auto windowPixel = [&](int x, int y) {
            if (y <= s.firstRow + 2)
                return ImageBits.at(std::clamp(x, s.firstColumn, s.endColumn - 1), y);
            const std::ptrdiff_t index = std::clamp<std::ptrdiff_t>(y * width + x, 0, lastElement);
            return elements[static_cast<std::size_t>(index)];
        };
        forEachRow(rect, [&](int y, int x0, int x1) {
            if (y < s.firstRow + 1 || y > s.endRow - 2) return;
            Pixel* out = TransBits.row(y).data();
            for (int x = x0; x < x1; ++x) {
                MeanWindow w;
                for (int j = 0; j < 3; ++j) {
                    for (int i = 0; i < 3; ++i)
                        w.at[static_cast<std::size_t>(j * 3 + i)] =
                            windowPixel(x - 1 + i, y - 1 + j);
                }
                const Pixel centre = w.at[MeanWindow::Centre];
                Rgb16 result;
                if (mono) {
                    // The two modes differ at equality: mono gives black there.
                    const int a = (w.mean(redOf) + w.mean(greenOf) + w.mean(blueOf)) / 3;
                    const int p = ditherGrey(redOf(centre), greenOf(centre), blueOf(centre));
                    const auto v =
                        static_cast<std::int16_t>(weightedThreshold(a, weight) < p ? 255 : 0);
                    result = {v, v, v};
                } else {
                    auto channel = [&](auto of) {
                        return static_cast<std::int16_t>(
                            weightedThreshold(w.mean(of), weight) > of(centre) ? 0 : 255);
                    };
                    result = {channel(redOf), channel(greenOf), channel(blueOf)};
                }
                const Pixel source = ImageBits.at(x, y);
                result = finishPixel<ResultTail::Clamp>(redOf(source), greenOf(source),
                                                        blueOf(source), result);
                out[x] = withColour(out[x], result.red, result.green, result.blue);
            }
        });
    });
}

} // namespace lumiran
