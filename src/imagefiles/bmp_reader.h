#pragma once

#include "engine/surface.h"

#include <cstdint>
#include <span>

namespace lumiran {

// Reads an uncompressed 24- or 32-bit Windows bitmap (either row order).
// Throws ImageFileError for anything else, for truncated data and for
// dimensions of 0 or above the 16-bit limit of the process rectangle.
[[nodiscard]] Surface readBmp(std::span<const std::uint8_t> bytes);

} // namespace lumiran
