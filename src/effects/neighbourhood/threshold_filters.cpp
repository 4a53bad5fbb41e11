// ColdSeed, PaturnMatrixMethod, Kakekomi, Moire and BleedingFilter: the
// threshold and bit filters.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
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
    // The cells cover the area without overlap: a cell's neighbours, even
    // clamped ones, lie in its own block.
    bool tiles;
};
constexpr std::array<CellSize, 4> CellSizes{
    {{1, 1, false}, {2, 4, false}, {3, 8, true}, {4, 15, true}}};

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
        auto cellRow = [&](int y, int, int) {
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
        };
        // Overlapping cells are written in place, so their walk keeps its
        // order; tiling cells touch no pixel another row of cells reads or
        // writes, so rows of them may run on several threads.
        if (cell.tiles) {
            forEachRow<RowOrder::AnyOrder>(rect, cellRow);
        } else {
            forEachRow<RowOrder::TopToBottom>(rect, cellRow);
        }
    });
}

void Class_NeighborhoodOp::Kakekomi(double factor, std::int16_t left, std::int16_t top,
                                    std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        mapPixels<ResultTail::Clamp>(rect, [factor](int r, int g, int b) {
            const std::int32_t packed = (b * 256 + g) * 256 + r;
            const std::int32_t q = roundTo<std::int32_t>(packed * factor);
            return Rgb16{wrap16(q % 256), wrap16(q / 256 % 256), wrap16(q / 65536 % 256)};
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
    if (divisor == 0) {
        // Every level is out of range: the first pixel raises the error.
        forEachRow(rect, [&](int y, int, int) {
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
    // A grey is 0..255, so its level is a table look-up.
    std::array<int, 256> levelOfGrey{};
    for (std::size_t g = 0; g < levelOfGrey.size(); ++g)
        levelOfGrey[g] = roundTo<int>(static_cast<double>(g) / divisor);
    auto level = [&](Pixel q) {
        return levelOfGrey[static_cast<std::size_t>(std::clamp(greyOf(order, q), 0, 255))];
    };
    auto steps = [](int a, int b) { return a > 0 && b > 0 && a != b; };
    const int drawingLevel = level(drawing);
    constexpr int Chunk = 512;
    forEachRow(rect, [&](int y, int, int) {
        if (y >= area.endRow - 1) return;
        const Pixel* row = ImageBits.row(y).data();
        const Pixel* below = ImageBits.row(y + 1).data();
        // The levels of a stretch of this row (one more for the right
        // neighbour) and of the row below, each worked out once.
        std::array<int, Chunk + 1> here{};
        std::array<int, Chunk> under{};
        for (int x0 = area.firstColumn; x0 < area.endColumn - 1; x0 += Chunk) {
            const int n = std::min(Chunk, area.endColumn - 1 - x0);
            for (int i = 0; i <= n; ++i)
                here[static_cast<std::size_t>(i)] = level(row[x0 + i]);
            for (int i = 0; i < n; ++i)
                under[static_cast<std::size_t>(i)] = level(below[x0 + i]);
            for (int i = 0; i < n; ++i) {
                const auto k = static_cast<std::size_t>(i);
                const int x = x0 + i;
                Pixel p = row[x];
                int pLevel = here[k];
                if (steps(pLevel, here[k + 1])) {
                    p = drawing;
                    pLevel = drawingLevel;
                }
                if (steps(pLevel, under[k])) p = drawing;
                storeTrans(x, y, row[x], {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))});
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
