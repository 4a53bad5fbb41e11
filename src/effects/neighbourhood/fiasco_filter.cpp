// FiascoFilter: each channel pushed away from a statistic of its window.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/neighbourhood/rank_rows.h"
#include "engine/channels.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace lumiran {
namespace {

using neighbourhood::Area;
using neighbourhood::ChunkColumns;

// Two 16-bit fields in each 32-bit lane: blue and red in the low lane,
// green and spare in the high one. A 5x5 window sums to at most 25 * 255,
// so no field carries into the next.
constexpr std::uint32_t lowFields(Pixel p) {
    return p & 0x00FF00FFu;
}
constexpr std::uint32_t highFields(Pixel p) {
    return (p >> 8) & 0x00FF00FFu;
}

// floor(v / n) for every sum v of n channel values as (v * multiplier) >>
// shift, so that the means vectorise; the constructor proves it over the
// whole range at compile time.
struct MeanDivider {
    std::uint32_t multiplier = 1;
    int shift = 0;

    explicit consteval MeanDivider(std::uint32_t n) {
        for (shift = 0; shift < 32; ++shift) {
            multiplier = static_cast<std::uint32_t>(((std::uint64_t{1} << shift) + n - 1) / n);
            bool exact = true;
            for (std::uint32_t v = 0; v <= 255 * n && exact; ++v)
                exact = (*this)(v) == v / n;
            if (exact) return;
        }
        throw "no divider"; // not a constant expression: the build fails
    }
    [[nodiscard]] constexpr std::uint32_t operator()(std::uint32_t v) const {
        return (v * multiplier) >> shift;
    }
};

// The truncated mean of each channel over the (2 Reach + 1)^2 window of
// the centres first .. first + count - 1 of row y, as colour bytes: sums
// by column over the window's rows, then along the row.
template <int Reach>
void windowMeans(const Surface& source, int y, int first, int count, Pixel* __restrict out) {
    constexpr int Side = 2 * Reach + 1;
    constexpr MeanDivider mean(Side * Side);
    std::array<const Pixel*, Side> rows{};
    for (int i = 0; i < Side; ++i)
        rows[static_cast<std::size_t>(i)] = source.row(y - Reach + i).data() + (first - Reach);
    std::array<std::uint32_t, ChunkColumns + 2 * Reach> low;
    std::array<std::uint32_t, ChunkColumns + 2 * Reach> high;
    const int columns = count + 2 * Reach;
    for (int j = 0; j < columns; ++j) {
        std::uint32_t l = 0;
        std::uint32_t h = 0;
        for (const Pixel* row : rows) {
            l += lowFields(row[j]);
            h += highFields(row[j]);
        }
        low[static_cast<std::size_t>(j)] = l;
        high[static_cast<std::size_t>(j)] = h;
    }
    for (int c = 0; c < count; ++c) {
        std::uint32_t l = 0;
        std::uint32_t h = 0;
        for (int d = 0; d < Side; ++d) {
            l += low[static_cast<std::size_t>(c + d)];
            h += high[static_cast<std::size_t>(c + d)];
        }
        out[c] = (mean(l >> 16) << 16) | (mean(h & 0xFFFFu) << 8) | mean(l & 0xFFFFu);
    }
}

// The channel moved by the amount away from the statistic, as the 16-bit
// result field keeps it.
constexpr int away(int statistic, int channel, int amount) {
    return wrap16(statistic > channel ? channel - amount : channel + amount);
}

// Without a calculation type: the moved channels clamped over the spare
// byte of the destination, a row at a time.
void awayRow(const Pixel* __restrict source, const Pixel* __restrict statistic,
             Pixel* __restrict out, int count, int amount) {
    auto channel = [amount](Pixel s, Pixel m, int shift) {
        const int c = static_cast<int>((s >> shift) & 0xFFu);
        const int t = static_cast<int>((m >> shift) & 0xFFu);
        return static_cast<Pixel>(std::clamp(away(t, c, amount), 0, 255)) << shift;
    };
    for (int i = 0; i < count; ++i) {
        const Pixel s = source[i];
        const Pixel m = statistic[i];
        out[i] = (out[i] & 0xFF000000u) | channel(s, m, 16) | channel(s, m, 8) | channel(s, m, 0);
    }
}

} // namespace

void Class_NeighborhoodOp::FiascoFilter(std::uint8_t window, std::uint8_t sortMode,
                                        std::uint8_t statistic, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom,
                                        std::int16_t amount) {
    guarded([&] {
        if (window > 1 || statistic > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = window + 1;
        const int length = neighbourhood::windowLength(reach);
        // The sort is descending: the largest element first, the smallest
        // last.
        const int element = statistic == 1   ? neighbourhood::medianRank(reach)
                            : statistic == 2 ? length - 1
                                             : 0;
        const neighbourhood::RankSort sort =
            sortMode == 0 ? neighbourhood::RankSort::Packed : neighbourhood::RankSort::Channels;
        const Area area = areaOf(rect);
        const Area centres = area.inner(reach);
        OwnTransRows trans(*this, area.firstRow, area.endRow);
        const bool blend = blending();
        SetProgressRange(rect.top, rect.bottom);
        forEachRow(rect, [&](int y, int, int) {
            trans.takeRow(y);
            if (!centres.containsRow(y)) return;
            const Pixel* source = ImageBits.row(y).data();
            Pixel* target = TransBits.row(y).data();
            neighbourhood::forEachChunk(
                centres.firstColumn, centres.endColumn, [&](int first, int count) {
                    // The statistic of each window as colour bytes.
                    std::array<Pixel, ChunkColumns> stat;
                    if (statistic != 0) {
                        neighbourhood::rankColours(ImageBits, sort, reach, element, y, first, count,
                                                   stat.data());
                    } else if (reach == 1) {
                        windowMeans<1>(ImageBits, y, first, count, stat.data());
                    } else {
                        windowMeans<2>(ImageBits, y, first, count, stat.data());
                    }
                    if (!blend) {
                        awayRow(source + first, stat.data(), target + first, count, amount);
                        return;
                    }
                    for (int i = 0; i < count; ++i) {
                        const int x = first + i;
                        const IntRgb m = channelsOf(stat[static_cast<std::size_t>(i)]);
                        const IntRgb c = channelsOf(source[x]);
                        storeTrans(x, y, source[x],
                                   {wrap16(away(m.r, c.r, amount)), wrap16(away(m.g, c.g, amount)),
                                    wrap16(away(m.b, c.b, amount))});
                    }
                });
        });
    });
}

} // namespace lumiran
