// Embossing: a relief from two samples on either side of each pixel.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/neighbourhood/emboss_directions.h"
#include "engine/channels.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace lumiran {
namespace {

using neighbourhood::Area;

// What colour kinds 0..6 make of a sample: 0 and 1 leave it, 2 greys it by
// the luminance rule, 3 by the mean, 4..6 lighten red, green or blue.
IntRgb sampleColour(std::uint8_t colourKind, Pixel p) {
    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
    switch (colourKind) {
    case 2: {
        const int y = luminanceY(r, g, b);
        return {y, y, y};
    }
    case 3: {
        const int m = (r + g + b) / 3;
        return {m, m, m};
    }
    case 4:
        return {(r + 255) / 2, g, b};
    case 5:
        return {r, (g + 255) / 2, b};
    case 6:
        return {r, g, (b + 255) / 2};
    default:
        return {r, g, b};
    }
}

int clip(int value) {
    return std::clamp(value, 0, 255);
}

// The sums of one pixel and the finish of the emboss kind.
class EmbossRule {
  public:
    EmbossRule(std::uint8_t kind, std::uint8_t colourKind, int d, IntRgb offset)
        : kind_(kind), colourKind_(colourKind), d_(d), offset_(offset) {
        if (kind == 2) {
            for (int c = 0; c < 256; ++c) {
                const double t = static_cast<double>(c) * d;
                sine_[static_cast<std::size_t>(c)] =
                    std::sin(t * 3.14159 / 256) + 1 + std::cos(t * 3.14159 / 256);
            }
        }
    }

    // The centre sample weighs 1, A +d and B -d; the finishes mix the sums
    // with the source pixel's own channels.
    [[nodiscard]] Rgb16 operator()(Pixel sampleA, Pixel sampleB, Pixel sampleCentre,
                                   Pixel source) const {
        const IntRgb a = sampleColour(colourKind_, sampleA);
        const IntRgb b = sampleColour(colourKind_, sampleB);
        const IntRgb c = sampleColour(colourKind_, sampleCentre);
        const IntRgb s = channelsOf(source);
        // The sums are 16-bit fields; kind 1 takes them without the offsets.
        const IntRgb offset = kind_ == 1 ? IntRgb{} : offset_;
        const IntRgb sum{clip(wrap16(c.r + a.r * d_ - b.r * d_ + offset.r)),
                         clip(wrap16(c.g + a.g * d_ - b.g * d_ + offset.g)),
                         clip(wrap16(c.b + a.b * d_ - b.b * d_ + offset.b))};
        switch (kind_) {
        case 2:
            return {sine(sum.r, s.r), sine(sum.g, s.g), sine(sum.b, s.b)};
        case 3: {
            const int m = (sum.r + sum.g + sum.b) / 3 < 128 ? 0 : 255;
            return result({(m + s.r) / 2, (m + s.g) / 2, (m + s.b) / 2});
        }
        case 4:
            return result({(sum.r + s.r) / 2, (sum.g + s.g) / 2, (sum.b + s.b) / 2});
        case 5:
            return result({s.r - sum.r + 127, s.g - sum.g + 127, s.b - sum.b + 127});
        case 6: {
            const int m = (sum.r + sum.g + sum.b) / 3;
            return result({(m + s.r) / 2, (m + s.g) / 2, (m + s.b) / 2});
        }
        case 7: {
            const int shift = (sum.r + sum.g + sum.b) / 3 - 128;
            return result({s.r + shift, s.g + shift, s.b + shift});
        }
        default:
            return result(sum);
        }
    }

    // Kind 2 without a blend: the clamped sine finish of a whole row, the
    // kind's switch out of the loop. The table's factors lie within
    // -0.5..2.5 and the sums within 0..255, so no root overflows 16 bits.
    void sineRow(const Pixel* rowA, int ax, const Pixel* rowB, int bx, const Pixel* centre,
                 const Pixel* source, Pixel* out, int from, int to) const {
        auto channel = [this](int a, int b, int c, int add, int s) {
            const int sum = clip(wrap16(c + a * d_ - b * d_ + add));
            return std::clamp(roundInRange<int>(sine_[static_cast<std::size_t>(s)] * sum), 0, 255);
        };
        for (int x = from; x < to; ++x) {
            const IntRgb a = sampleColour(colourKind_, rowA[x + ax]);
            const IntRgb b = sampleColour(colourKind_, rowB[x + bx]);
            const IntRgb c = sampleColour(colourKind_, centre[x]);
            const IntRgb s = channelsOf(source[x]);
            out[x] = withColour(out[x], channel(a.r, b.r, c.r, offset_.r, s.r),
                                channel(a.g, b.g, c.g, offset_.g, s.g),
                                channel(a.b, b.b, c.b, offset_.b, s.b));
        }
    }

  private:
    static Rgb16 result(IntRgb c) { return {wrap16(c.r), wrap16(c.g), wrap16(c.b)}; }
    [[nodiscard]] std::int16_t sine(int sum, int source) const {
        return roundTo<std::int16_t>(sine_[static_cast<std::size_t>(source)] * sum);
    }

    std::uint8_t kind_;
    std::uint8_t colourKind_;
    int d_;
    IntRgb offset_;
    std::array<double, 256> sine_{};
};

// Kinds 0 and 1 on plain samples without a blend: the relief alone, with
// vector operations.
void plainReliefRow(const Pixel* __restrict rowA, int ax, const Pixel* __restrict rowB, int bx,
                    const Pixel* __restrict centre, Pixel* __restrict out, int from, int to, int d,
                    IntRgb offset) {
    auto channel = [d](Pixel pa, Pixel pb, Pixel pc, int shift, int add) {
        const int va = static_cast<int>((pa >> shift) & 0xFFu);
        const int vb = static_cast<int>((pb >> shift) & 0xFFu);
        const int vc = static_cast<int>((pc >> shift) & 0xFFu);
        return static_cast<Pixel>(clip(wrap16(vc + va * d - vb * d + add))) << shift;
    };
    for (int x = from; x < to; ++x) {
        const Pixel a = rowA[x + ax], b = rowB[x + bx], c = centre[x];
        out[x] = (out[x] & 0xFF000000u) | channel(a, b, c, 16, offset.r) |
                 channel(a, b, c, 8, offset.g) | channel(a, b, c, 0, offset.b);
    }
}

// Each pixel of the area as the truncated mean of the size x size block
// from (x - (size - 1) / 2, y - (size - 1) / 2), the block clamped to the
// area; outside the area the picture as it is.
Surface blockMeans(const Surface& picture, const Area& area, int size) {
    Surface means = picture;
    const int before = (size - 1) / 2;
    const int width = area.width();
    std::vector<std::array<int, 3>> rowSums(static_cast<std::size_t>(width) *
                                            (area.endRow - area.firstRow));
    auto sumsAt = [&](int x, int y) -> std::array<int, 3>& {
        return rowSums[static_cast<std::size_t>(y - area.firstRow) * width +
                       (x - area.firstColumn)];
    };
    for (int y = area.firstRow; y < area.endRow; ++y) {
        const Pixel* row = picture.row(y).data();
        for (int x = area.firstColumn; x < area.endColumn; ++x) {
            std::array<int, 3> sum{};
            for (int k = 0; k < size; ++k) {
                const Pixel p =
                    row[std::clamp(x - before + k, area.firstColumn, area.endColumn - 1)];
                sum[0] += redOf(p);
                sum[1] += greenOf(p);
                sum[2] += blueOf(p);
            }
            sumsAt(x, y) = sum;
        }
    }
    const int count = size * size;
    for (int y = area.firstRow; y < area.endRow; ++y) {
        for (int x = area.firstColumn; x < area.endColumn; ++x) {
            std::array<int, 3> sum{};
            for (int k = 0; k < size; ++k) {
                const auto& s =
                    sumsAt(x, std::clamp(y - before + k, area.firstRow, area.endRow - 1));
                sum[0] += s[0];
                sum[1] += s[1];
                sum[2] += s[2];
            }
            Pixel& p = means.at(x, y);
            p = withColour(p, sum[0] / count, sum[1] / count, sum[2] / count);
        }
    }
    return means;
}

} // namespace

void Class_NeighborhoodOp::Embossing(std::uint8_t direction, std::uint8_t colourKind,
                                     std::uint8_t kind, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom, std::int16_t d,
                                     std::int16_t offsetRed, std::int16_t offsetGreen,
                                     std::int16_t offsetBlue, std::int16_t size) {
    guarded([&] {
        fetchTransOnCores();
        if (direction > 7 || colourKind > 6 || kind > 7) return;
        const ProcessRect rect{left, top, right, bottom};
        const Area area = areaOf(rect);
        const IntRgb offset{offsetRed, offsetGreen, offsetBlue};
        const EmbossRule rule(kind, colourKind, d, offset);
        Surface means;
        if (size > 1 && !area.empty()) means = blockMeans(ImageBits, area, size);
        const Surface& samples = size > 1 ? means : ImageBits;

        const auto pair = neighbourhood::EmbossDirections[direction];
        const int ax = pair.a.dx * d, ay = pair.a.dy * d, bx = pair.b.dx * d, by = pair.b.dy * d;
        auto clampX = [&](int x) { return std::clamp(x, area.firstColumn, area.endColumn - 1); };
        auto clampY = [&](int y) { return std::clamp(y, area.firstRow, area.endRow - 1); };
        // Where both samples lie in the area without clamping.
        const int from =
            std::clamp(area.firstColumn - std::min({ax, bx, 0}), area.firstColumn, area.endColumn);
        const int to = std::clamp(area.endColumn - std::max({ax, bx, 0}), from, area.endColumn);
        const bool plain = kind <= 1 && colourKind <= 1 && size <= 1 && !blending();

        SetProgressRange(top, bottom);
        forEachRow(rect, [&](int y, int, int) {
            const Pixel* rowA = samples.row(clampY(y + ay)).data();
            const Pixel* rowB = samples.row(clampY(y + by)).data();
            const Pixel* centre = samples.row(y).data();
            const Pixel* source = ImageBits.row(y).data();
            auto clamped = [&](int x) {
                storeTrans(x, y, source[x],
                           rule(rowA[clampX(x + ax)], rowB[clampX(x + bx)], centre[x], source[x]));
            };
            for (int x = area.firstColumn; x < from; ++x)
                clamped(x);
            if (plain) {
                plainReliefRow(rowA, ax, rowB, bx, centre, TransBits.row(y).data(), from, to, d,
                               kind == 1 ? IntRgb{} : offset);
            } else if (kind == 2 && !blending()) {
                rule.sineRow(rowA, ax, rowB, bx, centre, source, TransBits.row(y).data(), from, to);
            } else {
                for (int x = from; x < to; ++x)
                    storeTrans(x, y, source[x],
                               rule(rowA[x + ax], rowB[x + bx], centre[x], source[x]));
            }
            for (int x = to; x < area.endColumn; ++x)
                clamped(x);
        });
    });
}

} // namespace lumiran
