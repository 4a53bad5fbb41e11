#pragma once

// What the effect benchmarks share: the 4096x4096 picture of random colours
// and the pass of one operation on an array already fetched.
#include "engine/random_generator.h"
#include "engine/run_context.h"
#include "engine/surface.h"

#include <benchmark/benchmark.h>

namespace lumiran::bench {

inline constexpr int Side = 4096;

// Every colour equally likely: no colour repeats, so no cache helps.
inline const Surface& randomColourPicture() {
    static const Surface picture = [] {
        Surface s(Side, Side);
        RandomGenerator random;
        for (Pixel& p : s.pixels())
            p = static_cast<Pixel>(random.next() * 16777216.0);
        return s;
    }();
    return picture;
}

// A picture like a photograph: smooth areas with a little noise, so
// colours repeat as they do in real pictures.
inline const Surface& photoLikePicture() {
    static const Surface picture = [] {
        Surface s(Side, Side);
        RandomGenerator random;
        for (int y = 0; y < Side; ++y) {
            for (int x = 0; x < Side; ++x) {
                const int noise = static_cast<int>(random.next() * 4);
                s.at(x, y) = makePixel((x >> 4) + noise, (y >> 4) + noise, ((x + y) >> 5) + noise);
            }
        }
        return s;
    }();
    return picture;
}

// The operation alone, repeated in place on one fetch of the picture.
template <typename Class, typename Call>
void runPasses(benchmark::State& state, const Surface& picture, Call call) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    Class effect(context);
    effect.ImageGetDiBits(picture);
    for (auto _ : state) {
        cancel = 0;
        call(effect);
        benchmark::ClobberMemory();
    }
    if (!context.failures.empty()) state.SkipWithError("the effect failed");
}

// The operation alone, repeated on ImageBits and TransBits fetched once from
// image and trans; prepare(context) first points the context at what the
// effect reads besides (kept or composed pictures).
template <typename Class, typename Prepare, typename Call>
void runFetchedPasses(benchmark::State& state, const Surface& image, const Surface& trans,
                      Prepare prepare, Call call) {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context(cancel, random);
    prepare(context);
    Class effect(context);
    effect.ImageGetDiBits(image);
    effect.ImageGetDiBitsTrans(trans);
    for (auto _ : state) {
        cancel = 0;
        call(effect);
        benchmark::ClobberMemory();
    }
    if (!context.failures.empty()) state.SkipWithError("the effect failed");
}

// As runFetchedPasses on the random picture in both arrays, with the two kept
// pictures the blit warps and transforms draw between: call(effect, kept0,
// kept1), kept picture 0 the random picture.
template <typename Class, typename Call>
void runKeptPasses(benchmark::State& state, Call call) {
    Surface kept0 = randomColourPicture();
    Surface kept1(Side, Side);
    runFetchedPasses<Class>(
        state, kept0, kept0,
        [&](RunContext& context) {
            context.kept0 = &kept0;
            context.kept1 = &kept1;
        },
        [&](Class& effect) { call(effect, kept0, kept1); });
}

} // namespace lumiran::bench
