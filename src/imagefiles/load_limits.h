#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace lumiran {

// A picture size that fits the limits, for drawings that can be drawn at
// any size (metafiles).
struct FittedSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
    bool scaledDown = false;
};

// How large a picture a reader may allocate. Checked from the header, before
// any allocation, so a lying header costs nothing.
struct LoadLimits {
    static constexpr int MaxDimension = 32767; // the 16-bit process rectangle
    static constexpr std::int64_t DefaultMaxPixels = std::int64_t{16384} * 16384;
    // Bytes the reader's working arrays and the picture may take together,
    // with the copies a run keeps of it.
    std::uint64_t maxBytes = defaultMaxBytes();
    // Pixels a picture may have, whatever memory there is.
    std::int64_t maxPixels = DefaultMaxPixels;
    // Whole copies of the picture a run keeps beside the document: kept
    // pictures 0 and 1 and the undo levels.
    int keptCopies = 2;

    // Half of the physical memory, at least 256 MiB.
    [[nodiscard]] static std::uint64_t defaultMaxBytes();

    // Throws ImageLoadError (refused, with a clear detail naming the size
    // and the limit) when a picture of this size with bytesPerPixel bytes of
    // working storage for each pixel (the picture's own 4 included) would
    // not be allowed.
    void check(std::int64_t width, std::int64_t height, std::uint64_t bytesPerPixel) const;

    // The largest size of the same shape, at most width x height, that
    // check() allows; 0 x 0 when not even one pixel fits.
    [[nodiscard]] FittedSize fit(std::int64_t width, std::int64_t height,
                                 std::uint64_t bytesPerPixel) const;

    // "16384x16384 pixels" for the limit as whole-square text where it is
    // one, the pixel count otherwise.
    [[nodiscard]] std::string describePixelLimit() const;
};

// Reads a pixel limit given as "WIDTHxHEIGHT" or as a pixel count; 0 for
// text that is neither or gives no pixels.
[[nodiscard]] std::int64_t parsePixelLimit(std::string_view text);

} // namespace lumiran
