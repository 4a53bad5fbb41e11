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
// partial file nor destroys an existing one. A symlink is followed and its
// target replaced in its own folder; the replacement keeps the old file's
// mode and, where the process may set it, its owner. A device, FIFO or
// socket (and /dev/stdout and the like) is written through as a plain open
// would. Throws ImageFileError.
void writeFileAtomically(const std::filesystem::path& path, std::span<const std::uint8_t> bytes);

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
