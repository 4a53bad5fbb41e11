#pragma once

#include "engine/surface.h"

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumiran {

// A 24-bit bottom-up Windows bitmap of the picture, as bytes.
[[nodiscard]] std::vector<std::uint8_t> encodeBmp24(const Surface& picture);

// Writes it beside the target and renames it over the target on success.
// Throws ImageFileError.
void saveBmp24(const Surface& picture, const std::filesystem::path& path);

// Result codes of Save256, as the save dialog tells them apart. Codes 2 (a
// source of 8 bits a pixel or less) and 4 (no device context) cannot occur
// with a 32-bit surface and have no constant.
inline constexpr int Save256Success = 0;
inline constexpr int Save256EmptyPicture = 1;
inline constexpr int Save256TooManyColours = 3;

struct Bmp8Encoding {
    int result = Save256Success;
    std::vector<std::uint8_t> bytes; // empty unless result is Save256Success
};

// An 8-bit palette bitmap of the picture, with no colour reduction: the
// palette holds the picture's colours in the order they are first met from
// the top left, and a picture with more colours than fit is refused with
// Save256TooManyColours. reserveSystemColors keeps entries 0 to 9 unused,
// which leaves room for 236 colours instead of 256.
[[nodiscard]] Bmp8Encoding encodeBmp8(const Surface& picture, bool reserveSystemColors);

// Writes encodeBmp8's file, or nothing when it refuses, and returns its
// result code. Throws ImageFileError when the file cannot be written; an
// existing file is then left as it was.
int Save256(const Surface& picture, const std::filesystem::path& path, bool reserveSystemColors);

// A 1-bit bitmap in which exactly black (0, 0, 0) pixels are black and every
// other colour is white. Throws ImageFileError for an empty picture.
[[nodiscard]] std::vector<std::uint8_t> encodeBmp1(const Surface& picture);

// Writes encodeBmp1's file and returns 1, the program's code for success.
// Throws ImageFileError when the file cannot be written.
int SaveMonoImage(const std::filesystem::path& path, const Surface& picture);

} // namespace lumiran
