#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/class_binarization.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace lumiran {

void Class_Binarization::morphology(std::int16_t shape, const ProcessRect& rect,
                                    std::int16_t channel, bool dilate, std::int16_t threshold) {
    SetProgressRange(rect.top, rect.bottom);
    const bool knownShape = shape == 0 || shape == 1;
    const Span s = spanOf(rect);
    // Lent its source, the call makes its result on every core: the rows
    // outside the rectangle at once, each row inside as the loop takes it.
    const bool ownResult = TransBits.empty() && !ImageBits.empty();
    if (ownResult) makeTransOutside(knownShape ? s : Span{});
    if (!arraysReady() || !knownShape) return;
    const bool square = shape == 1;
    const bilevel::Channels chosen = bilevel::chosenChannels(channel);
    const int value = dilate ? 255 : 0;
    // Centres are the interior pixels, so a shape never leaves the
    // rectangle. A pixel changes when any centre whose shape covers it
    // passes the test; the shapes are symmetric, so those centres lie in
    // the pixel's own shape. Every covering centre writes the same value,
    // blended with the pixel's own source, so the order of centres does
    // not matter.
    const int firstCentre = s.firstColumn + 1, lastCentre = s.endColumn - 2;
    auto centreRow = [&](int y) { return y >= s.firstRow + 1 && y <= s.endRow - 2; };
    forEachRow(rect, [&](int y, int x0, int x1) {
        if (ownResult) copyRowToTrans(y);
        // Which pixels of the rows y - 1 .. y + 1 pass as centres, each
        // tested once, with a column of no centres on either side.
        const auto columns = static_cast<std::size_t>(x1 - x0 + 2);
        std::vector<std::uint8_t> passing(3 * columns, 0);
        for (int j = 0; j < 3; ++j) {
            if (!centreRow(y - 1 + j)) continue;
            const Pixel* in = ImageBits.row(y - 1 + j).data();
            std::uint8_t* pass = passing.data() + static_cast<std::size_t>(j) * columns;
            for (int x = std::max(x0, firstCentre); x <= std::min(x1 - 1, lastCentre); ++x) {
                const int m = (redOf(in[x]) + greenOf(in[x]) + blueOf(in[x])) / 3;
                pass[x - x0 + 1] =
                    static_cast<std::uint8_t>(dilate ? m >= threshold : m <= threshold);
            }
        }
        // The shape's cells or'ed for every pixel of the row at once.
        const std::uint8_t* up = passing.data();
        const std::uint8_t* mid = up + columns;
        const std::uint8_t* down = mid + columns;
        std::vector<std::uint8_t> covered(columns, 0);
        for (std::size_t i = 1; i + 1 < columns; ++i) {
            covered[i] = mid[i - 1] | mid[i] | mid[i + 1] | up[i] | down[i];
            if (square) covered[i] |= up[i - 1] | up[i + 1] | down[i - 1] | down[i + 1];
        }
        Pixel* out = TransBits.row(y).data();
        const Pixel* in = ImageBits.row(y).data();
        for (int x = x0; x < x1; ++x) {
            if (covered[static_cast<std::size_t>(x - x0 + 1)] == 0) continue;
            const int r = redOf(in[x]), g = greenOf(in[x]), b = blueOf(in[x]);
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
