// Colour table effects whose rule looks at more than one channel value:
// ranks, the wave effects and Uni.
#include "color_table_fixture.h"

namespace lumiran {
namespace {

using ColorTablePixelRules = testing::ColorTableFixture;
using E = Class_ColorTable;
using R = ProcessRect;

Pixel emphasize(ColorTablePixelRules& f, std::int16_t kind, int r, int g, int b,
                std::int16_t amount = 10) {
    return f.runOn(r, g, b, [=](E& e, const R& rect) {
        e.ColorEmphasize(amount, kind, rect.left, rect.top, rect.right, rect.bottom);
    });
}

Pixel viewChange(ColorTablePixelRules& f, std::int16_t kind, int r, int g, int b,
                 std::int16_t value = 128) {
    return f.runOn(r, g, b, [=](E& e, const R& rect) {
        e.ColorViewChange(kind, value, rect.left, rect.top, rect.right, rect.bottom);
    });
}

TEST_F(ColorTablePixelRules, EmphasizeRaisesNamedChannelsAndLowersTheOthers) {
    EXPECT_EQ(emphasize(*this, 0, 100, 100, 100), makePixel(110, 90, 90));
    EXPECT_EQ(emphasize(*this, 4, 100, 100, 100), makePixel(90, 110, 110));
    EXPECT_EQ(emphasize(*this, 5, 100, 100, 100), makePixel(110, 90, 110));
    EXPECT_EQ(emphasize(*this, 0, 50, 250, 5, 200), makePixel(250, 50, 0));
}

TEST_F(ColorTablePixelRules, EmphasizeByRankGivesTiesTheirRank) {
    EXPECT_EQ(emphasize(*this, 6, 200, 100, 50), makePixel(210, 90, 40));
    EXPECT_EQ(emphasize(*this, 7, 200, 100, 50), makePixel(190, 110, 40));
    EXPECT_EQ(emphasize(*this, 8, 200, 100, 50), makePixel(190, 90, 60));
    EXPECT_EQ(emphasize(*this, 6, 100, 100, 50), makePixel(110, 110, 40));
    EXPECT_EQ(emphasize(*this, 8, 100, 50, 50), makePixel(90, 60, 60));
    // The middle rank of r = g above b is blue; of r = g below b red and green.
    EXPECT_EQ(emphasize(*this, 7, 100, 100, 50), makePixel(90, 90, 60));
    EXPECT_EQ(emphasize(*this, 7, 50, 50, 100), makePixel(60, 60, 90));
    for (std::int16_t kind = 6; kind <= 8; ++kind) {
        EXPECT_EQ(emphasize(*this, kind, 80, 80, 80), makePixel(90, 90, 90)) << "kind " << kind;
    }
}

TEST_F(ColorTablePixelRules, AnotherColorChangeWritesStraightIntoTheArray) {
    EXPECT_EQ(viewChange(*this, 0, 10, 20, 30), makePixel(10, 128, 128));
    EXPECT_EQ(viewChange(*this, 3, 10, 20, 30), makePixel(10, 20, 128));
    EXPECT_EQ(viewChange(*this, 5, 10, 20, 30), makePixel(10, 128, 30));
    // No clamp: the low byte of 300 is 44.
    EXPECT_EQ(viewChange(*this, 0, 10, 20, 30, 300), makePixel(10, 44, 44));
    // No calculation type either.
    context.flags.calculationFlag = 4;
    EXPECT_EQ(viewChange(*this, 0, 10, 20, 30), makePixel(10, 128, 128));
}

TEST_F(ColorTablePixelRules, AnotherColorChangeByRankKeepsTheRankAndTakesTheTail) {
    EXPECT_EQ(viewChange(*this, 8, 10, 20, 10), makePixel(10, 128, 10));
    EXPECT_EQ(viewChange(*this, 7, 100, 100, 50), makePixel(128, 128, 50));
    EXPECT_EQ(viewChange(*this, 6, 10, 20, 30, 300), makePixel(255, 255, 30));
    context.flags.calculationFlag = 4; // |r - r1| * 2
    EXPECT_EQ(viewChange(*this, 6, 100, 20, 30), makePixel(0, 216, 196));
}

TEST_F(ColorTablePixelRules, PhantomWavesAtTheDefaults) {
    const auto wave = levels([](E& e, const R& r) {
        e.Phantom(r.left, r.top, r.right, r.bottom, 0, 2, 4, 128, 256, 256);
    });
    EXPECT_EQ(wave[0], 255);  // (0 + 1 + 1) * 128, clamped
    EXPECT_EQ(wave[32], 219); // (0.7071 + 1 + 0) * 128
    EXPECT_EQ(wave[64], 128); // (1 + 1 - 1) * 128
}

TEST_F(ColorTablePixelRules, PhantomWithoutARangeFailsWithTheOverflowError) {
    runOn(10, 10, 10, [](E& e, const R& r) {
        e.Phantom(r.left, r.top, r.right, r.bottom, 0, 2, 4, 128, 0, 256);
    });
    EXPECT_EQ(failureNumber(), EffectError::OverflowNumber);
}

TEST_F(ColorTablePixelRules, KaniFirstTypeWavesOnTheLuminanceGrey) {
    auto kani = [](double sine) {
        return [sine](E& e, const R& r) {
            e.Kani(sine, 64, 64, 64, 64, r.left, r.top, r.right, r.bottom, 0);
        };
    };
    // Y = 0: w = 1, R1 = 0, R = (64 + 0) / 2.
    EXPECT_EQ(runOn(0, 0, 0, kani(64)), makePixel(32, 32, 32));
    // Y = 100: w = -0.7857, R1 = -79, R = (143 + 100) / 2 = 121.5 to even.
    EXPECT_EQ(runOn(100, 100, 100, kani(64)), makePixel(122, 122, 122));
    // A sine of 0 is taken as 1.
    EXPECT_EQ(runOn(90, 40, 200, kani(0)), runOn(90, 40, 200, kani(1)));
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(ColorTablePixelRules, KaniSecondTypeWavesOnEachChannel) {
    // c = 64 = s = k: sin 0 + cos 0 = 1, R1 = 255, R = (191 + 64) / 2 = 127.5 to even.
    EXPECT_EQ(runOn(64, 64, 64,
                    [](E& e, const R& r) {
                        e.Kani(64, 64, 64, 64, 64, r.left, r.top, r.right, r.bottom, 1);
                    }),
              makePixel(128, 128, 128));
}

TEST_F(ColorTablePixelRules, UniFloorsRedAndBlueButNeverGreen) {
    auto uni = [](double component, double light, double weight) {
        return [=](E& e, const R& r) {
            e.Uni(r.left, r.top, r.right, r.bottom, component, component, component, light, weight);
        };
    };
    // L = 205, T = 247 capped to 128.
    EXPECT_EQ(runOn(100, 50, 0, uni(255, 42, 255)), makePixel(193, 224, 255));
    // Each channel is round(10 / 245 * 128) = 5 away from 0.
    EXPECT_EQ(runOn(10, 10, 10, uni(0, 42, 255)), makePixel(64, 5, 64));
    // A negative T loses its sign: L = 50, T = |50 - 128| = 78.
    EXPECT_EQ(runOn(100, 0, 0, uni(255, -128, 100)), makePixel(99, 255, 255));
}

TEST_F(ColorTablePixelRules, UniOnABlackPixelWithWeightZeroWritesOneFirst) {
    auto uni = [](E& e, const R& r) {
        e.Uni(r.left, r.top, r.right, r.bottom, 255, 255, 255, 42, 0);
    };
    // L = 0: the bytes become 1 and L = 1, so R = |255 - T| with T = 42.
    EXPECT_EQ(runOn(0, 0, 0, uni), makePixel(213, 213, 213));
    // The blend sees the overwritten 1: (1 + 213) / 2.
    context.flags.calculationFlag = 1;
    EXPECT_EQ(runOn(0, 0, 0, uni), makePixel(107, 107, 107));
}

} // namespace
} // namespace lumiran

namespace lumiran {
namespace {

// Calculation type 0 takes loops without checks, branches or blend; a type
// above 10 takes the checked loop with a blend that only clamps. Both must
// give the same picture.
TEST_F(ColorTablePixelRules, FastLoopsAgreeWithTheCheckedLoops) {
    const Surface picture = testing::makePicture(64, 64, [](int x, int y) {
        if (x < 8) return makePixel(x * y, x * y, x * y); // greys and black
        return makePixel((x * 37 + y * 11) & 0xFF, (x * 5 + y * 53) & 0xFF, (x * 91 + y) & 0xFF);
    });
    const std::pair<const char*, testing::ColorTableFixture::Call> calls[] = {
        {"negative",
         [](E& e, const R& r) { e.Negative(0, 200, r.left, r.top, r.right, r.bottom); }},
        {"negative brightness",
         [](E& e, const R& r) { e.Negative(7, 200, r.left, r.top, r.right, r.bottom); }},
        {"posterize brightness",
         [](E& e, const R& r) { e.ColorTableOperation(7, r.left, r.top, r.right, r.bottom, 8); }},
        {"expansion brightness",
         [](E& e, const R& r) { e.Histgram_Expansion(102, 7, r.left, r.top, r.right, r.bottom); }},
        {"exchange",
         [](E& e, const R& r) {
             e.ShadeRangeExChange(192, 64, r.left, r.top, r.right, r.bottom, 10, 20, 300);
         }},
        {"kani 0",
         [](E& e, const R& r) {
             e.Kani(64, -30, 64, -20, 200, r.left, r.top, r.right, r.bottom, 0);
         }},
        {"kani 1",
         [](E& e, const R& r) {
             e.Kani(64, -30, 64, -20, 200, r.left, r.top, r.right, r.bottom, 1);
         }},
        {"uni",
         [](E& e, const R& r) { e.Uni(r.left, r.top, r.right, r.bottom, 255, 0, 30, 42, 255); }},
        {"uni dark",
         [](E& e, const R& r) { e.Uni(r.left, r.top, r.right, r.bottom, 200, 10, 90, -60, 49); }},
    };
    for (const auto& [name, call] : calls) {
        context.flags.calculationFlag = 0;
        const Surface fast = run(picture, call);
        context.flags.calculationFlag = 11;
        const Surface checked = run(picture, call);
        EXPECT_TRUE(fast.sameColours(checked)) << name;
        EXPECT_TRUE(context.failures.empty()) << name;
    }
}

} // namespace
} // namespace lumiran
