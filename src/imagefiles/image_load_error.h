#pragma once

#include <stdexcept>
#include <string>

namespace lumiran {

// A picture that could not be loaded. The editor shows it as the program
// always did: title "ｴﾗｰ" plus number, text the description, which is empty
// (number 0) when a reader refuses a file by its own rules. The detail is a
// plain account of the reason, for the command line and for a second line.
class ImageLoadError : public std::runtime_error {
  public:
    ImageLoadError(int number, std::string description, const std::string& detail)
        : std::runtime_error(detail), number_(number), description_(std::move(description)) {}

    // A reader's own refusal of a file.
    static ImageLoadError refused(const std::string& detail) { return {0, "", detail}; }

    [[nodiscard]] int number() const { return number_; }
    [[nodiscard]] const std::string& description() const { return description_; }
    [[nodiscard]] std::string detail() const { return what(); }

  private:
    int number_;
    std::string description_;
};

// A load stopped at the user's request (the editor's cancel, Ctrl+C on the
// command line): not a fault of the file, and shown as no error.
class LoadCancelled : public ImageLoadError {
  public:
    LoadCancelled() : ImageLoadError(0, "", "the load was cancelled") {}
};

} // namespace lumiran
