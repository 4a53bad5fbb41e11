// The drawing calls on a 4096x4096 picture: the full-picture block copy and
// a stretch of the whole picture to 3000x3000, printed by bench_main as
// multiples of the plain buffer copy (the block copy is to stay within 1.5).
#include "bench_support.h"
#include "engine/drawing/blit.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

using bench::Side;

void BM_Canvas_BitBlt(benchmark::State& state, RasterCode code) {
    const Surface& source = bench::randomColourPicture();
    Surface target(Side, Side);
    for (auto _ : state) {
        BitBlt(target, 0, 0, Side, Side, source, 0, 0, code);
        benchmark::DoNotOptimize(target.pixels().data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(BM_Canvas_BitBlt, SrcCopy, SRCCOPY)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Canvas_BitBlt, SrcInvert, SRCINVERT)->Unit(benchmark::kMillisecond);

void BM_Canvas_StretchBlt(benchmark::State& state, int mirror) {
    constexpr int Stretched = 3000;
    const Surface& source = bench::randomColourPicture();
    Surface target(Stretched, Stretched);
    const int x = mirror < 0 ? Stretched : 0;
    for (auto _ : state) {
        StretchBlt(target, x, 0, mirror * Stretched, Stretched, source, 0, 0, Side, Side, SRCCOPY);
        benchmark::DoNotOptimize(target.pixels().data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(BM_Canvas_StretchBlt, To3000, 1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Canvas_StretchBlt, To3000Mirrored, -1)->Unit(benchmark::kMillisecond);

} // namespace
