// Representative mosaics and patterns on 4096x4096, each one pass over an
// array already fetched; bench_main prints them as multiples of the plain
// copy. The 8-pixel mosaic has a target of its own: at most 20 ms.
#include "bench_support.h"
#include "effects/texture/mosaic/class_mosaic.h"
#include "effects/texture/net_mosaic/class_net_mosaic.h"
#include "effects/texture/pattern/class_pattern.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

void mosaicPass(benchmark::State& state, const std::function<void(Class_Mosaic&)>& call) {
    bench::runPasses<Class_Mosaic>(state, bench::randomColourPicture(), call);
}

void patternPass(benchmark::State& state, const std::function<void(Class_Pattern&)>& call) {
    bench::runPasses<Class_Pattern>(state, bench::randomColourPicture(), call);
}

void BM_Mosaic_Normal(benchmark::State& state) {
    const auto size = static_cast<std::uint8_t>(state.range(0));
    mosaicPass(state,
               [size](Class_Mosaic& e) { e.Mosaic_Normal(size, size, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_Mosaic_Normal)->Arg(8)->Arg(32)->Unit(benchmark::kMillisecond);

void BM_Mosaic_Tile(benchmark::State& state) {
    mosaicPass(state, [](Class_Mosaic& e) { e.Mosaic_Tile(8, 8, 0, 0, Side, Side, true, 2); });
}
BENCHMARK(BM_Mosaic_Tile)->Unit(benchmark::kMillisecond);

void BM_Mosaic_Circle(benchmark::State& state) {
    mosaicPass(state, [](Class_Mosaic& e) { e.Mosaic_Circle(12, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_Mosaic_Circle)->Unit(benchmark::kMillisecond);

void BM_Mosaic_Gradation2(benchmark::State& state) {
    mosaicPass(state, [](Class_Mosaic& e) { e.Mosaic_Gradation2(16, 16, 0, 0, Side, Side, 0, 1); });
}
BENCHMARK(BM_Mosaic_Gradation2)->Unit(benchmark::kMillisecond);

void BM_Mosaic_GradShading(benchmark::State& state) {
    mosaicPass(state, [](Class_Mosaic& e) {
        e.Mosaic_GradShading(12, 0, 0, Side, Side, 0, 10, 10, 10, 128, 32);
    });
}
BENCHMARK(BM_Mosaic_GradShading)->Unit(benchmark::kMillisecond);

void BM_Mosaic_Random(benchmark::State& state) {
    mosaicPass(state, [](Class_Mosaic& e) { e.Mosaic_Random(8, 8, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_Mosaic_Random)->Unit(benchmark::kMillisecond);

void BM_Pattern_ColorSpread(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.ColorSpread(0, 0, 0, Side, Side, 128, 128, 255, 2); });
}
BENCHMARK(BM_Pattern_ColorSpread)->Unit(benchmark::kMillisecond);

void BM_Pattern_Wamai(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.Wamai(0, 0, 0, Side, Side, 128, 128, 255, 5, 12); });
}
BENCHMARK(BM_Pattern_Wamai)->Unit(benchmark::kMillisecond);

void BM_Pattern_FF4(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) { e.FF4(0, 0, Side, Side, 128, 128, 255, 5, 32); });
}
BENCHMARK(BM_Pattern_FF4)->Unit(benchmark::kMillisecond);

void BM_Pattern_ColorTile1(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.ColorTile1(3, 0, 0, Side, Side, 128, 128, 255, 5, 64); });
}
BENCHMARK(BM_Pattern_ColorTile1)->Unit(benchmark::kMillisecond);

void BM_Pattern_ColorSway1(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) {
        e.Color_Sway1(0, 0, 0, 0, Side, Side, 138, 170, 128, 170, 118, 170);
    });
}
BENCHMARK(BM_Pattern_ColorSway1)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

void BM_Pattern_ColorSway(benchmark::State& state) {
    const auto sway = static_cast<int>(state.range(0));
    patternPass(state, [sway](Class_Pattern& e) {
        const auto call = sway == 2   ? &Class_Pattern::Color_Sway2
                          : sway == 3 ? &Class_Pattern::Color_Sway3
                                      : &Class_Pattern::Color_Sway4;
        (e.*call)(0, 0, 0, 0, Side, Side, 138, 170, 128, 170, 118, 170);
    });
}
BENCHMARK(BM_Pattern_ColorSway)
    ->Arg(2)
    ->Arg(3)
    ->Arg(4)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

void BM_Pattern_FF1(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.FF1(0, 0, 0, 0, Side, Side, 40, 60, 255, 128, 64, 0); });
}
BENCHMARK(BM_Pattern_FF1)->Unit(benchmark::kMillisecond);

void BM_Pattern_FF2(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.FF2(0, 0, 0, 0, Side, Side, 40, 60, 50, 70, 60, 80, 0); });
}
BENCHMARK(BM_Pattern_FF2)->Unit(benchmark::kMillisecond);

void BM_Pattern_FF3(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) {
        e.FF3(0, 0, 0, 0, Side, Side, 138, 170, 128, 170, 118, 170, 2);
    });
}
BENCHMARK(BM_Pattern_FF3)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

void BM_Pattern_ColorTile2(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) {
        e.ColorTile2(0, 0, 0, Side, Side, 128, 128, 255, 10, 40, 32, 2, 5);
    });
}
BENCHMARK(BM_Pattern_ColorTile2)->Unit(benchmark::kMillisecond);

void BM_Pattern_CheckedPattern(benchmark::State& state) {
    const auto operation = static_cast<std::uint8_t>(state.range(0));
    patternPass(state, [operation](Class_Pattern& e) {
        e.CheckedPattern(true, 16, 16, 0, 0, Side, Side, operation);
    });
}
BENCHMARK(BM_Pattern_CheckedPattern)->Arg(0)->Arg(8)->Unit(benchmark::kMillisecond);

void BM_Pattern_SmokeRandom(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) {
        e.Smoke(0, 0, 0, 0, Side, Side, 12, 42, 118, 128, 138, 2, true);
    });
}
BENCHMARK(BM_Pattern_SmokeRandom)->Unit(benchmark::kMillisecond);

void BM_Pattern_SinLight(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) {
        e.Smoke(0, 0, 0, 0, Side, Side, 12, 42, 118, 128, 138, 2, false);
    });
}
BENCHMARK(BM_Pattern_SinLight)->Unit(benchmark::kMillisecond);

void BM_Pattern_TileWallNormal(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.LineInput_Normal(8, 8, 0, 0, Side, Side, true, 0); });
}
BENCHMARK(BM_Pattern_TileWallNormal)->Unit(benchmark::kMillisecond);

void BM_Pattern_TileWallShippou(benchmark::State& state) {
    patternPass(state, [](Class_Pattern& e) { e.LineInput_Circle(24, 0, 0, Side, Side, 0, 0); });
}
BENCHMARK(BM_Pattern_TileWallShippou)->Unit(benchmark::kMillisecond);

void BM_Pattern_ShadePattern(benchmark::State& state) {
    patternPass(state,
                [](Class_Pattern& e) { e.ShadePatternMethod(1, 0, 0, Side, Side, 128, 128, 255); });
}
BENCHMARK(BM_Pattern_ShadePattern)->Unit(benchmark::kMillisecond);

// The irregular nets at their defaults (blocks of 8, noise 8, random net):
// some 260 000 small polygons and 2 million short lines at this size.
void BM_NetMosaic_Mosaic(benchmark::State& state) {
    bench::runKeptPasses<Class_NetMosaic>(
        state, [](Class_NetMosaic& e, const Surface& kept0, Surface& kept1) {
            e.Mosaic_Net(kept0, kept1, 0, 0, Side, Side, 8, 8, 0);
        });
}
BENCHMARK(BM_NetMosaic_Mosaic)->Unit(benchmark::kMillisecond);

void BM_NetMosaic_Lines(benchmark::State& state) {
    bench::runKeptPasses<Class_NetMosaic>(
        state, [](Class_NetMosaic& e, const Surface& kept0, Surface& kept1) {
            e.Net_Line(kept0, kept1, 0, 0, Side, Side, 8, 8, 0, 0, 0, 0);
        });
}
BENCHMARK(BM_NetMosaic_Lines)->Unit(benchmark::kMillisecond);

} // namespace
