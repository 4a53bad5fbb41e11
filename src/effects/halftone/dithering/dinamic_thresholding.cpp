#include "effects/halftone/dithering/class_dithering.h"
#include "effects/halftone/dithering/mean_window.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {
namespace {

constexpr Pixel White = 0x00FFFFFFu;

Pixel whitened(Pixel p) {
    return p | White;
}

// The colour bytes in 16-bit fields, blue lowest: nine pixels' sums fit.
std::uint64_t spread(Pixel p) {
    return static_cast<std::uint64_t>(blueOf(p)) | static_cast<std::uint64_t>(greenOf(p)) << 16 |
           static_cast<std::uint64_t>(redOf(p)) << 32;
}

// The truncated mean of one field of nine pixels' sums.
int meanOf(std::uint64_t sums, int field) {
    return static_cast<int>((sums >> (16 * field)) & 0xFFFFu) / 9;
}

} // namespace

void Class_Dithering::DinamicThresholding(std::int16_t colourMode, std::int16_t maximumThreshold,
                                          std::int16_t minimumThreshold, double darken, double edge,
                                          std::int16_t left, std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        SetProgressRange(rect.top, rect.bottom);
        // Unfetched, the result starts as the source's copy: the span's rows
        // are copied by the thread that works on them, the others before.
        const Span s = spanOf(rect);
        const bool ownResult = TransBits.empty() && !ImageBits.empty();
        if (ownResult) makeTransOutside(s);
        if (!arraysReady()) return;
        if (s.empty()) return;
        // The top and bottom rows turn white in the source, so they feed
        // white into the means but keep the picture in the result; the
        // first and last columns turn white in the result. The source may
        // be lent, so the white rows are copies read in its place.
        auto whitenedRow = [&](int y) {
            std::vector<Pixel> row(ImageBits.row(y).begin(), ImageBits.row(y).end());
            for (int x = s.firstColumn; x < s.endColumn; ++x)
                row[static_cast<std::size_t>(x)] = whitened(row[static_cast<std::size_t>(x)]);
            return row;
        };
        const std::vector<Pixel> topRow = whitenedRow(s.firstRow);
        const std::vector<Pixel> bottomRow = whitenedRow(s.endRow - 1);
        auto sourceRow = [&](int y) -> const Pixel* {
            if (y == s.firstRow) return topRow.data();
            if (y == s.endRow - 1) return bottomRow.data();
            return ImageBits.row(y).data();
        };
        const bool mono = colourMode == 0;
        auto unrounded = [&](int mean, int towardsUpper, int towardsLeft) {
            return (towardsUpper / 2.0 + towardsLeft / 2.0) * edge + mean * darken / 10;
        };
        auto threshold = [&](int mean, int towardsUpper, int towardsLeft) {
            return roundTo<std::int16_t>(unrounded(mean, towardsUpper, towardsLeft));
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
        // Mono without a blend, where no threshold can leave the 16-bit
        // range (their edge terms lie within +-255, the means within 0..255):
        // nothing can fail, so the rows run without a branch per pixel.
        const double thresholdBound = 255.0 * std::abs(edge) + 255.0 * std::abs(darken) / 10;
        const bool plainMono = mono && calculationFlag() <= 0 && thresholdBound < 32767.0;
        auto monoRow = [&](const std::array<const Pixel*, 3>& rows,
                           std::span<const std::uint64_t> columns, Pixel* out) {
            for (int x = s.firstColumn + 1; x <= s.endColumn - 2; ++x) {
                const auto i = static_cast<std::size_t>(x - s.firstColumn);
                const std::uint64_t sums = columns[i - 1] + columns[i] + columns[i + 1];
                const int a = (meanOf(sums, 2) + meanOf(sums, 1) + meanOf(sums, 0)) / 3;
                const int centre = averageOf(rows[1][x]);
                const double t = roundHalfEvenInRange(unrounded(
                    a, centre - averageOf(rows[0][x]), centre - averageOf(rows[1][x - 1])));
                const bool white = a >= maximumThreshold || (a > minimumThreshold && !(a < t));
                out[x] = (out[x] & 0xFF000000u) | (white ? White : 0u);
            }
        };
        forEachRow(rect, [&](int y, int, int) {
            if (y < s.firstRow || y >= s.endRow) return;
            if (ownResult) copyRowToTrans(y);
            Pixel* out = TransBits.row(y).data();
            for (const int x : {s.firstColumn, s.endColumn - 1})
                out[x] = whitened(out[x]);
            if (y < s.firstRow + 1 || y > s.endRow - 2) return;
            const std::array<const Pixel*, 3> rows{sourceRow(y - 1), sourceRow(y),
                                                   sourceRow(y + 1)};
            // Each column's three rows summed once for the three windows
            // that hold it.
            std::vector<std::uint64_t> columns(
                static_cast<std::size_t>(s.endColumn - s.firstColumn));
            for (int x = s.firstColumn; x < s.endColumn; ++x)
                columns[static_cast<std::size_t>(x - s.firstColumn)] =
                    spread(rows[0][x]) + spread(rows[1][x]) + spread(rows[2][x]);
            // The first window of a column reads its centre from the top
            // row, and that value stays above the next pixel's centre.
            const Pixel* centreRow = y == s.firstRow + 1 ? topRow.data() : rows[1];
            const Pixel* upperRow = y == s.firstRow + 2 ? topRow.data() : rows[0];
            const bool substituted = centreRow != rows[1] || upperRow != rows[0];
            if (plainMono && !substituted) {
                monoRow(rows, columns, out);
                return;
            }
            for (int x = s.firstColumn + 1; x <= s.endColumn - 2; ++x) {
                const auto i = static_cast<std::size_t>(x - s.firstColumn);
                std::uint64_t sums = columns[i - 1] + columns[i] + columns[i + 1];
                const Pixel centre = centreRow[x];
                const Pixel upper = upperRow[x];
                const Pixel leftOne = rows[1][x - 1];
                if (substituted) {
                    // Taken out before put in, so no field goes under zero.
                    sums = sums - spread(rows[1][x]) + spread(centre);
                    sums = sums - spread(rows[0][x]) + spread(upper);
                }
                const int meanRed = meanOf(sums, 2);
                const int meanGreen = meanOf(sums, 1);
                const int meanBlue = meanOf(sums, 0);
                Rgb16 result;
                if (mono) {
                    const int a = (meanRed + meanGreen + meanBlue) / 3;
                    const auto v = static_cast<std::int16_t>(
                        decide(a, averageOf(centre), averageOf(upper), averageOf(leftOne), true));
                    result = {v, v, v};
                } else {
                    auto channel = [&](int mean, auto of) {
                        return static_cast<std::int16_t>(
                            decide(mean, of(centre), of(upper), of(leftOne), false));
                    };
                    result = {channel(meanRed, redOf), channel(meanGreen, greenOf),
                              channel(meanBlue, blueOf)};
                }
                const Pixel source = rows[1][x];
                result = finishPixel<ResultTail::Clamp>(redOf(source), greenOf(source),
                                                        blueOf(source), result);
                out[x] = withColour(out[x], result.red, result.green, result.blue);
            }
        });
    });
}

} // namespace lumiran
