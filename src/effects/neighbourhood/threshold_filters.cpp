// ColdSeed, Kakekomi, Moire and BleedingFilter: the threshold and bit
// filters.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

using neighbourhood::Area;

// ColdSeed's operations 0..4: +, -, Or, And, Eqv.
int coldSeedStep(std::uint8_t operation, int c, int v) {
    switch (operation) {
    case 0:
        return c + v;
    case 1:
        return c - v;
    case 2:
        return c | v;
    case 3:
        return std::abs(c & v) + c;
    default:
        return std::abs(~(c ^ v));
    }
}

std::int16_t clampChannel(int value) {
    return static_cast<std::int16_t>(std::clamp(value, 0, 255));
}

// Moire reads the grey as the luminance rule writes it, BleedingFilter in
// the order red, green, blue; the two can round a tie differently.
enum class GreyOrder { Luminance, RedFirst };

int greyOf(GreyOrder order, Pixel p) {
    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
    if (order == GreyOrder::Luminance) return luminanceY(r, g, b);
    return roundInRange<int>(0.3 * r + 0.59 * g + 0.11 * b);
}

} // namespace

void Class_NeighborhoodOp::ColdSeed(std::uint8_t colour, std::uint8_t operation, std::int16_t left,
                                    std::int16_t top, std::int16_t right, std::int16_t bottom,
                                    bool snow, std::int16_t value) {
    guarded([&] {
        if (operation > 4) return;
        const ProcessRect rect{left, top, right, bottom};
        mapPixels<ResultTail::ClampOnly>(rect, [&](int r, int g, int b) {
            const int grey = luminanceY(r, g, b);
            // The distance to black or white, whichever is nearer, plus the
            // value; snow takes the value less the distance, so only greys
            // near either end move and mid-tones stay.
            const int distance = std::abs((grey < 128 ? 0 : 255) - grey);
            const int v = std::max(snow ? value - distance : distance + value, 0);
            if (colour == 0) {
                const std::int16_t mono = clampChannel(coldSeedStep(operation, grey, v));
                return Rgb16{mono, mono, mono};
            }
            return Rgb16{clampChannel(coldSeedStep(operation, r, v)),
                         clampChannel(coldSeedStep(operation, g, v)),
                         clampChannel(coldSeedStep(operation, b, v))};
        });
    });
}

void Class_NeighborhoodOp::Kakekomi(double factor, std::int16_t left, std::int16_t top,
                                    std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const auto spill = [](std::int32_t q) {
            return Rgb16{wrap16(q % 256), wrap16(q / 256 % 256), wrap16(q / 65536 % 256)};
        };
        // Where even the largest packed colour times the factor stays in the
        // 32-bit range (every factor the dialog offers), no product can
        // overflow: the rule then needs no test and the row loop vectorises.
        constexpr double largestPacked = 16777215.0;
        if (std::abs(factor) * largestPacked <= 2147483647.0) {
            mapPixels<ResultTail::Clamp>(rect, [factor, spill](int r, int g, int b) {
                const std::int32_t packed = (b * 256 + g) * 256 + r;
                return spill(roundInRange<std::int32_t>(packed * factor));
            });
            return;
        }
        mapPixels<ResultTail::Clamp>(rect, [factor, spill](int r, int g, int b) {
            const std::int32_t packed = (b * 256 + g) * 256 + r;
            return spill(roundTo<std::int32_t>(packed * factor));
        });
    });
}

namespace {

// The quantised-grey step test of Moire and BleedingFilter on one pixel
// with its right and lower neighbours.
Pixel steppedColour(GreyOrder order, double divisor, Pixel p, Pixel rightOf, Pixel below,
                    Pixel drawing) {
    auto level = [&](Pixel q) { return roundTo<int>(greyOf(order, q) / divisor); };
    auto steps = [](int a, int b) { return a > 0 && b > 0 && std::abs(a - b) >= 1; };
    Pixel result = steps(level(p), level(rightOf)) ? drawing : p;
    if (steps(level(result), level(below))) result = drawing;
    return result;
}

} // namespace

void Class_NeighborhoodOp::quantisedGreySteps(bool redFirst, std::int16_t divisor,
                                              const ProcessRect& rect) {
    fetchTransOnCores();
    const GreyOrder order = redFirst ? GreyOrder::RedFirst : GreyOrder::Luminance;
    const Area area = areaOf(rect);
    const Rgb8 c = context().flags.drawingColor;
    const Pixel drawing = makePixel(c.red, c.green, c.blue);
    SetProgressRange(rect.top, rect.bottom);
    if (divisor == 0) {
        // Every level overflows: the first pixel ends the run as before.
        forEachRow<RowOrder::TopToBottom>(rect, [&](int y, int, int) {
            if (y >= area.endRow - 1) return;
            const Pixel* row = ImageBits.row(y).data();
            const Pixel* below = ImageBits.row(y + 1).data();
            for (int x = area.firstColumn; x < area.endColumn - 1; ++x) {
                const Pixel p =
                    steppedColour(order, divisor, row[x], row[x + 1], below[x], drawing);
                storeTrans(x, y, row[x], {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))});
            }
        });
        return;
    }
    // A grey has 256 values, so its level is a table; the greys of a row
    // are worked out once per row, not four times per pixel.
    std::array<std::int16_t, 256> levelOfGrey{};
    for (int g = 0; g < 256; ++g)
        levelOfGrey[static_cast<std::size_t>(g)] =
            static_cast<std::int16_t>(roundTo<int>(g / static_cast<double>(divisor)));
    const int drawingLevel = levelOfGrey[static_cast<std::size_t>(greyOf(order, drawing))];
    const bool blend = blending();
    auto levels = [&](const Pixel* row, int first, int end, std::int16_t* out) {
        if (order == GreyOrder::RedFirst) {
            for (int x = first; x < end; ++x) {
                const Pixel p = row[x];
                out[x - first] = levelOfGrey[static_cast<std::size_t>(
                    roundInRange<int>(0.3 * redOf(p) + 0.59 * greenOf(p) + 0.11 * blueOf(p)))];
            }
        } else {
            for (int x = first; x < end; ++x)
                out[x - first] = levelOfGrey[static_cast<std::size_t>(greyOf(order, row[x]))];
        }
    };
    // Rows top to bottom - 2, columns left to right - 2: each pixel has its
    // right and lower neighbours, read from the source only.
    forEachRow(rect, [&](int y, int, int) {
        if (y >= area.endRow - 1) return;
        const int first = area.firstColumn;
        const int width = area.endColumn - first;
        if (width < 2) return;
        std::vector<std::int16_t> here(static_cast<std::size_t>(width));
        std::vector<std::int16_t> under(static_cast<std::size_t>(width));
        const Pixel* row = ImageBits.row(y).data();
        const Pixel* below = ImageBits.row(y + 1).data();
        levels(row, first, area.endColumn, here.data());
        levels(below, first, area.endColumn, under.data());
        Pixel* out = TransBits.row(y).data();
        auto steps = [](int a, int b) { return a > 0 && b > 0 && a != b; };
        for (int i = 0; i + 1 < width; ++i) {
            const int x = first + i;
            const int a = here[static_cast<std::size_t>(i)];
            const bool across = steps(a, here[static_cast<std::size_t>(i) + 1]);
            const bool down = steps(across ? drawingLevel : a, under[static_cast<std::size_t>(i)]);
            const Pixel p = across || down ? drawing : row[x];
            if (blend) {
                storeTrans(x, y, row[x], {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))});
            } else {
                out[x] = withColour(out[x], redOf(p), greenOf(p), blueOf(p));
            }
        }
    });
}

void Class_NeighborhoodOp::Moire(std::int16_t divisor, std::int16_t left, std::int16_t top,
                                 std::int16_t right, std::int16_t bottom) {
    guarded([&] { quantisedGreySteps(false, divisor, {left, top, right, bottom}); });
}

void Class_NeighborhoodOp::BleedingFilter(std::int16_t divisor, std::int16_t left, std::int16_t top,
                                          std::int16_t right, std::int16_t bottom) {
    guarded([&] { quantisedGreySteps(true, divisor, {left, top, right, bottom}); });
}

} // namespace lumiran
