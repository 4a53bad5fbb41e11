// Every registered effect gives the same picture on one thread and on
// several: rows that run in any order must not depend on one another.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran {
namespace {

struct Outcome {
    Surface picture;
    std::vector<int> failures;
    int cancel = 0;
};

Outcome runOn(const EffectBody& body, const Surface& source, const ProcessRect& rect,
              std::uint8_t calculationFlag, int threads) {
    CancelFlag cancel{0};
    RandomGenerator random; // each run starts the generator afresh
    RunContext context(cancel, random);
    context.flags.calculationFlag = calculationFlag;
    // Every row a band of its own, so that even a small picture is shared out.
    context.threading = {.threads = threads, .bandPixels = 1};
    Surface kept0 = source;
    Surface kept1(source.width(), source.height());
    context.kept0 = &kept0;
    context.kept1 = &kept1;
    EffectInvocation invocation{context, kept0, kept1, rect};
    body(invocation);
    Outcome outcome{std::move(kept1), {}, cancel.load()};
    for (const EffectError& e : context.failures)
        outcome.failures.push_back(e.number());
    return outcome;
}

TEST(Threads, EveryRegisteredEffectGivesTheOneThreadPictureOnSeveral) {
    const Surface source = testing::makeVariedPicture(29, 23);
    const ProcessRect rects[] = {ProcessRect::wholePicture(29, 23), ProcessRect{-4, 3, 20, 40}};
    int effects = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        if (plan.status != EffectPlan::Status::Ready) continue;
        ++effects;
        for (const ProcessRect& rect : rects) {
            for (const std::uint8_t flag : {0, 7}) {
                const Outcome one = runOn(plan.body, source, rect, flag, 1);
                const Outcome several = runOn(plan.body, source, rect, flag, 3);
                const std::string what = std::string(entry.caption) + " rect top " +
                                         std::to_string(rect.top) + " flag " + std::to_string(flag);
                EXPECT_EQ(several.failures, one.failures) << what;
                EXPECT_EQ(several.cancel, one.cancel) << what;
                if (one.cancel == 0) {
                    EXPECT_EQ(several.picture, one.picture) << what;
                }
            }
        }
    }
    EXPECT_GT(effects, 0);
}

} // namespace
} // namespace lumiran
