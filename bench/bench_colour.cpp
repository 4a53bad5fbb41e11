// Per-pixel colour effects against a plain copy of the same buffer. The
// copy is the floor: an effect reads and writes each pixel once, so the
// target is to stay within three times its time.
#include "bench_support.h"
#include "effects/colour/class_color_op.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>

namespace {

using namespace lumiran;

using bench::Side;

const Surface& benchPicture() {
    return bench::randomColourPicture();
}

void BM_PlainCopy(benchmark::State& state) {
    const Surface& source = benchPicture();
    Surface target(Side, Side);
    for (auto _ : state) {
        std::memcpy(target.pixels().data(), source.pixels().data(),
                    source.pixelCount() * sizeof(Pixel));
        benchmark::DoNotOptimize(target.pixels().data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(source.pixelCount() * 4));
}
BENCHMARK(BM_PlainCopy)->Unit(benchmark::kMillisecond);

// The effect operation alone, on an array already fetched.
void BM_GrayEffect(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    bench::runPasses<Class_ColorOp>(
        state, benchPicture(), [kind](Class_ColorOp& e) { e.Gray_Effect(kind, 0, 0, Side, Side); });
}
BENCHMARK(BM_GrayEffect)->Arg(0)->Arg(1)->Arg(8)->Arg(10)->Arg(11)->Unit(benchmark::kMillisecond);

// A whole pass as a run makes it: fetch copy, operation, write-back.
void BM_GrayEffectWithFetch(benchmark::State& state) {
    CancelFlag cancel{0};
    RandomGenerator random;
    Surface result;
    for (auto _ : state) {
        RunContext context(cancel, random);
        Class_ColorOp effect(context);
        effect.ImageGetDiBits(benchPicture());
        effect.Gray_Effect(0, 0, 0, Side, Side);
        effect.ImageSetDiBits(result);
        benchmark::DoNotOptimize(result.pixels().data());
    }
}
BENCHMARK(BM_GrayEffectWithFetch)->Unit(benchmark::kMillisecond);

} // namespace
