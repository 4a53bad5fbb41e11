// The colour-model effects on a picture like a photograph: smooth areas
// with a little noise, so colours repeat as they do in real pictures.
// (The other benchmarks use random colours, where no colour repeats.)
#include "bench_support.h"
#include "effects/colour/class_color_op.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

using bench::Side;

template <typename Call>
void runOnPhoto(benchmark::State& state, Call call) {
    bench::runPasses<Class_ColorOp>(state, bench::photoLikePicture(), call);
}

void BM_Photo_HSVInvert(benchmark::State& state) {
    runOnPhoto(state, [](Class_ColorOp& e) {
        e.HSVInvert(0, 0, Side, Side, 0, 240, 180, -20, 0, 30, 60);
    });
}
BENCHMARK(BM_Photo_HSVInvert)->Unit(benchmark::kMillisecond);

void BM_Photo_ColorBalanceHls(benchmark::State& state) {
    runOnPhoto(state,
               [](Class_ColorOp& e) { e.ColorBalanceAdjust(3, 20, 10, 5, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Photo_ColorBalanceHls)->Unit(benchmark::kMillisecond);

} // namespace
