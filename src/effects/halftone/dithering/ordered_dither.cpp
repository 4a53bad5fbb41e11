#include "effects/halftone/dithering/class_dithering.h"
#include "effects/halftone/dithering/ordered_matrices.h"

#include <span>
#include <vector>

namespace lumiran {
namespace {

// The output for every (cell position, input value), 256 entries a
// position. Levels outside 2..8 leave it at 0, so the picture goes black.
std::vector<std::uint32_t> thresholdTable(std::span<const std::uint8_t> matrix, int scale,
                                          int level, int levelTwoOffset) {
    std::vector<std::uint32_t> table(matrix.size() * 256, 0);
    for (std::size_t k = 0; k < matrix.size(); ++k) {
        const int m = matrix[k];
        std::uint32_t* entries = table.data() + k * 256;
        if (level == 2) {
            const int threshold = wrap16(m * scale + levelTwoOffset);
            for (int v = 0; v < 256; ++v)
                entries[v] = v >= threshold ? 255 : 0;
        } else if (level >= 3 && level <= 8) {
            const ordered::LevelSteps& steps = ordered::StepsByLevel[level - 3];
            const double u = static_cast<double>(scale) / steps.divisor * m;
            for (int v = 0; v < 256; ++v) {
                std::uint32_t out = steps.outputs[0];
                if (v >= u) out = steps.outputs[1];
                for (int i = 0; i < steps.stepCount; ++i) {
                    if (v >= u + steps.steps[i]) out = steps.outputs[i + 2];
                }
                entries[v] = out;
            }
        }
    }
    return table;
}

// Pixels from..to (inclusive) of a row, the cell column counted from
// first. The source and result rows are separate arrays and the loop has
// no branch, so it is vectorised with gathers from the table.
template <int CellSize, bool Mono>
void ditherRow(const Pixel* __restrict in, Pixel* __restrict out,
               const std::uint32_t* __restrict positions, int first, int from, int to) {
    for (int x = from; x <= to; ++x) {
        const Pixel p = in[x];
        const std::uint32_t* entries = positions + ((x - first) & (CellSize - 1)) * 256;
        std::uint32_t colour;
        if constexpr (Mono) {
            colour = entries[ditherGreyFloating(redOf(p), greenOf(p), blueOf(p))] * 0x010101u;
        } else {
            colour = entries[redOf(p)] << 16 | entries[greenOf(p)] << 8 | entries[blueOf(p)];
        }
        out[x] = (out[x] & 0xFF000000u) | colour;
    }
}

} // namespace

template <int CellSize>
void Class_Dithering::orderedDither(std::int16_t type, std::int16_t adjust, const ProcessRect& rect,
                                    std::int16_t colourMode, std::int16_t level) {
    // The 4 x 4 cell scales by adjust + 16 with 4 added at level 2, the
    // 8 x 8 cell by adjust + 4 with 2 added.
    constexpr bool small = CellSize == 4;
    const auto& matrices = [] {
        if constexpr (small) {
            return std::span<const ordered::Matrix4>(ordered::Matrices4x4);
        } else {
            return std::span<const ordered::Matrix8>(ordered::Matrices8x8);
        }
    }();
    SetProgressRange(rect.top, rect.bottom);
    if (!arraysReady() || type < 0 || static_cast<std::size_t>(type) >= matrices.size()) return;
    const int scale = wrap16(adjust + (small ? 16 : 4));
    const std::vector<std::uint32_t> table =
        thresholdTable(matrices[static_cast<std::size_t>(type)], scale, level, small ? 4 : 2);
    const Span span = spanOf(rect);
    const bool mono = colourMode == 0;

    // Cells are laid from the rectangle's top left corner. Positions of a
    // cell beyond the last column or row fall back onto it, and the last
    // position computed there decides: the last column always takes the
    // cell's last column, the last row the cell's last row.
    forEachRow(rect, [&](int y, int x0, int x1) {
        const int cellRow = y == span.endRow - 1 ? CellSize - 1 : (y - span.firstRow) % CellSize;
        const std::uint32_t* positions = table.data() + cellRow * CellSize * 256;
        const std::uint32_t* lastColumn = positions + (CellSize - 1) * 256;
        const Pixel* in = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        const int last = x1 - 1;
        if (mono) {
            ditherRow<CellSize, true>(in, out, positions, x0, x0, last - 1);
            ditherRow<1, true>(in, out, lastColumn, last, last, last);
        } else {
            ditherRow<CellSize, false>(in, out, positions, x0, x0, last - 1);
            ditherRow<1, false>(in, out, lastColumn, last, last, last);
        }
    });
}

void Class_Dithering::OrderedDither4x4(std::int16_t type, std::int16_t adjust, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::int16_t colourMode, std::int16_t level) {
    guarded([&] { orderedDither<4>(type, adjust, {left, top, right, bottom}, colourMode, level); });
}

void Class_Dithering::OrderedDither8x8(std::int16_t type, std::int16_t adjust, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::int16_t colourMode, std::int16_t level) {
    guarded([&] { orderedDither<8>(type, adjust, {left, top, right, bottom}, colourMode, level); });
}

} // namespace lumiran
