// "Tile Wall Net" draws in place on a picture the run lends it whole, and
// "Fractal Mosaic" writes its means there: the command line's one-shot run
// must leave the document as the editor's run, which makes the result in
// kept picture 1, does.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "shell/effect_run.h"
#include "test_support.h"

#include <gtest/gtest.h>
#include <string>

namespace lumiran {
namespace {

Surface runOn(const Surface& picture, const EffectPlan& plan, bool oneShot, AreaRect area) {
    ProgramState state;
    Document document;
    document.picture = picture;
    document.area = area;
    document.ToolsFlag = area == AreaRect{} ? 0 : 3;
    EffectRun run(state, document, {.noUndo = oneShot, .oneShot = oneShot});
    run.execute(plan.body);
    EXPECT_EQ(run.finish(), RunOutcome::Applied);
    return document.picture;
}

class NetMosaicRun : public ::testing::TestWithParam<const char*> {};

TEST_P(NetMosaicRun, TheOneShotRunLeavesWhatTheEditorsRunLeaves) {
    const EffectEntry* entry = findEffect(GetParam());
    ASSERT_NE(entry, nullptr);
    Surface picture = testing::makeVariedPicture(61, 47);
    // Spare bytes the result must keep.
    for (Pixel& p : picture.pixels())
        p |= 0x5A000000u;
    // Both types, the whole picture (lent) and a rectangle (copied).
    for (const int type : {0, 1}) {
        ControlValues values = defaultControlValues(*entry);
        values.eType = type;
        const EffectPlan plan = planEffect(entry->dialog, entry->code, values);
        ASSERT_EQ(plan.status, EffectPlan::Status::Ready);
        for (const AreaRect area : {AreaRect{}, AreaRect{5, 4, 40, 33}}) {
            const Surface editor = runOn(picture, plan, false, area);
            EXPECT_NE(editor, picture) << type;
            EXPECT_EQ(runOn(picture, plan, true, area), editor) << type;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(NetMosaics, NetMosaicRun,
                         ::testing::Values("Tile Wall Net", "Fractal Mosaic"),
                         [](const auto& param) {
                             std::string name = param.param;
                             std::erase(name, ' ');
                             return name;
                         });

} // namespace
} // namespace lumiran
