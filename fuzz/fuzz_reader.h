#pragma once

#include "engine/run_context.h"
#include "engine/surface.h"
#include "imagefiles/image_file_error.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/load_limits.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace lumiran::fuzz {

// Small enough that a header asking for a large picture is refused at once
// (a picture the limits allow is decoded in full, even from a short body,
// which at millions of pixels would slow a run to tens of inputs a second),
// large enough for every seed.
inline constexpr LoadLimits Limits{.maxBytes = 64 << 20, .maxPixels = 256 * 256};

// Takes the percentages so that the readers' progress arithmetic runs.
class DiscardingProgress : public ProgressSink {
  public:
    void showPercent(int percent) override { last_ = percent; }
    [[nodiscard]] int last() const { return last_; }

  private:
    int last_ = 0;
};

// Feeds one input to a reader. A refusal is the right answer to a bad file;
// any other exception escapes and aborts, and a crash or a sanitizer report
// ends the run: each of these is a finding.
template <typename Read>
int fuzzReader(const std::uint8_t* data, std::size_t size, Read&& read) {
    const std::span<const std::uint8_t> file(data, size);
    DiscardingProgress progress;
    try {
        const Surface picture = read(file, &progress);
        // Touch every pixel so that a picture with a wrong size shows up.
        volatile Pixel sink = 0;
        for (const Pixel p : picture.pixels())
            sink = sink ^ p;
    } catch (const ImageLoadError&) {
    } catch (const ImageFileError&) {
    }
    return 0;
}

} // namespace lumiran::fuzz
