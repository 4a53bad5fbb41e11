// The geometry family on 4096x4096: every warp at the defaults of its
// dialog (centre in the middle, both axes where the warp has them), the
// blit warps, the shape transforms and the 3D mapping, each one pass on
// arrays or kept pictures already made; bench_main prints them as multiples
// of the plain copy. The rows that measure the process's processor time
// report that of every thread (their CPU column is no longer one core's).
#include "bench_support.h"
#include "effects/geometry/class_geometry.h"
#include "effects/geometry/mapping/class_3d_mapping.h"
#include "effects/geometry/transform/class_transform.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

// The call alone, repeated on one fetch of the picture into both arrays
// and on the two kept pictures the blit warps and transforms draw between.
template <typename Class>
void passes(benchmark::State& state, const std::function<void(Class&, Surface&, Surface&)>& call) {
    bench::runKeptPasses<Class>(state, call);
}

void warp(benchmark::State& state, const std::function<void(Class_Geometry&)>& call) {
    passes<Class_Geometry>(state, [&](Class_Geometry& e, Surface&, Surface&) { call(e); });
}

constexpr std::int16_t S = Side;

void BM_Geometry_PowerHole(benchmark::State& state) {
    const auto function = static_cast<std::uint8_t>(state.range(0));
    warp(state,
         [function](Class_Geometry& e) { e.PowerHole(20, function, 2, 0, 0, S, S, 50, 50); });
}
BENCHMARK(BM_Geometry_PowerHole)->Arg(0)->Arg(3)->Unit(benchmark::kMillisecond);

void BM_Geometry_BlowUp(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Wave_FishEye(42, 0, 0, 0, 0, S, S, 50, 50); });
}
BENCHMARK(BM_Geometry_BlowUp)->Unit(benchmark::kMillisecond);

void BM_Geometry_SuckIn(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Wave_Suck(42, 0, 2, 0, 0, S, S, 50, 50); });
}
BENCHMARK(BM_Geometry_SuckIn)->Unit(benchmark::kMillisecond);

void BM_Geometry_Whirlpool(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Whirlpool(64, 2, 0, 0, S, S, 50, 50); });
}
BENCHMARK(BM_Geometry_Whirlpool)->Unit(benchmark::kMillisecond);

void BM_Geometry_Vortex(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    warp(state, [kind](Class_Geometry& e) { e.Wave_Circle(42, 2, kind, 0, 0, S, S, 50, 50); });
}
BENCHMARK(BM_Geometry_Vortex)->Arg(0)->Arg(4)->Arg(6)->Unit(benchmark::kMillisecond);

void BM_Geometry_Rotate(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Rotate(42, 2, 0, 0, S, S, 50, 50); });
}
BENCHMARK(BM_Geometry_Rotate)->Unit(benchmark::kMillisecond);

void BM_Geometry_SeaWave(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Wave_Sea(0, 2, 62, 62, 0, 0, S, S, 0, 50, 50); });
}
BENCHMARK(BM_Geometry_SeaWave)->Unit(benchmark::kMillisecond);

void BM_Geometry_VerticalWave(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Wave_Sea2(0, 2, 14, 62, 0, 0, S, S, 0, 50, 50); });
}
BENCHMARK(BM_Geometry_VerticalWave)->Unit(benchmark::kMillisecond);

void BM_Geometry_Sway1(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Sway1(2, 0, 12, 36, 0, 0, S, S, 3); });
}
BENCHMARK(BM_Geometry_Sway1)->Unit(benchmark::kMillisecond);

void BM_Geometry_Sway2(benchmark::State& state) {
    const auto iterations = static_cast<std::uint8_t>(state.range(0));
    warp(state, [iterations](Class_Geometry& e) { e.Sway2(2, 0, 12, 36, 0, 0, S, S, iterations); });
}
BENCHMARK(BM_Geometry_Sway2)
    ->Arg(0)
    ->Arg(3)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

void BM_Geometry_Sphere(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Sphere(0, 0, S, S, 0, 50, 50, 4); });
}
BENCHMARK(BM_Geometry_Sphere)->Unit(benchmark::kMillisecond);

void BM_Geometry_Ripploid(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Ripploid(12, 0, 0, S, S, 0, 50, 50, 2); });
}
BENCHMARK(BM_Geometry_Ripploid)->Unit(benchmark::kMillisecond);

void BM_Geometry_EddyingCurrent(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.EddyingCurrent(0, 42, 0, 0, S, S, 50, 50, 2); });
}
BENCHMARK(BM_Geometry_EddyingCurrent)->Unit(benchmark::kMillisecond);

void BM_Geometry_Ripple(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    warp(state, [kind](Class_Geometry& e) { e.Ripple(8, 12, kind, 0, 0, S, S, 2, 0, 50, 50); });
}
BENCHMARK(BM_Geometry_Ripple)->Arg(0)->Arg(3)->Arg(7)->Arg(9)->Unit(benchmark::kMillisecond);

void BM_Geometry_Scatterize(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Scatterize(2, 8, 0, 0, S, S); });
}
BENCHMARK(BM_Geometry_Scatterize)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

void BM_Geometry_LatticeGlass(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.LatticeGlass(8, 0, 0, S, S, 3); });
}
BENCHMARK(BM_Geometry_LatticeGlass)->Unit(benchmark::kMillisecond);

void BM_Geometry_SineWarp(benchmark::State& state) {
    const auto mode = static_cast<std::uint8_t>(state.range(0));
    warp(state, [mode](Class_Geometry& e) { e.Wave_Sin(0, 42, 100, mode, 0, 0, 0, S, S); });
}
BENCHMARK(BM_Geometry_SineWarp)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Geometry_Nebura(benchmark::State& state) {
    warp(state, [](Class_Geometry& e) { e.Nebura(42, 0, 0, 0, S, S); });
}
BENCHMARK(BM_Geometry_Nebura)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

void transform(benchmark::State& state, const std::function<void(Class_Transform&)>& call) {
    passes<Class_Transform>(state, [&](Class_Transform& e, Surface&, Surface&) { call(e); });
}

// Kind 2 moves columns, kind 0 (the dialog's default) rows.
void BM_Transform_Cross(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    transform(state, [kind](Class_Transform& e) { e.Transform_Cross(kind, 0, 0, S, S, -1); });
}
BENCHMARK(BM_Transform_Cross)
    ->Arg(2)
    ->Arg(0)
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

void BM_Transform_Ellipse(benchmark::State& state) {
    transform(state, [](Class_Transform& e) { e.Transform_Ellipse(ShapeEllipse, 0, 0, S, S, 0); });
}
BENCHMARK(BM_Transform_Ellipse)->Unit(benchmark::kMillisecond);

void BM_Transform_TrapezoidVertical(benchmark::State& state) {
    transform(state,
              [](Class_Transform& e) { e.Transform_TrapzoidVertical(0, 0, 0, S, S, 1, 0, 0, 0); });
}
BENCHMARK(BM_Transform_TrapezoidVertical)->Unit(benchmark::kMillisecond);

void BM_3DMapping(benchmark::State& state) {
    const auto type = static_cast<std::uint8_t>(state.range(0));
    passes<Class_3DMapping>(state, [type](Class_3DMapping& e, Surface& source, Surface& target) {
        e.Mapping(source, target, 30, -60, type, 0, 255, 255, 255, 180, 3);
    });
}
BENCHMARK(BM_3DMapping)->Arg(MeshInColour)->Arg(PictureOnSurface)->Unit(benchmark::kMillisecond);

} // namespace
