// Glass_Painting, Glass_EdgeExtract and Glass_Impression.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/neighbourhood/rank_rows.h"
#include "engine/channels.h"
#include "engine/colour_models.h"

#include <array>
#include <cmath>
#include <cstdlib>
#include <span>
#include <vector>

namespace lumiran {
namespace {

using neighbourhood::Area;
using neighbourhood::ChunkColumns;
using neighbourhood::Offset;

// Glass_Painting: the truncated mean of the window per channel, and the
// squared differences from it at the corners of each ring of the window,
// for a whole row of centres [first, end): the window sums
// by column over the window's rows, then sliding along them; the corners
// read straight from their rows. The same integers, so the same results.
template <int Reach>
void localContrastRow(const Surface& picture, int y, int first, int end, double divisor,
                      std::span<IntRgb> out) {
    constexpr int Count = neighbourhood::windowLength(Reach);
    constexpr int Side = 2 * Reach + 1;
    const int width = end - first;
    const int span = width + 2 * Reach;
    std::vector<int> columns(static_cast<std::size_t>(3 * span), 0);
    int* cr = columns.data();
    int* cg = cr + span;
    int* cb = cg + span;
    for (int dy = -Reach; dy <= Reach; ++dy) {
        const Pixel* row = picture.row(y + dy).data() + first - Reach;
        for (int i = 0; i < span; ++i) {
            cr[i] += redOf(row[i]);
            cg[i] += greenOf(row[i]);
            cb[i] += blueOf(row[i]);
        }
    }
    std::array<const Pixel*, 2 * Reach> cornerRows{};
    for (int ring = 1; ring <= Reach; ++ring) {
        cornerRows[static_cast<std::size_t>(2 * (ring - 1))] = picture.row(y - ring).data();
        cornerRows[static_cast<std::size_t>(2 * (ring - 1) + 1)] = picture.row(y + ring).data();
    }
    int sr = 0, sg = 0, sb = 0;
    for (int i = 0; i < Side - 1; ++i) {
        sr += cr[i];
        sg += cg[i];
        sb += cb[i];
    }
    for (int i = 0; i < width; ++i) {
        sr += cr[i + Side - 1];
        sg += cg[i + Side - 1];
        sb += cb[i + Side - 1];
        const IntRgb mean{sr / Count, sg / Count, sb / Count};
        sr -= cr[i];
        sg -= cg[i];
        sb -= cb[i];
        const int x = first + i;
        IntRgb squares;
        for (int ring = 1; ring <= Reach; ++ring) {
            const Pixel* above = cornerRows[static_cast<std::size_t>(2 * (ring - 1))];
            const Pixel* below = cornerRows[static_cast<std::size_t>(2 * (ring - 1) + 1)];
            for (const Pixel p :
                 {above[x - ring], above[x + ring], below[x - ring], below[x + ring]}) {
                const IntRgb c = channelsOf(p);
                squares.r += (mean.r - c.r) * (mean.r - c.r);
                squares.g += (mean.g - c.g) * (mean.g - c.g);
                squares.b += (mean.b - c.b) * (mean.b - c.b);
            }
        }
        out[static_cast<std::size_t>(i)] = squares;
    }
    // The roots apart, where nothing stops the compiler using vector lanes;
    // they are at most 2 * 255 * sqrt(Reach), well inside 16 bits.
    for (IntRgb& v : out.first(static_cast<std::size_t>(width))) {
        v = {roundInRange<int>(std::sqrt(static_cast<double>(v.r)) / divisor),
             roundInRange<int>(std::sqrt(static_cast<double>(v.g)) / divisor),
             roundInRange<int>(std::sqrt(static_cast<double>(v.b)) / divisor)};
    }
}

// Glass_EdgeExtract: differences across the pixel at the given distance,
// horizontally, vertically and along both diagonals, per channel; the
// root of their squares halved.
Pixel gradient(const Surface& picture, int x, int y, int distance) {
    auto at = [&](int dx, int dy) {
        return channelsOf(picture.at(x + dx * distance, y + dy * distance));
    };
    const std::array<std::array<IntRgb, 2>, 4> pairs{{
        {at(1, 0), at(-1, 0)},
        {at(0, 1), at(0, -1)},
        {at(1, 1), at(-1, -1)},
        {at(-1, 1), at(1, -1)},
    }};
    IntRgb squares;
    for (const auto& [first, second] : pairs) {
        squares.r += (first.r - second.r) * (first.r - second.r);
        squares.g += (first.g - second.g) * (first.g - second.g);
        squares.b += (first.b - second.b) * (first.b - second.b);
    }
    auto channel = [](int s) { return std::min(roundInRange<int>(std::sqrt(s) / 2), 255); };
    return makePixel(channel(squares.r), channel(squares.g), channel(squares.b));
}

// Glass_Impression, kind 1: (sin(x pi / 128) + 1) / 2 * (cos(x pi / 128) + 1) / 2 * x.
double sineShaped(int x) {
    return (std::sin(x * 3.14159 / 128) + 1) / 2 * (std::cos(x * 3.14159 / 128) + 1) / 2 * x;
}

} // namespace

void Class_NeighborhoodOp::Glass_Painting(std::uint8_t window, std::uint8_t kind, std::int16_t left,
                                          std::int16_t top, std::int16_t right,
                                          std::int16_t bottom) {
    guarded([&] {
        fetchTransOnCores();
        if (window > 2 || kind > 1) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = window + 1;
        const Area inner = areaOf(rect).inner(reach);
        const double divisor = kind == 0 ? 1.0 : 2.0;
        const bool blend = blending();
        SetProgressRange(top, bottom);
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y) || inner.firstColumn >= inner.endColumn) return;
            const Pixel* source = ImageBits.row(y).data();
            std::vector<IntRgb> results(static_cast<std::size_t>(inner.width()));
            const int first = inner.firstColumn, end = inner.endColumn;
            if (reach == 1) localContrastRow<1>(ImageBits, y, first, end, divisor, results);
            if (reach == 2) localContrastRow<2>(ImageBits, y, first, end, divisor, results);
            if (reach == 3) localContrastRow<3>(ImageBits, y, first, end, divisor, results);
            Pixel* out = TransBits.row(y).data();
            for (int x = first; x < end; ++x) {
                const IntRgb c = results[static_cast<std::size_t>(x - first)];
                if (blend) {
                    storeTrans(x, y, source[x], {wrap16(c.r), wrap16(c.g), wrap16(c.b)});
                } else {
                    out[x] = withColour(out[x], std::min(c.r, 255), std::min(c.g, 255),
                                        std::min(c.b, 255));
                }
            }
        });
    });
}

void Class_NeighborhoodOp::Glass_EdgeExtract(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                             std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 1) return;
        const ProcessRect rect{left, top, right, bottom};
        const Area area = areaOf(rect);
        const int rows = bottom - top;
        // Kind 1: the first pass goes to a copy, and the second, at distance
        // 2, reads it. Progress counts both passes.
        Surface first;
        if (kind == 1) {
            first = ImageBits;
            const Area inner = area.inner(1);
            SetProgressRange(0, 2 * rows);
            const bool done = forEachRow(rect, [&](int y, int, int) {
                if (!inner.containsRow(y)) return;
                for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
                    const Pixel g = gradient(ImageBits, x, y, 1);
                    first.at(x, y) = withColour(first.at(x, y), redOf(g), greenOf(g), blueOf(g));
                }
            });
            if (!done) return;
        } else {
            SetProgressRange(top, bottom);
        }
        const Surface& input = kind == 1 ? first : ImageBits;
        const int distance = kind + 1;
        const Area inner = area.inner(distance);
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y)) return;
            const Pixel* source = ImageBits.row(y).data();
            for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
                const Pixel g = gradient(input, x, y, distance);
                storeTrans(x, y, source[x],
                           {wrap16(redOf(g)), wrap16(greenOf(g)), wrap16(blueOf(g))});
            }
        });
    });
}

void Class_NeighborhoodOp::Glass_Impression(std::uint8_t kind, std::uint8_t filter,
                                            std::int16_t rank, std::int16_t left, std::int16_t top,
                                            std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        fetchTransOnCores();
        if (kind > 2 || filter > 8) return;
        const ProcessRect rect{left, top, right, bottom};
        constexpr int reach = 1;
        const int element = std::clamp<int>(rank, 0, neighbourhood::windowLength(reach) - 1);
        const Offset compared = neighbourhood::ringOrder<reach>[filter];
        const Area inner = areaOf(rect).inner(reach);
        // Kind 1 as a table over (rank element, compared sample): each of
        // its 65536 results is the formula's own, without a sine per channel.
        std::vector<std::uint8_t> shapedTable;
        if (kind == 1) {
            shapedTable.resize(256 * 256);
            for (int value = 0; value < 256; ++value) {
                const double shapedValue = sineShaped(value);
                for (int against = 0; against < 256; ++against)
                    shapedTable[static_cast<std::size_t>(value * 256 + against)] =
                        static_cast<std::uint8_t>(
                            roundTo<std::int16_t>(std::abs(shapedValue - against)));
            }
        }
        SetProgressRange(top, bottom);
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y)) return;
            const Pixel* source = ImageBits.row(y).data();
            const Pixel* comparedRow = ImageBits.row(y + compared.dy).data();
            neighbourhood::forEachChunk(
                inner.firstColumn, inner.endColumn, [&](int first, int count) {
                    std::array<Pixel, ChunkColumns> negative;
                    neighbourhood::rankColours(ImageBits, neighbourhood::RankSort::NegativePacked,
                                               reach, element, y, first, count, negative.data());
                    for (int i = 0; i < count; ++i) {
                        const int x = first + i;
                        // All of it on the negative: the rank element
                        // against the negative of the compared sample.
                        const IntRgb n = channelsOf(negative[static_cast<std::size_t>(i)]);
                        const Pixel sample = comparedRow[x + compared.dx];
                        const IntRgb s{255 - redOf(sample), 255 - greenOf(sample),
                                       255 - blueOf(sample)};
                        Rgb16 result;
                        if (kind == 1) {
                            auto shaped = [&](int value, int against) {
                                return static_cast<std::int16_t>(
                                    shapedTable[static_cast<std::size_t>(value * 256 + against)]);
                            };
                            result = {shaped(n.r, s.r), shaped(n.g, s.g), shaped(n.b, s.b)};
                        } else {
                            const int l = luminanceY(std::abs(n.r - s.r), std::abs(n.g - s.g),
                                                     std::abs(n.b - s.b));
                            if (kind == 0) {
                                result = {roundTo<std::int16_t>(255 - 255 / 255.0 * l),
                                          roundTo<std::int16_t>(255 - (189 / 255.0 * l + 66)),
                                          roundTo<std::int16_t>(255 - (123 / 255.0 * l + 132))};
                            } else {
                                const auto grey = static_cast<std::int16_t>(255 - l);
                                result = {grey, grey, grey};
                            }
                        }
                        storeTrans(x, y, source[x], result);
                    }
                });
        });
    });
}

} // namespace lumiran
