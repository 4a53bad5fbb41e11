// The merges with the kept image on 4096x4096, the kept image as large as
// the document: each one pass on an array already fetched; bench_main
// prints them as multiples of the plain copy.
#include "bench_support.h"
#include "effects/composition/class_composition.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;
using C = Class_Composition;
constexpr std::int16_t S = Side;

void merge(benchmark::State& state, const std::function<void(C&)>& call) {
    bench::runFetchedPasses<C>(
        state, bench::randomColourPicture(), bench::randomColourPicture(),
        [](RunContext& context) { context.composeImage = &bench::photoLikePicture(); }, call);
}

void BM_Composition_Mean(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    merge(state, [type](C& e) { e.Composite_Mean(4, type, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Mean)->Arg(0)->Arg(7)->Unit(benchmark::kMillisecond);

void BM_Composition_Addition(benchmark::State& state) {
    const auto mode = static_cast<std::uint8_t>(state.range(0));
    merge(state, [mode](C& e) { e.Composite_Addition(mode, 0, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Addition)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_Composition_Subtraction(benchmark::State& state) {
    const auto mode = static_cast<std::uint8_t>(state.range(0));
    merge(state, [mode](C& e) { e.Composite_Subtraction(mode, 0, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Subtraction)->Arg(1)->Arg(5)->Arg(6)->Unit(benchmark::kMillisecond);

void BM_Composition_Compare(benchmark::State& state) {
    merge(state, [](C& e) { e.Composite_Morphological(2, 42, 200, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Compare)->Unit(benchmark::kMillisecond);

void BM_Composition_Exchange(benchmark::State& state) {
    merge(state, [](C& e) { e.Composite_Exchange(0, 192, 64, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Exchange)->Unit(benchmark::kMillisecond);

void BM_Composition_Exchange2(benchmark::State& state) {
    merge(state, [](C& e) { e.Composite_Exchange2(1, 0, 0, S, S, 255, 0, 0); });
}
BENCHMARK(BM_Composition_Exchange2)->Unit(benchmark::kMillisecond);

// Directions both ways, across, down. The moving merges run on every core:
// their CPU column is the whole process's.
void BM_Composition_Diffuse(benchmark::State& state) {
    const auto direction = static_cast<std::uint8_t>(state.range(0));
    merge(state, [direction](C& e) { e.Composite_Diffuse(0, direction, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Diffuse)
    ->DenseRange(0, 2)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void BM_Composition_Coordinate(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    merge(state, [type](C& e) { e.Composite_Coordinate(type, 0, 44, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Coordinate)
    ->DenseRange(0, 8)
    ->MeasureProcessCPUTime()
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

void BM_Composition_Embossing(benchmark::State& state) {
    merge(state, [](C& e) { e.Composite_Embossing(0, 0, 0, 0, S, S, 128, 128, 128, 1); });
}
BENCHMARK(BM_Composition_Embossing)->Unit(benchmark::kMillisecond);

void BM_Composition_Raster(benchmark::State& state) {
    const auto layout = static_cast<std::uint8_t>(state.range(0));
    merge(state, [layout](C& e) { e.Composite_Raster(SRCINVERT, layout, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Raster)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_Composition_Hide(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    merge(state, [type](C& e) { e.Suteganography_Hide(type, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Hide)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_Composition_Extraction(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    merge(state, [type](C& e) { e.Suteganography_Extraction(type, 0, 0, S, S); });
}
BENCHMARK(BM_Composition_Extraction)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

} // namespace
