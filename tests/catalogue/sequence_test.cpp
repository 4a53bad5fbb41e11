// Several effect calls run as one: each reads the one before, one snapshot,
// one progress bar, and a cancel anywhere gives the picture back.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "shell/effect_run.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <vector>

namespace lumiran {
namespace {

using testing::makeVariedPicture;

// A step that adds `amount` to the red of every pixel of the rectangle it
// is handed, replacing kept picture 1 as the usual case does.
EffectBody addRed(int amount) {
    return ReplacingBody{[amount](EffectInvocation& run) {
        Surface result = run.keptPicture0;
        for (int y = run.rect.top; y < run.rect.bottom; ++y) {
            for (int x = run.rect.left; x < run.rect.right; ++x) {
                const Pixel p = result.at(x, y);
                result.at(x, y) = makePixel((redOf(p) + amount) & 0xFF, greenOf(p), blueOf(p));
            }
        }
        run.keptPicture1 = std::move(result);
    }};
}

EffectBody cancelling() {
    return ReplacingBody{[](EffectInvocation& run) {
        run.keptPicture1 = run.keptPicture0;
        run.context.requestCancel();
    }};
}

class Percentages : public ProgressSink {
  public:
    void showPercent(int percent) override { seen.push_back(percent); }
    std::vector<int> seen;
};

struct SequenceCase {
    const char* name;
    RunOptions options;
};

class Sequence : public ::testing::TestWithParam<SequenceCase> {
  protected:
    ProgramState state;
    Document document;
    void SetUp() override { document.picture = makeVariedPicture(7, 5); }
};

TEST_P(Sequence, EachStepReadsTheOneBeforeInOneSnapshot) {
    const Surface before = document.picture;
    const RunReport report =
        runEffect(state, document, runInSequence({addRed(10), addRed(20), addRed(30)}), nullptr,
                  GetParam().options);
    ASSERT_EQ(report.outcome, RunOutcome::Applied);
    EXPECT_EQ(state.undo.UndoCount(), GetParam().options.noUndo ? 0 : 1);
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 7; ++x) {
            EXPECT_EQ(redOf(document.picture.at(x, y)), (redOf(before.at(x, y)) + 60) & 0xFF);
        }
    }
}

TEST_P(Sequence, ACancelInAnyStepLeavesThePictureAsItWas) {
    const Surface before = document.picture;
    for (const std::size_t at : {0u, 1u, 2u}) {
        std::vector<EffectBody> steps{addRed(10), addRed(20), addRed(30)};
        steps[at] = cancelling();
        const RunReport report = runEffect(state, document, runInSequence(std::move(steps)),
                                           nullptr, GetParam().options);
        EXPECT_EQ(report.outcome, RunOutcome::Cancelled) << at;
        EXPECT_EQ(document.picture, before) << at;
        EXPECT_EQ(state.undo.UndoCount(), 0) << at;
    }
}

INSTANTIATE_TEST_SUITE_P(Runs, Sequence,
                         ::testing::Values(SequenceCase{"Editor", {}},
                                           SequenceCase{"CommandLine",
                                                        {.noUndo = true, .oneShot = true}}),
                         [](const auto& param) { return std::string(param.param.name); });

TEST(SequenceSteps, ADrawingStepGetsABlankResultAndTheRunSource) {
    ProgramState state;
    state.flags.backColor = Rgb8{1, 2, 3};
    Document document;
    document.picture = makeVariedPicture(4, 3);
    const Surface before = document.picture;
    bool sawBlank = false;
    bool sawRunSource = false;
    const EffectBody draws = [&](EffectInvocation& run) {
        sawBlank = run.keptPicture1.at(0, 0) == toPixel(Rgb8{1, 2, 3});
        // Effects that read the original through the context still find it.
        sawRunSource = run.context.kept0 != nullptr && *run.context.kept0 == before;
        run.keptPicture1 = run.keptPicture0;
    };
    runEffect(state, document, runInSequence({addRed(5), draws}));
    EXPECT_TRUE(sawBlank);
    EXPECT_TRUE(sawRunSource);
    EXPECT_EQ(redOf(document.picture.at(1, 1)), (redOf(before.at(1, 1)) + 5) & 0xFF);
}

TEST(SequenceSteps, TheStepsShareOneProgressBar) {
    const EffectBody halves = ReplacingBody{[](EffectInvocation& run) {
        run.context.progress->showPercent(50);
        run.context.progress->showPercent(100);
        run.keptPicture1 = run.keptPicture0;
    }};
    ProgramState state;
    Document document;
    document.picture = makeVariedPicture(3, 3);
    Percentages sink;
    runEffect(state, document, runInSequence({halves, halves}), &sink);
    EXPECT_EQ(sink.seen, (std::vector<int>{25, 50, 75, 100}));
}

TEST(SequenceSteps, AStepThatIsNotBuiltMakesTheWholeCaseNotAvailable) {
    const EffectPlanner ready = [](const ControlValues&) { return EffectPlan::ready(addRed(1)); };
    const EffectPlanner missing = [](const ControlValues&) {
        return EffectPlan::notAvailable("Class_X.Y");
    };
    const EffectPlan plan = planInSequence({ready, missing})({});
    EXPECT_EQ(plan.status, EffectPlan::Status::NotAvailable);
    EXPECT_EQ(plan.missingOperation, "Class_X.Y");
}

// The catalogue's entries of several calls, cancelled in their last call.
TEST(SequenceEntries, ACancelledEntryLeavesThePictureAsItWas) {
    for (const char* name : {"Shade Revision", "Water Noise", "Glass Painting", "Stone Emboss",
                             "Concrete Emboss", "Checked Pattern"}) {
        const EffectEntry* entry = findEffect(name);
        ASSERT_NE(entry, nullptr) << name;
        ControlValues values = defaultControlValues(*entry);
        if (std::string_view(name) == "Checked Pattern") values.eType = 3;
        const EffectPlan plan = planEffect(entry->dialog, entry->code, values);
        ASSERT_EQ(plan.status, EffectPlan::Status::Ready) << name;
        ProgramState state;
        Document document;
        document.picture = makeVariedPicture(16, 12);
        const Surface before = document.picture;
        // Rows report in every step; cancel on the last one reported.
        Percentages count;
        {
            ProgramState dry;
            Document copy = document;
            runEffect(dry, copy, plan.body, &count);
        }
        ASSERT_FALSE(count.seen.empty()) << name;
        class CancelAt : public ProgressSink {
          public:
            CancelAt(CancelFlag& flag, std::size_t at) : flag_(flag), at_(at) {}
            void showPercent(int) override {
                if (++calls_ == at_) flag_ = 1;
            }

          private:
            CancelFlag& flag_;
            std::size_t at_;
            std::size_t calls_ = 0;
        } sink(state.cancelFlag, count.seen.size());
        const RunReport report = runEffect(state, document, plan.body, &sink);
        EXPECT_EQ(report.outcome, RunOutcome::Cancelled) << name;
        EXPECT_EQ(document.picture, before) << name;
        EXPECT_EQ(state.undo.UndoCount(), 0) << name;
    }
}

} // namespace
} // namespace lumiran
