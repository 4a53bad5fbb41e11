// The lit blocks and spheres, and Scatterize, read kept picture 0 lent to
// the object instead of a copy of it: the picture comes back whole whether
// the run is applied, cancelled or refused, in the editor and on the
// command line.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "shell/effect_run.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran {
namespace {

class CancelAtFirstRow : public ProgressSink {
  public:
    explicit CancelAtFirstRow(CancelFlag& cancel) : cancel_(cancel) {}
    void showPercent(int) override { cancel_ = 1; }

  private:
    CancelFlag& cancel_;
};

struct LoanCase {
    const char* effect;
    int blockSize = 0; // slider 4 when not 0; 1 % of a 40 x 30 picture is refused
};

class HideEffectLoan : public ::testing::TestWithParam<LoanCase> {
  protected:
    void SetUp() override {
        const EffectEntry* entry = findEffect(GetParam().effect);
        ASSERT_NE(entry, nullptr);
        ControlValues values = defaultControlValues(*entry);
        if (GetParam().blockSize != 0) values.sliders[3] = GetParam().blockSize;
        plan = planEffect(entry->dialog, entry->code, values);
        ASSERT_EQ(plan.status, EffectPlan::Status::Ready);
        document.picture = before;
    }

    const Surface before = testing::makeVariedPicture(40, 30);
    ProgramState state;
    Document document;
    EffectPlan plan;
};

TEST_P(HideEffectLoan, KeptPictureZeroComesBackAsItWas) {
    for (const bool oneShot : {false, true}) {
        for (const bool cancel : {false, true}) {
            const std::string what =
                std::string(oneShot ? "one-shot" : "editor") + (cancel ? ", cancelled" : "");
            document.picture = before;
            EffectRun run(state, document, {.noUndo = oneShot, .oneShot = oneShot});
            CancelAtFirstRow cancelling(state.cancelFlag);
            run.execute(plan.body, cancel ? &cancelling : nullptr);
            EXPECT_EQ(state.keep.keptPicture0, before) << what;
            const bool applied = run.finish(true) == RunOutcome::Applied;
            if (!applied || !run.failures().empty()) {
                EXPECT_EQ(document.picture, before) << what;
            } else {
                EXPECT_TRUE(document.picture.sameSize(before)) << what;
            }
            if (!oneShot) {
                EXPECT_EQ(state.keep.keptPicture0, before) << what;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(LitBlocksAndSpheres, HideEffectLoan,
                         ::testing::Values(LoanCase{"Choco Ball"}, LoanCase{"Choco Ball Gap"},
                                           LoanCase{"Choco Ball Random"}, LoanCase{"Ball 1"},
                                           LoanCase{"Ball 1", 1}, LoanCase{"Specular"}),
                         [](const auto& param) {
                             std::string name = param.param.effect;
                             std::erase(name, ' ');
                             return name + (param.param.blockSize != 0 ? "Refused" : "");
                         });
// The one warp that reads its source only through ImageBits.
INSTANTIATE_TEST_SUITE_P(Scatter, HideEffectLoan, ::testing::Values(LoanCase{"Scatterize"}),
                         [](const auto&) { return std::string("Scatterize"); });

} // namespace
} // namespace lumiran
