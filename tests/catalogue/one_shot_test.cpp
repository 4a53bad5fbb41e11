// The command line's one-shot run lends the document's picture to kept
// picture 0, and some effects then change it in place: every registered
// effect must leave the document as the editor's run does, spare bytes
// included.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "shell/effect_run.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran {
namespace {

struct Outcome {
    Surface picture;
    RunOutcome outcome = RunOutcome::Applied;
};

Outcome runAs(const EffectBody& body, const Surface& source, std::uint8_t calculationFlag,
              RunOptions options) {
    ProgramState state; // the generator starts afresh
    state.flags.calculationFlag = calculationFlag;
    Document document;
    document.picture = source;
    const RunReport report = runEffect(state, document, body, nullptr, options);
    return {std::move(document.picture), report.outcome};
}

constexpr RunOptions Editor{};
constexpr RunOptions OneShot{.noUndo = true, .oneShot = true};
// The command line's: the spare bytes of its result are never read.
constexpr RunOptions CommandLine{.noUndo = true, .oneShot = true, .spareBytesUnread = true};

TEST(OneShot, EveryRegisteredEffectLeavesTheEditorsPicture) {
    // Spare bytes of their own, which the raster step keeps from the document.
    const Surface source = testing::makePicture(31, 22, [](int x, int y) {
        return makePixel((x * 37 + y * 11) & 0xFF, (x * 5 + y * 53) & 0xFF, (x * 91 + y) & 0xFF,
                         x * 7 + y * 3);
    });
    int effects = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        if (plan.status != EffectPlan::Status::Ready) continue;
        ++effects;
        for (const std::uint8_t flag : {0, 7}) {
            const Outcome editor = runAs(plan.body, source, flag, Editor);
            const Outcome oneShot = runAs(plan.body, source, flag, OneShot);
            const Outcome commandLine = runAs(plan.body, source, flag, CommandLine);
            const std::string what = std::string(entry.caption) + " flag " + std::to_string(flag);
            EXPECT_EQ(oneShot.outcome, editor.outcome) << what;
            EXPECT_EQ(commandLine.outcome, editor.outcome) << what;
            if (editor.outcome == RunOutcome::Applied) {
                EXPECT_EQ(oneShot.picture, editor.picture) << what;
                EXPECT_TRUE(commandLine.picture.sameColours(editor.picture)) << what;
            }
        }
    }
    EXPECT_GT(effects, 0);
}

// The effects that work on the lent picture itself, on their other rows:
// line types, drawings, the chequer's operations.
TEST(OneShot, InPlaceEffectsLeaveTheEditorsPictureOnEveryRow) {
    const Surface source = testing::makePicture(45, 38, [](int x, int y) {
        return makePixel((x * 37 + y * 11) & 0xFF, (x * 5 + y * 53) & 0xFF, (x * 91 + y) & 0xFF,
                         x + y);
    });
    const struct {
        const char* effect;
        int rows;    // E rows
        int colours; // C rows
    } cases[] = {{"Checked Pattern", 4, 1},   {"Tile Wall Normal", 4, 1},
                 {"Tile Wall Gap", 4, 2},     {"Tile Wall Arc Crest", 8, 4},
                 {"Tile Wall Lozenge", 6, 4}, {"Tile Wall Shippou-Tunagi", 4, 4}};
    for (const auto& c : cases) {
        const EffectEntry* entry = findEffect(c.effect);
        ASSERT_NE(entry, nullptr) << c.effect;
        for (int row = 0; row < c.rows; ++row) {
            for (int colour = 0; colour < c.colours; ++colour) {
                ControlValues values = defaultControlValues(*entry);
                values.eType = row;
                values.color = colour;
                const EffectPlan plan = planEffect(entry->dialog, entry->code, values);
                ASSERT_EQ(plan.status, EffectPlan::Status::Ready);
                const Outcome editor = runAs(plan.body, source, 0, Editor);
                const Outcome oneShot = runAs(plan.body, source, 0, OneShot);
                const std::string what = std::string(c.effect) + " E " + std::to_string(row) +
                                         " C " + std::to_string(colour);
                EXPECT_EQ(oneShot.outcome, editor.outcome) << what;
                EXPECT_EQ(oneShot.picture, editor.picture) << what;
            }
        }
    }
}

} // namespace
} // namespace lumiran
