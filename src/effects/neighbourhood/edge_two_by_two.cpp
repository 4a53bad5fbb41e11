// The 2x2 filters of Class_Edge: Edge_Robarts, Edge_Matrix4 and
// DifferentalFilter. Rows run from top to bottom - 2 and columns from left
// to right - 2; the last row and column stay.
#include "effects/neighbourhood/class_edge.h"
#include "engine/channels.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

using neighbourhood::Area;

// The pixel, its right, lower and lower right neighbours.
struct Block {
    IntRgb p0, p1, p2, p3;
};

} // namespace

// The rows and columns a 2x2 block fits, with the rule per block.
template <typename Rule>
void Class_Edge::blocks(const ProcessRect& rect, Rule rule) {
    const Area area = areaOf(rect);
    SetProgressRange(rect.top, rect.bottom);
    const bool blend = blending();
    forEachRow(rect, [&](int y, int, int) {
        if (y >= area.endRow - 1) return;
        const Pixel* row = ImageBits.row(y).data();
        const Pixel* below = ImageBits.row(y + 1).data();
        if (!blend) {
            // The clamp alone: whole rows straight into the destination.
            Pixel* out = TransBits.row(y).data();
            for (int x = area.firstColumn; x < area.endColumn - 1; ++x) {
                const Block block{channelsOf(row[x]), channelsOf(row[x + 1]), channelsOf(below[x]),
                                  channelsOf(below[x + 1])};
                const Rgb16 v = clampResult(rule(block));
                out[x] = withColour(out[x], v.red, v.green, v.blue);
            }
            return;
        }
        for (int x = area.firstColumn; x < area.endColumn - 1; ++x) {
            const Block block{channelsOf(row[x]), channelsOf(row[x + 1]), channelsOf(below[x]),
                              channelsOf(below[x + 1])};
            storeTrans(x, y, row[x], rule(block));
        }
    });
}

void Class_Edge::Edge_Robarts(std::uint8_t kind, std::int16_t gain, std::int16_t left,
                              std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        fetchTransOnCores();
        if (kind > 1) return;
        // The root depends on the two differences' sizes alone, 0..255 each:
        // a table of the rounded roots, NoRoot where the 16-bit field
        // overflows, so that such a block still ends the run.
        constexpr int NoRoot = -1;
        std::vector<int> roots;
        if (kind == 0) {
            roots.resize(256 * 256);
            for (int i = 0; i < 256; ++i) {
                for (int j = 0; j < 256; ++j) {
                    const double a = static_cast<double>(i) * gain;
                    const double b = static_cast<double>(j) * gain;
                    const double rounded = roundHalfEven(std::sqrt(a * a + b * b));
                    roots[static_cast<std::size_t>(i * 256 + j)] =
                        rounded <= INT16_MAX ? static_cast<int>(rounded) : NoRoot;
                }
            }
        }
        auto cross = [&](int p0, int p1, int p2, int p3) -> std::int16_t {
            if (kind == 0) {
                const int root =
                    roots[static_cast<std::size_t>(std::abs(p0 - p3) * 256 + std::abs(p1 - p2))];
                if (root == NoRoot) throw EffectError::overflow();
                return static_cast<std::int16_t>(root);
            }
            const int a = (p0 - p3) * gain, b = (p1 - p2) * gain;
            return wrap16(std::abs(a) + std::abs(b));
        };
        blocks({left, top, right, bottom}, [&](const Block& k) {
            return Rgb16{cross(k.p0.r, k.p1.r, k.p2.r, k.p3.r),
                         cross(k.p0.g, k.p1.g, k.p2.g, k.p3.g),
                         cross(k.p0.b, k.p1.b, k.p2.b, k.p3.b)};
        });
    });
}

void Class_Edge::Edge_Matrix4(std::int16_t w0, std::int16_t w1, std::int16_t w2, std::int16_t w3,
                              std::int16_t left, std::int16_t top, std::int16_t right,
                              std::int16_t bottom) {
    guarded([&] {
        fetchTransOnCores();
        // Products and sum keep 16 bits, as the result field does.
        auto sum = [&](int p0, int p1, int p2, int p3) {
            return wrap16(w0 * p0 + w1 * p1 + w2 * p2 + w3 * p3);
        };
        blocks({left, top, right, bottom}, [&](const Block& k) {
            return Rgb16{sum(k.p0.r, k.p1.r, k.p2.r, k.p3.r), sum(k.p0.g, k.p1.g, k.p2.g, k.p3.g),
                         sum(k.p0.b, k.p1.b, k.p2.b, k.p3.b)};
        });
    });
}

void Class_Edge::DifferentalFilter(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                   std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        if (kind > 3) return;
        // D = (c - below)^2 + (right - c)^2, held in 32 bits and clipped
        // like any other result rather than overflowing the 16-bit field.
        auto squares = [](int c, int rightOf, int below) {
            return (c - below) * (c - below) + (rightOf - c) * (rightOf - c);
        };
        auto root = [](int d) { return roundInRange<int>(std::sqrt(static_cast<double>(d))); };
        auto limited = [](int v) { return static_cast<std::int16_t>(std::min(v, 32767)); };
        blocks({left, top, right, bottom}, [&](const Block& k) {
            IntRgb d{squares(k.p0.r, k.p1.r, k.p2.r), squares(k.p0.g, k.p1.g, k.p2.g),
                     squares(k.p0.b, k.p1.b, k.p2.b)};
            if (kind >= 2) d = {root(d.r), root(d.g), root(d.b)};
            if (kind == 1 || kind == 3) {
                const int m = (d.r + d.g + d.b) / 3;
                d = {m, m, m};
            }
            return Rgb16{limited(d.r), limited(d.g), limited(d.b)};
        });
    });
}

} // namespace lumiran
