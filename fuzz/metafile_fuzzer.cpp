// The metafile path: the records walk, libwmf or libemf2svg, and the
// drawing. A metafile without a signature goes by its ".wmf" name; the
// others are told apart by their headers. The page is kept small so that
// each input is quick; a larger frame takes the scaled-down path.
#include "decoder_fuzzer.h"

namespace {

constexpr lumiran::LoadLimits metafileLimits{.maxBytes = 64 << 20, .maxPixels = 512 * 512};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    lumiran::fuzz::startGraphicsApplication();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return lumiran::fuzz::fuzzDecoder(data, size, "wmf", metafileLimits);
}
