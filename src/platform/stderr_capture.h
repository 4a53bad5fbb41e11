#pragma once

#include <string>

namespace lumiran {

// Decoder libraries (libpng's default error handler among them) print to the
// process's stderr directly, past Qt's message handler. While one of these
// lives, what anything prints to stderr goes to a file of its own instead;
// `finish` puts stderr back and hands over what was printed. Messages other
// threads print meanwhile land here too, which costs nothing worse than a
// stray line in a message's details.
class StderrCapture {
  public:
    StderrCapture();
    ~StderrCapture();
    StderrCapture(const StderrCapture&) = delete;
    StderrCapture& operator=(const StderrCapture&) = delete;

    // Stderr as it was, and the text printed since (at most 64 KiB).
    [[nodiscard]] std::string finish();

  private:
    int saved_ = -1;
    int capture_ = -1;
};

} // namespace lumiran
