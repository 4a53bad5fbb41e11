#pragma once

#include "engine/numeric.h"
#include "engine/pixel.h"
#include "engine/surface.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumiran {

// The working picture of the PCX and PPM readers: 3-byte elements in rows of
// the picture's width, and one spare element behind the last pixel that the
// decoders may reach. A decoder whose index falls outside loses that write.
class ThreeBytePicture {
  public:
    // In the order a 24-bit bitmap row reads them: blue, green, red.
    struct Element {
        std::uint8_t first = 0;
        std::uint8_t second = 0;
        std::uint8_t third = 0;
    };

    ThreeBytePicture(int width, int height)
        : width_(width), height_(height),
          elements_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) + 1) {}

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }

    // Null when the index lies outside the array.
    [[nodiscard]] Element* find(std::int64_t index) {
        if (index < 0 || static_cast<std::uint64_t>(index) >= elements_.size()) return nullptr;
        return &elements_[static_cast<std::size_t>(index)];
    }
    [[nodiscard]] Element& operator[](std::size_t index) { return elements_[index]; }

    // Shown through a 24-bit bitmap: the bytes count as blue, green, red.
    [[nodiscard]] Surface shownAsBitmap() const {
        return shown([](const Element& e) { return makePixel(e.third, e.second, e.first); });
    }
    // Drawn pixel by pixel with the first byte as red, the last as blue.
    [[nodiscard]] Surface shownPixelByPixel() const {
        return shown([](const Element& e) { return makePixel(e.first, e.second, e.third); });
    }

  private:
    template <typename ToPixel>
    [[nodiscard]] Surface shown(ToPixel toPixel) const {
        Surface surface(width_, height_);
        auto pixels = surface.pixels();
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = toPixel(elements_[i]);
        return surface;
    }

    int width_;
    int height_;
    std::vector<Element> elements_;
};

// The load percentage after a row: rows done over the divisor, times 100,
// rounded. A zero divisor gives an infinity, which the rounding rejects with
// the overflow error.
[[nodiscard]] inline int loadPercent(std::int64_t rowsDone, std::int64_t divisor) {
    return roundTo<std::int32_t>(static_cast<double>(rowsDone) / static_cast<double>(divisor) *
                                 100.0);
}

} // namespace lumiran
