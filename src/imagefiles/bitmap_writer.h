#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

#include "engine/surface.h"

namespace lumiran {

// A 24-bit bottom-up Windows bitmap of the picture, as bytes.
[[nodiscard]] std::vector<std::uint8_t> encodeBmp24(const Surface& picture);

// Writes it beside the target and renames it over the target on success.
// Throws ImageFileError.
void saveBmp24(const Surface& picture, const std::filesystem::path& path);

} // namespace lumiran
