// The platform's decoder as the load path calls it for BMP, icons,
// cursors, JPEG and GIF; the content decides, as it does for real files.
#include "decoder_fuzzer.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    lumiran::fuzz::startGraphicsApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return lumiran::fuzz::fuzzDecoder(data, size, "jpg", lumiran::fuzz::Limits);
}
