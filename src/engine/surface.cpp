#include "engine/surface.h"

#include "engine/effect_error.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace lumiran {

Surface::Surface(int width, int height, Pixel fill) {
    if (width < 0 || height < 0 || width > MaxDimension || height > MaxDimension) {
        throw std::invalid_argument("picture dimensions out of range");
    }
    try {
        elements_.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + 1,
                         fill);
    } catch (const std::bad_alloc&) {
        throw EffectError::outOfMemory();
    }
    width_ = width;
    height_ = height;
    elements_.back() = 0;
}

bool Surface::sameColours(const Surface& other) const {
    if (!sameSize(other)) return false;
    return std::ranges::equal(pixels(), other.pixels(),
                              [](Pixel a, Pixel b) { return ((a ^ b) & 0x00FFFFFFu) == 0; });
}

} // namespace lumiran
