// HighpassFilter: all weights -1 but one of 5, 9 or 25, mixed with the
// source by the threshold, then the colour selector.
#include "effects/colour/colour_selector.h"
#include "effects/smoothing/soften_window.h"

namespace lumiran {
namespace {

using soften::Channels;
using soften::Chunk;

struct Offset {
    int dx = 0;
    int dy = 0;
};

// Directions 1..8, "上から" .. "右下から": the 3x3 entries 2, 7, 4, 5, 1, 3,
// 6, 8; the 5x5 entries 11, 22, 16, 17, 9, 13, 20, 24 lie twice as far.
// Direction 0, "ﾉｰﾏﾙ", and any other is the centre. The cross has no
// corners, so its diagonal directions stay on the centre too.
Offset largeWeightAt(int direction, int filterKind) {
    static constexpr std::array<Offset, 9> Unit{
        {{0, 0}, {0, -1}, {0, 1}, {-1, 0}, {1, 0}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}}};
    if (direction > 8 || (filterKind == 0 && direction > 4)) return {};
    const Offset u = Unit[static_cast<std::size_t>(direction)];
    const int reach = filterKind == 2 ? 2 : 1;
    return {u.dx * reach, u.dy * reach};
}

// Floor division and its remainder, for rounding half to even exactly as
// the double quotient of two integers rounds.
int roundedQuotient(int num, int den) {
    int q = num / den;
    if (num % den != 0 && (num < 0) != (den < 0)) --q;
    const int twiceRest = 2 * (num - q * den);
    if (twiceRest > den || (twiceRest == den && (q & 1) != 0)) ++q;
    return q;
}

struct KernelSums {
    std::array<std::uint32_t, Chunk> low, high; // the kernel's sums
    std::array<Pixel, Chunk> large;             // the entry with the large weight
};

// The five-point cross: the centre and its four neighbours.
void crossSums(const Surface& source, int y, int start, int count, KernelSums& s) {
    const Pixel* up = source.row(y - 1).data() + start;
    const Pixel* middle = source.row(y).data() + start;
    const Pixel* down = source.row(y + 1).data() + start;
    for (int c = 0; c < count; ++c) {
        s.low[c] = soften::lowFields(up[c]) + soften::lowFields(down[c]) +
                   soften::lowFields(middle[c - 1]) + soften::lowFields(middle[c]) +
                   soften::lowFields(middle[c + 1]);
        s.high[c] = soften::highFields(up[c]) + soften::highFields(down[c]) +
                    soften::highFields(middle[c - 1]) + soften::highFields(middle[c]) +
                    soften::highFields(middle[c + 1]);
    }
}

} // namespace

void Class_Soften::HighpassFilter(std::int16_t threshold, std::uint8_t filterKind,
                                  std::uint8_t selector, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::uint8_t direction) {
    guarded([&] {
        if (filterKind > 2) return;
        const int reach = filterKind == 2 ? 2 : 1;
        // Weights 5, 9, 25: the sum of the weighted entries is the large
        // weight plus one times its entry, less the kernel's plain sum.
        const int large = filterKind == 0 ? 6 : filterKind == 1 ? 10 : 26;
        const Offset at = largeWeightAt(direction, filterKind);
        const int t = threshold;
        const ChannelMask mask = selectedChannels(selector);
        const ProcessRect centres = soften::windowCentres(
            {left, top, right, bottom}, ImageBits.width(), ImageBits.height(), reach);

        auto fill = [&](KernelSums& s, int y, int start, int count) {
            if (filterKind == 0) {
                crossSums(ImageBits, y, start, count, s);
            } else if (filterKind == 1) {
                soften::windowSums<1>(ImageBits, y, start, count, s.low.data(), s.high.data());
            } else {
                soften::windowSums<2>(ImageBits, y, start, count, s.low.data(), s.high.data());
            }
            const Pixel* entries = ImageBits.row(y + at.dy).data() + start + at.dx;
            std::copy_n(entries, count, s.large.begin());
        };
        auto rule = [&](const KernelSums& s, int c, Channels& centre) -> Channels {
            const Channels sum = soften::fieldSums(s.low[c], s.high[c]);
            const Channels e = soften::channelsOf(s.large[c]);
            auto filtered = [&](int sumOf, int entry, int source) {
                const int f = large * entry - sumOf;
                return roundedQuotient(t * f + (10 - t) * source, 10);
            };
            const Channels v{filtered(sum.r, e.r, centre.r), filtered(sum.g, e.g, centre.g),
                             filtered(sum.b, e.b, centre.b)};
            if (selector != BrightnessSelector) {
                return {mask.red ? v.r : centre.r, mask.green ? v.g : centre.g,
                        mask.blue ? v.b : centre.b};
            }
            // "光度": the source scaled by the lightness of the new values
            // over its own; a black source counts as 1, 1, 1.
            auto lightness = [](Channels x) {
                return roundedQuotient(std::max({x.r, x.g, x.b}) + std::min({x.r, x.g, x.b}), 2);
            };
            int l1 = lightness(centre);
            const int l2 = lightness(v);
            if (l1 == 0) {
                l1 = 1;
                centre = {1, 1, 1};
            }
            return {roundedQuotient(centre.r * l2, l1), roundedQuotient(centre.g * l2, l1),
                    roundedQuotient(centre.b * l2, l1)};
        };
        centreRows<KernelSums>(centres, fill, rule);
    });
}

} // namespace lumiran
