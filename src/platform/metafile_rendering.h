#pragma once

#include "engine/run_context.h"
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

// A frame larger than the limits allow is drawn scaled down to them, with a
// note to progress (may be null) saying so.
[[nodiscard]] Surface renderWindowsMetafile(std::span<const std::uint8_t> bytes,
                                            const LoadLimits& limits,
                                            ProgressSink* progress = nullptr);
[[nodiscard]] Surface renderEnhancedMetafile(std::span<const std::uint8_t> bytes,
                                             const LoadLimits& limits,
                                             ProgressSink* progress = nullptr);

} // namespace lumiran
