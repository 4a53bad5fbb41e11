// MedianFilter, RankFilter and TransperentColor: filters that take an
// element of the sorted window.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/neighbourhood/rank_rows.h"
#include "engine/channels.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <span>

namespace lumiran {
namespace {

using neighbourhood::Area;
using neighbourhood::ChunkColumns;
using neighbourhood::RankSort;

// Which channels of the rank element channel kinds 0..6 use; the others
// keep the source.
constexpr std::array<std::array<bool, 3>, 7> RankChannels{{
    {true, true, true},
    {true, false, false},
    {false, true, false},
    {false, false, true},
    {true, true, false},
    {false, true, true},
    {true, false, true},
}};

// Kind 7: the rank element with the lightness of the source.
IntRgb recolouredByLightness(IntRgb rank, IntRgb source) {
    const int level = lightness(std::max({source.r, source.g, source.b}),
                                std::min({source.r, source.g, source.b}));
    const int own =
        lightness(std::max({rank.r, rank.g, rank.b}), std::min({rank.r, rank.g, rank.b}));
    const int shift = level - own;
    return {rank.r + shift, rank.g + shift, rank.b + shift};
}

Rgb16 toResult(IntRgb c) {
    return {wrap16(c.r), wrap16(c.g), wrap16(c.b)};
}

} // namespace

template <typename Chunk>
void Class_NeighborhoodOp::rankedChunks(const ProcessRect& rect, int reach, RankSort sort, int rank,
                                        Chunk&& chunk) {
    const Area centres = areaOf(rect).inner(reach);
    SetProgressRange(rect.top, rect.bottom);
    OwnTransRows trans(*this, centres.firstRow, centres.endRow);
    forEachRow(rect, [&](int y, int, int) {
        if (!centres.containsRow(y)) return;
        trans.takeRow(y);
        neighbourhood::forEachChunk(
            centres.firstColumn, centres.endColumn, [&](int first, int count) {
                std::array<Pixel, ChunkColumns> ranked{};
                if (rank >= 0) {
                    neighbourhood::rankColours(ImageBits, sort, reach, rank, y, first, count,
                                               ranked.data());
                }
                chunk(y, first, count, std::span<const Pixel>(ranked.data(), count));
            });
    });
}

void Class_NeighborhoodOp::MedianFilter(std::uint8_t window, std::uint8_t outputKind,
                                        std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom) {
    guarded([&] {
        if (window > 1) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = window + 1;
        const bool plain = outputKind != 1 && outputKind != 2 && !blending();
        rankedChunks(
            rect, reach, RankSort::Packed, neighbourhood::medianRank(reach),
            [&](int y, int first, int count, std::span<const Pixel> median) {
                const Pixel* source = ImageBits.row(y).data();
                Pixel* target = TransBits.row(y).data();
                if (plain) {
                    for (int i = 0; i < count; ++i) {
                        target[first + i] = (target[first + i] & 0xFF000000u) | median[i];
                    }
                    return;
                }
                for (int i = 0; i < count; ++i) {
                    const int x = first + i;
                    const IntRgb m = channelsOf(median[static_cast<std::size_t>(i)]);
                    const IntRgb s = channelsOf(source[x]);
                    // Kind 1 doubles the channels equal to the centre's, 2 the others.
                    auto doubled = [&](int value, int centre) {
                        const bool equal = value == centre;
                        return (outputKind == 1 && equal) || (outputKind == 2 && !equal) ? value * 2
                                                                                         : value;
                    };
                    storeTrans(x, y, source[x],
                               toResult({doubled(m.r, s.r), doubled(m.g, s.g), doubled(m.b, s.b)}));
                }
            });
    });
}

void Class_NeighborhoodOp::RankFilter(std::int16_t rank, std::uint8_t channelKind,
                                      std::int16_t left, std::int16_t top, std::int16_t right,
                                      std::int16_t bottom, std::uint8_t window,
                                      std::uint8_t sortMode) {
    guarded([&] {
        if (window > 1 || channelKind > 7) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = window + 1;
        // A rank beyond the window takes its last element.
        const int element = std::clamp<int>(rank, 0, neighbourhood::windowLength(reach) - 1);
        const RankSort sort = sortMode == 0 ? RankSort::Packed : RankSort::Channels;
        // Without a blend, kinds 0..6 are a choice of bytes.
        const bool plain = channelKind < 7 && !blending();
        Pixel takeMask = 0;
        if (channelKind < 7) {
            const auto& take = RankChannels[channelKind];
            takeMask =
                (take[0] ? 0xFF0000u : 0u) | (take[1] ? 0xFF00u : 0u) | (take[2] ? 0xFFu : 0u);
        }
        const Pixel keepMask = ~takeMask & 0xFFFFFFu;
        rankedChunks(
            rect, reach, sort, element,
            [&](int y, int first, int count, std::span<const Pixel> ranked) {
                const Pixel* source = ImageBits.row(y).data();
                Pixel* target = TransBits.row(y).data();
                if (plain) {
                    // The channels byte by byte from the rank element or the source.
                    for (int i = 0; i < count; ++i) {
                        const Pixel s = source[first + i];
                        target[first + i] = (target[first + i] & 0xFF000000u) |
                                            (ranked[static_cast<std::size_t>(i)] & takeMask) |
                                            (s & keepMask);
                    }
                    return;
                }
                for (int i = 0; i < count; ++i) {
                    const int x = first + i;
                    const IntRgb q = channelsOf(ranked[static_cast<std::size_t>(i)]);
                    const IntRgb s = channelsOf(source[x]);
                    IntRgb result;
                    if (channelKind == 7) {
                        result = recolouredByLightness(q, s);
                    } else {
                        const auto& take = RankChannels[channelKind];
                        result = {take[0] ? q.r : s.r, take[1] ? q.g : s.g, take[2] ? q.b : s.b};
                    }
                    storeTrans(x, y, source[x], toResult(result));
                }
            });
    });
}

void Class_NeighborhoodOp::TransperentColor(std::int16_t left, std::int16_t top, std::int16_t right,
                                            std::int16_t bottom, std::int16_t rank,
                                            std::int16_t sortMode, std::int16_t weight,
                                            std::int16_t red, std::int16_t green,
                                            std::int16_t blue) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        constexpr int reach = 1;
        const int element = std::clamp<int>(rank, 0, neighbourhood::windowLength(reach) - 1);
        const RankSort sort = sortMode == 0 ? RankSort::Packed : RankSort::Channels;
        // The rank element and the pixel in the proportion weight : 10 - weight,
        // then scaled by the colour as a tint (255 leaves the channel).
        auto blend = [weight](int ranked, int pixel, int tint) {
            return (ranked * weight + pixel * (10 - weight)) / 10 * tint / 255;
        };
        rankedChunks(rect, reach, sort, element,
                     [&](int y, int first, int count, std::span<const Pixel> ranked) {
                         const Pixel* source = ImageBits.row(y).data();
                         for (int i = 0; i < count; ++i) {
                             const int x = first + i;
                             const IntRgb q = channelsOf(ranked[static_cast<std::size_t>(i)]);
                             const IntRgb s = channelsOf(source[x]);
                             storeTrans(x, y, source[x],
                                        toResult({blend(q.r, s.r, red), blend(q.g, s.g, green),
                                                  blend(q.b, s.b, blue)}));
                         }
                     });
    });
}

} // namespace lumiran
