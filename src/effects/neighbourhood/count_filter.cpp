// CountFilter: the most frequent value of the window.
#include "effects/neighbourhood/class_neighborhood_op.h"

#include <array>
#include <cstdlib>

namespace lumiran {
namespace {

using neighbourhood::Area;
using neighbourhood::Offset;

// The window shapes of kinds 0..7 in pairs: the whole square, the cross of
// the centre row and column, the two diagonals, the outer ring. Even kinds
// count each channel on its own, odd kinds count greys.
enum class Shape { Square, Cross, Diagonals, Ring };

bool inShape(Shape shape, int dx, int dy, int reach) {
    switch (shape) {
    case Shape::Square:
        return true;
    case Shape::Cross:
        return dx == 0 || dy == 0;
    case Shape::Diagonals:
        return std::abs(dx) == std::abs(dy);
    case Shape::Ring:
        return std::abs(dx) == reach || std::abs(dy) == reach;
    }
    return false;
}

// The window positions of a shape in reading order.
struct ShapeOffsets {
    std::array<Offset, 49> at{};
    int count = 0;
};

ShapeOffsets shapeOffsets(Shape shape, int reach) {
    ShapeOffsets offsets;
    for (int dy = -reach; dy <= reach; ++dy) {
        for (int dx = -reach; dx <= reach; ++dx) {
            if (inShape(shape, dx, dy, reach))
                offsets.at[static_cast<std::size_t>(offsets.count++)] = {dx, dy};
        }
    }
    return offsets;
}

// The value met most often among `values`; of equal counts the one met
// last wins, as a later equal count replaces the earlier one. Returns its
// index in `values`.
// `seen` is all zero on entry and is left so.
int mostFrequent(const std::array<int, 49>& values, int count,
                 std::array<std::uint8_t, 256>& seen) {
    for (int i = 0; i < count; ++i)
        ++seen[static_cast<std::size_t>(values[static_cast<std::size_t>(i)])];
    int best = 0, bestCount = -1;
    for (int i = 0; i < count; ++i) {
        const int n = seen[static_cast<std::size_t>(values[static_cast<std::size_t>(i)])];
        if (n >= bestCount) {
            bestCount = n;
            best = i;
        }
    }
    for (int i = 0; i < count; ++i)
        seen[static_cast<std::size_t>(values[static_cast<std::size_t>(i)])] = 0;
    return best;
}

int greyOf(Pixel p) {
    return roundInRange<int>(0.3 * redOf(p) + 0.59 * greenOf(p) + 0.11 * blueOf(p));
}

} // namespace

void Class_NeighborhoodOp::CountFilter(std::uint8_t window, std::uint8_t /*mode*/,
                                       std::int16_t left, std::int16_t top, std::int16_t right,
                                       std::int16_t bottom, std::uint8_t kind) {
    guarded([&] {
        if (window > 2 || kind > 7) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = window + 1;
        const ShapeOffsets shape = shapeOffsets(static_cast<Shape>(kind / 2), reach);
        const bool byGrey = kind % 2 == 1;
        const Area inner = areaOf(rect).inner(reach);
        SetProgressRange(top, bottom);
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y)) return;
            const Pixel* source = ImageBits.row(y).data();
            std::array<Pixel, 49> samples{};
            std::array<int, 49> values{};
            std::array<std::uint8_t, 256> seen{};
            for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
                for (int i = 0; i < shape.count; ++i) {
                    const Offset o = shape.at[static_cast<std::size_t>(i)];
                    samples[static_cast<std::size_t>(i)] = ImageBits.at(x + o.dx, y + o.dy);
                }
                Rgb16 result;
                if (byGrey) {
                    for (int i = 0; i < shape.count; ++i)
                        values[static_cast<std::size_t>(i)] =
                            greyOf(samples[static_cast<std::size_t>(i)]);
                    const Pixel p =
                        samples[static_cast<std::size_t>(mostFrequent(values, shape.count, seen))];
                    result = {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))};
                } else {
                    std::array<std::int16_t, 3> channels{};
                    for (int c = 0; c < 3; ++c) {
                        const int shift = 16 - 8 * c;
                        for (int i = 0; i < shape.count; ++i) {
                            values[static_cast<std::size_t>(i)] = static_cast<int>(
                                (samples[static_cast<std::size_t>(i)] >> shift) & 0xFFu);
                        }
                        channels[static_cast<std::size_t>(c)] =
                            wrap16(values[static_cast<std::size_t>(
                                mostFrequent(values, shape.count, seen))]);
                    }
                    result = {channels[0], channels[1], channels[2]};
                }
                storeTrans(x, y, source[x], result);
            }
        });
    });
}

} // namespace lumiran
