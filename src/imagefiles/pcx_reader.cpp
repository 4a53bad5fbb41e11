#include "imagefiles/image_readers.h"

#include "imagefiles/image_load_error.h"

namespace lumiran {

Surface Class_PCXImageOp::PCXImageGet(std::span<const std::uint8_t>, ProgressSink*,
                                        const LoadLimits&) {
    throw ImageLoadError::refused("PCX files cannot be read yet");
}

} // namespace lumiran
