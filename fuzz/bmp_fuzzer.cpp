#include "fuzz_reader.h"
#include "imagefiles/bmp_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The bitmap reader keeps to its own size limits and reports no progress.
    return lumiran::fuzz::fuzzReader(data, size,
                                     [](std::span<const std::uint8_t> file,
                                        lumiran::ProgressSink*) { return lumiran::readBmp(file); });
}
