// The block effects, blurs and diffusion of Class_Geometry on 4096x4096,
// each one pass at the defaults of its dialog on arrays or kept pictures
// already made; bench_main prints them as multiples of the plain copy.
#include "bench_support.h"
#include "effects/geometry/class_geometry.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

constexpr std::int16_t S = bench::Side;

void geometry(benchmark::State& state, const std::function<void(Class_Geometry&)>& call) {
    bench::runKeptPasses<Class_Geometry>(state,
                                         [&](Class_Geometry& e, Surface&, Surface&) { call(e); });
}

void BM_Blocks_ScrollWrap(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.Transform_Scroll(2, 25, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blocks_ScrollWrap)->Unit(benchmark::kMillisecond);

void BM_Blocks_BlockReplace(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.BlockReplace(0, 0, 0, S, S, 8, 0); });
}
BENCHMARK(BM_Blocks_BlockReplace)->Unit(benchmark::kMillisecond);

void BM_Blocks_Slide(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.Warp_Slide(42, 12, 0, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blocks_Slide)->Unit(benchmark::kMillisecond);

void BM_Blocks_Crank(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.Transform_Crank(0, 12, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blocks_Crank)->Unit(benchmark::kMillisecond);

// Pelican: each pixel against its crank sample, across (3) or down (4).
void BM_Blocks_Pelican(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    geometry(state, [kind](Class_Geometry& e) { e.Transform_Crank(kind, 12, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blocks_Pelican)->Arg(3)->Arg(4)->Unit(benchmark::kMillisecond);

// Replace Processing's four calls drawn as one gather.
void BM_Blocks_ReplaceProcessing(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) {
        const Class_Geometry::BlockReplaceStep steps[] = {{2, 1}, {0, 0}, {2, 1}, {0, 0}};
        e.BlockReplaceInOne(steps, 0, 0, S, S, 8);
    });
}
BENCHMARK(BM_Blocks_ReplaceProcessing)->Unit(benchmark::kMillisecond);

void BM_Blocks_GraduallyEnlarge(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.GraduallyEnlarge(0, 0, S, S, 2); });
}
BENCHMARK(BM_Blocks_GraduallyEnlarge)->Unit(benchmark::kMillisecond);

void BM_Blocks_Squeeze(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.Squeeze(1, 1, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blocks_Squeeze)->Unit(benchmark::kMillisecond);

void BM_Blocks_CuttingPicture(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.CuttingPicture(4, 4, 0, 0, S, S); });
}
BENCHMARK(BM_Blocks_CuttingPicture)->Unit(benchmark::kMillisecond);

void BM_Blocks_BlockScatter1(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.BlockScatter_Type1(12, 2, 0, 0, 0, S, S); });
}
BENCHMARK(BM_Blocks_BlockScatter1)->Unit(benchmark::kMillisecond);

void BM_Blocks_RandomCircle(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.Random_Circle(12, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blocks_RandomCircle)->Unit(benchmark::kMillisecond);

void BM_Blur_Normal(benchmark::State& state) {
    const auto direction = static_cast<std::uint8_t>(state.range(0));
    geometry(state, [direction](Class_Geometry& e) { e.Blur_Normal(direction, 12, 0, 0, S, S); });
}
BENCHMARK(BM_Blur_Normal)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

// Kind ("上", the default, in column tiles; "左" along the rows; "左上"
// pass by pass) and radius: one pass and the dialog's default of six.
void BM_Blur_Gaussian(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    const auto radius = static_cast<std::int16_t>(state.range(1));
    geometry(state,
             [kind, radius](Class_Geometry& e) { e.Blur_Gaussian(kind, radius, 0, 0, S, S); });
}
BENCHMARK(BM_Blur_Gaussian)
    ->Args({0, 1})
    ->Args({0, 6})
    ->Args({2, 6})
    ->Args({4, 1})
    ->Args({4, 6})
    ->Unit(benchmark::kMillisecond);

void BM_Blur_Circle(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.Blur_Circle(0, 12, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Blur_Circle)->Unit(benchmark::kMillisecond);

void BM_Blur_DiffuseOutline(benchmark::State& state) {
    geometry(state, [](Class_Geometry& e) { e.DiffuseOutline1(0, 0, 0, S, S); });
}
BENCHMARK(BM_Blur_DiffuseOutline)->Unit(benchmark::kMillisecond);

} // namespace
