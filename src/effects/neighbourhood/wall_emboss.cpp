// WallEmboss and ForceFields: a relief whose strength follows a texture of
// random grey stamps.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "effects/neighbourhood/emboss_directions.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace lumiran {
namespace {

using neighbourhood::Area;

constexpr int StampSide = 16;

// Stage 1: grey stamps of 16 x 16 at random places on a black map of the
// area. The stamp is the second kept picture as a blank run leaves it with
// the default background: black all over, so every pixel of it is painted.
// WallEmboss draws place and grey; ForceFields draws only the place and
// takes the grey from the horizontal draw, so its stamps brighten from left
// to right.
std::vector<std::uint8_t> stampMap(RandomGenerator& random, const Area& area, int noise,
                                   bool greyFromPlace) {
    const int width = area.width();
    const int height = area.endRow - area.firstRow;
    std::vector<std::uint8_t> map(static_cast<std::size_t>(std::max(width, 0)) *
                                      static_cast<std::size_t>(std::max(height, 0)),
                                  0);
    const int spanX = width - StampSide - 1, spanY = height - StampSide - 1;
    if (spanX <= 0 || spanY <= 0 || noise <= 0) return map;
    const long long count = static_cast<long long>(noise) * width * height / 2560;
    for (long long n = 0; n < count; ++n) {
        const double drawX = random.next();
        const int x = static_cast<int>(drawX * spanX);
        const int y = static_cast<int>(random.next() * spanY);
        const double level = greyFromPlace ? drawX : random.next();
        const auto grey = roundInRange<std::uint8_t>(255 * level);
        for (int dy = 0; dy < StampSide; ++dy) {
            std::uint8_t* row = map.data() + static_cast<std::size_t>(y + dy) * width + x;
            std::fill(row, row + StampSide, grey);
        }
    }
    return map;
}

} // namespace

// Stage 2, over the interior from 3 pixels inside the rectangle: the map's
// grey t under the pixel gives the weight d = round(t / divisor), +d at the
// sample A of the direction and -d at B, and the mean m of the three sums
// is laid over the pixel as (m + offset + c) / 2: the picture's relief at
// the strength of the stamp it lies under, none where no stamp fell.
void Class_NeighborhoodOp::wallRelief(const WallRelief& wall, const ProcessRect& rect) {
    const Area area = areaOf(rect);
    const std::vector<std::uint8_t> map =
        stampMap(context().random, area, wall.noise, wall.greyFromPlace);
    const Area inner = area.inner(3);
    const auto pair = neighbourhood::EmbossDirections[wall.direction];
    auto clampX = [&](int x) { return std::clamp(x, area.firstColumn, area.endColumn - 1); };
    auto clampY = [&](int y) { return std::clamp(y, area.firstRow, area.endRow - 1); };
    // A map grey is 0..255, so its weight is a table look-up.
    std::array<int, 256> weightOfGrey{};
    for (std::size_t t = 0; t < weightOfGrey.size(); ++t) {
        const int grey = wall.invertMap ? 255 - static_cast<int>(t) : static_cast<int>(t);
        weightOfGrey[t] = roundInRange<int>(grey / static_cast<double>(wall.divisor));
    }
    OwnTransRows trans(*this, inner.firstRow, inner.endRow);
    SetProgressRange(rect.top, rect.bottom);
    forEachRow(rect, [&](int y, int, int) {
        if (!inner.containsRow(y)) return;
        trans.takeRow(y);
        const Pixel* rowA = ImageBits.row(clampY(y + pair.a.dy * wall.distance)).data();
        const Pixel* rowB = ImageBits.row(clampY(y + pair.b.dy * wall.distance)).data();
        const Pixel* source = ImageBits.row(y).data();
        const std::uint8_t* greys =
            map.data() + static_cast<std::size_t>(y - area.firstRow) * area.width();
        for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
            const int d = weightOfGrey[greys[x - area.firstColumn]];
            const Pixel a = rowA[clampX(x + pair.a.dx * wall.distance)];
            const Pixel b = rowB[clampX(x + pair.b.dx * wall.distance)];
            const int m =
                (wrap16(redOf(a) * d - redOf(b) * d) + wrap16(greenOf(a) * d - greenOf(b) * d) +
                 wrap16(blueOf(a) * d - blueOf(b) * d)) /
                3;
            const Pixel s = source[x];
            auto channel = [m](int offset, int c) {
                return static_cast<std::int16_t>(std::clamp((m + offset + c) / 2, 0, 255));
            };
            storeTrans(x, y, s,
                       {channel(wall.offsetRed, redOf(s)), channel(wall.offsetGreen, greenOf(s)),
                        channel(wall.offsetBlue, blueOf(s))});
        }
    });
}

void Class_NeighborhoodOp::WallEmboss(std::uint8_t direction, std::uint8_t type, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom,
                                      std::int16_t noise, std::int16_t offsetRed,
                                      std::int16_t offsetGreen, std::int16_t offsetBlue,
                                      std::int16_t distance) {
    guarded([&] {
        if (direction > 7 || type > 1) return;
        wallRelief({.direction = direction,
                    .distance = distance,
                    .divisor = 20,
                    .invertMap = type == 1,
                    .greyFromPlace = false,
                    .noise = noise,
                    .offsetRed = offsetRed,
                    .offsetGreen = offsetGreen,
                    .offsetBlue = offsetBlue},
                   {left, top, right, bottom});
    });
}

void Class_NeighborhoodOp::ForceFields(std::uint8_t type, std::int16_t left, std::int16_t top,
                                       std::int16_t right, std::int16_t bottom, std::int16_t noise,
                                       std::int16_t distance) {
    guarded([&] {
        if (type > 1) return;
        // Type 0 pulls sideways (direction 0), type 1 up and down (direction 2).
        wallRelief({.direction = static_cast<std::uint8_t>(type == 0 ? 0 : 2),
                    .distance = distance,
                    .divisor = 10,
                    .invertMap = false,
                    .greyFromPlace = true,
                    .noise = noise},
                   {left, top, right, bottom});
    });
}

} // namespace lumiran
