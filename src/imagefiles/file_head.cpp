#include "imagefiles/file_head.h"

#include "imagefiles/image_file_error.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace lumiran {
namespace {

class Descriptor {
  public:
    explicit Descriptor(int fd) : fd_(fd) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (fd_ >= 0) close(fd_);
    }
    [[nodiscard]] int fd() const { return fd_; }

  private:
    int fd_;
};

} // namespace

FileHead readFileHead(const std::filesystem::path& path, std::size_t headBytes) {
    // Looked at before opening: opening a FIFO would wait for a writer.
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) throw ImageFileError(path.string() + ": no such file");
    if (S_ISDIR(status.st_mode)) throw ImageFileError(path.string() + ": is a directory");
    if (!S_ISREG(status.st_mode)) throw ImageFileError(path.string() + ": not a regular file");
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (file.fd() < 0) throw ImageFileError(path.string() + ": cannot open for reading");
    if (fstat(file.fd(), &status) != 0) {
        throw ImageFileError(path.string() + ": cannot read the file size");
    }
    FileHead head;
    head.fileSize = static_cast<std::uint64_t>(status.st_size);
    head.bytes.resize(static_cast<std::size_t>(std::min<std::uint64_t>(head.fileSize, headBytes)));
    std::size_t done = 0;
    while (done < head.bytes.size()) {
        const ssize_t got = pread(file.fd(), head.bytes.data() + done, head.bytes.size() - done,
                                  static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw ImageFileError(path.string() + ": read error");
        if (got == 0) break; // shrunk since fstat: what is there is the file
        done += static_cast<std::size_t>(got);
    }
    head.bytes.resize(done);
    if (done < headBytes) head.fileSize = done;
    return head;
}

} // namespace lumiran
