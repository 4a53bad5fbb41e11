// Per-pixel colour effects against a plain copy of the same buffer. The
// copy is the floor: an effect reads and writes each pixel once, so the
// target is to stay within three times its time.
#include "effects/colour/class_color_op.h"
#include "engine/random_generator.h"
#include "engine/run_context.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstring>

namespace {

using namespace lumiran;

constexpr int Side = 4096;

Surface makeBenchPicture() {
    Surface s(Side, Side);
    RandomGenerator random;
    for (Pixel& p : s.pixels())
        p = static_cast<Pixel>(random.next() * 16777216.0);
    return s;
}

const Surface& benchPicture() {
    static const Surface picture = makeBenchPicture();
    return picture;
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
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Class_ColorOp effect(context);
    effect.ImageGetDiBits(benchPicture());
    for (auto _ : state) {
        cancel = 0;
        effect.Gray_Effect(static_cast<std::uint8_t>(state.range(0)), 0, 0, Side, Side);
        benchmark::ClobberMemory();
    }
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
