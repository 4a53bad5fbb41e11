#include "imagefiles/file_io.h"

#include "imagefiles/image_file_error.h"
#include "imagefiles/piece_pipeline.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <fstream>
#include <mutex>
#include <random>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace lumiran {

namespace fs = std::filesystem;

std::vector<std::uint8_t> readWholeFile(const fs::path& path, std::uintmax_t maxBytes) {
    std::error_code ec;
    const auto status = fs::status(path, ec);
    if (ec || !fs::exists(status)) throw ImageFileError(path.string() + ": no such file");
    if (fs::is_directory(status)) throw ImageFileError(path.string() + ": is a directory");
    const auto size = fs::file_size(path, ec);
    if (ec) throw ImageFileError(path.string() + ": cannot read the file size");
    if (size > maxBytes) throw ImageFileError(path.string() + ": file too large");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw ImageFileError(path.string() + ": cannot open for reading");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (in.gcount() != static_cast<std::streamsize>(bytes.size())) {
        throw ImageFileError(path.string() + ": read error");
    }
    return bytes;
}

namespace {

// Signal handlers may only touch plain memory, so the temporaries alive at
// any moment are kept in a fixed table rather than a container. This is the
// one process-wide state here: a handler has no other way to reach it.
constexpr int TemporarySlots = 32;
constexpr std::size_t TemporaryPathBytes = 4096;
enum SlotState : int { Free = 0, Filling = 1, Live = 2 };
struct TemporarySlot {
    std::atomic<int> state{Free};
    char path[TemporaryPathBytes]{};
};
std::array<TemporarySlot, TemporarySlots> temporarySlots; // NOLINT: reached from signal handlers
constexpr std::array<int, 3> cleanedSignals{SIGINT, SIGTERM, SIGHUP};

extern "C" void removeTemporariesAndDie(int signalNumber) {
    for (TemporarySlot& slot : temporarySlots) {
        if (slot.state.load() == Live) ::unlink(slot.path);
    }
    ::signal(signalNumber, SIG_DFL);
    ::raise(signalNumber);
}

void installCleanupHandlers() {
    static std::once_flag once;
    std::call_once(once, [] {
        for (const int signalNumber : cleanedSignals) {
            struct sigaction previous {};
            if (::sigaction(signalNumber, nullptr, &previous) != 0) continue;
            // A signal the caller ignores or handles itself is left to the caller.
            if ((previous.sa_flags & SA_SIGINFO) != 0 || previous.sa_handler != SIG_DFL) continue;
            struct sigaction action {};
            action.sa_handler = removeTemporariesAndDie;
            sigemptyset(&action.sa_mask);
            ::sigaction(signalNumber, &action, nullptr);
        }
    });
}

[[noreturn]] void fail(const fs::path& path, const std::string& what, int error = 0) {
    std::string message = path.string() + ": " + what;
    if (error != 0) message += ": " + std::generic_category().message(error);
    throw ImageFileError(message);
}

class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : fd_(fd) {}
    ~FileDescriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    [[nodiscard]] int get() const { return fd_; }
    // Closes now so that a late write error is seen; returns 0 or errno.
    int close() {
        const int result = ::close(std::exchange(fd_, -1));
        return result == 0 ? 0 : errno;
    }

  private:
    int fd_;
};

// 0 when every byte went out, else errno.
int writeAll(int fd, std::span<const std::uint8_t> bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return errno;
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
    return 0;
}

struct ResolvedTarget {
    fs::path path;
    // The name leads through /proc (as /dev/stdout does): it stands for an
    // open file, not for a place where a file could be replaced.
    bool openFile = false;
};

ResolvedTarget followLinks(fs::path path) {
    ResolvedTarget result;
    for (int depth = 0; depth < 40; ++depth) {
        if (path.string().starts_with("/proc/")) result.openFile = true;
        std::error_code ec;
        if (!fs::is_symlink(fs::symlink_status(path, ec))) break;
        const fs::path link = fs::read_symlink(path, ec);
        if (ec) break;
        path = link.is_absolute() ? link : path.parent_path() / link;
    }
    result.path = std::move(path);
    return result;
}

// Writes a file's content to an open file: 0 when every byte went out,
// else errno.
using ContentWriter = std::function<int(int fd)>;

// Rows a piece of the file packs, about this many bytes: a huge page, so
// that its buffer faults once, while a large file still makes enough
// pieces to keep both threads busy and a small one needs no thread.
constexpr std::size_t PieceBytes = HugePageBytes;

int writeRows(int fd, const FileInRows& file) {
    if (file.rows == 0 || file.rowBytes == 0) return writeAll(fd, file.header);
    const std::size_t perPiece = std::max<std::size_t>(1, PieceBytes / file.rowBytes);
    int error = 0;
    throughTwoBuffers((file.rows + perPiece - 1) / perPiece,
                      [&](std::size_t piece, PieceBuffer& buffer) {
                          const std::size_t first = piece * perPiece;
                          const std::size_t rows = std::min(perPiece, file.rows - first);
                          // The first piece leads with the header: a small file goes out
                          // in one write.
                          const std::size_t lead = piece == 0 ? file.header.size() : 0;
                          // A whole huge page, though the rows leave some over; a file of
                          // one piece keeps to the heap.
                          const std::size_t bytes = lead + rows * file.rowBytes;
                          if (file.rows > perPiece && buffer.capacity() < bytes)
                              buffer.reserve(std::max(PieceBytes, bytes));
                          buffer.resize(bytes);
                          if (lead != 0) std::ranges::copy(file.header, buffer.begin());
                          file.fill(first, rows, std::span(buffer).subspan(lead));
                          return true;
                      },
                      [&](std::size_t, const PieceBuffer& buffer) {
                          error = writeAll(fd, buffer);
                          return error == 0;
                      });
    return error;
}

void writeThrough(const fs::path& path, const ContentWriter& content, bool truncate) {
    FileDescriptor fd(::open(path.c_str(), O_WRONLY | O_CLOEXEC | (truncate ? O_TRUNC : 0)));
    if (fd.get() < 0) fail(path, "cannot open for writing", errno);
    if (const int error = content(fd.get()); error != 0) fail(path, "write error", error);
    if (const int error = fd.close(); error != 0) fail(path, "write error", error);
}

fs::path temporaryName(const fs::path& directory, std::mt19937& random) {
    // Short whatever the target's name, so that a name at the file system's
    // length limit can still be saved.
    return directory / (".lumiran.tmp" + std::to_string(100000 + random() % 900000));
}

} // namespace

SignalSafeTemporary::SignalSafeTemporary(const fs::path& path) : path_(path) {
    installCleanupHandlers();
    const std::string text = path.string();
    if (text.size() >= TemporaryPathBytes) return;
    for (int i = 0; i < TemporarySlots; ++i) {
        int expected = Free;
        if (!temporarySlots[i].state.compare_exchange_strong(expected, Filling)) continue;
        std::memcpy(temporarySlots[i].path, text.c_str(), text.size() + 1);
        temporarySlots[i].state.store(Live);
        slot_ = i;
        return;
    }
}

SignalSafeTemporary::~SignalSafeTemporary() {
    if (!path_.empty()) ::unlink(path_.c_str());
    release();
}

void SignalSafeTemporary::release() {
    path_.clear();
    if (slot_ >= 0) temporarySlots[slot_].state.store(Free);
    slot_ = -1;
}

namespace {

void writeAtomically(const fs::path& path, const ContentWriter& content) {
    struct stat existing {};
    const bool exists = ::stat(path.c_str(), &existing) == 0;
    if (exists && S_ISDIR(existing.st_mode)) fail(path, "is a directory");
    if (exists && !S_ISREG(existing.st_mode)) {
        writeThrough(path, content, false);
        return;
    }
    const ResolvedTarget target = followLinks(path);
    if (target.openFile) {
        writeThrough(path, content, true);
        return;
    }
    const fs::path directory =
        target.path.has_parent_path() ? target.path.parent_path() : fs::path(".");
    std::error_code ec;
    if (!fs::is_directory(directory, ec)) fail(path, "the folder does not exist");

    std::mt19937 random(std::random_device{}());
    fs::path temporary;
    int descriptor = -1;
    // A new file gets the umask's mode; an old one's mode is set once the
    // owner is, and until then the temporary is private.
    const mode_t createMode = exists ? 0600 : 0666;
    for (int attempt = 0; attempt < 100 && descriptor < 0; ++attempt) {
        temporary = temporaryName(directory, random);
        descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, createMode);
        if (descriptor < 0 && errno != EEXIST) fail(path, "cannot open for writing", errno);
    }
    FileDescriptor fd(descriptor);
    if (fd.get() < 0) fail(path, "cannot open for writing", EEXIST);
    SignalSafeTemporary guard(temporary);
    if (exists) {
        // The owner first: a change of owner clears the set-id bits.
        if (::fchown(fd.get(), existing.st_uid, existing.st_gid) != 0) {
            [[maybe_unused]] const int ignored =
                ::fchown(fd.get(), static_cast<uid_t>(-1), existing.st_gid);
        }
        if (::fchmod(fd.get(), existing.st_mode & 07777) != 0) {
            fail(path, "cannot keep the file's permissions", errno);
        }
    }
    if (const int error = content(fd.get()); error != 0) fail(path, "write error", error);
    if (::fsync(fd.get()) != 0 && errno != EINVAL && errno != EROFS) {
        fail(path, "write error", errno);
    }
    if (const int error = fd.close(); error != 0) fail(path, "write error", error);
    if (::rename(temporary.c_str(), target.path.c_str()) != 0) {
        fail(path, "cannot replace the file", errno);
    }
    guard.release();
}

} // namespace

void writeFileAtomically(const fs::path& path, std::span<const std::uint8_t> bytes) {
    writeAtomically(path, [bytes](int fd) { return writeAll(fd, bytes); });
}

void writeFileAtomically(const fs::path& path, const FileInRows& file) {
    writeAtomically(path, [&file](int fd) { return writeRows(fd, file); });
}

} // namespace lumiran
