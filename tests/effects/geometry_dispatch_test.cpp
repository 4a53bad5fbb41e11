// The cases of Class_Geometry: the lists reach the arguments their
// captions name. (The golden tests run every entry at its defaults.)
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "geometry_fixture.h"

#include <string_view>

namespace lumiran::testing {
namespace {

struct GeometryDispatch : GeometryFixture {
    Surface runCase(std::string_view caption, const ControlValues& values, const Surface& picture) {
        const EffectEntry* entry = findEffect(caption);
        EXPECT_NE(entry, nullptr) << caption;
        if (entry == nullptr) return {};
        const EffectPlan plan = planEffect(entry->dialog, entry->code, values);
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << caption;
        if (plan.status != EffectPlan::Status::Ready) return {};
        Surface kept0 = picture;
        Surface kept1(picture.width(), picture.height());
        EffectInvocation invocation{context, kept0, kept1,
                                    ProcessRect::wholePicture(picture.width(), picture.height())};
        plan.body(invocation);
        return kept1;
    }
};

// The direction list ("方向") is the axes wherever it stands: row 0 moves
// pixels only along their row. The other list is set to a late row to show
// it does not take the axes' place.
struct DirectionCase {
    std::string_view caption;
    ControlValues values;
};

TEST_F(GeometryDispatch, TheDirectionListIsTheAxes) {
    const DirectionCase cases[] = {
        {"Power Hole", {.sliders = {40, 60, 3}, .eType = 3, .color = 0}},
        {"Suck In", {.sliders = {50, 50, 4}, .eType = 0, .color = 2}},
        {"Vortex", {.sliders = {50, 50, 20}, .eType = 0, .color = 6}},
        {"Eddying Current", {.sliders = {50, 50, 20}, .eType = 2, .color = 0}},
        {"Whirlpool", {.sliders = {50, 50, 20}, .eType = 0}},
        {"Rotate", {.sliders = {50, 50, 30}, .eType = 0}},
        {"Sea Wave", {.sliders = {60, 20, 50, 50, 1}, .eType = 0, .color = 3}},
        {"Ripploid", {.sliders = {50, 50, 5}, .eType = 0, .color = 3}},
    };
    for (const DirectionCase& c : cases) {
        const Surface result = runCase(c.caption, c.values, positionPicture(31, 23));
        bool moved = false;
        for (int y = 0; y < 23; ++y) {
            for (int x = 0; x < 31; ++x) {
                const Pixel p = result.at(x, y);
                if ((p & 0xFFFFFF) == 0) continue; // Rotate's black
                ASSERT_EQ(placeOf(p).y, y) << c.caption << " at " << x << "," << y;
                moved |= placeOf(p).x != x;
            }
        }
        EXPECT_TRUE(moved) << c.caption;
    }
}

TEST_F(GeometryDispatch, NoEntryOfTheGeometryMenusWaits) {
    int served = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        const std::string_view f = entry.family;
        if (f != "Distortion" && f != "Pixel Move" && f != "Warp Change" && f != "Bring" &&
            f != "Transform" && f != "Outline") {
            continue;
        }
        EXPECT_EQ(planEffect(entry.dialog, entry.code, defaultControlValues(entry)).status,
                  EffectPlan::Status::Ready)
            << entry.caption;
        ++served;
    }
    EXPECT_GT(served, 50);
}

// "背景の種類": row 0 "画像" shows the picture where a band slid away, row 1
// "背景色" leaves the target (here black) as it was.
TEST_F(GeometryDispatch, SlideBackgroundRows) {
    const Surface picture = positionPicture(20, 10);
    for (const int row : {0, 1}) {
        const Surface result =
            runCase("Slide", {.sliders = {2, 3}, .eType = 0, .color = row}, picture);
        EXPECT_EQ(placeOf(result.at(5, 2)), (SourcePlace{2, 2}));
        const Pixel uncovered = result.at(0, 2);
        EXPECT_EQ(uncovered, row == 0 ? picture.at(0, 2) : Pixel{0}) << row;
    }
}

} // namespace
} // namespace lumiran::testing
