// Representative Class_ColorOp operations on 4096x4096, each one pass over
// an array already fetched; bench_main prints them as multiples of the
// plain copy.
#include "bench_support.h"
#include "effects/colour/class_color_op.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

void runPass(benchmark::State& state, const std::function<void(Class_ColorOp&)>& call) {
    bench::runPasses<Class_ColorOp>(state, bench::randomColourPicture(), call);
}

void BM_ColorOp_RGBExchange(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [kind](Class_ColorOp& e) { e.RGBExchange(kind, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_RGBExchange)->Arg(0)->Arg(5)->Arg(12)->Unit(benchmark::kMillisecond);

void BM_ColorOp_ColorBalance(benchmark::State& state) {
    const auto model = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [model](Class_ColorOp& e) {
        e.ColorBalanceAdjust(model, 10, 20, 30, 0, 0, 0, Side, Side);
    });
}
BENCHMARK(BM_ColorOp_ColorBalance)->DenseRange(0, 5)->Unit(benchmark::kMillisecond);

void BM_ColorOp_AutumnsColor(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) { e.AutumnsColor(3, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_AutumnsColor)->Unit(benchmark::kMillisecond);

void BM_ColorOp_SakuraFilter(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) { e.SakuraFilter(0, 2, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_SakuraFilter)->Unit(benchmark::kMillisecond);

void BM_ColorOp_DifferenceOperation(benchmark::State& state) {
    const auto use = static_cast<std::uint8_t>(state.range(0));
    runPass(state,
            [use](Class_ColorOp& e) { e.DifferenceOperation(0, use, 0, 0, Side, Side, true); });
}
BENCHMARK(BM_ColorOp_DifferenceOperation)->Arg(1)->Arg(7)->Arg(9)->Unit(benchmark::kMillisecond);

void BM_ColorOp_Blackend(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) { e.Blackend(24 / 26.0, 1, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_Blackend)->Unit(benchmark::kMillisecond);

void BM_ColorOp_BlightnessAdjust(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) { e.BlightnessAdjust(1, 30, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_BlightnessAdjust)->Unit(benchmark::kMillisecond);

void BM_ColorOp_SilverMountain(benchmark::State& state) {
    runPass(state,
            [](Class_ColorOp& e) { e.SilverMountain(0, 42, 1, 0, 0, 0, 0, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_SilverMountain)->Unit(benchmark::kMillisecond);

void BM_ColorOp_GrayatSaturation(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) { e.GrayatSaturation(0, 128, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_ColorOp_GrayatSaturation)->Unit(benchmark::kMillisecond);

void BM_ColorOp_InvasionEffect(benchmark::State& state) {
    const auto source = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [source](Class_ColorOp& e) { e.Invasion_Effect(source, 3, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_InvasionEffect)->Arg(0)->Arg(6)->Unit(benchmark::kMillisecond);

void BM_ColorOp_OneColorStyle(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) { e.OneColorStyle(0, 0, 255, 128, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_OneColorStyle)->Unit(benchmark::kMillisecond);

void BM_ColorOp_Momo(benchmark::State& state) {
    runPass(state,
            [](Class_ColorOp& e) { e.Momo_Effect(128, 64, 128, 192, 0, 0, Side, Side, 50, 50); });
}
BENCHMARK(BM_ColorOp_Momo)->Unit(benchmark::kMillisecond);

void BM_ColorOp_Hue(benchmark::State& state) {
    const auto mode = static_cast<std::uint8_t>(state.range(0));
    runPass(state, [mode](Class_ColorOp& e) { e.Hue(mode, 128, 0, 0, Side, Side); });
}
BENCHMARK(BM_ColorOp_Hue)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_ColorOp_HSVInvert(benchmark::State& state) {
    runPass(state,
            [](Class_ColorOp& e) { e.HSVInvert(0, 0, Side, Side, 0, 240, 180, -20, 0, 30, 60); });
}
BENCHMARK(BM_ColorOp_HSVInvert)->Unit(benchmark::kMillisecond);

// 0: the dialog's defaults (no arc tangent); 1: intensity and saturation
// rising with the angle's arc tangent.
void BM_ColorOp_HSVCycle(benchmark::State& state) {
    const int rise = state.range(0) == 0 ? 0 : 60;
    runPass(state, [rise](Class_ColorOp& e) {
        e.HSVCycle(0, 0, Side, Side, 0, 360, static_cast<std::int16_t>(rise),
                   static_cast<std::int16_t>(rise / 2), 50, 50);
    });
}
BENCHMARK(BM_ColorOp_HSVCycle)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_ColorOp_Deterioration(benchmark::State& state) {
    runPass(state, [](Class_ColorOp& e) {
        e.Deterioration(1, 0, 0, 0, 0, Side, Side, 128, 128, 128, 0, 0, 30, 60);
    });
}
BENCHMARK(BM_ColorOp_Deterioration)->Unit(benchmark::kMillisecond);

} // namespace
