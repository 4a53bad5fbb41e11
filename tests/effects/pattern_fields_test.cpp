// The colour fields of Class_Pattern: the weight blend, the colour sways and
// their coordinate laws, the cycles and smoke.
#include "effects/texture/pattern/class_pattern.h"
#include "effects/texture/pattern/pattern_frame.h"
#include "texture_fixture.h"

#include <cmath>
#include <set>

namespace lumiran::testing {
namespace {

using P = Class_Pattern;

TEST(WeightBlend, TenShowsTheSourceZeroThePatternAndHalvesRoundToEven) {
    const struct {
        int pattern, source, weight, expected;
    } cases[] = {{200, 100, 10, 100}, {200, 100, 0, 200}, {200, 100, 5, 150}, {1, 0, 5, 0},
                 {3, 0, 5, 2},        {255, 10, 3, 182},  {0, 255, 7, 178},   {300, 0, 0, 300}};
    for (const auto& c : cases)
        EXPECT_EQ(pattern::weightBlend(c.pattern, c.source, c.weight), c.expected)
            << c.pattern << " " << c.source << " " << c.weight;
}

struct PatternFields : TextureFixture {
    const Surface picture = makeVariedPicture(32, 24);

    template <typename Call>
    Surface on(Call call) {
        return run<P>(picture, call);
    }
};

// Color_Sway1 at one pixel, written out from the rule: type 0 bends u by a
// sine of y and v by a sine of x; the sine's divisor is the amplitude and
// the cosine's the wave.
int swayOne(int x, int y, double a, double w) {
    const double k = 6.2831;
    const double pi = 3.14159;
    const double u = a * std::sin(y * k / w) + x;
    const double v = a * std::sin(x * k / w) + y;
    return static_cast<int>(
        std::nearbyint((std::sin(u * pi / a) + 1) / 2 * ((std::cos(v * pi / w) + 1) / 2) * 255));
}

TEST_F(PatternFields, ColorSwayOneIsTheWrittenFieldPerChannel) {
    const Surface out = on([](P& e, const ProcessRect& r) {
        e.Color_Sway1(0, 0, r.left, r.top, r.right, r.bottom, 138, 170, 128, 60, 118, 20);
    });
    for (const auto& [x, y] : {std::pair{3, 5}, {17, 11}, {31, 23}})
        EXPECT_EQ(colourAt(out, x, y), (Colour{swayOne(x, y, 138, 170), swayOne(x, y, 128, 60),
                                               swayOne(x, y, 118, 20)}));
}

TEST_F(PatternFields, WeightTenKeepsTheSourceAndATangentPoleIsNoError) {
    const Surface kept = on([](P& e, const ProcessRect& r) {
        e.Color_Sway2(10, 3, r.left, r.top, r.right, r.bottom, 20, 30, 40, 50, 60, 70);
    });
    EXPECT_EQ(kept, picture);
    // y K / W = 1.5707..: the tangent is near its pole and u very large.
    on([](P& e, const ProcessRect& r) {
        e.Color_Sway1(0, 2, r.left, r.top, r.right, r.bottom, 1, 4, 1, 4, 1, 4);
    });
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(PatternFields, EveryTypeOfEverySwayIsItsOwnPattern) {
    using Sway = void (P::*)(std::int16_t, std::uint8_t, std::int16_t, std::int16_t, std::int16_t,
                             std::int16_t, std::int16_t, std::int16_t, std::int16_t, std::int16_t,
                             std::int16_t, std::int16_t);
    const std::pair<Sway, int> sways[] = {
        {&P::Color_Sway1, 6}, {&P::Color_Sway2, 11}, {&P::Color_Sway3, 11}, {&P::Color_Sway4, 11}};
    std::set<std::vector<Pixel>> seen;
    for (int which = 0; which < 4; ++which) {
        const auto [sway, types] = sways[which];
        for (int type = 0; type < types; ++type) {
            const Surface out = on([&](P& e, const ProcessRect& r) {
                (e.*sway)(0, static_cast<std::uint8_t>(type), r.left, r.top, r.right, r.bottom, 138,
                          170, 128, 60, 118, 20);
            });
            const std::vector<Pixel> pixels(out.pixels().begin(), out.pixels().end());
            const bool fresh = seen.insert(pixels).second;
            // Color_Sway4's types 3 and 4 are Color_Sway1's.
            const bool shared = which == 3 && (type == 3 || type == 4);
            EXPECT_EQ(fresh, !shared) << "sway " << which + 1 << " type " << type;
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(PatternFields, CycleThreeIsColorSwayOneRunDegreeTimesAsFast) {
    const auto sway = on([](P& e, const ProcessRect& r) {
        e.Color_Sway1(5, 1, r.left, r.top, r.right, r.bottom, 138, 170, 128, 60, 118, 20);
    });
    const auto once = on([](P& e, const ProcessRect& r) {
        e.FF3(5, 1, r.left, r.top, r.right, r.bottom, 138, 170, 128, 60, 118, 20, 1);
    });
    const auto twice = on([](P& e, const ProcessRect& r) {
        e.FF3(5, 1, r.left, r.top, r.right, r.bottom, 138, 170, 128, 60, 118, 20, 2);
    });
    EXPECT_EQ(once, sway);
    EXPECT_NE(twice, sway);
}

TEST_F(PatternFields, CyclesOneAndTwoDifferByEveryTypeAndCombination) {
    std::set<std::vector<Pixel>> seen;
    int runs = 0;
    for (std::uint8_t type = 0; type < 6; ++type) {
        for (std::uint8_t combination = 0; combination < 5; ++combination) {
            const Surface one = on([&](P& e, const ProcessRect& r) {
                e.FF1(type, combination, r.left, r.top, r.right, r.bottom, 12, 9, 200, 128, 60, 0);
            });
            seen.insert({one.pixels().begin(), one.pixels().end()});
            ++runs;
        }
    }
    EXPECT_EQ(seen.size(), static_cast<std::size_t>(runs));
    // FF2 gives each channel its own periods.
    const Surface two = on([](P& e, const ProcessRect& r) {
        e.FF2(0, 0, r.left, r.top, r.right, r.bottom, 12, 9, 12, 9, 30, 7, 0);
    });
    EXPECT_EQ(colourAt(two, 5, 5)[0], colourAt(two, 5, 5)[1]);
    EXPECT_NE(colourAt(two, 5, 5)[0], colourAt(two, 5, 5)[2]);
}

TEST_F(PatternFields, SmokeTypesPairTheWavesWithTheAxesAndRandomPeriodsRunInOrder) {
    std::set<std::vector<Pixel>> seen;
    for (std::uint8_t type = 0; type < 8; ++type) {
        const Surface out = on([&](P& e, const ProcessRect& r) {
            e.Smoke(type, 0, r.left, r.top, r.right, r.bottom, 5, 9, 118, 128, 138, 0, false);
        });
        seen.insert({out.pixels().begin(), out.pixels().end()});
    }
    EXPECT_EQ(seen.size(), 8u);
    // Type 0 at (x, y): sin(x / 5) sin(y / 9), form 0 the gradation.
    const Surface out = on([](P& e, const ProcessRect& r) {
        e.Smoke(0, 0, r.left, r.top, r.right, r.bottom, 5, 9, 200, 100, 50, 0, false);
    });
    const double t = (std::sin(7 / 5.0) * std::sin(4 / 9.0) + 1) / 2;
    EXPECT_EQ(colourAt(out, 7, 4), (Colour{static_cast<int>(std::nearbyint(t * 200)),
                                           static_cast<int>(std::nearbyint(t * 100)),
                                           static_cast<int>(std::nearbyint(t * 50))}));
    // The dots of form 1 are the colour or black.
    const Surface dots = on([](P& e, const ProcessRect& r) {
        e.Smoke(0, 1, r.left, r.top, r.right, r.bottom, 5, 9, 200, 100, 50, 0, false);
    });
    for (const Pixel p : dots.pixels())
        EXPECT_TRUE((p & 0xFFFFFF) == 0 || (p & 0xFFFFFF) == makePixel(200, 100, 50));
    // Two periods drawn for every pixel.
    on([](P& e, const ProcessRect& r) {
        e.Smoke(0, 0, r.left, r.top, r.right, r.bottom, 5, 9, 200, 100, 50, 0, true);
    });
    RandomGenerator expected;
    for (int draw = 0; draw < 2 * 32 * 24; ++draw)
        (void)expected.next();
    EXPECT_EQ(random.state(), expected.state());
}

} // namespace
} // namespace lumiran::testing
