#pragma once

#include "imagefiles/load_limits.h"

#include <cstdint>
#include <span>
#include <string>

namespace lumiran {

// A Windows metafile with an Aldus placeable header.
[[nodiscard]] bool looksLikePlaceableMetafile(std::span<const std::uint8_t> bytes);

// A metafile converted by libwmf, with the picture size it has at 96 dots
// an inch.
struct WmfDrawing {
    std::string svg;
    int width = 0;
    int height = 0;
};

// Throws PictureRefusal for a file libwmf cannot or should not play.
[[nodiscard]] WmfDrawing convertWindowsMetafile(std::span<const std::uint8_t> bytes,
                                                const LoadLimits& limits);

} // namespace lumiran
