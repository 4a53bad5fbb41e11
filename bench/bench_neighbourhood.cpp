// The neighbourhood filters on 4096x4096, each one pass over arrays already
// fetched; bench_main prints them as multiples of the plain copy.
#include "bench_support.h"
#include "effects/neighbourhood/class_edge.h"
#include "effects/neighbourhood/class_neighborhood_op.h"

#include <benchmark/benchmark.h>
#include <functional>

namespace {

using namespace lumiran;

using bench::Side;

// Large flat blocks with a little structure, as drawings and photographs of
// plain surfaces have: windows of equal colours take the rank filters' early
// stop, which random colours almost never do.
const Surface& blockPicture() {
    static const Surface picture = [] {
        Surface s(Side, Side);
        for (int y = 0; y < Side; ++y) {
            for (int x = 0; x < Side; ++x) {
                const int block = (x / 24 + y / 16) % 7;
                s.at(x, y) = makePixel(block * 36, 255 - block * 30, (x / 3 + y / 5) % 3 * 40);
            }
        }
        return s;
    }();
    return picture;
}

// Both arrays fetched once; the filters write TransBits from ImageBits.
template <typename Class>
void runTransPasses(benchmark::State& state, const Surface& picture,
                    const std::function<void(Class&)>& call) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Class effect(context);
    effect.ImageGetDiBits(picture);
    effect.ImageGetDiBitsTrans(picture);
    for (auto _ : state) {
        cancel = 0;
        call(effect);
        benchmark::ClobberMemory();
    }
    if (!context.failures.empty()) state.SkipWithError("the effect failed");
}

void neighbourhood(benchmark::State& state, const std::function<void(Class_NeighborhoodOp&)>& call,
                   const Surface& picture = bench::randomColourPicture()) {
    runTransPasses<Class_NeighborhoodOp>(state, picture, call);
}
void edge(benchmark::State& state, const std::function<void(Class_Edge&)>& call) {
    runTransPasses<Class_Edge>(state, bench::randomColourPicture(), call);
}

// Packed-colour median; window 0 is 3x3, 1 is 5x5.
void BM_Neighbourhood_Median(benchmark::State& state) {
    const auto window = static_cast<std::uint8_t>(state.range(0));
    neighbourhood(state, [window](auto& e) { e.MedianFilter(window, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Neighbourhood_Median)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_MedianOfBlocks(benchmark::State& state) {
    const auto window = static_cast<std::uint8_t>(state.range(0));
    neighbourhood(
        state, [window](auto& e) { e.MedianFilter(window, 0, 0, 0, Side, Side); }, blockPicture());
}
BENCHMARK(BM_Neighbourhood_MedianOfBlocks)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// "Rank Filter 3x3" at its defaults (rank 0, packed), and with the
// channels sorted apart.
void BM_Neighbourhood_Rank3x3(benchmark::State& state) {
    const auto sortMode = static_cast<std::uint8_t>(state.range(0));
    neighbourhood(state,
                  [sortMode](auto& e) { e.RankFilter(0, 0, 0, 0, Side, Side, 0, sortMode); });
}
BENCHMARK(BM_Neighbourhood_Rank3x3)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_Fiasco5x5(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.FiascoFilter(1, 0, 1, 0, 0, Side, Side, 42); });
}
BENCHMARK(BM_Neighbourhood_Fiasco5x5)->Unit(benchmark::kMillisecond);

// "Fiasco" at its default statistic, the mean; window 0 is 3x3, 1 is 5x5.
void BM_Neighbourhood_FiascoMean(benchmark::State& state) {
    const auto window = static_cast<std::uint8_t>(state.range(0));
    neighbourhood(state, [window](auto& e) { e.FiascoFilter(window, 0, 0, 0, 0, Side, Side, 42); });
}
BENCHMARK(BM_Neighbourhood_FiascoMean)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

// "Gather 3x3" in grey at each cell size; size 0 is the default.
void BM_Neighbourhood_Gather(benchmark::State& state) {
    const auto size = static_cast<std::uint8_t>(state.range(0));
    neighbourhood(state, [size](auto& e) { e.PaturnMatrixMethod(size, 0, 0, 0, Side, Side, 42); });
}
BENCHMARK(BM_Neighbourhood_Gather)->Arg(0)->Arg(1)->Arg(3)->Unit(benchmark::kMillisecond);

// Normal Emboss (kind 0) and Sine Emboss (kind 2) at their defaults.
void BM_Neighbourhood_Embossing(benchmark::State& state) {
    const auto kind = static_cast<std::uint8_t>(state.range(0));
    neighbourhood(
        state, [kind](auto& e) { e.Embossing(0, 0, kind, 0, 0, Side, Side, 1, 128, 128, 128, 1); });
}
BENCHMARK(BM_Neighbourhood_Embossing)->Arg(0)->Arg(2)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_WallEmboss(benchmark::State& state) {
    neighbourhood(state,
                  [](auto& e) { e.WallEmboss(3, 0, 0, 0, Side, Side, 42, 128, 128, 128, 1); });
}
BENCHMARK(BM_Neighbourhood_WallEmboss)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_GlassPainting(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.Glass_Painting(0, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Neighbourhood_GlassPainting)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_PencilOutline(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.Glass_Impression(0, 0, 0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Neighbourhood_PencilOutline)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_CountFilter3x3(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.CountFilter(0, 0, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_Neighbourhood_CountFilter3x3)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_Fugu3x3(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.DarkLighten(1, 0, 0, 0, Side, Side, 255, 0); });
}
BENCHMARK(BM_Neighbourhood_Fugu3x3)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_ColdSeed(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.ColdSeed(1, 0, 0, 0, Side, Side, false, 40); });
}
BENCHMARK(BM_Neighbourhood_ColdSeed)->Unit(benchmark::kMillisecond);

void BM_Neighbourhood_Kakekomi(benchmark::State& state) {
    neighbourhood(state, [](auto& e) { e.Kakekomi(2.0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Neighbourhood_Kakekomi)->Unit(benchmark::kMillisecond);

// The 3x3 kernels: Edge Extraction 3x3, Kirsch, Prewitt, Laplacian, Sobel.
void BM_Edge_Extraction(benchmark::State& state) {
    edge(state, [](Class_Edge& e) { e.Edge_Extraction(0, 0, 0, Side, Side, 1); });
}
BENCHMARK(BM_Edge_Extraction)->Unit(benchmark::kMillisecond);

void BM_Edge_Kirsch(benchmark::State& state) {
    edge(state, [](Class_Edge& e) { e.Edge_Kirsch(45, 0, 0, Side, Side); });
}
BENCHMARK(BM_Edge_Kirsch)->Unit(benchmark::kMillisecond);

void BM_Edge_Prewitt(benchmark::State& state) {
    edge(state,
         [](Class_Edge& e) { e.Edge_Matrix9(-2, 1, 1, 1, 1, 1, -1, -1, -1, 0, 0, Side, Side); });
}
BENCHMARK(BM_Edge_Prewitt)->Unit(benchmark::kMillisecond);

void BM_Edge_Sobel(benchmark::State& state) {
    edge(state, [](Class_Edge& e) { e.Edge_Sobel(0, 0, 0, Side, Side, 2); });
}
BENCHMARK(BM_Edge_Sobel)->Unit(benchmark::kMillisecond);

void BM_Edge_Roberts(benchmark::State& state) {
    edge(state, [](Class_Edge& e) { e.Edge_Robarts(0, 1, 0, 0, Side, Side); });
}
BENCHMARK(BM_Edge_Roberts)->Unit(benchmark::kMillisecond);

void BM_Edge_Differential(benchmark::State& state) {
    edge(state, [](Class_Edge& e) { e.DifferentalFilter(0, 0, 0, Side, Side); });
}
BENCHMARK(BM_Edge_Differential)->Unit(benchmark::kMillisecond);

} // namespace
