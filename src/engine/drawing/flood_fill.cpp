#include "engine/drawing/flood_fill.h"

#include "engine/effect_error.h"

#include <new>
#include <vector>

namespace lumiran {
namespace {

// One bit per pixel: painted already. Needed because a border fill's brush
// may keep a pixel inside the region, and a surface fill's brush may be the
// region's own colour.
class Visited {
  public:
    explicit Visited(const Surface& picture) : width_(picture.width()) {
        try {
            bits_.resize((picture.pixelCount() + 63) / 64);
        } catch (const std::bad_alloc&) {
            throw EffectError::outOfMemory();
        }
    }
    [[nodiscard]] bool test(int x, int y) const {
        const std::size_t i = index(x, y);
        return (bits_[i / 64] >> (i % 64)) & 1u;
    }
    void set(int x, int y) {
        const std::size_t i = index(x, y);
        bits_[i / 64] |= std::uint64_t{1} << (i % 64);
    }

  private:
    [[nodiscard]] std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
               static_cast<std::size_t>(x);
    }
    int width_;
    std::vector<std::uint64_t> bits_;
};

} // namespace

bool ExtFloodFill(Surface& picture, int x, int y, ColourRef colour, FloodFillType type,
                  ColourRef brush) {
    if (x < 0 || y < 0 || x >= picture.width() || y >= picture.height()) return false;
    const Pixel key = colourBitsOf(colour);
    const Pixel paint = colourBitsOf(brush);
    const bool sameColour = type == FloodFillType::Surface;
    Visited visited(picture);
    const auto fillable = [&](int px, int py) {
        const bool match = (picture.at(px, py) & 0x00FFFFFFu) == key;
        return match == sameColour && !visited.test(px, py);
    };
    if (!fillable(x, y)) return false;

    // Span fill: each seed grows into the whole run of its row, and the rows
    // above and below are searched for the runs that touch it.
    struct Seed {
        int x;
        int y;
    };
    std::vector<Seed> seeds{{x, y}};
    while (!seeds.empty()) {
        const Seed seed = seeds.back();
        seeds.pop_back();
        if (!fillable(seed.x, seed.y)) continue;
        int left = seed.x;
        while (left > 0 && fillable(left - 1, seed.y))
            --left;
        int right = seed.x;
        while (right + 1 < picture.width() && fillable(right + 1, seed.y))
            ++right;
        for (int px = left; px <= right; ++px) {
            visited.set(px, seed.y);
            Pixel& p = picture.at(px, seed.y);
            p = (p & 0xFF000000u) | paint;
        }
        for (const int row : {seed.y - 1, seed.y + 1}) {
            if (row < 0 || row >= picture.height()) continue;
            bool inRun = false;
            for (int px = left; px <= right; ++px) {
                const bool open = fillable(px, row);
                if (open && !inRun) seeds.push_back({px, row});
                inRun = open;
            }
        }
    }
    return true;
}

bool FloodFill(Surface& picture, int x, int y, ColourRef border, ColourRef brush) {
    return ExtFloodFill(picture, x, y, border, FloodFillType::Border, brush);
}

} // namespace lumiran
