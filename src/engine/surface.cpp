#include "engine/surface.h"

#include "engine/effect_error.h"

#include <algorithm>
#include <new>
#include <stdexcept>

namespace lumiran {

namespace {

std::size_t elementCount(int width, int height) {
    if (width < 0 || height < 0 || width > Surface::MaxDimension ||
        height > Surface::MaxDimension) {
        throw std::invalid_argument("picture dimensions out of range");
    }
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + 1;
}

} // namespace

Surface::Surface(int width, int height, Pixel fill) {
    const std::size_t count = elementCount(width, height);
    try {
        elements_.assign(count, fill);
    } catch (const std::bad_alloc&) {
        throw EffectError::outOfMemory();
    }
    width_ = width;
    height_ = height;
    elements_.back() = 0;
}

Surface Surface::uninitialised(int width, int height) {
    const std::size_t count = elementCount(width, height);
    Surface picture;
    try {
        Elements elements;
        elements.resize(count); // default-initialised: nothing is written
        picture.elements_.swap(elements);
    } catch (const std::bad_alloc&) {
        throw EffectError::outOfMemory();
    }
    picture.width_ = width;
    picture.height_ = height;
    picture.elements_.back() = 0;
    return picture;
}

bool Surface::sameColours(const Surface& other) const {
    if (!sameSize(other)) return false;
    return std::ranges::equal(pixels(), other.pixels(),
                              [](Pixel a, Pixel b) { return ((a ^ b) & 0x00FFFFFFu) == 0; });
}

} // namespace lumiran
