#include "fuzz_reader.h"
#include "imagefiles/image_readers.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return lumiran::fuzz::fuzzReader(
        data, size, [](std::span<const std::uint8_t> file, lumiran::ProgressSink* progress) {
            return lumiran::Class_PCXImageOp().PCXImageGet(file, progress, lumiran::fuzz::Limits);
        });
}
