#pragma once

#include "imagefiles/image_load_error.h"
#include "imagefiles/load_limits.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace lumiran {

// A file the platform decoder will not show. The decoder adds the file's
// name and reports it as the runtime's invalid-picture error, so the parts
// that take a file apart need know nothing of paths or error numbers.
class PictureRefusal : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The decoded picture and the copy the program keeps of it: 4 bytes each.
inline constexpr std::uint64_t decoderBytesPerPixel = 8;

// The load limits' verdict on a picture size, as a refusal of the picture.
inline void checkPictureSize(const LoadLimits& limits, std::int64_t width, std::int64_t height) {
    try {
        limits.check(width, height, decoderBytesPerPixel);
    } catch (const ImageLoadError& e) {
        throw PictureRefusal(e.detail());
    }
}

} // namespace lumiran
