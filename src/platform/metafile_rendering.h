#pragma once

#include "engine/surface.h"
#include "imagefiles/load_limits.h"

#include <cstdint>
#include <span>

namespace lumiran {

// Metafiles are converted to SVG by their libraries and drawn on a white
// page at the size the file gives. Both throw PictureRefusal for a file they
// will not draw.

// An enhanced metafile: an EMR_HEADER record carrying the " EMF" signature.
[[nodiscard]] bool looksLikeEnhancedMetafile(std::span<const std::uint8_t> bytes);

[[nodiscard]] Surface renderWindowsMetafile(std::span<const std::uint8_t> bytes,
                                            const LoadLimits& limits);
[[nodiscard]] Surface renderEnhancedMetafile(std::span<const std::uint8_t> bytes,
                                             const LoadLimits& limits);

} // namespace lumiran
