#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace lumiran {

// Reads a whole file; throws ImageFileError with a clear message when it is
// missing, a directory, unreadable or larger than maxBytes.
[[nodiscard]] std::vector<std::uint8_t> readWholeFile(const std::filesystem::path& path,
                                                      std::uintmax_t maxBytes);

// Writes to a temporary file beside the target and renames it over the
// target only when everything was written, so a failed save never leaves a
// partial file nor destroys an existing one. Throws ImageFileError.
void writeFileAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

} // namespace lumiran
