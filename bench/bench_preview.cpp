// A preview on the dialog's small copy, the work Auto Preview repeats on
// every change of a control: it should stay well inside one frame (16 ms).
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "catalogue/preview.h"
#include "engine/random_generator.h"

#include <benchmark/benchmark.h>

namespace {

using namespace lumiran;

Surface smallCopy() {
    Surface s(140, 105);
    RandomGenerator random;
    for (Pixel& p : s.pixels())
        p = static_cast<Pixel>(random.next() * 16777216.0);
    return s;
}

void BM_PreviewSmallCopy(benchmark::State& state, const char* effect) {
    const EffectEntry* entry = findEffect(effect);
    if (entry == nullptr) {
        state.SkipWithError("effect not in the table");
        return;
    }
    const EffectPlan plan = planEffect(entry->dialog, entry->code, defaultControlValues(*entry));
    if (plan.status != EffectPlan::Status::Ready) {
        state.SkipWithError("effect not available");
        return;
    }
    const Surface source = smallCopy();
    ProgramState program;
    for (auto _ : state) {
        PreviewResult result = runPreview(program, plan.body, source);
        benchmark::DoNotOptimize(result.picture.pixels().data());
    }
}
BENCHMARK_CAPTURE(BM_PreviewSmallCopy, Monotone, "Monotone")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_PreviewSmallCopy, HSVInvert, "HSV Invert")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_PreviewSmallCopy, Negative, "Negative")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_PreviewSmallCopy, Deterioration, "Deterioration")
    ->Unit(benchmark::kMicrosecond);

} // namespace
