#pragma once

#include "imagefiles/load_limits.h"
#include "platform/picture_refusal.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

namespace lumiran {

// The work a metafile may ask of the converters and of the drawing: every
// record becomes an element the drawing keeps and paints, so their number is
// capped (a real drawing has far fewer), and the bitmaps the records carry
// may together have at most as many pixels as the page may, plus what the
// file's own bytes could hold uncompressed, so a few bytes of run-length
// code cannot ask for gigapixels.
inline constexpr std::size_t metafileMaxRecords = 50'000;

[[nodiscard]] inline std::uint64_t metafileBitmapPixels(const LoadLimits& limits,
                                                        std::size_t fileBytes) {
    return static_cast<std::uint64_t>(std::max<std::int64_t>(limits.maxPixels, 0)) +
           std::uint64_t{8} * fileBytes;
}

// The page a metafile is drawn on: its own size where the limits allow it,
// scaled down to fit them otherwise. Throws PictureRefusal when nothing fits.
[[nodiscard]] inline FittedSize metafilePage(const LoadLimits& limits, std::int64_t width,
                                             std::int64_t height) {
    if (width <= 0 || height <= 0) checkPictureSize(limits, width, height);
    const FittedSize page = limits.fit(width, height, decoderBytesPerPixel);
    if (page.width == 0) checkPictureSize(limits, width, height);
    return page;
}

// What the load says about a page drawn smaller than the metafile's frame.
[[nodiscard]] inline std::string scaledDownNote(std::int64_t width, std::int64_t height,
                                                const FittedSize& page, const LoadLimits& limits) {
    return "the metafile's frame of " + std::to_string(width) + "x" + std::to_string(height) +
           " is above the limit of " + limits.describePixelLimit() +
           " or the memory limit; drawn at " + std::to_string(page.width) + "x" +
           std::to_string(page.height);
}

} // namespace lumiran
