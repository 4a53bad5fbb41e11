// The looks chosen for the entries of several calls where the catalogue
// leaves a row's values open: Glass Painting's types, Water Noise's marks.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "shell/effect_run.h"
#include "test_support.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace lumiran {
namespace {

Surface runEntry(const char* name, const Surface& picture, int colourRow, int typeRow = 0) {
    const EffectEntry* entry = findEffect(name);
    EXPECT_NE(entry, nullptr) << name;
    ControlValues values = defaultControlValues(*entry);
    values.color = colourRow;
    values.eType = typeRow;
    const EffectPlan plan = planEffect(entry->dialog, entry->code, values);
    EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << name;
    ProgramState state;
    Document document;
    document.picture = picture;
    const RunReport report = runEffect(state, document, plan.body);
    EXPECT_EQ(report.outcome, RunOutcome::Applied) << name;
    return document.picture;
}

int brightest(Pixel p) {
    return std::max({redOf(p), greenOf(p), blueOf(p)});
}

// Red on the left, blue on the right: one vertical boundary.
Surface twoAreas() {
    return testing::makePicture(24, 12, [](int x, int) {
        return x < 12 ? makePixel(200, 40, 40) : makePixel(40, 40, 200);
    });
}

TEST(GlassPainting, OnlyTheOutlinesGlowAndWiderSmoothingBroadensThem) {
    struct Look {
        int row;
        bool bold;
    };
    int previousWidth = 0;
    for (const Look look : {Look{0, true}, Look{1, true}, Look{2, true}, Look{3, false},
                            Look{4, false}, Look{5, false}}) {
        const Surface result = runEntry("Glass Painting", twoAreas(), look.row);
        const int y = 6;
        int width = 0;
        int peak = 0;
        for (int x = 3; x < 20; ++x) {
            const int level = brightest(result.at(x, y));
            if (level > 0) ++width;
            peak = std::max(peak, level);
        }
        // Inside the areas nothing glows.
        EXPECT_EQ(brightest(result.at(4, y)), 0) << look.row;
        EXPECT_EQ(brightest(result.at(19, y)), 0) << look.row;
        EXPECT_GT(width, 0) << look.row;
        if (look.bold) {
            EXPECT_EQ(peak, 255) << look.row;
        } else {
            EXPECT_LT(peak, 255) << look.row;
        }
        if (look.row % 3 != 0) {
            EXPECT_GE(width, previousWidth) << look.row;
        }
        previousWidth = width;
    }
}

TEST(WaterNoise, EveryTypeLeavesBlotsAfterTheMedian) {
    const Surface grey(48, 48, makePixel(128, 128, 128));
    for (int type = 0; type < 4; ++type) {
        const Surface result = runEntry("Water Noise", grey, 0, type);
        const auto changed = std::ranges::count_if(
            result.pixels(), [](Pixel p) { return (p & 0xFFFFFF) != makePixel(128, 128, 128); });
        EXPECT_GT(changed, 0) << type;
    }
}

} // namespace
} // namespace lumiran
