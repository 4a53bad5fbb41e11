#pragma once

// What the window filters of Class_Soften share: where the centres lie,
// the window sums of a row, the division by the window's size, and the row
// loop that ends every pixel with the shared tail.
#include "effects/smoothing/class_soften.h"
#include "engine/channels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <type_traits>

namespace lumiran::soften {

// Centres are handed to the rules in chunks of this many, so the sums of a
// chunk live on the stack and a row needs no allocation.
inline constexpr int Chunk = 256;

// The largest reach of a window: MovingAverage's 15x15.
inline constexpr int MaxReach = 7;

// Two 16-bit fields in each 32-bit lane: blue and red in the low lane,
// green and spare in the high one. Sums of up to 257 channel values cannot
// carry from one field into the next, and every window here has at most
// 225 entries.
[[nodiscard]] constexpr std::uint32_t lowFields(Pixel p) {
    return p & 0x00FF00FFu;
}
[[nodiscard]] constexpr std::uint32_t highFields(Pixel p) {
    return (p >> 8) & 0x00FF00FFu;
}

// Per-channel sums out of the two field lanes.
[[nodiscard]] constexpr IntRgb fieldSums(std::uint32_t low, std::uint32_t high) {
    return {static_cast<int>(low >> 16), static_cast<int>(high & 0xFFFFu),
            static_cast<int>(low & 0xFFFFu)};
}

// The centres a window of the given reach visits: the rectangle, cut to the
// picture, less the reach on every side. Empty when nothing fits.
[[nodiscard]] ProcessRect windowCentres(const ProcessRect& rect, int width, int height, int reach);

// The rectangle cut to the picture.
[[nodiscard]] ProcessRect cutToPicture(const ProcessRect& rect, int width, int height);

// Sums of the (2K+1)x(2K+1) window around the centres start .. start+count-1
// of row y, as field lanes. The window must lie inside the picture; count
// is at most Chunk.
template <int K>
void windowSums(const Surface& source, int y, int start, int count, std::uint32_t* low,
                std::uint32_t* high) {
    constexpr int Side = 2 * K + 1;
    std::array<const Pixel*, Side> rows{};
    for (int i = 0; i < Side; ++i)
        rows[i] = source.row(y - K + i).data() + (start - K);
    // Column sums first, then the horizontal sums of Side columns: each
    // pixel is read once per row of the window and the loops vectorise.
    std::array<std::uint32_t, Chunk + 2 * MaxReach> columnLow;
    std::array<std::uint32_t, Chunk + 2 * MaxReach> columnHigh;
    const int columns = count + 2 * K;
    for (int j = 0; j < columns; ++j) {
        std::uint32_t l = 0;
        std::uint32_t h = 0;
        for (int i = 0; i < Side; ++i) {
            l += lowFields(rows[i][j]);
            h += highFields(rows[i][j]);
        }
        columnLow[j] = l;
        columnHigh[j] = h;
    }
    for (int c = 0; c < count; ++c) {
        std::uint32_t l = 0;
        std::uint32_t h = 0;
        for (int d = 0; d < Side; ++d) {
            l += columnLow[c + d];
            h += columnHigh[c + d];
        }
        low[c] = l;
        high[c] = h;
    }
}

// floor(v / n) for 0 <= v <= largest by one multiply and one shift, so the
// means vectorise: the multiplier is ceil(2^shift / n) with an error small
// enough over the range.
struct Divider {
    std::uint32_t multiplier = 1;
    int shift = 0;
    [[nodiscard]] std::uint32_t operator()(std::uint32_t v) const {
        return (v * multiplier) >> shift;
    }
};
[[nodiscard]] Divider dividerFor(int n, int largest);

// Calls f with the reach as a compile-time constant (1..MaxReach).
template <typename F>
void withReach(int reach, F&& f) {
    switch (reach) {
    case 1:
        return f(std::integral_constant<int, 1>{});
    case 2:
        return f(std::integral_constant<int, 2>{});
    case 3:
        return f(std::integral_constant<int, 3>{});
    case 4:
        return f(std::integral_constant<int, 4>{});
    case 5:
        return f(std::integral_constant<int, 5>{});
    case 6:
        return f(std::integral_constant<int, 6>{});
    case 7:
        return f(std::integral_constant<int, 7>{});
    default:
        return;
    }
}

// The low bytes of a result clamped to 0..255, as ClampResult leaves them,
// over the spare byte of the destination.
[[nodiscard]] constexpr Pixel clampedOver(Pixel previous, IntRgb v) {
    auto clamp = [](int c) { return static_cast<Pixel>(std::clamp(c, 0, 255)); };
    return (previous & 0xFF000000u) | (clamp(v.r) << 16) | (clamp(v.g) << 8) | clamp(v.b);
}

[[nodiscard]] constexpr Rgb16 resultFields(IntRgb v) {
    return {wrap16(v.r), wrap16(v.g), wrap16(v.b)};
}

} // namespace lumiran::soften

namespace lumiran {

template <typename MakeRule>
void Class_Soften::windowFilter(int reach, const ProcessRect& rect, MakeRule makeRule) {
    const ProcessRect centres =
        soften::windowCentres(rect, ImageBits.width(), ImageBits.height(), reach);
    soften::withReach(reach, [&](auto k) { windowRows<decltype(k)::value>(centres, makeRule(k)); });
}

// The row loop of the window filters. For each chunk of centres of a row,
// fill(data, y, start, count) works out what the rule needs into a Chunked
// on the stack, and rule(data, c, centre) gives the result of the c-th
// centre from it and the centre's own channels, which it may change for
// the blend. Without a calculation type
// the loop is free of branches.
template <typename Chunked, typename Fill, typename Rule>
void Class_Soften::centreRows(const ProcessRect& centres, Fill fill, Rule rule) {
    using namespace soften;
    SetProgressRange(centres.top, centres.bottom);
    const bool blend = calculationFlag() > 0;
    forEachRow(centres, [&](int y, int firstColumn, int endColumn) {
        const Pixel* in = ImageBits.row(y).data();
        Pixel* out = TransBits.row(y).data();
        Chunked data;
        for (int start = firstColumn; start < endColumn; start += Chunk) {
            const int count = std::min(Chunk, endColumn - start);
            fill(data, y, start, count);
            if (blend) {
                for (int c = 0; c < count; ++c) {
                    const int x = start + c;
                    // The rule may change what the blend sees as the source.
                    IntRgb centre = channelsOf(in[x]);
                    const IntRgb v = rule(data, c, centre);
                    const Rgb16 e = finishPixel<ResultTail::Clamp>(centre.r, centre.g, centre.b,
                                                                   resultFields(v));
                    out[x] = withColour(out[x], e.red, e.green, e.blue);
                }
            } else {
                const Pixel* __restrict centreRow = in + start;
                Pixel* __restrict outRow = out + start;
                for (int c = 0; c < count; ++c) {
                    IntRgb centre = channelsOf(centreRow[c]);
                    outRow[c] = clampedOver(outRow[c], rule(data, c, centre));
                }
            }
        }
    });
}

// rule(sums, centre) over the per-channel sums of the (2K+1)^2 window.
template <int K, typename Rule>
void Class_Soften::windowRows(const ProcessRect& centres, Rule rule) {
    using namespace soften;
    struct Sums {
        std::array<std::uint32_t, Chunk> low;
        std::array<std::uint32_t, Chunk> high;
    };
    centreRows<Sums>(
        centres,
        [this](Sums& s, int y, int start, int count) {
            windowSums<K>(ImageBits, y, start, count, s.low.data(), s.high.data());
        },
        [&rule](const Sums& s, int c, IntRgb centre) {
            return rule(fieldSums(s.low[c], s.high[c]), centre);
        });
}

} // namespace lumiran
