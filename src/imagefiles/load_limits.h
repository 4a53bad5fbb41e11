#pragma once

#include <cstddef>
#include <cstdint>

namespace lumiran {

// How large a picture a reader may allocate. Checked from the header, before
// any allocation, so a lying header costs nothing.
struct LoadLimits {
    static constexpr int MaxDimension = 32767; // the 16-bit process rectangle
    // Bytes the reader's working arrays and the picture may take together.
    std::uint64_t maxBytes = defaultMaxBytes();

    // Half of the physical memory, at least 256 MiB.
    [[nodiscard]] static std::uint64_t defaultMaxBytes();

    // Throws ImageLoadError (refused, with a clear detail) when a picture of
    // this size with bytesPerPixel bytes of working storage for each pixel
    // (the picture's own 4 included) would not be allowed.
    void check(std::int64_t width, std::int64_t height, std::uint64_t bytesPerPixel) const;
};

} // namespace lumiran
