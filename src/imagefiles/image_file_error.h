#pragma once

#include <stdexcept>
#include <string>

namespace lumiran {

// A picture file that cannot be read or written. The message is complete
// and fit to show to the user as it stands.
class ImageFileError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace lumiran
