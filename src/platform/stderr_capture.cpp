#include "platform/stderr_capture.h"

#include <array>
#include <cstdio>
#include <sys/mman.h>
#include <unistd.h>

namespace lumiran {

namespace {
constexpr std::size_t kept = 64 * 1024;
} // namespace

StderrCapture::StderrCapture() {
    std::fflush(stderr);
    capture_ = ::memfd_create("lumiran-stderr", MFD_CLOEXEC);
    if (capture_ < 0) return;
    saved_ = ::dup(2);
    if (saved_ < 0 || ::dup2(capture_, 2) < 0) {
        if (saved_ >= 0) ::close(saved_);
        ::close(capture_);
        saved_ = capture_ = -1;
    }
}

StderrCapture::~StderrCapture() {
    (void)finish();
}

std::string StderrCapture::finish() {
    if (saved_ < 0) return {};
    std::fflush(stderr);
    ::dup2(saved_, 2);
    ::close(saved_);
    saved_ = -1;
    std::string text;
    std::array<char, 4096> block{};
    for (off_t at = 0; text.size() < kept;) {
        const ssize_t got = ::pread(capture_, block.data(), block.size(), at);
        if (got <= 0) break;
        text.append(block.data(), static_cast<std::size_t>(got));
        at += got;
    }
    ::close(capture_);
    capture_ = -1;
    if (text.size() > kept) text.resize(kept);
    return text;
}

} // namespace lumiran
