#include "effects/halftone/dithering/class_dithering.h"
#include "effects/halftone/dithering/mean_window.h"

namespace lumiran {
namespace {

constexpr Pixel White = 0x00FFFFFFu;

Pixel whitened(Pixel p) {
    return p | White;
}

} // namespace

void Class_Dithering::DinamicThresholding(std::int16_t colourMode, std::int16_t maximumThreshold,
                                          std::int16_t minimumThreshold, double darken, double edge,
                                          std::int16_t left, std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(rect.top, rect.bottom);
        if (!arraysReady()) return;
        const Span s = spanOf(rect);
        if (s.empty()) return;
        // The top and bottom rows turn white in the source, so they feed
        // white into the means but keep the picture in the result; the
        // first and last columns turn white in the result.
        for (const int y : {s.firstRow, s.endRow - 1}) {
            for (int x = s.firstColumn; x < s.endColumn; ++x)
                ImageBits.at(x, y) = whitened(ImageBits.at(x, y));
        }
        for (int y = s.firstRow; y < s.endRow; ++y) {
            for (const int x : {s.firstColumn, s.endColumn - 1})
                TransBits.at(x, y) = whitened(TransBits.at(x, y));
        }
        const bool mono = colourMode == 0;
        auto threshold = [&](int mean, int towardsUpper, int towardsLeft) {
            return roundTo<std::int16_t>((towardsUpper / 2.0 + towardsLeft / 2.0) * edge +
                                         mean * darken / 10);
        };
        auto decide = [&](int mean, int centre, int upper, int leftOne, bool edgeOfCentre) {
            if (mean >= maximumThreshold) return 255;
            if (mean <= minimumThreshold) return 0;
            // Mono compares the mean against edges of the centre, colour
            // the centre against edges of the mean.
            const int from = edgeOfCentre ? centre : mean;
            const int compared = edgeOfCentre ? mean : centre;
            return compared < threshold(mean, from - upper, from - leftOne) ? 0 : 255;
        };
        forEachRow(rect, [&](int y, int, int) {
            if (y < s.firstRow + 1 || y > s.endRow - 2) return;
            Pixel* out = TransBits.row(y).data();
            for (int x = s.firstColumn + 1; x <= s.endColumn - 2; ++x) {
                // The window slides down each column; the first window of a
                // column reads its centre from the top row, and that value
                // stays above the next pixel's centre as well.
                MeanWindow w;
                for (int j = 0; j < 3; ++j) {
                    for (int i = 0; i < 3; ++i)
                        w.at[static_cast<std::size_t>(j * 3 + i)] =
                            ImageBits.at(x - 1 + i, y - 1 + j);
                }
                if (y == s.firstRow + 1) w.at[MeanWindow::Centre] = ImageBits.at(x, s.firstRow);
                if (y == s.firstRow + 2) w.at[MeanWindow::Upper] = ImageBits.at(x, s.firstRow);
                const Pixel centre = w.at[MeanWindow::Centre];
                const Pixel upper = w.at[MeanWindow::Upper];
                const Pixel leftOne = w.at[MeanWindow::Left];
                Rgb16 result;
                if (mono) {
                    const int a = (w.mean(redOf) + w.mean(greenOf) + w.mean(blueOf)) / 3;
                    const auto v = static_cast<std::int16_t>(
                        decide(a, averageOf(centre), averageOf(upper), averageOf(leftOne), true));
                    result = {v, v, v};
                } else {
                    auto channel = [&](auto of) {
                        return static_cast<std::int16_t>(
                            decide(w.mean(of), of(centre), of(upper), of(leftOne), false));
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
