#pragma once

#include "engine/picture_memory.h"
#include "engine/pixel.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

namespace lumiran {

// A picture as the effects see it: 32-bit elements, rows top-down, no row
// padding, and one element more than the picture has so that a reach of
// exactly one past the last pixel stays inside the allocation.
class Surface {
  public:
    // Pictures are bounded by the 16-bit process rectangle.
    static constexpr int MaxDimension = 32767;

    Surface() = default;
    // Throws EffectError (out of memory) when the pixels cannot be allocated
    // and std::invalid_argument for negative or oversized dimensions.
    Surface(int width, int height, Pixel fill = 0);

    // A picture whose pixels are about to be overwritten: not cleared first.
    // Only the spare element is set (to 0).
    [[nodiscard]] static Surface uninitialised(int width, int height);

    Surface(const Surface&) = default;
    Surface& operator=(const Surface&) = default;
    // A moved-from surface is a valid empty picture.
    Surface(Surface&& other) noexcept { swap(other); }
    Surface& operator=(Surface&& other) noexcept {
        Surface taken;
        taken.swap(other);
        swap(taken);
        return *this;
    }
    ~Surface() = default;

    void swap(Surface& other) noexcept {
        std::swap(width_, other.width_);
        std::swap(height_, other.height_);
        elements_.swap(other.elements_);
    }

    [[nodiscard]] int width() const { return width_; }
    [[nodiscard]] int height() const { return height_; }
    [[nodiscard]] bool empty() const { return width_ == 0 || height_ == 0; }
    [[nodiscard]] std::size_t pixelCount() const {
        return static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_);
    }

    // The picture's pixels, without the spare element.
    [[nodiscard]] std::span<Pixel> pixels() { return {elements_.data(), pixelCount()}; }
    [[nodiscard]] std::span<const Pixel> pixels() const { return {elements_.data(), pixelCount()}; }
    // All elements, the spare one included.
    [[nodiscard]] std::span<Pixel> elements() { return elements_; }
    [[nodiscard]] std::span<const Pixel> elements() const { return elements_; }

    [[nodiscard]] std::span<Pixel> row(int y) {
        return pixels().subspan(static_cast<std::size_t>(y) * width_, width_);
    }
    [[nodiscard]] std::span<const Pixel> row(int y) const {
        return pixels().subspan(static_cast<std::size_t>(y) * width_, width_);
    }

    [[nodiscard]] Pixel& at(int x, int y) {
        return elements_[static_cast<std::size_t>(y) * width_ + x];
    }
    [[nodiscard]] Pixel at(int x, int y) const {
        return elements_[static_cast<std::size_t>(y) * width_ + x];
    }

    [[nodiscard]] bool sameSize(const Surface& other) const {
        return width_ == other.width_ && height_ == other.height_;
    }
    // Equal when size and colour bytes match; the spare byte is ignored.
    [[nodiscard]] bool sameColours(const Surface& other) const;

    friend bool operator==(const Surface&, const Surface&) = default;

  private:
    int width_ = 0;
    int height_ = 0;
    using Elements = std::vector<Pixel, PictureAllocator<Pixel>>;
    Elements elements_ = Elements(1, 0);
};

} // namespace lumiran
