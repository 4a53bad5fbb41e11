// The dithers and bilevel effects on 4096x4096 against the plain copy of
// bench_colour.cpp. The ordered dither is a table lookup a pixel and is to
// stay within twice the copy; an error diffusion is sequential along the
// row and is to stay within fifteen times it.
#include "bench_support.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "effects/halftone/dithering/class_dithering.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

constexpr std::int16_t Side = bench::Side;

// One pass of the operation on arrays already fetched. The result array is
// fetched afresh before each pass, outside the timing: the diffusions work
// in it in place, and a second pass over their own output would find no
// error to spread.
template <typename Class, typename Call>
void runHalftone(benchmark::State& state, const Surface& picture, Call call) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Class effect(context);
    effect.ImageGetDiBits(picture);
    for (auto _ : state) {
        state.PauseTiming();
        effect.ImageGetDiBitsTrans(picture);
        cancel = 0;
        state.ResumeTiming();
        call(effect);
        benchmark::ClobberMemory();
    }
    if (!context.failures.empty()) state.SkipWithError("the effect failed");
}

// The same for the dithers a run works in one array: the ordered dithers,
// the error diffusions and the random dither. The array is fetched afresh
// before each pass.
template <typename Call>
void runOneArray(benchmark::State& state, const Surface& picture, Call call, int threads = 0) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    if (threads > 0) context.threading.threads = threads;
    Class_Dithering effect(context);
    for (auto _ : state) {
        state.PauseTiming();
        effect.ImageGetDiBits(picture);
        cancel = 0;
        state.ResumeTiming();
        call(effect);
        benchmark::ClobberMemory();
    }
    if (!context.failures.empty()) state.SkipWithError("the effect failed");
}

template <typename Call>
void dither(benchmark::State& state, Call call) {
    runHalftone<Class_Dithering>(state, bench::randomColourPicture(), call);
}

template <typename Call>
void ditherInPlace(benchmark::State& state, Call call) {
    runOneArray(state, bench::randomColourPicture(), call);
}

template <typename Call>
void binarize(benchmark::State& state, Call call) {
    runHalftone<Class_Binarization>(state, bench::randomColourPicture(), call);
}

void BM_Halftone_Ordered4x4(benchmark::State& state) {
    const auto mode = static_cast<std::int16_t>(state.range(0));
    const auto level = static_cast<std::int16_t>(state.range(1));
    ditherInPlace(state, [=](Class_Dithering& e) {
        e.OrderedDither4x4(0, 0, 0, 0, Side, Side, mode, level);
    });
}
BENCHMARK(BM_Halftone_Ordered4x4)->Args({0, 2})->Args({1, 4})->Unit(benchmark::kMillisecond);

void BM_Halftone_Ordered8x8(benchmark::State& state) {
    ditherInPlace(state,
                  [](Class_Dithering& e) { e.OrderedDither8x8(0, 0, 0, 0, Side, Side, 0, 2); });
}
BENCHMARK(BM_Halftone_Ordered8x8)->Unit(benchmark::kMillisecond);

// Every kernel two-level in mono (filter, colour mode), and Floyd &
// Steinberg in colour. The diffusions run on two threads: their processor
// time is the whole process's.
void BM_Halftone_ErrorDiffuse(benchmark::State& state) {
    const auto filter = static_cast<std::int16_t>(state.range(0));
    const auto mode = static_cast<std::int16_t>(state.range(1));
    ditherInPlace(state, [=](Class_Dithering& e) {
        e.Dither_ErrorDiffuse(filter, 0, 0, Side, Side, mode, 2);
    });
}
BENCHMARK(BM_Halftone_ErrorDiffuse)
    ->Args({1, 0})
    ->Args({1, 1})
    ->Args({0, 0})
    ->Args({2, 0})
    ->Args({3, 0})
    ->Args({4, 0})
    ->Args({5, 0})
    ->Args({6, 0})
    ->MeasureProcessCPUTime()
    ->Unit(benchmark::kMillisecond);

// The entries that share the diffusion: Floyd & Steinberg (filter 2 of the
// random list, 1 of the fixed one, 1 of the drawing-colour one), mono.
void BM_Halftone_RandomErrorDiffuse(benchmark::State& state) {
    ditherInPlace(
        state, [](Class_Dithering& e) { e.Dither_ErrorDiffuseRandom(2, 0, 0, Side, Side, 0, 2); });
}
BENCHMARK(BM_Halftone_RandomErrorDiffuse)->Unit(benchmark::kMillisecond);

void BM_Halftone_FixedErrorDiffuse(benchmark::State& state) {
    ditherInPlace(state,
                  [](Class_Dithering& e) { e.Dither_ErrorFixed(1, 0, 0, Side, Side, 0, 2, 42); });
}
BENCHMARK(BM_Halftone_FixedErrorDiffuse)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

void BM_Halftone_ColorPaintDither(benchmark::State& state) {
    ditherInPlace(state, [](Class_Dithering& e) {
        e.Dither_ErrorDiffuseColorPaint(1, 0, 0, Side, Side, 0, 2);
    });
}
BENCHMARK(BM_Halftone_ColorPaintDither)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

void BM_Halftone_ErrorDiffusePhoto(benchmark::State& state) {
    runOneArray(state, bench::photoLikePicture(),
                [](Class_Dithering& e) { e.Dither_ErrorDiffuse(1, 0, 0, Side, Side, 0, 2); });
}
BENCHMARK(BM_Halftone_ErrorDiffusePhoto)->MeasureProcessCPUTime()->Unit(benchmark::kMillisecond);

// Floyd & Steinberg in mono on the calling thread alone: against the row
// above, what the second thread gains.
void BM_Halftone_ErrorDiffuseOneThread(benchmark::State& state) {
    runOneArray(
        state, bench::randomColourPicture(),
        [](Class_Dithering& e) { e.Dither_ErrorDiffuse(1, 0, 0, Side, Side, 0, 2); }, 1);
}
BENCHMARK(BM_Halftone_ErrorDiffuseOneThread)->Unit(benchmark::kMillisecond);

void BM_Halftone_RandomDither(benchmark::State& state) {
    ditherInPlace(
        state, [](Class_Dithering& e) { e.Dither_ErrorDiffuseRandom(0, 0, 0, Side, Side, 0, 2); });
}
BENCHMARK(BM_Halftone_RandomDither)->Unit(benchmark::kMillisecond);

void BM_Halftone_LimitSqure(benchmark::State& state) {
    dither(state, [](Class_Dithering& e) { e.Dither_LimitSqure(0, 0, Side, Side, 0, 2); });
}
BENCHMARK(BM_Halftone_LimitSqure)->Unit(benchmark::kMillisecond);

void BM_Halftone_DotsPattern(benchmark::State& state) {
    dither(state, [](Class_Dithering& e) { e.DotsPatternMethod(0, 0, Side, Side, 0, 2); });
}
BENCHMARK(BM_Halftone_DotsPattern)->Unit(benchmark::kMillisecond);

void BM_Halftone_DinamicThresholding(benchmark::State& state) {
    dither(state, [](Class_Dithering& e) {
        e.DinamicThresholding(0, 255, 0, 0.5, 2.0, 0, 0, Side, Side);
    });
}
BENCHMARK(BM_Halftone_DinamicThresholding)->Unit(benchmark::kMillisecond);

void BM_Halftone_LimitTheMeanValue(benchmark::State& state) {
    dither(state, [](Class_Dithering& e) { e.LimitTheMeanValue(0, 1, 0, 0, Side, Side); });
}
BENCHMARK(BM_Halftone_LimitTheMeanValue)->Unit(benchmark::kMillisecond);

void BM_Halftone_Binarization(benchmark::State& state) {
    const auto kind = static_cast<std::int16_t>(state.range(0));
    binarize(state, [=](Class_Binarization& e) { e.Binarization(128, kind, 0, 0, Side, Side); });
}
BENCHMARK(BM_Halftone_Binarization)->Arg(0)->Arg(11)->Unit(benchmark::kMillisecond);

void BM_Halftone_Dilatation(benchmark::State& state) {
    binarize(state, [](Class_Binarization& e) { e.Dilatation(1, 220, 0, 0, Side, Side, 0); });
}
BENCHMARK(BM_Halftone_Dilatation)->Unit(benchmark::kMillisecond);

void BM_Halftone_BorderFollowing(benchmark::State& state) {
    runHalftone<Class_Binarization>(state, bench::photoLikePicture(), [](Class_Binarization& e) {
        e.BorderFollowing_Mono(0, 0, 40, 1, 0, 0, Side, Side);
    });
}
BENCHMARK(BM_Halftone_BorderFollowing)->Unit(benchmark::kMillisecond);

// Red, green and blue in turn, as the colour row runs them.
void BM_Halftone_BorderFollowingColour(benchmark::State& state) {
    runHalftone<Class_Binarization>(state, bench::photoLikePicture(), [](Class_Binarization& e) {
        e.BorderFollowing_ColorInTurn(0, 128, 1, 0, 0, Side, Side);
    });
}
BENCHMARK(BM_Halftone_BorderFollowingColour)->Unit(benchmark::kMillisecond);

void BM_Halftone_FeaturePoints(benchmark::State& state) {
    runHalftone<Class_Binarization>(state, bench::photoLikePicture(), [](Class_Binarization& e) {
        e.FeaturePointExtract_Mono(0, 2, 40, 0, 0, 0, Side, Side, 0);
    });
}
BENCHMARK(BM_Halftone_FeaturePoints)->Unit(benchmark::kMillisecond);

// The colour form at the menu's defaults: red at 128, end points, radius 2.
void BM_Halftone_FeaturePointsColour(benchmark::State& state) {
    runHalftone<Class_Binarization>(state, bench::photoLikePicture(), [](Class_Binarization& e) {
        e.FeaturePointExtract_Color(0, 2, 128, 0, 0, 0, Side, Side, 0);
    });
}
BENCHMARK(BM_Halftone_FeaturePointsColour)->Unit(benchmark::kMillisecond);

} // namespace
