#include "catalogue/preview.h"
#include "effects/colour/class_color_op.h"
#include "test_support.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

// The preview box of frm_Level, in pixels.
constexpr int BoxWidth = 140;
constexpr int BoxHeight = 136;

TEST(SetPreviewPicture, WidePicturesFillTheWidthAndAreCentredVertically) {
    EXPECT_EQ(SetPreviewPicture(BoxWidth, BoxHeight, 1000, 10), (PreviewPlacement{0, 67, 140, 1}));
    // 75 * 140 / 100 = 105 exactly; 3 * 140 / 8 = 52.5 rounds to the even 52.
    EXPECT_EQ(SetPreviewPicture(BoxWidth, BoxHeight, 100, 75), (PreviewPlacement{0, 15, 140, 105}));
    EXPECT_EQ(SetPreviewPicture(BoxWidth, BoxHeight, 8, 3).height, 52);
}

TEST(SetPreviewPicture, TallAndSquarePicturesFillTheHeight) {
    EXPECT_EQ(SetPreviewPicture(BoxWidth, BoxHeight, 10, 1000), (PreviewPlacement{69, 0, 1, 136}));
    EXPECT_EQ(SetPreviewPicture(BoxWidth, BoxHeight, 500, 500), (PreviewPlacement{2, 0, 136, 136}));
}

EffectBody invertRed() {
    return [](EffectInvocation& run) {
        Class_ColorOp effect(run.context);
        effect.ImageGetDiBits(run.keptPicture0);
        effect.Gray_Effect(5, run.rect.left, run.rect.top, run.rect.right, run.rect.bottom);
        effect.ImageSetDiBits(run.keptPicture1);
    };
}

TEST(Preview, RunsOnTheWholeCopyAndNeverAccumulates) {
    ProgramState state;
    const Surface source = testing::makeVariedPicture(30, 20);
    const PreviewResult first = runPreview(state, invertRed(), source);
    const PreviewResult second = runPreview(state, invertRed(), source);
    EXPECT_EQ(first.picture, second.picture);
    const int red = redOf(source.at(29, 19));
    EXPECT_EQ(first.picture.at(29, 19) & 0xFFFFFF, makePixel(255 - red, 255 - red, 255 - red));
    EXPECT_EQ(state.undo.UndoCount(), 0);
}

TEST(Preview, RasterFlagLaysTheSourceOverTheResult) {
    ProgramState state;
    state.flags.rasterOpFlag = 9; // S and not D: here S is the source, D the result
    const Surface source(1, 1, makePixel(0xF0, 0x0F, 0x55));
    const PreviewResult result = runPreview(state, invertRed(), source);
    const Pixel effect = makePixel(0x0F, 0x0F, 0x0F);
    EXPECT_EQ(result.picture.at(0, 0) & 0xFFFFFF, (source.at(0, 0) & ~effect) & 0xFFFFFF);
}

// A cancel skips the raster step but shows what the effect wrote; a failure
// shows nothing new, so the dialog keeps its picture. Both clear the flag.
TEST(Preview, ACancelledOrFailedPreviewSkipsTheRasterStepAndClearsTheFlag) {
    struct Case {
        const char* name;
        bool fails;
    };
    for (const Case c : {Case{"cancelled", false}, Case{"failed", true}}) {
        SCOPED_TRACE(c.name);
        ProgramState state;
        state.flags.rasterOpFlag = 7;
        const Surface source = testing::makeVariedPicture(4, 4);
        const PreviewResult result = runPreview(
            state,
            [fails = c.fails](EffectInvocation& run) {
                run.keptPicture1 = run.keptPicture0;
                if (fails) throw EffectError::overflow();
                run.context.requestCancel();
            },
            source);
        EXPECT_TRUE(result.cancelled);
        EXPECT_EQ(result.failures.size(), c.fails ? 1u : 0u);
        EXPECT_EQ(state.cancelFlag, 0);
        // No xor with itself; nothing at all where the effect failed.
        EXPECT_EQ(result.picture, c.fails ? Surface() : source);
    }
}

TEST(Preview, ScalingKeepsTheCornersOfThePicture) {
    Surface picture(4, 2);
    picture.at(0, 0) = makePixel(1, 2, 3);
    picture.at(3, 1) = makePixel(9, 8, 7);
    const Surface scaled = scalePicture(picture, 8, 4);
    EXPECT_EQ(scaled.at(0, 0), picture.at(0, 0));
    EXPECT_EQ(scaled.at(7, 3), picture.at(3, 1));
}

} // namespace
} // namespace lumiran
