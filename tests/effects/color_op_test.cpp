// Class_ColorOp: the frame as these effects use it, and the effects that
// rescale by lightness or work from a grey.
#include "color_op_fixture.h"

#include <vector>

namespace lumiran::testing {
namespace {

using ColorOpFrame = ColorOpFixture;
using C = Class_ColorOp;

// One operation of each kind of pixel loop.
TEST_F(ColorOpFrame, OperationsKeepPixelsOutsideTheRectangleAndTheSpareByte) {
    const Call calls[] = {
        op<&C::SilverMountain>(0, 42, 1, 0, 0, 0, 0, 1, rect),
        op<&C::BlightnessAdjust>(1, 30, rect),
        op<&C::Momo_Effect>(128, 64, 128, 192, rect, 50, 50),
        op<&C::HSVCycle>(rect, 0, 360, 0, 0, 50, 50),
        op<&C::OneColorStyle>(0, 0, 255, 128, 0, rect),
        op<&C::RGBExchange>(0, rect), // stored as they stand
        op<&C::RGBExchange>(8, rect), // clamped, never blended
        op<&C::Hue>(3, 64, rect),
        op<&C::AutumnsColor>(3, rect),
        op<&C::Deterioration>(1, 1, 1, rect, 128, 128, 128, 0, 0, 30, 60),
    };
    Surface source = makeVariedPicture(6, 5);
    for (Pixel& p : source.pixels())
        p |= 0x7F000000u;
    for (std::size_t i = 0; i < std::size(calls); ++i) {
        const Surface out = run(source, [&](C& e, const ProcessRect&) {
            calls[i](e, {1, 1, 4, 3});
        });
        ASSERT_TRUE(context.failures.empty()) << "call " << i;
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 6; ++x) {
                // Inside only the colour may change.
                const Pixel kept = x >= 1 && x < 4 && y >= 1 && y < 3 ? 0xFF000000u : 0xFFFFFFFFu;
                EXPECT_EQ(out.at(x, y) & kept, source.at(x, y) & kept) << "call " << i;
            }
        }
    }
}

TEST_F(ColorOpFrame, ARectangleReachingBeyondThePictureIsCutToIt) {
    const Surface source = makeVariedPicture(3, 2);
    const Surface out =
        run(source, [](C& e, const ProcessRect&) { e.RGBExchange(0, -5, -5, 40, 40); });
    EXPECT_TRUE(context.failures.empty());
    const Colour before = colourOf(source.at(2, 1));
    EXPECT_EQ(colourOf(out.at(2, 1)), (Colour{before[1], before[0], before[2]}));
}

TEST_F(ColorOpFrame, TheSharedTailClampsBeforeTheCalculationTypeBlends) {
    EXPECT_EQ(runOn(100, 50, 20, op<&C::AutumnsColor>(0, rect)), (Colour{210, 130, 20}));
    EXPECT_EQ(runOn(100, 50, 20, op<&C::AutumnsColor>(3, rect)), (Colour{255, 130, 20})); // 400
    context.flags.calculationFlag = 1; // (r + r1) / 2
    EXPECT_EQ(runOn(100, 50, 20, op<&C::AutumnsColor>(0, rect)), (Colour{155, 90, 20}));
    EXPECT_EQ(runOn(100, 50, 20, op<&C::AutumnsColor>(3, rect)), (Colour{177, 90, 20}));
}

TEST_F(ColorOpFrame, DirectWritesIgnoreTheCalculationType) {
    context.flags.calculationFlag = 4; // |r - r1| * 2 would blacken an unchanged channel
    EXPECT_EQ(runOn(10, 20, 30, op<&C::RGBExchange>(0, rect)), (Colour{20, 10, 30}));
    EXPECT_EQ(runOn(200, 100, 50, op<&C::Invasion_Effect>(0, 0, rect)), (Colour{200, 200, 50}));
    // Kinds 8..13 clamp but never blend: 398 becomes 255, not 142.
    context.flags.calculationFlag = 2;
    EXPECT_EQ(runOn(200, 255, 0, op<&C::RGBExchange>(8, rect)), (Colour{128, 255, 0}));
    // Source 6 goes through the shared tail: R = 125 blended, G and B cancel out.
    context.flags.calculationFlag = 4;
    EXPECT_EQ(runOn(200, 100, 50, op<&C::Invasion_Effect>(6, 0, rect)), (Colour{150, 0, 0}));
}

TEST_F(ColorOpFrame, BlackendOffsetsRoundHalfToEvenAndTheSecondTypeAddsTheSpread) {
    // 0.25 * 50 = 12.5 gives 12; a grey pixel keeps only the offsets.
    EXPECT_EQ(runOn(10, 10, 10, op<&C::Blackend>(0.25, 0, rect)), (Colour{12, 5, 5}));
    const double amount = static_cast<float>(24 / 26.0); // k1 46, k2 18; Y = 82
    EXPECT_EQ(runOn(100, 50, 200, op<&C::Blackend>(amount, 0, rect)), (Colour{64, 14, 136}));
    EXPECT_EQ(runOn(100, 50, 200, op<&C::Blackend>(amount, 1, rect)), (Colour{186, 136, 255}));
}

TEST_F(ColorOpFrame, BlackendOffsetOutOfRangeFailsOnlyWhenAPixelIsReached) {
    run(Surface(2, 2), [](C& e, const ProcessRect&) { e.Blackend(1e9, 0, 0, 0, 0, 0); });
    EXPECT_TRUE(context.failures.empty());
    run(Surface(2, 2), op<&C::Blackend>(1e9, 0, rect));
    EXPECT_EQ(failureNumber(), 6);
    EXPECT_TRUE(context.cancelled());
}

TEST_F(ColorOpFrame, BrightnessAdjustRescalesToTheShiftedLightness) {
    auto adjust = [](int amount) { return op<&C::BlightnessAdjust>(1, amount, rect); };
    EXPECT_EQ(runOn(200, 100, 50, adjust(20)), (Colour{232, 116, 58}));
    EXPECT_EQ(runOn(3, 1, 1, adjust(1)), (Colour{4, 2, 2}));               // 4.5 and 1.5 to even
    EXPECT_EQ(runOn(250, 250, 250, adjust(100)), (Colour{255, 255, 255})); // target capped
    EXPECT_EQ(runOn(30, 20, 10, adjust(-100)), (Colour{120, 80, 40}));     // |20 - 100|
    // A flag other than 1: nothing runs.
    EXPECT_EQ(runOn(200, 100, 50, op<&C::BlightnessAdjust>(0, 20, rect)), (Colour{200, 100, 50}));
    // Lightness 0: the pixel is written as ones first, and the blend sees them.
    EXPECT_EQ(runOn(1, 0, 0, adjust(10)), (Colour{10, 10, 10}));
    context.flags.calculationFlag = 4; // |1 - 10| * 2
    EXPECT_EQ(runOn(1, 0, 0, adjust(10)), (Colour{18, 18, 18}));
}

TEST_F(ColorOpFrame, BrightnessAdjustOverflowComesFromThePixelThatCausesIt) {
    const Call adjust = op<&C::BlightnessAdjust>(1, -32000, rect);
    EXPECT_EQ(runOn(100, 100, 100, adjust), (Colour{255, 255, 255}));
    EXPECT_TRUE(context.failures.empty());
    runOn(3, 1, 1, adjust); // 1.5 * 31998 does not fit 16 bits
    EXPECT_EQ(failureNumber(), 6);
}

TEST_F(ColorOpFrame, MomoBrightensWithTheDistanceFromTheCentreAndFailsOnAKOfZero) {
    const Call momo = op<&C::Momo_Effect>(128, 64, 128, 192, rect, 50, 50);
    // Centre (6, 2) by half-even rounding of 5.5 and 1.5; K = 4.
    const Surface out = run(Surface(11, 3, makePixel(200, 100, 50)), momo);
    EXPECT_EQ(colourOf(out.at(0, 0)), (Colour{255, 128, 255}));
    EXPECT_EQ(colourOf(out.at(10, 2)), (Colour{162, 209, 232}));
    // Lightness 0: the channels become 1 and T is all that is left.
    EXPECT_EQ(colourOf(run(Surface(11, 3), momo).at(0, 0)), (Colour{66, 130, 194}));
    EXPECT_TRUE(context.failures.empty());
    // K of 0 ends through the handler.
    run(Surface(2, 2, makePixel(10, 20, 30)), op<&C::Momo_Effect>(1, 0, 0, 0, rect, 50, 50));
    EXPECT_EQ(failureNumber(), 6);
    EXPECT_TRUE(context.cancelled());
}

TEST_F(ColorOpFrame, MomoOverflowComesFromThePixelThatCausesIt) {
    // K = 1 and the centre at (5, 0): red is 160 dist, past 16 bits from
    // dist 205 on, so row 0 is done up to column 209 and stops there.
    const Surface source(500, 3, makePixel(200, 100, 50));
    const Surface out = run(source, op<&C::Momo_Effect>(1, 0, 0, 0, rect, 1, 1));
    EXPECT_EQ(failureNumber(), 6);
    EXPECT_EQ(colourOf(out.at(209, 0)), (Colour{255, 255, 255}));
    EXPECT_EQ(out.at(210, 0), source.at(210, 0));
    EXPECT_EQ(out.at(0, 1), source.at(0, 1));
}

TEST_F(ColorOpFrame, SilverMountainInvertsAndWavesByTheBaseValue) {
    auto silver = [](int addGreen, int mono) {
        return op<&C::SilverMountain>(1, 42, 1, 0, addGreen, 0, mono, 0, rect);
    };
    // Inverted to (0, 255, 255); base r = 0 gives w = 0.5 and 127.5 rounds to 128.
    EXPECT_EQ(runOn(255, 0, 0, silver(0, 0)), (Colour{255, 127, 127}));
    EXPECT_EQ(runOn(255, 0, 0, silver(10, 0)), (Colour{255, 137, 127}));
    EXPECT_EQ(runOn(255, 0, 0, silver(0, 1)), (Colour{255, 255, 255})); // mono of type 1 spreads R
    EXPECT_TRUE(context.failures.empty());
    runOn(10, 20, 30, op<&C::SilverMountain>(0, 0, 1, 0, 0, 0, 0, 0, rect)); // period 0
    EXPECT_EQ(failureNumber(), 6);
}

TEST_F(ColorOpFrame, SilverMountainRandomDrawsOncePerPixelInEveryType) {
    for (int type : {0, 4}) {
        RandomGenerator expected = random;
        for (int i = 0; i < 6; ++i)
            (void)expected.next();
        run(makeVariedPicture(3, 2), op<&C::SilverMountain>(type, 42, 1, 0, 0, 0, 0, 1, rect));
        EXPECT_EQ(random.state(), expected.state()) << type;
    }
}

TEST_F(ColorOpFrame, OneColorStyleScalesTheColourByTheGrey) {
    auto oneColour = [](int basis, int style, int red, int blue) {
        return op<&C::OneColorStyle>(basis, style, red, 0, blue, rect);
    };
    EXPECT_EQ(runOn(10, 200, 30, oneColour(1, 0, 255, 0)), (Colour{255, 200, 200}));
    // (255 + 200) / 2 = 227.5 and (1 + 200) / 2 = 100.5 round to even.
    EXPECT_EQ(runOn(10, 200, 30, oneColour(1, 1, 255, 1)), (Colour{228, 100, 100}));
    EXPECT_EQ(runOn(10, 200, 30, oneColour(0, 1, 0, 0)), (Colour{62, 62, 62})); // Y = 124
}

TEST_F(ColorOpFrame, OneColorStyleRunsByColumnsAndStopsAfterAWholeColumn) {
    CancellingProgress progress(cancel);
    progress.cancelFirst = false;
    context.progress = &progress;
    const Surface source(3, 2, makePixel(100, 150, 200));
    run(source, op<&C::OneColorStyle>(1, 1, 0, 0, 0, rect));
    EXPECT_EQ(progress.shown, (std::vector<int>{50, 100, 150})); // range: rows; steps: columns
    progress.cancelFirst = true;
    const Surface out = run(source, op<&C::OneColorStyle>(1, 1, 0, 0, 0, rect));
    EXPECT_NE(out.at(0, 1), source.at(0, 1));
    EXPECT_EQ(out.at(1, 0), source.at(1, 0));
    EXPECT_EQ(out.at(2, 1), source.at(2, 1));
}

} // namespace
} // namespace lumiran::testing
