#include "effects/halftone/dithering/class_dithering.h"
#include "effects/halftone/dithering/ordered_matrices.h"

#include <algorithm>
#include <array>
#include <span>
#include <utility>
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

// A row's cell positions for a run of Lanes pixels that begins on a cell's
// first column, as steps: a value's output is base plus the delta of every
// bound it reaches. A position's outputs rise at most level - 1 times.
constexpr int Lanes = 16; // a multiple of both cell sizes
constexpr int MaxSteps = 7;

struct RowSteps {
    int count = 0;
    std::array<std::int32_t, Lanes> base{};
    std::array<std::array<std::int32_t, Lanes>, MaxSteps> bound{};
    std::array<std::array<std::int32_t, Lanes>, MaxSteps> delta{};
};

// The steps of each position of a cell row, read off its table: every
// value whose output differs from the one below it is a bound. Positions
// with fewer steps than the most add bounds no value reaches.
template <int CellSize>
RowSteps rowSteps(const std::uint32_t* positions) {
    RowSteps s;
    for (int column = 0; column < CellSize; ++column) {
        const std::uint32_t* entries = positions + column * 256;
        int count = 0;
        std::array<std::int32_t, MaxSteps> bound{}, delta{};
        for (int v = 1; v < 256; ++v) {
            if (entries[v] == entries[v - 1]) continue;
            if (count == MaxSteps) throw EffectError::overflow();
            bound[static_cast<std::size_t>(count)] = v;
            delta[static_cast<std::size_t>(count)] =
                static_cast<std::int32_t>(entries[v]) - static_cast<std::int32_t>(entries[v - 1]);
            ++count;
        }
        s.count = std::max(s.count, count);
        for (int lane = column; lane < Lanes; lane += CellSize) {
            const auto l = static_cast<std::size_t>(lane);
            s.base[l] = static_cast<std::int32_t>(entries[0]);
            for (std::size_t k = 0; k < MaxSteps; ++k) {
                s.bound[k][l] = static_cast<int>(k) < count ? bound[k] : 256;
                s.delta[k][l] = static_cast<int>(k) < count ? delta[k] : 0;
            }
        }
    }
    return s;
}

// Lanes values through the steps: compares and adds, no table lookups,
// so the loop runs as a few vector instructions.
[[gnu::always_inline]] inline void stepThrough(const RowSteps& s,
                                               std::array<std::int32_t, Lanes>& values) {
    std::array<std::int32_t, Lanes> out = s.base;
    for (int k = 0; k < s.count; ++k) {
        const auto& bound = s.bound[static_cast<std::size_t>(k)];
        const auto& delta = s.delta[static_cast<std::size_t>(k)];
        for (std::size_t j = 0; j < Lanes; ++j)
            out[j] += values[j] >= bound[j] ? delta[j] : 0;
    }
    values = out;
}

// Runs of Lanes pixels of a row in mono, from its cell's first column. In
// place (in == out) a pixel keeps its own spare byte; from a separate
// source it keeps the one in the result array.
[[gnu::flatten]] void monoRuns(const Pixel* in, Pixel* out, const RowSteps& s, int from, int runs) {
    for (int run = 0; run < runs; ++run) {
        const Pixel* source = in + from + run * Lanes;
        Pixel* target = out + from + run * Lanes;
        std::array<Pixel, Lanes> spare{};
        std::array<std::int32_t, Lanes> grey{};
        for (std::size_t j = 0; j < Lanes; ++j) {
            const Pixel p = source[j];
            spare[j] = target[j] & 0xFF000000u;
            grey[j] = ditherGreyFloating(redOf(p), greenOf(p), blueOf(p));
        }
        stepThrough(s, grey);
        for (std::size_t j = 0; j < Lanes; ++j)
            target[j] = spare[j] | static_cast<Pixel>(grey[j]) * 0x010101u;
    }
}

// In colour every byte of a run is a lane of its own: the steps of each
// pixel repeated over its three colour bytes, bounds as bound - 1 so that
// the bound 256 no value reaches is 255 and a byte is never above it. The
// spare bytes take no step and are kept from the result array.
constexpr int ByteLanes = Lanes * 4;

struct ByteSteps {
    int count = 0;
    std::array<std::uint8_t, ByteLanes> base{};
    std::array<std::array<std::uint8_t, ByteLanes>, MaxSteps> below{};
    std::array<std::array<std::uint8_t, ByteLanes>, MaxSteps> delta{};
    std::array<std::uint8_t, ByteLanes> spare{};
};

ByteSteps byteSteps(const RowSteps& s) {
    ByteSteps b;
    b.count = s.count;
    for (std::size_t i = 0; i < ByteLanes; ++i) {
        const std::size_t lane = i / 4;
        const bool colour = i % 4 != 3;
        b.spare[i] = colour ? 0 : 0xFF;
        b.base[i] = colour ? static_cast<std::uint8_t>(s.base[lane]) : 0;
        for (std::size_t k = 0; k < MaxSteps; ++k) {
            b.below[k][i] = colour ? static_cast<std::uint8_t>(s.bound[k][lane] - 1) : 0xFF;
            // Sums of bytes wrap, so a step down is a step up by its complement.
            b.delta[k][i] = colour ? static_cast<std::uint8_t>(s.delta[k][lane]) : 0;
        }
    }
    return b;
}

// The number of steps is compiled in, so the sum stays in a register.
template <int Count>
[[gnu::flatten]] void colourRunsOf(const Pixel* in, Pixel* out, const ByteSteps& s, int from,
                                   int runs) {
    for (int run = 0; run < runs; ++run) {
        const auto* source = reinterpret_cast<const std::uint8_t*>(in + from + run * Lanes);
        auto* target = reinterpret_cast<std::uint8_t*>(out + from + run * Lanes);
        std::array<std::uint8_t, ByteLanes> v{}, kept{};
        for (std::size_t i = 0; i < ByteLanes; ++i) {
            v[i] = source[i];
            kept[i] = target[i] & s.spare[i];
        }
        std::array<std::uint8_t, ByteLanes> o = s.base;
        for (int k = 0; k < Count; ++k) {
            const auto& below = s.below[static_cast<std::size_t>(k)];
            const auto& delta = s.delta[static_cast<std::size_t>(k)];
            for (std::size_t i = 0; i < ByteLanes; ++i)
                o[i] = static_cast<std::uint8_t>(o[i] + (v[i] > below[i] ? delta[i] : 0));
        }
        for (std::size_t i = 0; i < ByteLanes; ++i)
            target[i] = o[i] | kept[i];
    }
}

void colourRuns(const Pixel* in, Pixel* out, const ByteSteps& s, int from, int runs) {
    [&]<int... Count>(std::integer_sequence<int, Count...>) {
        ((s.count == Count ? colourRunsOf<Count>(in, out, s, from, runs) : void()), ...);
    }
    (std::make_integer_sequence<int, MaxSteps + 1>{});
}

// Single pixels from..to (inclusive) of a row by the table, the cell
// column counted from first: the ends of a row that make no whole run.
template <int CellSize, bool Mono>
void ditherPixels(const Pixel* in, Pixel* out, const std::uint32_t* positions, int first, int from,
                  int to) {
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
    if (!resultReady() || type < 0 || static_cast<std::size_t>(type) >= matrices.size()) return;
    const int scale = wrap16(adjust + (small ? 16 : 4));
    const std::vector<std::uint32_t> table =
        thresholdTable(matrices[static_cast<std::size_t>(type)], scale, level, small ? 4 : 2);
    const Span span = spanOf(rect);
    const bool mono = colourMode == 0;
    std::array<RowSteps, CellSize> steps{};
    std::vector<ByteSteps> bytes(mono ? 0 : CellSize);
    for (std::size_t cellRow = 0; cellRow < CellSize; ++cellRow) {
        steps[cellRow] = rowSteps<CellSize>(table.data() + cellRow * CellSize * 256);
        if (!mono) bytes[cellRow] = byteSteps(steps[cellRow]);
    }
    const Pixel* source = ImageBits.pixels().data();
    Pixel* target = result().pixels().data();
    const int width = ImageBits.width();
    // Cells are laid from the rectangle's top left corner. Positions of a
    // cell beyond the last column or row fall back onto it, and the last
    // position computed there decides: the last column always takes the
    // cell's last column, the last row the cell's last row. Rows are
    // independent, so they run in bands on every core.
    forEachRow(rect, [&](int y, int x0, int x1) {
        const int cellRow = y == span.endRow - 1 ? CellSize - 1 : (y - span.firstRow) % CellSize;
        const std::uint32_t* positions = table.data() + cellRow * CellSize * 256;
        const std::uint32_t* lastColumn = positions + (CellSize - 1) * 256;
        const Pixel* in = source + static_cast<std::ptrdiff_t>(y) * width;
        Pixel* out = target + static_cast<std::ptrdiff_t>(y) * width;
        const int last = x1 - 1;
        const int runs = (last - x0) / Lanes;
        const int rest = x0 + runs * Lanes;
        if (mono) {
            monoRuns(in, out, steps[static_cast<std::size_t>(cellRow)], x0, runs);
            ditherPixels<CellSize, true>(in, out, positions, x0, rest, last - 1);
            ditherPixels<1, true>(in, out, lastColumn, last, last, last);
        } else {
            colourRuns(in, out, bytes[static_cast<std::size_t>(cellRow)], x0, runs);
            ditherPixels<CellSize, false>(in, out, positions, x0, rest, last - 1);
            ditherPixels<1, false>(in, out, lastColumn, last, last, last);
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
