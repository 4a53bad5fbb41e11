// The Dither and Binarization cases of the dialogs' switches: which values
// reach which argument.
#include "catalogue/effect_dispatch.h"
#include "catalogue/effect_table.h"
#include "halftone_fixture.h"

#include <string_view>

namespace lumiran::testing {
namespace {

using V = ControlValues;

template <typename Class>
struct HalftoneDispatch : HalftoneFixture<Class> {
    const Surface picture = noisePicture(12, 10, 11);

    Surface caseOn(DialogKind dialog, int code, const V& values) {
        const EffectPlan plan = planEffect(dialog, code, values);
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << dialogName(dialog) << " " << code;
        if (plan.status != EffectPlan::Status::Ready) return {};
        this->random = RandomGenerator();
        Surface kept0 = picture;
        Surface kept1;
        EffectInvocation invocation{this->context, kept0, kept1,
                                    ProcessRect::wholePicture(picture.width(), picture.height())};
        plan.body(invocation);
        EXPECT_TRUE(this->context.failures.empty());
        return kept1;
    }

    Surface direct(const typename HalftoneFixture<Class>::Call& call) {
        this->random = RandomGenerator();
        return this->run(picture, call);
    }
};

using DitherDispatch = HalftoneDispatch<Class_Dithering>;
using BinarizationDispatch = HalftoneDispatch<Class_Binarization>;

// Osero among them, served by the mosaics.
TEST(HalftoneCatalogue, EveryEntryOfBothMenusIsServed) {
    int served = 0;
    for (const EffectEntry& entry : effectCatalogue()) {
        if (entry.menu != "DitherNo" && entry.menu != "BinarizationNo") continue;
        const EffectPlan plan = planEffect(entry.dialog, entry.code, defaultControlValues(entry));
        EXPECT_EQ(plan.status, EffectPlan::Status::Ready) << entry.caption;
        ++served;
    }
    EXPECT_EQ(served, 21);
}

TEST_F(DitherDispatch, SlidersAndRowsReachTheirArguments) {
    using D = Class_Dithering;
    // Ordered: type row, S2 adjust, colour row, S1 level.
    EXPECT_EQ(caseOn(DialogKind::Level, 7, V{.sliders = {3, -5}, .eType = 4, .color = 1}),
              direct(op<&D::OrderedDither4x4>(4, -5, rect, 1, 3)));
    EXPECT_EQ(caseOn(DialogKind::Level, 9, V{.sliders = {5, 2}, .eType = 5}),
              direct(op<&D::OrderedDither8x8>(5, 2, rect, 0, 5)));
    // Random Error Diffusion takes the filter row plus one; Random Dither 0.
    EXPECT_EQ(caseOn(DialogKind::Emboss, 29, V{.sliders = {3}, .eType = 2, .color = 1}),
              direct(op<&D::Dither_ErrorDiffuseRandom>(3, rect, 1, 3)));
    EXPECT_EQ(caseOn(DialogKind::Negative, 29, V{.sliders = {9}, .color = 1}),
              direct(op<&D::Dither_ErrorDiffuseRandom>(0, rect, 1, 9)));
    // Fixed: S1 level, S2 the error.
    EXPECT_EQ(caseOn(DialogKind::Level, 8, V{.sliders = {3, 100}, .eType = 3}),
              direct(op<&D::Dither_ErrorFixed>(3, rect, 0, 3, 100)));
    // Limit The Mean Value: the colour row is the mode, the type row the weight.
    EXPECT_EQ(caseOn(DialogKind::Emboss, 24, V{.sliders = {50}, .eType = 2, .color = 1}),
              direct(op<&D::LimitTheMeanValue>(1, 2, rect)));
    // Dinamic Thresholding: always mono; S3 and S4 in tenths.
    EXPECT_EQ(caseOn(DialogKind::Mani, 6, V{.sliders = {200, 20, -20, 100}, .eType = 1}),
              direct(op<&D::DinamicThresholding>(0, 200, 20, -2.0, 10.0, rect)));
    EXPECT_EQ(caseOn(DialogKind::Emboss, 43, V{.sliders = {4}, .eType = 6, .color = 1}),
              direct(op<&D::Dither_ErrorDiffuseColorPaint>(6, rect, 1, 4)));
}

TEST_F(BinarizationDispatch, SlidersAndRowsReachTheirArguments) {
    using B = Class_Binarization;
    // Transformation Binarize: the type row is the mode, the colour row the channel.
    EXPECT_EQ(caseOn(DialogKind::Emboss, 46, V{.sliders = {90}, .eType = 1, .color = 2}),
              direct(op<&B::TransformationBinarize>(90, rect, 1, 2)));
    EXPECT_EQ(caseOn(DialogKind::Emboss, 70, V{.sliders = {80}, .eType = 1, .color = 3}),
              direct(op<&B::Erosion>(1, 80, rect, 3)));
    // Feature points: S1 the radius, S2 the threshold, colour row the kind,
    // type row the measure, the check box the polarity.
    EXPECT_EQ(
        caseOn(DialogKind::Level, 46, V{.sliders = {3, 100}, .eType = 1, .color = 1, .check = 1}),
        direct(op<&B::FeaturePointExtract_Mono>(1, 3, 100, 1, rect, 1)));
    // Border following in colour: red, green and blue in turn, each traced
    // on the result of the one before (its marks included).
    context.flags.drawingColor = {9, 8, 7};
    const Surface colour = caseOn(DialogKind::Negative, 78, V{.sliders = {100}, .color = 1});
    Surface expected = picture;
    for (std::int16_t channel = 0; channel < 3; ++channel) {
        expected = run(expected, op<&B::BorderFollowing_Color>(channel, 1, 100, 1, rect));
    }
    EXPECT_EQ(colour, expected);
    // The drawing-colour binarization passes black whatever the drawing colour.
    EXPECT_EQ(caseOn(DialogKind::Emboss, 42, V{.sliders = {100}, .eType = 1, .color = 1}),
              direct(op<&B::DrawingColorBinarization>(100, 1, 1, rect, std::uint8_t{0},
                                                      std::uint8_t{0}, std::uint8_t{0})));
}

} // namespace
} // namespace lumiran::testing
