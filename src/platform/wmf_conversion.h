#pragma once

#include "engine/run_context.h"
#include "imagefiles/load_limits.h"

#include <cstdint>
#include <span>
#include <string>

namespace lumiran {

// A Windows metafile with an Aldus placeable header.
[[nodiscard]] bool looksLikePlaceableMetafile(std::span<const std::uint8_t> bytes);

// A metafile converted by libwmf, with the picture size it has at 96 dots
// an inch, or the smaller one the limits allow, saying so in the note.
struct WmfDrawing {
    std::string svg;
    int width = 0;
    int height = 0;
    std::string note;
};

// Throws PictureRefusal for a file libwmf cannot or should not play.
// The library's progress goes to progress (may be null), which may stop the
// load by throwing.
[[nodiscard]] WmfDrawing convertWindowsMetafile(std::span<const std::uint8_t> bytes,
                                                const LoadLimits& limits,
                                                ProgressSink* progress = nullptr);

} // namespace lumiran
