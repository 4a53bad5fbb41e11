#pragma once

#include <cstdint>
#include <filesystem>
#include <vector>

namespace lumiran {

// The first bytes of a file and the file's length, read without reading
// the rest, so that a size that decides a refusal costs nothing to learn.
struct FileHead {
    std::vector<std::uint8_t> bytes;
    std::uint64_t fileSize = 0;

    [[nodiscard]] bool whole() const { return bytes.size() == fileSize; }
};

// Reads at most headBytes from the start of a regular file; throws
// ImageFileError when it is missing, not a regular file or unreadable.
[[nodiscard]] FileHead readFileHead(const std::filesystem::path& path, std::size_t headBytes);

} // namespace lumiran
