// ColdSeed, PaturnMatrixMethod, Kakekomi, Moire and BleedingFilter: the
// threshold and bit filters.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace lumiran {
namespace {

using neighbourhood::Area;
using neighbourhood::Offset;

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

// The centre and its fifteen neighbours of PaturnMatrixMethod, in order.
constexpr std::array<Offset, 16> PatternCell{{
    {0, 0},
    {-1, -1},
    {0, -1},
    {1, -1},
    {-1, 0},
    {1, 0},
    {-1, 1},
    {0, 1},
    {1, 1},
    {2, -1},
    {2, 0},
    {2, 1},
    {-1, 2},
    {0, 2},
    {1, 2},
    {2, 2},
}};

struct CellSize {
    int step;
    int neighbours;
};
constexpr std::array<CellSize, 4> CellSizes{{{1, 1}, {2, 4}, {3, 8}, {4, 15}}};

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

void Class_NeighborhoodOp::PaturnMatrixMethod(std::uint8_t sizeKind, std::uint8_t operation,
                                              std::int16_t left, std::int16_t top,
                                              std::int16_t right, std::int16_t bottom,
                                              std::int16_t value) {
    guarded([&] {
        if (sizeKind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const Area area = areaOf(rect);
        const CellSize cell = CellSizes[sizeKind];
        auto clampedX = [&](int x) { return std::clamp(x, area.firstColumn, area.endColumn - 1); };
        auto clampedY = [&](int y) { return std::clamp(y, area.firstRow, area.endRow - 1); };
        SetProgressRange(top, bottom);
        // Cells overlap and are written in place: the walk keeps its order.
        forEachRow<RowOrder::TopToBottom>(rect, [&](int y, int, int) {
            if ((y - area.firstRow) % cell.step != 0) return;
            for (int x = area.firstColumn; x < area.endColumn; x += cell.step) {
                Pixel& centre = ImageBits.at(x, y);
                const int m = averageGrey(redOf(centre), greenOf(centre), blueOf(centre));
                const int d = (m < 128 ? 0 : 255) - m;
                centre =
                    withColour(centre, clampChannel(redOf(centre) + d),
                               clampChannel(greenOf(centre) + d), clampChannel(blueOf(centre) + d));
                for (int n = 1; n <= cell.neighbours; ++n) {
                    const Offset o = PatternCell[static_cast<std::size_t>(n)];
                    Pixel& p = ImageBits.at(clampedX(x + o.dx), clampedY(y + o.dy));
                    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                    if (operation == 0) {
                        const std::int16_t grey = clampChannel(luminanceY(r, g, b) + value - d);
                        p = withColour(p, grey, grey, grey);
                    } else {
                        p = withColour(p, clampChannel(r - d + value), clampChannel(g - d + value),
                                       clampChannel(b - d + value));
                    }
                }
            }
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
    const GreyOrder order = redFirst ? GreyOrder::RedFirst : GreyOrder::Luminance;
    const Area area = areaOf(rect);
    const Rgb8 c = context().flags.drawingColor;
    const Pixel drawing = makePixel(c.red, c.green, c.blue);
    SetProgressRange(rect.top, rect.bottom);
    // Rows top to bottom - 2, columns left to right - 2: each pixel has its
    // right and lower neighbours.
    forEachRow(rect, [&](int y, int, int) {
        if (y >= area.endRow - 1) return;
        const Pixel* row = ImageBits.row(y).data();
        const Pixel* below = ImageBits.row(y + 1).data();
        for (int x = area.firstColumn; x < area.endColumn - 1; ++x) {
            const Pixel p = steppedColour(order, divisor, row[x], row[x + 1], below[x], drawing);
            storeTrans(x, y, row[x], {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))});
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
