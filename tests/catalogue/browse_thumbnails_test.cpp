#include "catalogue/browse_thumbnails.h"
#include "catalogue/effect_dispatch.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

struct PlacementCase {
    int boxWidth, boxHeight, w, h;
    PreviewPlacement expected;
};

TEST(ThumbnailPlacement, FitsCentresAndShrinksWhereTheOffsetWentNegative) {
    const PlacementCase cases[] = {
        // Wide: the width fills the box, centred down; 52.5 rounds to even.
        {200, 150, 8, 3, {0, 37, 200, 75}},
        {140, 136, 8, 3, {0, 42, 140, 52}},
        // Tall and square take the height and centre across.
        {200, 150, 100, 200, {62, 0, 75, 150}},
        {200, 150, 50, 50, {25, 0, 150, 150}},
        // A narrow box: the square's width 150 overflows 100 by 50, offset
        // -25, so the width loses 50 and sits at 0; the height stays.
        {100, 150, 50, 50, {0, 0, 100, 150}},
        // A flat box: height 75 in a box 50 high, offset (50 - 75) / 2 = -12
        // truncated, the height loses 24.
        {100, 50, 200, 150, {0, 0, 100, 51}},
        {10, 10, 0, 5, {0, 0, 0, 0}},
    };
    for (const PlacementCase& c : cases) {
        const PreviewPlacement p = thumbnailPlacement(c.boxWidth, c.boxHeight, c.w, c.h);
        EXPECT_EQ(p, c.expected) << c.boxWidth << "x" << c.boxHeight << " for " << c.w << "x" << c.h
                                 << ": " << p.left << "," << p.top << " " << p.width << "x"
                                 << p.height;
    }
}

TEST(BrowseSettings, RoundTripAndDefaults) {
    const ScreenSize screen{1280, 1024};
    MemoryStore store;
    const BrowseSettings fresh = readBrowseSettings(store, screen);
    EXPECT_EQ(fresh, defaultBrowseSettings(screen));
    EXPECT_EQ(fresh.width, 1067); // 1280 / 6 * 5 = 1066.67 rounded, not 213 * 5
    EXPECT_EQ(fresh.height, 819); // 1024 / 5 * 4 = 819.2
    // 1366 / 6 * 5 = 1138.33, 768 / 5 * 4 = 614.4; 1920 x 1080 divides evenly.
    EXPECT_EQ(defaultBrowseSettings({1366, 768}).width, 1138);
    EXPECT_EQ(defaultBrowseSettings({1366, 768}).height, 614);
    EXPECT_EQ(defaultBrowseSettings({1920, 1080}).width, 1600);

    BrowseSettings changed = fresh;
    changed.left = -20;
    changed.imageWidth = 96;
    changed.imageHeight = 64;
    changed.background = {1, 2, 3};
    changed.caption = {250, 128, 0};
    writeBrowseSettings(store, changed);
    EXPECT_EQ(store.get("Effect Browser", "BrowseBackGroundColor"), "197121");
    EXPECT_EQ(readBrowseSettings(store, screen), changed);

    // Unreadable or impossible values fall back one by one.
    store.set("Effect Browser", "BrowseImageWidth", "0");
    store.set("Effect Browser", "BrowseCaptionColor", "red");
    const BrowseSettings broken = readBrowseSettings(store, screen);
    EXPECT_EQ(broken.imageWidth, fresh.imageWidth);
    EXPECT_EQ(broken.caption, fresh.caption);
    EXPECT_EQ(broken.imageHeight, 64);
}

const EffectEntry& effectNamed(std::string_view name) {
    const EffectEntry* e = findEffect(name);
    EXPECT_NE(e, nullptr) << name;
    return *e;
}

TEST(BrowseThumbnail, IsTheEffectAtItsDefaultsOnTheWholeWorkCopy) {
    const Surface work = testing::makeVariedPicture(37, 23);
    const EffectEntry& negative = effectNamed("Negative");
    // The same plan OK would run with an untouched dialog, on the whole copy.
    ProgramState reference;
    const EffectPlan plan =
        planEffect(negative.dialog, negative.code, defaultControlValues(negative));
    ASSERT_EQ(plan.status, EffectPlan::Status::Ready);
    const Surface expected = runPreview(reference, plan.body, work).picture;

    ProgramState state;
    const std::optional<Surface> plain = browseThumbnail(state, negative, work);
    ASSERT_TRUE(plain.has_value());
    EXPECT_EQ(*plain, expected);
    EXPECT_NE(*plain, work);
}

// The swatch of frm_ColorScale starts at the drawing colour in the dialog:
// the thumbnail shows the same gradation.
TEST(BrowseThumbnail, TakesTheDrawingColourAsTheDialogsSwatch) {
    const Surface work = testing::makeVariedPicture(16, 12);
    const EffectEntry& gradation = effectNamed("Gradation");
    ProgramState state;
    state.flags.drawingColor = {200, 40, 10};
    ControlValues values = defaultControlValues(gradation);
    values.processColor = state.flags.drawingColor;
    ProgramState reference;
    const Surface expected =
        runPreview(reference, planEffect(gradation.dialog, gradation.code, values).body, work)
            .picture;
    const std::optional<Surface> thumbnail = browseThumbnail(state, gradation, work);
    ASSERT_TRUE(thumbnail.has_value());
    EXPECT_EQ(*thumbnail, expected);
}

TEST(BrowseThumbnail, NothingForAnEmptyCopyOrAStoppedRun) {
    const EffectEntry& negative = effectNamed("Negative");
    ProgramState state;
    EXPECT_FALSE(browseThumbnail(state, negative, Surface{}).has_value());
    state.cancelFlag = 1;
    EXPECT_FALSE(browseThumbnail(state, negative, testing::makeVariedPicture(8, 8)).has_value());
}

} // namespace
} // namespace lumiran
