#include "imagefiles/image_readers.h"

#include "imagefiles/image_load_error.h"

namespace lumiran {

Surface Class_PPMImageOp::PPMImageGet(std::span<const std::uint8_t>, ProgressSink*,
                                        const LoadLimits&) {
    throw ImageLoadError::refused("PPM files cannot be read yet");
}

} // namespace lumiran
