// The gradation walks and blends, the lit spheres and blocks, the stamps
// and the aggregate on 4096x4096; bench_main prints them as multiples of
// the plain copy.
#include "bench_support.h"
#include "effects/colour/gradation/class_gradation.h"
#include "effects/texture/dla/class_dla.h"
#include "effects/texture/hide_effect/class_hide_effect.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

// A drawing on its own copy of the picture, as kept picture 0.
template <typename Class, typename Call>
void runDrawing(benchmark::State& state, Call call) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Surface kept = bench::photoLikePicture();
    context.kept0 = &kept;
    for (auto _ : state) {
        Class effect(context);
        effect.ImageGetDiBits(bench::photoLikePicture());
        call(effect, kept);
        benchmark::ClobberMemory();
    }
    if (!context.failures.empty()) state.SkipWithError("the effect failed");
}

void BM_Gradation_Draw(benchmark::State& state) {
    const auto shape = static_cast<std::uint8_t>(state.range(0));
    runDrawing<Class_Gradation>(state, [shape](Class_Gradation& e, Surface&) {
        e.Gradation_Draw(shape, -1, 0, 0, 0, Side, Side, 0, 0, 0, 0, 0, 16);
    });
}
BENCHMARK(BM_Gradation_Draw)->Arg(0)->Arg(2)->Arg(3)->Unit(benchmark::kMillisecond);

void BM_Gradation_Blend(benchmark::State& state) {
    runDrawing<Class_Gradation>(
        state, [](Class_Gradation& e, Surface&) { e.Gradation_Blend(0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Gradation_Blend)->Unit(benchmark::kMillisecond);

void runLit(benchmark::State& state, const std::function<void(Class_HideEffect&)>& call) {
    bench::runFetchedPasses<Class_HideEffect>(
        state, bench::photoLikePicture(), bench::photoLikePicture(), [](RunContext&) {}, call);
}

// The radius in percent: 50 (the default) is one sphere over the picture,
// 5 a tiling of 100 spheres.
void BM_HideEffect_Ball(benchmark::State& state) {
    const auto percent = static_cast<double>(state.range(0));
    runLit(state, [percent](Class_HideEffect& e) {
        e.Crystal_Ball(percent, 0, 0, Side, Side, 0, 0, 10, 255, 255, 255, 42, 0, 0);
    });
}
BENCHMARK(BM_HideEffect_Ball)->Arg(5)->Arg(50)->Unit(benchmark::kMillisecond);

void BM_HideEffect_Specular(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) {
        e.Specular(50, 0, 0, Side, Side, 0, 0, 10, 255, 255, 255, 42, 1, 0);
    });
}
BENCHMARK(BM_HideEffect_Specular)->Unit(benchmark::kMillisecond);

// The dialog's default: the drawing colour lit.
void BM_HideEffect_SpecularPen(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) {
        e.Specular(50, 0, 0, Side, Side, 10, 10, 10, 255, 255, 255, 32, 0, 0);
    });
}
BENCHMARK(BM_HideEffect_SpecularPen)->Unit(benchmark::kMillisecond);

// Ball 2's sine lens; 5 % is a tiling of 100 spheres.
void BM_HideEffect_Line(benchmark::State& state) {
    const auto percent = static_cast<double>(state.range(0));
    runLit(state, [percent](Class_HideEffect& e) {
        e.Crystal_Line(percent, 0, 0, Side, Side, 0, 0, 10, 255, 255, 255, 42, 0, 0);
    });
}
BENCHMARK(BM_HideEffect_Line)->Arg(5)->Arg(50)->Unit(benchmark::kMillisecond);

// Ball Random and Random Spot; 5 % draws 100 overlapping spheres.
void BM_HideEffect_RandomBalls(benchmark::State& state) {
    const auto percent = static_cast<double>(state.range(0));
    runLit(state, [percent](Class_HideEffect& e) {
        e.Crystal_Random(percent, 0, 0, Side, Side, 0, 0, 10, 255, 255, 255, 42, 0, 0);
    });
}
BENCHMARK(BM_HideEffect_RandomBalls)->Arg(5)->Arg(50)->Unit(benchmark::kMillisecond);

void BM_HideEffect_RandomSpot(benchmark::State& state) {
    const auto percent = static_cast<double>(state.range(0));
    runLit(state, [percent](Class_HideEffect& e) {
        e.RandomSpot(percent, 0, 0, Side, Side, 0, 0, 10, 255, 255, 255, 42, 0, 0);
    });
}
BENCHMARK(BM_HideEffect_RandomSpot)->Arg(5)->Arg(50)->Unit(benchmark::kMillisecond);

void BM_HideEffect_GlowingPixel(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) { e.Mosaic_Glowing(16, 16, 0, 0, Side, Side, 0, 0); });
}
BENCHMARK(BM_HideEffect_GlowingPixel)->Unit(benchmark::kMillisecond);

void BM_HideEffect_Lighting(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) {
        e.Crystal_Lighting(50, 0, 0, Side, Side, 0, 0, 10, 255, 255, 255, -40, 0, 0);
    });
}
BENCHMARK(BM_HideEffect_Lighting)->Unit(benchmark::kMillisecond);

void BM_HideEffect_ChocoBall(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) {
        e.Mosaic_Shading(12, 0, 0, Side, Side, 0, 10, 10, 10, 255, 32);
    });
}
BENCHMARK(BM_HideEffect_ChocoBall)->Unit(benchmark::kMillisecond);

void BM_HideEffect_ChocoBallRandom(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) {
        e.Mosaic_ShadingRandom(12, 0, 0, Side, Side, 0, 0, 0, 10, 255, 32);
    });
}
BENCHMARK(BM_HideEffect_ChocoBallRandom)->Unit(benchmark::kMillisecond);

void BM_HideEffect_SketchNoise(benchmark::State& state) {
    runLit(state, [](Class_HideEffect& e) { e.Texture_Cloud(8, 8, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_HideEffect_SketchNoise)->Unit(benchmark::kMillisecond);

// DLA at its defaults on the bundled sample's size and on the big picture.
void BM_DLA(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Surface picture(side, side * 3 / 4);
    for (auto _ : state) {
        Class_DLA dla(context);
        dla.Draw_DLA(picture, 0, 0, static_cast<std::int16_t>(picture.width()),
                     static_cast<std::int16_t>(picture.height()), 4000, 255, 255, 255, 2, 1);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_DLA)->Arg(320)->Arg(Side)->Unit(benchmark::kMillisecond);

} // namespace
