#include "imagefiles/load_limits.h"

#include "imagefiles/image_load_error.h"

#include <algorithm>
#include <string>
#include <unistd.h>

namespace lumiran {

std::uint64_t LoadLimits::defaultMaxBytes() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    constexpr std::uint64_t floor = 256ull << 20;
    if (pages <= 0 || pageSize <= 0) return floor;
    return std::max(floor, static_cast<std::uint64_t>(pages) * pageSize / 2);
}

void LoadLimits::check(std::int64_t width, std::int64_t height, std::uint64_t bytesPerPixel) const {
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    if (width <= 0 || height <= 0)
        throw ImageLoadError::refused("picture has no pixels (" + size + ")");
    if (width > MaxDimension || height > MaxDimension) {
        throw ImageLoadError::refused("picture too large: " + size +
                                      " (at most 32767 in either direction)");
    }
    const std::uint64_t bytes =
        static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) * bytesPerPixel;
    if (bytes > maxBytes) {
        throw ImageLoadError::refused("picture too large for memory: " + size);
    }
}

} // namespace lumiran
