#pragma once

#include "engine/run_context.h"
#include "engine/surface.h"
#include "imagefiles/load_limits.h"

#include <filesystem>
#include <optional>

namespace lumiran {

// Reads an uncompressed 24- or 32-bit Windows bitmap straight from the file
// into a picture, exactly as the platform's decoder gives it. Gives nothing
// for a file of any other kind, or with anything unusual about it (a gap
// before the pixels, a short file, a size beyond the limits, an unreadable
// file), so that the platform's decoder reads it or refuses it in its own
// words. The percentage of rows read goes to progress as it grows.
[[nodiscard]] std::optional<Surface> readPlainBitmap(const std::filesystem::path& path,
                                                     const LoadLimits& limits,
                                                     ProgressSink* progress = nullptr);

} // namespace lumiran
