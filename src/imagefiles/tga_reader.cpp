#include "imagefiles/image_readers.h"

#include "imagefiles/image_load_error.h"

namespace lumiran {

Surface Class_TGAImageOp::TGAImageGet(std::span<const std::uint8_t>, ProgressSink*,
                                        const LoadLimits&) {
    throw ImageLoadError::refused("TGA files cannot be read yet");
}

} // namespace lumiran
