#include "effects/texture/pattern/joint_layers.h"

#include <algorithm>

namespace lumiran::pattern {

LevelLayers::LevelLayers(std::span<const LevelPaint> paints, int first, int end)
    : width_(std::max(end - first, 0)) {
    // Each paint's rank among its pixel's paints, and how many pixels have
    // a paint of each rank.
    std::vector<int> seen(static_cast<std::size_t>(width_), 0);
    std::vector<int> rank(paints.size());
    std::vector<int> pixelsWith;
    for (std::size_t n = 0; n < paints.size(); ++n) {
        int& count = seen[static_cast<std::size_t>(paints[n].column - first)];
        rank[n] = count;
        if (static_cast<std::size_t>(count) == pixelsWith.size()) pixelsWith.push_back(0);
        ++pixelsWith[static_cast<std::size_t>(count)];
        ++count;
    }
    // A pass over the row costs about as much as an eighth of its pixels
    // painted one by one.
    while (layers_ < static_cast<int>(pixelsWith.size()) &&
           8LL * pixelsWith[static_cast<std::size_t>(layers_)] >= width_) {
        ++layers_;
    }
    levels_.assign(static_cast<std::size_t>(layers_) * width_, NoLevel);
    for (std::size_t n = 0; n < paints.size(); ++n) {
        if (rank[n] < layers_) {
            levels_[static_cast<std::size_t>(rank[n]) * width_ + (paints[n].column - first)] =
                paints[n].level;
        } else {
            rest_.push_back(paints[n]);
        }
    }
}

namespace {

// Level 0, 1 or 2 to its grey, any other level to the pixel as it is: a
// select per pixel, so that the loop vectorises.
void paintGreys(Pixel* __restrict row, const std::uint8_t* __restrict levels, int count,
                int deepest, Pixel grey0, Pixel grey1, Pixel grey2) {
    for (int i = 0; i < count; ++i) {
        const unsigned level = levels[i];
        const Pixel grey = level == 0 ? grey0 : level == 1 ? grey1 : grey2;
        const Pixel p = row[i];
        row[i] = level <= static_cast<unsigned>(deepest) ? (p & 0xFF000000u) | grey : p;
    }
}

// The groove: -18 at level 0, +18 at level 1, each channel clamped.
void paintGroove(Pixel* __restrict row, const std::uint8_t* __restrict levels, int count) {
    for (int i = 0; i < count; ++i) {
        const int level = levels[i];
        const int d = level == 0 ? -18 : level == 1 ? 18 : 0;
        const Pixel p = row[i];
        const auto channel = [d](Pixel v) {
            return static_cast<Pixel>(std::clamp(static_cast<int>(v & 0xFFu) + d, 0, 255));
        };
        row[i] = (p & 0xFF000000u) | channel(p >> 16) << 16 | channel(p >> 8) << 8 | channel(p);
    }
}

constexpr Pixel greyPixel(Pixel v) {
    return v * 0x010101u;
}

} // namespace

void paintLevelsClamped(std::uint8_t type, Pixel* row, const std::uint8_t* levels, int count) {
    switch (type) {
    case 0:
        paintGroove(row, levels, count);
        break;
    case 1:
        paintGreys(row, levels, count, 1, greyPixel(0), greyPixel(255), greyPixel(255));
        break;
    case 2:
        paintGreys(row, levels, count, 2, greyPixel(0), greyPixel(128), greyPixel(255));
        break;
    case 3:
        paintGreys(row, levels, count, 0, greyPixel(0), greyPixel(0), greyPixel(0));
        break;
    default:
        break;
    }
}

} // namespace lumiran::pattern
