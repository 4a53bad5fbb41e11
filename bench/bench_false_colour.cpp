// Class_FalseColor's per-pixel recolourings and one noise run on 4096x4096;
// bench_main prints them as multiples of the plain copy.
#include "bench_support.h"
#include "effects/colour/false_color/class_false_color.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

void runPass(benchmark::State& state, const std::function<void(Class_FalseColor&)>& call) {
    bench::runPasses<Class_FalseColor>(state, bench::randomColourPicture(), call);
}

void BM_FalseColor_Pseudo(benchmark::State& state) {
    runPass(state, [](Class_FalseColor& e) { e.FalseColor(0, 0, Side, Side, 0); });
}
BENCHMARK(BM_FalseColor_Pseudo)->Unit(benchmark::kMillisecond);

void BM_FalseColor_BlueSepia(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [type](Class_FalseColor& e) { e.BlueSepia(type, 0, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_FalseColor_BlueSepia)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_FalseColor_Fluorescence(benchmark::State& state) {
    runPass(state, [](Class_FalseColor& e) { e.FluorescenceRevision(0, 42, 0, 0, Side, Side); });
}
BENCHMARK(BM_FalseColor_Fluorescence)->Unit(benchmark::kMillisecond);

void BM_FalseColor_Retrospection(benchmark::State& state) {
    runPass(state, [](Class_FalseColor& e) { e.Retrospection(0, 10.5, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_FalseColor_Retrospection)->Unit(benchmark::kMillisecond);

void BM_FalseColor_ColorAdjust(benchmark::State& state) {
    runPass(state,
            [](Class_FalseColor& e) { e.Color_Adjusten(0, 2, 200, 100, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_FalseColor_ColorAdjust)->Unit(benchmark::kMillisecond);

void BM_FalseColor_MonotoneNoise(benchmark::State& state) {
    runPass(state, [](Class_FalseColor& e) { e.RandamNoise_Mono(42, 0, 1, 0, 0, Side, Side); });
}
BENCHMARK(BM_FalseColor_MonotoneNoise)->Unit(benchmark::kMillisecond);

// Noise Corrdinate at its defaults: the walk, then the moves into TransBits
// (made by the call).
void BM_FalseColor_NoiseCoordinate(benchmark::State& state) {
    runPass(state, [](Class_FalseColor& e) { e.NoiserizeWater(8, 8, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_FalseColor_NoiseCoordinate)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

} // namespace
