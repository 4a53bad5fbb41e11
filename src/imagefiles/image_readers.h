#pragma once

#include "engine/run_context.h"
#include "engine/surface.h"
#include "imagefiles/load_limits.h"

#include <cstdint>
#include <span>

namespace lumiran {

// The four readers of the program's own. Each takes the whole file, reports
// the load percentage after each row to the sink (may be null) and returns
// the picture, or throws ImageLoadError. Run-time errors inside a reader
// (the overflow of a percentage, say) come out as ImageLoadError too, with
// the runtime's number and description.

class Class_PCXImageOp {
  public:
    [[nodiscard]] Surface PCXImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits = {});
    // Throws the refusals the file's length and its first bytes decide,
    // so that a huge file is refused before it is read.
    static void refuseFromHead(std::span<const std::uint8_t> head, std::uint64_t fileSize,
                               const LoadLimits& limits);
};

class Class_PPMImageOp {
  public:
    [[nodiscard]] Surface PPMImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits = {});
    // Throws the refusals the file's length and its first bytes decide,
    // so that a huge file is refused before it is read.
    static void refuseFromHead(std::span<const std::uint8_t> head, std::uint64_t fileSize,
                               const LoadLimits& limits);
};

class Class_TGAImageOp {
  public:
    [[nodiscard]] Surface TGAImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits = {});
    // Throws the refusals the file's length and its first bytes decide,
    // so that a huge file is refused before it is read.
    static void refuseFromHead(std::span<const std::uint8_t> head, std::uint64_t fileSize,
                               const LoadLimits& limits);
};

class Class_PCDImageOp {
  public:
    [[nodiscard]] Surface PCDImageGet(std::span<const std::uint8_t> file, ProgressSink* progress,
                                      const LoadLimits& limits = {});
    // Throws the refusals the file's length and its first bytes decide,
    // so that a huge file is refused before it is read.
    static void refuseFromHead(std::span<const std::uint8_t> head, std::uint64_t fileSize,
                               const LoadLimits& limits);
};

} // namespace lumiran
