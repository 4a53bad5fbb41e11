// Class_ColorOp: the frame as these effects use it, and the effects that
// rescale by lightness or work from a grey.
#include "color_op_fixture.h"

#include <string>
#include <vector>

namespace lumiran::testing {
namespace {

using Op = std::function<void(Class_ColorOp&, const ProcessRect&)>;

// Every operation with the rectangle last, called with leading arguments.
template <auto Operation, typename... Args>
Op rectLast(Args... args) {
    return [=](Class_ColorOp& e, const ProcessRect& r) {
        (e.*Operation)(args..., r.left, r.top, r.right, r.bottom);
    };
}

struct NamedOp {
    std::string name;
    Op op;
};

std::vector<NamedOp> everyOperation() {
    using C = Class_ColorOp;
    std::vector<NamedOp> ops{
        {"Blackend", rectLast<&C::Blackend>(24 / 26.0, 1)},
        {"SilverMountain", rectLast<&C::SilverMountain>(0, 42, 1, 0, 0, 0, 0, 0)},
        {"BlightnessAdjust", rectLast<&C::BlightnessAdjust>(1, 30)},
        {"Momo_Effect",
         [](C& e, const ProcessRect& r) {
             e.Momo_Effect(128, 64, 128, 192, r.left, r.top, r.right, r.bottom, 50, 50);
         }},
        {"HSVInvert",
         [](C& e, const ProcessRect& r) {
             e.HSVInvert(r.left, r.top, r.right, r.bottom, 0, 240, 180, -20, 0, 30, 60);
         }},
        {"HSVCycle",
         [](C& e, const ProcessRect& r) {
             e.HSVCycle(r.left, r.top, r.right, r.bottom, 0, 360, 0, 0, 50, 50);
         }},
        {"OneColorStyle", rectLast<&C::OneColorStyle>(0, 0, 255, 128, 0)},
        {"GrayatSaturation",
         [](C& e, const ProcessRect& r) {
             e.GrayatSaturation(0, 128, r.left, r.top, r.right, r.bottom, 0);
         }},
    };
    for (int i = 0; i < 6; ++i) {
        ops.push_back({"ColorBalanceAdjust" + std::to_string(i),
                       rectLast<&C::ColorBalanceAdjust>(i, 10, 20, 30, 40)});
    }
    for (int i = 0; i < 14; ++i) {
        ops.push_back({"RGBExchange" + std::to_string(i), rectLast<&C::RGBExchange>(i)});
    }
    for (int i = 0; i < 10; ++i) {
        ops.push_back({"DifferenceOperation" + std::to_string(i), [i](C& e, const ProcessRect& r) {
                           e.DifferenceOperation(0, i, r.left, r.top, r.right, r.bottom, true);
                       }});
    }
    for (int s = 0; s < 7; ++s) {
        for (int t = 0; t < 6; ++t) {
            ops.push_back({"Invasion_Effect" + std::to_string(s) + std::to_string(t),
                           rectLast<&C::Invasion_Effect>(s, t)});
        }
    }
    for (int i = 0; i < 5; ++i) {
        ops.push_back({"Hue" + std::to_string(i), rectLast<&C::Hue>(i, 64)});
    }
    for (int i = 0; i < 4; ++i) {
        ops.push_back({"AutumnsColor" + std::to_string(i), rectLast<&C::AutumnsColor>(i)});
        ops.push_back({"SakuraFilter" + std::to_string(i), rectLast<&C::SakuraFilter>(i % 2, i)});
        ops.push_back({"Deterioration" + std::to_string(i), [i](C& e, const ProcessRect& r) {
                           e.Deterioration(i, i % 2, 1, r.left, r.top, r.right, r.bottom, 128, 128,
                                           128, 0, 0, 30, 60);
                       }});
    }
    return ops;
}

using ColorOpFrame = ColorOpFixture;

TEST_F(ColorOpFrame, EveryOperationKeepsPixelsOutsideTheRectangleAndTheSpareByte) {
    Surface source = makeVariedPicture(6, 5);
    for (Pixel& p : source.pixels())
        p |= 0x7F000000u;
    const ProcessRect inner{1, 1, 4, 3};
    for (const NamedOp& named : everyOperation()) {
        const Surface out =
            run(source, [&](Class_ColorOp& e, const ProcessRect&) { named.op(e, inner); });
        ASSERT_TRUE(context.failures.empty()) << named.name;
        for (int y = 0; y < 5; ++y) {
            for (int x = 0; x < 6; ++x) {
                const bool inside = x >= 1 && x < 4 && y >= 1 && y < 3;
                EXPECT_EQ(spareOf(out.at(x, y)), 0x7F) << named.name;
                if (!inside) {
                    EXPECT_EQ(out.at(x, y), source.at(x, y)) << named.name;
                }
            }
        }
    }
}

TEST_F(ColorOpFrame, ARectangleReachingBeyondThePictureIsCutToIt) {
    const Surface source = makeVariedPicture(3, 2);
    const Surface out =
        run(source, [](Class_ColorOp& e, const ProcessRect&) { e.RGBExchange(0, -5, -5, 40, 40); });
    EXPECT_TRUE(context.failures.empty());
    EXPECT_EQ(colourOf(out.at(2, 1)),
              (Colour{greenOf(source.at(2, 1)), redOf(source.at(2, 1)), blueOf(source.at(2, 1))}));
}

TEST_F(ColorOpFrame, TheSharedTailClampsBeforeTheCalculationTypeBlends) {
    const Op autumn0 = rectLast<&Class_ColorOp::AutumnsColor>(0);
    const Op autumn3 = rectLast<&Class_ColorOp::AutumnsColor>(3);
    EXPECT_EQ(runOn(100, 50, 20, autumn0), (Colour{210, 130, 20}));
    EXPECT_EQ(runOn(100, 50, 20, autumn3), (Colour{255, 130, 20})); // 400 clamped
    context.flags.calculationFlag = 1;                              // (r + r1) / 2
    EXPECT_EQ(runOn(100, 50, 20, autumn0), (Colour{155, 90, 20}));
    EXPECT_EQ(runOn(100, 50, 20, autumn3), (Colour{177, 90, 20})); // 400 counts as 255
}

TEST_F(ColorOpFrame, DirectWritesIgnoreTheCalculationType) {
    context.flags.calculationFlag = 4; // |r - r1| * 2 would blacken an unchanged channel
    EXPECT_EQ(runOn(10, 20, 30, rectLast<&Class_ColorOp::RGBExchange>(0)), (Colour{20, 10, 30}));
    EXPECT_EQ(runOn(200, 100, 50, rectLast<&Class_ColorOp::Invasion_Effect>(0, 0)),
              (Colour{200, 200, 50}));
    // Kinds 8..13 clamp but never blend: 398 becomes 255, not 142.
    context.flags.calculationFlag = 2;
    EXPECT_EQ(runOn(200, 255, 0, rectLast<&Class_ColorOp::RGBExchange>(8)), (Colour{128, 255, 0}));
    // Source 6 goes through the shared tail: R = 125 blended, G and B cancel out.
    context.flags.calculationFlag = 4;
    EXPECT_EQ(runOn(200, 100, 50, rectLast<&Class_ColorOp::Invasion_Effect>(6, 0)),
              (Colour{150, 0, 0}));
}

// Blackend

TEST_F(ColorOpFrame, BlackendOffsetsRoundHalfToEven) {
    // 0.25 * 50 = 12.5 gives 12; a grey pixel keeps only the offsets.
    EXPECT_EQ(runOn(10, 10, 10, rectLast<&Class_ColorOp::Blackend>(0.25, 0)), (Colour{12, 5, 5}));
}

TEST_F(ColorOpFrame, BlackendTypeTwoAddsTheSpreadOfItsResult) {
    const double amount = static_cast<float>(24 / 26.0); // k1 46, k2 18; Y = 82
    EXPECT_EQ(runOn(100, 50, 200, rectLast<&Class_ColorOp::Blackend>(amount, 0)),
              (Colour{64, 14, 136}));
    EXPECT_EQ(runOn(100, 50, 200, rectLast<&Class_ColorOp::Blackend>(amount, 1)),
              (Colour{186, 136, 255}));
}

TEST_F(ColorOpFrame, BlackendOffsetOutOfRangeFailsOnlyWhenAPixelIsReached) {
    run(Surface(2, 2),
        [](Class_ColorOp& e, const ProcessRect&) { e.Blackend(1e9, 0, 0, 0, 0, 0); });
    EXPECT_TRUE(context.failures.empty());
    run(Surface(2, 2), rectLast<&Class_ColorOp::Blackend>(1e9, 0));
    EXPECT_EQ(failureNumber(), 6);
    EXPECT_TRUE(context.cancelled());
}

// BlightnessAdjust

TEST_F(ColorOpFrame, BrightnessAdjustRescalesToTheShiftedLightness) {
    auto adjust = [](int amount) { return rectLast<&Class_ColorOp::BlightnessAdjust>(1, amount); };
    EXPECT_EQ(runOn(200, 100, 50, adjust(20)), (Colour{232, 116, 58}));
    EXPECT_EQ(runOn(3, 1, 1, adjust(1)), (Colour{4, 2, 2}));               // 4.5 and 1.5 to even
    EXPECT_EQ(runOn(250, 250, 250, adjust(100)), (Colour{255, 255, 255})); // target capped
    EXPECT_EQ(runOn(30, 20, 10, adjust(-100)), (Colour{120, 80, 40}));     // |20 - 100|
    EXPECT_EQ(runOn(200, 100, 50, rectLast<&Class_ColorOp::BlightnessAdjust>(0, 20)),
              (Colour{200, 100, 50})); // flag other than 1: nothing runs
}

TEST_F(ColorOpFrame, BrightnessAdjustWritesAPixelOfLightnessZeroAsOnesFirst) {
    const Op adjust = rectLast<&Class_ColorOp::BlightnessAdjust>(1, 10);
    EXPECT_EQ(runOn(1, 0, 0, adjust), (Colour{10, 10, 10}));
    context.flags.calculationFlag = 4; // |r - r1| * 2 against the overwritten 1
    EXPECT_EQ(runOn(1, 0, 0, adjust), (Colour{18, 18, 18}));
}

TEST_F(ColorOpFrame, BrightnessAdjustOverflowComesFromThePixelThatCausesIt) {
    const Op adjust = rectLast<&Class_ColorOp::BlightnessAdjust>(1, -32000);
    EXPECT_EQ(runOn(100, 100, 100, adjust), (Colour{255, 255, 255}));
    EXPECT_TRUE(context.failures.empty());
    runOn(3, 1, 1, adjust); // 1.5 * 31998 does not fit 16 bits
    EXPECT_EQ(failureNumber(), 6);
}

// Momo_Effect

TEST_F(ColorOpFrame, MomoBrightensWithTheDistanceFromTheCentre) {
    const Op momo = [](Class_ColorOp& e, const ProcessRect& r) {
        e.Momo_Effect(128, 64, 128, 192, r.left, r.top, r.right, r.bottom, 50, 50);
    };
    // Centre (6, 2) by half-even rounding of 5.5 and 1.5; K = 4.
    const Surface out = run(Surface(11, 3, makePixel(200, 100, 50)), momo);
    EXPECT_EQ(colourOf(out.at(0, 0)), (Colour{255, 128, 255}));
    EXPECT_EQ(colourOf(out.at(10, 2)), (Colour{162, 209, 232}));
    // Lightness 0: the channels become 1 and T is all that is left.
    EXPECT_EQ(colourOf(run(Surface(11, 3), momo).at(0, 0)), (Colour{66, 130, 194}));
}

TEST_F(ColorOpFrame, MomoWithKOfZeroEndsThroughTheHandler) {
    run(Surface(2, 2, makePixel(10, 20, 30)), [](Class_ColorOp& e, const ProcessRect& r) {
        e.Momo_Effect(1, 0, 0, 0, r.left, r.top, r.right, r.bottom, 50, 50);
    });
    EXPECT_EQ(failureNumber(), 6);
    EXPECT_TRUE(context.cancelled());
}

// SilverMountain

TEST_F(ColorOpFrame, SilverMountainInvertsAndWavesByTheBaseValue) {
    using C = Class_ColorOp;
    // Inverted to (0, 255, 255); base r = 0 gives w = 0.5 and 127.5 rounds to 128.
    EXPECT_EQ(runOn(255, 0, 0, rectLast<&C::SilverMountain>(1, 42, 1, 0, 0, 0, 0, 0)),
              (Colour{255, 127, 127}));
    EXPECT_EQ(runOn(255, 0, 0, rectLast<&C::SilverMountain>(1, 42, 1, 0, 10, 0, 0, 0)),
              (Colour{255, 137, 127}));
    EXPECT_EQ(runOn(255, 0, 0, rectLast<&C::SilverMountain>(1, 42, 1, 0, 0, 0, 1, 0)),
              (Colour{255, 255, 255})); // mono of type 1 spreads R
}

TEST_F(ColorOpFrame, SilverMountainPeriodZeroFails) {
    runOn(10, 20, 30, rectLast<&Class_ColorOp::SilverMountain>(0, 0, 1, 0, 0, 0, 0, 0));
    EXPECT_EQ(failureNumber(), 6);
}

TEST_F(ColorOpFrame, SilverMountainRandomDrawsOncePerPixelInEveryType) {
    for (int type : {0, 4}) {
        RandomGenerator expected = random;
        for (int i = 0; i < 6; ++i)
            (void)expected.next();
        run(makeVariedPicture(3, 2),
            rectLast<&Class_ColorOp::SilverMountain>(type, 42, 1, 0, 0, 0, 0, 1));
        EXPECT_EQ(random.state(), expected.state()) << type;
    }
}

// OneColorStyle

TEST_F(ColorOpFrame, OneColorStyleScalesTheColourByTheGrey) {
    using C = Class_ColorOp;
    EXPECT_EQ(runOn(10, 200, 30, rectLast<&C::OneColorStyle>(1, 0, 255, 0, 0)),
              (Colour{255, 200, 200}));
    // (255 + 200) / 2 = 227.5 and (1 + 200) / 2 = 100.5 round to even.
    EXPECT_EQ(runOn(10, 200, 30, rectLast<&C::OneColorStyle>(1, 1, 255, 0, 1)),
              (Colour{228, 100, 100}));
    EXPECT_EQ(runOn(10, 200, 30, rectLast<&C::OneColorStyle>(0, 1, 0, 0, 0)),
              (Colour{62, 62, 62})); // Y = 124
    EXPECT_EQ(runOn(10, 200, 30, rectLast<&C::OneColorStyle>(2, 1, 0, 0, 0)), (Colour{5, 5, 5}));
}

struct CancelAtFirstStep : ProgressSink {
    CancelFlag& cancel;
    std::vector<int> shown;
    bool cancelFirst = true;
    explicit CancelAtFirstStep(CancelFlag& flag) : cancel(flag) {}
    void showPercent(int percent) override {
        shown.push_back(percent);
        if (cancelFirst) cancel = 1;
    }
};

TEST_F(ColorOpFrame, OneColorStyleRunsByColumnsAndStopsAfterAWholeColumn) {
    CancelAtFirstStep sink(cancel);
    context.progress = &sink;
    const Surface source(3, 2, makePixel(100, 150, 200));
    const Surface out = run(source, rectLast<&Class_ColorOp::OneColorStyle>(1, 1, 0, 0, 0));
    for (int y = 0; y < 2; ++y) {
        EXPECT_NE(out.at(0, y), source.at(0, y));
        EXPECT_EQ(out.at(1, y), source.at(1, y));
        EXPECT_EQ(out.at(2, y), source.at(2, y));
    }
    // The range is the rows, the steps are the columns.
    sink.cancelFirst = false;
    sink.shown.clear();
    cancel = 0;
    run(source, rectLast<&Class_ColorOp::OneColorStyle>(1, 1, 0, 0, 0));
    EXPECT_EQ(sink.shown, (std::vector<int>{50, 100, 150}));
}

} // namespace
} // namespace lumiran::testing
