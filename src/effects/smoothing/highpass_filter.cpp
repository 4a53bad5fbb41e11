// HighpassFilter: all weights -1 but one of 5, 9 or 25, mixed with the
// source by the threshold, then the colour selector.
#include "effects/colour/colour_selector.h"
#include "effects/smoothing/soften_window.h"

namespace lumiran {
namespace {

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

// num / den rounded half to even, den above 0: exactly as the double
// quotient of the two integers rounds. Free of branches, so the loops over
// a row vectorise.
constexpr int roundedQuotient(int num, int den) {
    int q = num / den;
    int rest = num - q * den;
    const int negative = rest < 0 ? 1 : 0;
    q -= negative;
    rest += den * negative;
    const int twice = 2 * rest;
    return q + ((twice > den || (twice == den && (q & 1) != 0)) ? 1 : 0);
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
    guardedTrans([&] {
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
        auto filtered = [large, t](const KernelSums& s, int c, const IntRgb& centre) {
            const IntRgb sum = soften::fieldSums(s.low[c], s.high[c]);
            const IntRgb e = channelsOf(s.large[c]);
            auto channel = [&](int sumOf, int entry, int source) {
                return roundedQuotient(t * (large * entry - sumOf) + (10 - t) * source, 10);
            };
            return IntRgb{channel(sum.r, e.r, centre.r), channel(sum.g, e.g, centre.g),
                          channel(sum.b, e.b, centre.b)};
        };
        if (selector != BrightnessSelector) {
            // The new value in the selected channels, the source in the others.
            const int red = mask & Red, green = mask & Green, blue = mask & Blue;
            centreRows<KernelSums>(centres, fill, [=](const KernelSums& s, int c, IntRgb& centre) {
                const IntRgb v = filtered(s, c, centre);
                return IntRgb{red != 0 ? v.r : centre.r, green != 0 ? v.g : centre.g,
                              blue != 0 ? v.b : centre.b};
            });
            return;
        }
        // "光度": the source scaled by the lightness of the new values over
        // its own; a black source counts as 1, 1, 1.
        auto lightness = [](IntRgb x) {
            const int largest = std::max(x.r, std::max(x.g, x.b));
            const int smallest = std::min(x.r, std::min(x.g, x.b));
            return roundedQuotient(largest + smallest, 2);
        };
        auto rule = [=](const KernelSums& s, int c, IntRgb& centre) {
            const IntRgb v = filtered(s, c, centre);
            const int l2 = lightness(v);
            const int l1 = lightness(centre);
            const bool black = l1 == 0;
            centre = {black ? 1 : centre.r, black ? 1 : centre.g, black ? 1 : centre.b};
            // The quotient of two integers as a double rounds a tie exactly.
            const double divisor = l1 + (black ? 1 : 0);
            auto scaled = [&](int source) {
                return roundInRange<int>(static_cast<double>(source * l2) / divisor);
            };
            return IntRgb{scaled(centre.r), scaled(centre.g), scaled(centre.b)};
        };
        centreRows<KernelSums>(centres, fill, rule);
    });
}

} // namespace lumiran
