// The colour fields of Class_Pattern: the weight blend, the colour sways and
// their coordinate laws, the cycles and smoke. (Every type of every field is
// pinned to the per-pixel formulas' pictures beside these.)
#include "effects/texture/pattern/class_pattern.h"
#include "effects/texture/pattern/pattern_frame.h"
#include "texture_fixture.h"

#include <cmath>

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

TEST_F(PatternFields, CycleTwoGivesEachChannelItsOwnPeriods) {
    const Surface two = on([](P& e, const ProcessRect& r) {
        e.FF2(0, 0, r.left, r.top, r.right, r.bottom, 12, 9, 12, 9, 30, 7, 0);
    });
    EXPECT_EQ(colourAt(two, 5, 5)[0], colourAt(two, 5, 5)[1]);
    EXPECT_NE(colourAt(two, 5, 5)[0], colourAt(two, 5, 5)[2]);
}

TEST_F(PatternFields, SmokeWavesAlongTheAxesAndRandomPeriodsRunInOrder) {
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

// Random periods: each row takes its draws from its own place in the
// sequence and its waves from per-period tables (or per pixel where a
// slider makes the table too large), so the picture is checked against the
// formula run pixel by pixel in order, on a rectangle that leaves the
// picture on the left and right.
TEST_F(PatternFields, SmokeRandomPeriodsMatchTheFormulaInDrawOrder) {
    const struct {
        std::uint8_t type, form;
        std::int16_t horizontal, vertical;
        int width; // 200 columns of 30001 periods: waves worked out per pixel
    } cases[] = {{0, 0, 5, 9, 32},      {3, 0, 12, 42, 32},    {5, 1, 255, 1, 32},
                 {6, 1, -7, 3, 32},     {2, 0, 30000, 4, 200}, {7, 1, 9, -30000, 32},
                 {4, 1, 3, -30000, 200}};
    for (const auto& c : cases) {
        const ProcessRect rect{-3, 2, static_cast<std::int16_t>(c.width + 8), 21};
        const Surface out = run<P>(makeVariedPicture(c.width, 24), [&](P& e, const ProcessRect&) {
            e.Smoke(c.type, c.form, rect.left, rect.top, rect.right, rect.bottom, c.horizontal,
                    c.vertical, 200, 100, 50, 0, true);
        });
        RandomGenerator draws;
        const bool sines[8][2] = {{true, true}, {false, false}, {true, false}, {false, true},
                                  {true, true}, {false, false}, {true, false}, {false, true}};
        const auto wave = [](bool sine, double a) { return sine ? std::sin(a) : std::cos(a); };
        for (int y = rect.top; y < rect.bottom; ++y) {
            for (int x = 0; x < c.width; ++x) {
                const double p1 = std::nearbyint(c.horizontal * draws.next() + 1);
                const double p2 = std::nearbyint(c.vertical * draws.next() + 1);
                const bool across = c.type < 4;
                const double a = wave(sines[c.type][0], (across ? x : y) / p1);
                const double b = wave(sines[c.type][1], (across ? y : x) / p2);
                const double t = c.form == 0 ? (a * b + 1) / 2 : a * b > 0.5 ? 1.0 : 0.0;
                ASSERT_EQ(colourAt(out, x, y), (Colour{static_cast<int>(std::nearbyint(t * 200)),
                                                       static_cast<int>(std::nearbyint(t * 100)),
                                                       static_cast<int>(std::nearbyint(t * 50))}))
                    << int(c.type) << " " << c.horizontal << " " << c.vertical << " at " << x << ","
                    << y;
            }
        }
        EXPECT_EQ(random.state(), draws.state());
        random = RandomGenerator();
    }
}

} // namespace
} // namespace lumiran::testing
