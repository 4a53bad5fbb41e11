#include "imagefiles/load_limits.h"

#include "imagefiles/image_load_error.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <unistd.h>

namespace lumiran {
namespace {

constexpr std::uint64_t mebibyte = 1u << 20;

std::string sizeText(std::int64_t width, std::int64_t height) {
    return std::to_string(width) + "x" + std::to_string(height);
}

std::uint64_t bytesNeeded(std::int64_t width, std::int64_t height, std::uint64_t bytesPerPixel,
                          int keptCopies) {
    const std::uint64_t perPixel = bytesPerPixel + 4u * static_cast<std::uint64_t>(keptCopies);
    return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * perPixel;
}

bool parseWhole(std::string_view text, std::int64_t& value) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    return error == std::errc{} && stop == end && value > 0;
}

} // namespace

std::uint64_t LoadLimits::defaultMaxBytes() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    constexpr std::uint64_t floor = 256ull << 20;
    if (pages <= 0 || pageSize <= 0) return floor;
    return std::max(floor, static_cast<std::uint64_t>(pages) * pageSize / 2);
}

void LoadLimits::check(std::int64_t width, std::int64_t height, std::uint64_t bytesPerPixel) const {
    const std::string size = sizeText(width, height);
    if (width <= 0 || height <= 0)
        throw ImageLoadError::refused("picture has no pixels (" + size + ")");
    if (width > MaxDimension || height > MaxDimension) {
        throw ImageLoadError::refused("picture too large: " + size +
                                      " (at most 32767 in either direction)");
    }
    if (width * height > maxPixels) {
        throw ImageLoadError::refused("picture too large: " + size + " is " +
                                      std::to_string(width * height) +
                                      " pixels, above the limit of " + describePixelLimit());
    }
    const std::uint64_t bytes = bytesNeeded(width, height, bytesPerPixel, keptCopies);
    if (bytes > maxBytes) {
        throw ImageLoadError::refused(
            "picture too large for memory: " + size + " needs " +
            std::to_string((bytes + mebibyte - 1) / mebibyte) +
            " MiB with the document, kept pictures 0 and 1 and the undo levels, above the limit "
            "of " +
            std::to_string(maxBytes / mebibyte) + " MiB");
    }
}

FittedSize LoadLimits::fit(std::int64_t width, std::int64_t height,
                           std::uint64_t bytesPerPixel) const {
    if (width <= 0 || height <= 0) return {};
    const std::uint64_t perPixel = bytesPerPixel + 4u * static_cast<std::uint64_t>(keptCopies);
    const auto room = static_cast<std::int64_t>(std::min<std::uint64_t>(
        static_cast<std::uint64_t>(std::max<std::int64_t>(maxPixels, 0)), maxBytes / perPixel));
    const double scale =
        std::min({std::sqrt(static_cast<double>(room) /
                            (static_cast<double>(width) * static_cast<double>(height))),
                  static_cast<double>(MaxDimension) / static_cast<double>(width),
                  static_cast<double>(MaxDimension) / static_cast<double>(height)});
    if (scale >= 1.0) return {width, height, false};
    // The epsilon keeps an exact fit (32767 of 40000) from rounding down.
    auto scaled = [scale](std::int64_t side) {
        return std::clamp<std::int64_t>(static_cast<std::int64_t>(std::floor(side * scale + 1e-9)),
                                        1, MaxDimension);
    };
    FittedSize fitted{scaled(width), scaled(height), true};
    // A side that fell below one pixel is one pixel; the other takes the rest.
    if (fitted.width * fitted.height > room) {
        if (fitted.height == 1) fitted.width = std::min<std::int64_t>(room, MaxDimension);
        if (fitted.width == 1) fitted.height = std::min<std::int64_t>(room, MaxDimension);
    }
    if (fitted.width <= 0 || fitted.height <= 0 || fitted.width * fitted.height > room) return {};
    return fitted;
}

std::string LoadLimits::describePixelLimit() const {
    const auto side =
        static_cast<std::int64_t>(std::llround(std::sqrt(static_cast<double>(maxPixels))));
    if (side * side == maxPixels) return sizeText(side, side) + " pixels";
    return std::to_string(maxPixels) + " pixels";
}

std::int64_t parsePixelLimit(std::string_view text) {
    const std::size_t cross = text.find_first_of("xX");
    if (cross == std::string_view::npos) {
        std::int64_t pixels = 0;
        return parseWhole(text, pixels) ? pixels : 0;
    }
    std::int64_t width = 0;
    std::int64_t height = 0;
    if (!parseWhole(text.substr(0, cross), width) || !parseWhole(text.substr(cross + 1), height))
        return 0;
    constexpr std::int64_t largestSide = std::int64_t{1} << 30; // no overflow below
    if (width > largestSide || height > largestSide) return 0;
    return width * height;
}

} // namespace lumiran
