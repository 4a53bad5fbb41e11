// Encoding a 4096x4096 picture as it is saved, without the disk: the PNG
// writer beside the 24-bit bitmap, on a photograph-like picture and on
// random colours (which hardly compress, the PNG writer's worst case).
#include "bench_support.h"
#include "imagefiles/bitmap_writer.h"
#include "imagefiles/png_writer.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

template <typename Encode>
void runEncode(benchmark::State& state, const Surface& picture, Encode encode) {
    std::size_t bytes = 0;
    for (auto _ : state) {
        const auto file = encode(picture);
        bytes = file.size();
        benchmark::DoNotOptimize(file.data());
    }
    state.counters["MiB"] = static_cast<double>(bytes) / (1 << 20);
}

void BM_Files_Png(benchmark::State& state) {
    runEncode(state, state.range(0) == 0 ? bench::photoLikePicture() : bench::randomColourPicture(),
              [](const Surface& s) { return encodePng24(s); });
}
BENCHMARK(BM_Files_Png)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Files_Bmp24(benchmark::State& state) {
    runEncode(state, bench::photoLikePicture(), [](const Surface& s) { return encodeBmp24(s); });
}
BENCHMARK(BM_Files_Bmp24)->Unit(benchmark::kMillisecond);

} // namespace
