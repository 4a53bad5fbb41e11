#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/border_trace.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "engine/drawing/drawing.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace lumiran {
namespace {

constexpr Pixel SpareBits = 0xFF000000u;

// A pixel's mark in the ink, keeping its spare byte; an unmarked pixel
// unchanged. No branch: the mark (0 or 1) becomes a mask.
Pixel marked(Pixel base, std::uint8_t mark, Pixel ink) {
    const Pixel keep = Pixel{mark} - 1u;
    return (base & (keep | SpareBits)) | (ink & ~keep);
}

} // namespace

void Class_Binarization::measureForeground(BorderTraceGrid& grid, const Span& s, int measure,
                                           int polarity, int threshold,
                                           std::optional<Pixel> marksIn) {
    // Polarity 0 keeps values at or above the threshold, any other at or
    // below it: one signed comparison either way.
    const int sign = polarity == 0 ? 1 : -1;
    auto run = [&](auto valueOf) {
        // The rows never overlap: __restrict lets the loops run in vectors.
        grid.measure(context(), [&](int y, std::uint8_t* __restrict out) {
            const Pixel* __restrict in = ImageBits.row(s.firstRow + y).data() + s.firstColumn;
            const int width = grid.width();
            if (marksIn) {
                const std::uint8_t* __restrict marks = grid.marks(y);
                for (int x = 0; x < width; ++x) {
                    const int v = valueOf(marked(in[x], marks[x], *marksIn));
                    out[x] = static_cast<std::uint8_t>(-(sign * (v - threshold) >= 0));
                }
            } else {
                for (int x = 0; x < width; ++x)
                    out[x] = static_cast<std::uint8_t>(-(sign * (valueOf(in[x]) - threshold) >= 0));
            }
        });
    };
    // The measure is chosen once, outside the pixel loop.
    switch (measure) {
    case 2:
        run([](Pixel p) { return static_cast<int>((p >> 16) & 0xFFu); });
        break;
    case 3:
        run([](Pixel p) { return static_cast<int>((p >> 8) & 0xFFu); });
        break;
    case 4:
        run([](Pixel p) { return static_cast<int>(p & 0xFFu); });
        break;
    default:
        run([measure](Pixel p) { return bilevel::measured(measure, p); });
        break;
    }
}

void Class_Binarization::drawMarks(const BorderTraceGrid& grid, const Span& s, Pixel ink,
                                   bool ownResult) {
    const int width = grid.width();
    if (!ownResult) {
        forEachRowShared(context(), s.firstRow, s.endRow, width, [&](int y) {
            Pixel* __restrict out = TransBits.row(y).data() + s.firstColumn;
            const std::uint8_t* __restrict marks = grid.marks(y - s.firstRow);
            for (int x = 0; x < width; ++x)
                out[x] = marked(out[x], marks[x], ink);
        });
        return;
    }
    // The result made here in one pass: the picture with the marks drawn.
    TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
    forEachRowShared(context(), 0, ImageBits.height(), ImageBits.width(), [&](int y) {
        const auto in = ImageBits.row(y);
        Pixel* __restrict out = TransBits.row(y).data();
        if (y < s.firstRow || y >= s.endRow) {
            std::ranges::copy(in, out);
            return;
        }
        const std::uint8_t* __restrict marks = grid.marks(y - s.firstRow);
        const Pixel* __restrict source = in.data();
        std::copy_n(in.data(), s.firstColumn, out);
        for (int x = 0; x < width; ++x) {
            const auto i = static_cast<std::size_t>(s.firstColumn + x);
            out[i] = marked(source[i], marks[x], ink);
        }
        std::copy(in.begin() + s.endColumn, in.end(), out + s.endColumn);
    });
}

void Class_Binarization::followBorders(std::span<const int> measures, std::int16_t polarity,
                                       std::int16_t threshold, std::int16_t startKind,
                                       const ProcessRect& rect, bool overPicture) {
    // Over the picture, a result the run left unfetched is made here as
    // the picture with the marks drawn in.
    const bool ownResult = overPicture && TransBits.empty();
    if (ImageBits.empty() || (!ownResult && !ImageBits.sameSize(TransBits))) return;
    const Span s = spanOf(rect);
    if (s.empty() || measures.empty()) {
        if (ownResult) copyToTransIfUnfetched();
        return;
    }
    BorderTraceGrid grid(context(), s.endColumn - s.firstColumn, s.endRow - s.firstRow);
    const Pixel ink = colourBitsOf(markColour(overPicture));
    // Several measures share the progress bar as the calls of a sequence
    // would, each over the picture with the marks of the ones before.
    const auto count = static_cast<int>(measures.size());
    auto stage = [&](int i, int percent) { return reachStage((i * 100 + percent) / count); };
    auto finish = [&] {
        if (!overPicture) clearMarks(s);
        drawMarks(grid, s, ink, ownResult);
    };
    for (int i = 0; i < count; ++i) {
        measureForeground(grid, s, measures[static_cast<std::size_t>(i)], polarity, threshold,
                          i > 0 ? std::optional<Pixel>(ink) : std::nullopt);
        if (!stage(i, 33)) {
            // Stopped before this measure's traces: the marks of the ones
            // before stay drawn.
            if (i > 0) {
                finish();
            } else if (ownResult) {
                copyToTransIfUnfetched();
            }
            return;
        }
        if (startKind == 1) grid.trace(context());
        stage(i, 66);
        if (i + 1 == count || context().cancelled()) {
            finish();
            stage(i, 100);
            return;
        }
        stage(i, 100);
    }
}

void Class_Binarization::BorderFollowing_Mono(std::int16_t measure, std::int16_t polarity,
                                              std::int16_t threshold, std::int16_t startKind,
                                              std::int16_t left, std::int16_t top,
                                              std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const std::array measures{static_cast<int>(measure)};
        followBorders(measures, polarity, threshold, startKind, {left, top, right, bottom}, false);
    });
}

void Class_Binarization::BorderFollowing_Color(std::int16_t channel, std::int16_t polarity,
                                               std::int16_t threshold, std::int16_t startKind,
                                               std::int16_t left, std::int16_t top,
                                               std::int16_t right, std::int16_t bottom) {
    // Channels 0..2 are the measures r, g, b.
    guarded([&] {
        if (channel < 0 || channel > 2) {
            copyToTransIfUnfetched();
            return;
        }
        const std::array measures{channel + 2};
        followBorders(measures, polarity, threshold, startKind, {left, top, right, bottom}, true);
    });
}

void Class_Binarization::BorderFollowing_ColorInTurn(std::int16_t polarity, std::int16_t threshold,
                                                     std::int16_t startKind, std::int16_t left,
                                                     std::int16_t top, std::int16_t right,
                                                     std::int16_t bottom) {
    guarded([&] {
        constexpr std::array measures{2, 3, 4};
        followBorders(measures, polarity, threshold, startKind, {left, top, right, bottom}, true);
    });
}

} // namespace lumiran
