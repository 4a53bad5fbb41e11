#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <vector>

namespace lumiran {

// Reads a whole file; throws ImageFileError with a clear message when it is
// missing, a directory, unreadable or larger than maxBytes.
[[nodiscard]] std::vector<std::uint8_t> readWholeFile(const std::filesystem::path& path,
                                                      std::uintmax_t maxBytes);

// Writes to a temporary file beside the target and renames it over the
// target only when everything was written, so a failed save never leaves a
// partial file nor destroys an existing one. A symlink is followed and its
// target replaced in its own folder; the replacement keeps the old file's
// mode and, where the process may set it, its owner. A device, FIFO or
// socket (and /dev/stdout and the like) is written through as a plain open
// would. Throws ImageFileError.
void writeFileAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

// A file of a header and then rows of rowBytes each, made a few rows at a
// time: fill(first, count, out) puts rows [first, first + count), in the
// file's order, into out (count * rowBytes bytes). Written this way a large
// file needs no buffer of its own size, whose fresh pages cost more than
// the packing, and the rows are packed on a second thread while the first
// writes those before them. fill may run on another thread than the caller.
struct FileInRows {
    std::span<const std::uint8_t> header;
    std::size_t rowBytes = 0;
    std::size_t rows = 0;
    std::function<void(std::size_t first, std::size_t count, std::span<std::uint8_t> out)> fill;
};
// As above, for a file made in rows.
void writeFileAtomically(const std::filesystem::path& path, const FileInRows& file);

// A temporary file that is removed when this goes out of scope, and also when
// the process is ended by SIGINT, SIGTERM or SIGHUP meanwhile.
class SignalSafeTemporary {
  public:
    explicit SignalSafeTemporary(const std::filesystem::path& path);
    ~SignalSafeTemporary();
    SignalSafeTemporary(const SignalSafeTemporary&) = delete;
    SignalSafeTemporary& operator=(const SignalSafeTemporary&) = delete;

    // The file was renamed away: nothing to remove any more.
    void release();

  private:
    int slot_ = -1;
    std::filesystem::path path_;
};

} // namespace lumiran
