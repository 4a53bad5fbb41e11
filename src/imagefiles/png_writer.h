#pragma once

#include "engine/surface.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumiran {

// A lossless PNG of the picture: 8-bit RGB (colour type 2), no alpha, the
// spare byte of each pixel dropped. Throws ImageFileError for an empty picture.
[[nodiscard]] std::vector<std::uint8_t> encodePng24(const Surface& picture);

// Writes it beside the target and renames it over the target on success, as
// the bitmap writers do. Throws ImageFileError.
void savePng24(const Surface& picture, const std::filesystem::path& path);

} // namespace lumiran
