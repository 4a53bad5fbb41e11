// Class_Soften operations on 4096x4096, each one pass over arrays already
// fetched; bench_main prints them as multiples of the plain copy.
#include "bench_support.h"
#include "effects/smoothing/class_soften.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

// Like bench::runPasses, with the separate destination fetched too.
void runPass(benchmark::State& state, const std::function<void(Class_Soften&)>& call) {
    bench::runFetchedPasses<Class_Soften>(
        state, bench::randomColourPicture(), bench::randomColourPicture(), [](RunContext&) {},
        call);
}

// Kinds 3, 12: the 3x3 and 7x7 means; 0, 1 weighted; 10, 14 adaptive;
// 13 Savitzky-Golay.
void BM_Soften_Smoothing(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [kind](Class_Soften& e) { e.Smoothing(kind, 0, 0, Side, Side); });
}
BENCHMARK(BM_Soften_Smoothing)
    ->Arg(3)
    ->Arg(7)
    ->Arg(12)
    ->Arg(0)
    ->Arg(1)
    ->Arg(10)
    ->Arg(14)
    ->Arg(13)
    ->Unit(benchmark::kMillisecond);

void BM_Soften_MovingAverage(benchmark::State& state) {
    const auto size = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [size](Class_Soften& e) { e.MovingAverage(size, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Soften_MovingAverage)->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);

void BM_Soften_Sharpen(benchmark::State& state) {
    runPass(state, [](Class_Soften& e) { e.Sharpen(0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Soften_Sharpen)->Unit(benchmark::kMillisecond);

void BM_Soften_EdgeSavingSmooth(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [type](Class_Soften& e) { e.Edge_SavingSmooth(1, type, 0, 0, Side, Side); });
}
BENCHMARK(BM_Soften_EdgeSavingSmooth)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// Filter kinds 0 cross, 1 3x3, 2 5x5; selector 0 and 7.
void BM_Soften_HighpassFilter(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    const auto selector = static_cast<std::uint8_t>(state.range(1));
    runPass(state, [kind, selector](Class_Soften& e) {
        e.HighpassFilter(5, kind, selector, 0, 0, Side, Side, 0);
    });
}
BENCHMARK(BM_Soften_HighpassFilter)
    ->Args({0, 0})
    ->Args({1, 0})
    ->Args({2, 0})
    ->Args({1, 7})
    ->Unit(benchmark::kMillisecond);

void BM_Soften_SelectiveLocalAveraging(benchmark::State& state) {
    const auto measure = static_cast<std::uint8_t>(state.range(0));
    runPass(state,
            [measure](Class_Soften& e) { e.Edge_PreservingSmoothing(measure, 0, 0, Side, Side); });
}
BENCHMARK(BM_Soften_SelectiveLocalAveraging)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Soften_SpecialSoften(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [type](Class_Soften& e) { e.Soften_Circle(0, 3, 0, 0, Side, Side, type); });
}
BENCHMARK(BM_Soften_SpecialSoften)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

// The afterimages at their defaults: 9 + 1 samples.
void BM_Soften_AfterImageWave(benchmark::State& state) {
    runPass(state,
            [](Class_Soften& e) { e.AfterImage_Wave(9, 0, 0, 0, 0, Side, Side, 12, 32, 50, 50); });
}
BENCHMARK(BM_Soften_AfterImageWave)->Unit(benchmark::kMillisecond);

void BM_Soften_AfterImageRipple(benchmark::State& state) {
    runPass(state, [](Class_Soften& e) {
        e.AfterImage_Ripple(9, 0, 0, 0, 0, Side, Side, 62, 62, 50, 50);
    });
}
BENCHMARK(BM_Soften_AfterImageRipple)->Unit(benchmark::kMillisecond);

// Direction 0 (the dialog's default) and 2, both coordinates turned; the
// rows run on every core, so the processor time is every thread's.
void BM_Soften_AfterImageVortex(benchmark::State& state) {
    const auto direction = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [direction](Class_Soften& e) {
        e.AfterImage_Vortex(9, 0, direction, 0, 0, Side, Side, 42, 50, 50);
    });
}
BENCHMARK(BM_Soften_AfterImageVortex)
    ->Arg(0)
    ->Arg(2)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

} // namespace
