// Class_FalseColor: the tint levels, the bands of the pseudo colours, the
// rules left open (type 3 purples, band orders, stamps) and the noise's
// draws from the one generator.
#include "effect_fixture.h"
#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/noise_stamps.h"
#include "effects/colour/false_color/noise_walk.h"
#include "effects/colour/false_color/pseudo_colour_bands.h"
#include "engine/drawing/drawing.h"
#include "test_support.h"

#include <array>
#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

namespace lumiran::testing {
namespace {

using C = Class_FalseColor;
// A call on the one-pixel picture, whose rectangle is 0, 0, 1, 1.
using Op = std::function<void(C&)>;

struct FalseColorTest : EffectFixture<C> {
    Colour runOn(Colour in, const Op& op) {
        const Surface out = run(Surface(1, 1, withColour(0, in[0], in[1], in[2])),
                                [&](C& e, const ProcessRect&) { op(e); });
        return colourAt(out, 0, 0);
    }
};

struct PixelCase {
    const char* what;
    Colour in;
    Op op;
    Colour expected;
};

TEST_F(FalseColorTest, PixelRules) {
    const PixelCase cases[] = {
        // White: s = 0, levels 55, 155, 255 stretched to 10, 183, 356.
        {"night-fall on white",
         {255, 255, 255},
         [](C& e) { e.BlueSepia(0, 0, 0, 0, 0, 1, 1); },
         {10, 183, 255}},
        {"sunset on white",
         {255, 255, 255},
         [](C& e) { e.YellowOperation(0, 0, 0, 0, 0, 1, 1); },
         {255, 183, 10}},
        // Black through "光度": the source becomes 1, 1, 1 and takes the
        // tint's lightness round((62 - 54) / 2).
        {"night-fall by lightness on black",
         {0, 0, 0},
         [](C& e) { e.BlueSepia(0, 0, 1, 0, 0, 1, 1); },
         {4, 4, 4}},
        {"sunset keeping red only",
         {0, 90, 200},
         [](C& e) { e.YellowOperation(0, 0, 2, 0, 0, 1, 1); },
         {229, 90, 200}},
        // Type 3 at Y' = 200 of the complements: levels 42, 115, 191.
        {"reddish purple is blue above red",
         {55, 55, 55},
         [](C& e) { e.YellowOperation(3, 0, 0, 0, 0, 1, 1); },
         {115, 42, 191}},
        {"purplish red is red above blue",
         {55, 55, 55},
         [](C& e) { e.BlueSepia(3, 0, 0, 0, 0, 1, 1); },
         {191, 42, 115}},
        // The band edge 29 | 30 jumps by the band's offset.
        {"pseudo below 30", {29, 29, 29}, [](C& e) { e.FalseColor(0, 0, 1, 1, 0); }, {29, 29, 29}},
        {"pseudo at 30", {30, 30, 30}, [](C& e) { e.FalseColor(0, 0, 1, 1, 0); }, {98, 30, 30}},
        {"pseudo type 1 hands red's offset to blue",
         {40, 40, 40},
         [](C& e) { e.FalseColor(0, 0, 1, 1, 1); },
         {40, 40, 108}},
        {"pseudo type 6 runs the bands backwards",
         {40, 40, 40},
         [](C& e) { e.FalseColor(0, 0, 1, 1, 6); },
         {55, 40, 40}},
        {"fluorescent on white",
         {255, 255, 255},
         [](C& e) { e.FluorescenceRevision(0, 42, 0, 0, 1, 1); },
         {255, 255, 112}},
        // Y' = 127: red 138.5, green 105.5, blue 72.5, ties to even.
        {"retrospection",
         {128, 128, 128},
         [](C& e) { e.Retrospection(0, 10.5, 0, 0, 0, 1, 1); },
         {138, 106, 72}},
        {"retrospection on red only",
         {128, 128, 128},
         [](C& e) { e.Retrospection(0, 10.5, 1, 0, 0, 1, 1); },
         {138, 128, 128}},
        {"colour adjust normal",
         {0, 0, 0},
         [](C& e) { e.Color_Adjusten(0, 0, 255, 0, 0, 0, 0, 1, 1); },
         {255, 0, 0}},
        {"colour adjust absolute times 2",
         {50, 50, 50},
         [](C& e) { e.Color_Adjusten(0, 2, 100, 0, 0, 0, 0, 1, 1); },
         {100, 100, 100}},
    };
    for (const PixelCase& c : cases) {
        EXPECT_EQ(runOn(c.in, c.op), c.expected) << c.what;
        EXPECT_TRUE(context.failures.empty()) << c.what;
    }
}

// The stretch of type 0 works on 16-bit integers: above 255 a level's
// product by 128 wraps, and up to 305 the difference with 6323 wraps back
// as well, so bright pixels stay saturated before they drop to 0.
TEST_F(FalseColorTest, TypeZeroStretchWrapsIn16Bits) {
    const struct {
        int adjust;
        Colour expected;
    } cases[] = {{-1, {10, 183, 255}}, {-50, {10, 183, 255}}, {-51, {10, 183, 0}}};
    for (const auto& c : cases) {
        const auto adjust = static_cast<std::int16_t>(c.adjust);
        EXPECT_EQ(runOn({255, 255, 255}, [adjust](C& e) { e.BlueSepia(0, adjust, 0, 0, 0, 1, 1); }),
                  c.expected)
            << c.adjust;
        const Colour sunset{c.expected[2], c.expected[1], c.expected[0]};
        EXPECT_EQ(
            runOn({255, 255, 255}, [adjust](C& e) { e.YellowOperation(0, adjust, 0, 0, 0, 1, 1); }),
            sunset)
            << c.adjust;
    }
    EXPECT_TRUE(context.failures.empty());
}

// The walk's places are rounded to the pixel: on a rectangle one pixel
// wide a draw above one half puts the disc one column right of it.
TEST(NoiseWalk, PlacesAreRoundedToThePixel) {
    RandomGenerator random;
    while (RandomGenerator(random).next() <= 0.5)
        (void)random.next();
    RandomGenerator draws = random;
    (void)draws.next();
    const int y = roundTo<std::int32_t>(draws.next());
    const int grey = draws.next() < 0.5 ? 127 : 129;
    const NoiseField field = noiseWalkField(12, 12, {0, 0, 1, 1}, random, [] { return true; });
    Surface expected(12, 12, colourBitsOf(RGB(128, 128, 128)));
    Canvas canvas(expected);
    canvas.FillStyle = BrushStyle::Solid;
    canvas.FillColor = RGB(grey, grey, grey);
    canvas.Circle(1, y, 4, canvas.FillColor);
    for (int row = 0; row < 12; ++row) {
        for (int column = 0; column < 12; ++column)
            EXPECT_EQ(field.at(column, row), blueOf(expected.at(column, row)))
                << column << "," << row;
    }
}

// The field's discs are the canvas's filled circles, clipped at every side
// of the picture.
TEST(NoiseWalk, DiscsAreTheCanvasCircles) {
    const int width = 11, height = 9;
    for (const auto& [x, y] : {std::pair{5, 4}, {0, 0}, {-3, 2}, {10, 8}, {13, -4}, {6, 12}}) {
        NoiseField field(width, height, 128);
        field.disc(x, y, 40);
        Surface expected(width, height, colourBitsOf(RGB(128, 128, 128)));
        Canvas canvas(expected);
        canvas.FillStyle = BrushStyle::Solid;
        canvas.FillColor = RGB(40, 40, 40);
        canvas.Circle(x, y, NoiseField::DiscRadius, canvas.FillColor);
        for (int row = 0; row < height; ++row) {
            for (int column = 0; column < width; ++column)
                EXPECT_EQ(field.at(column, row), blueOf(expected.at(column, row)))
                    << "disc at " << x << "," << y << ": " << column << "," << row;
        }
    }
}

// The discs painted by row bands on several threads give the field the
// walk gives on one, and each pixel of the rectangle then takes the one its
// grey points to; the rest of the picture keeps the source.
TEST_F(FalseColorTest, NoiseCoordinateMovesEachPixelByTheWalksFieldInsideTheRectangle) {
    const int width = 40, height = 30;
    const ProcessRect r{5, 4, 33, 27};
    const int wavelength = 8, amplitude = 6;
    const Surface picture = makeVariedPicture(width, height);
    context.threading.threads = 3;
    context.threading.bandPixels = 1;
    RandomGenerator walk = random;
    const NoiseField field = noiseWalkField(width, height, r, walk, [] { return true; });
    const Surface out = runTrans(
        picture,
        [&](C& e, const ProcessRect& rect) {
            e.NoiserizeWater(wavelength, amplitude, 0, rect.left, rect.top, rect.right,
                             rect.bottom);
        },
        r);
    ASSERT_TRUE(context.failures.empty());
    EXPECT_EQ(random.state(), walk.state());
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const bool inside = x >= r.left && x < r.right && y >= r.top && y < r.bottom;
            int sx = x, sy = y;
            if (inside) {
                // Function 0 moves both ways by the sine of the grey's angle.
                const double angle = field.at(x, y) * 2 * std::numbers::pi / wavelength;
                const int shift = roundInRange<int>(amplitude * std::sin(angle));
                if (x + shift >= r.left && x + shift < r.right && y + shift >= r.top &&
                    y + shift < r.bottom) {
                    sx = x + shift;
                    sy = y + shift;
                }
            }
            ASSERT_EQ(colourAt(out, x, y), colourAt(picture, sx, sy)) << x << "," << y;
        }
    }
}

TEST(PseudoColourBands, EveryTypeKeepsTheDarkestAndBrightestBandsGrey) {
    for (std::uint8_t type = 0; type < 8; ++type) {
        for (int grey : {0, 29, 240, 255}) {
            EXPECT_EQ(pseudoColourOffsets(type, grey), (BandOffsets{0, 0, 0}))
                << int(type) << " " << grey;
        }
        EXPECT_NE(pseudoColourOffsets(type, 100), (BandOffsets{0, 0, 0})) << int(type);
    }
}

TEST(NoiseStamps, MarksHaveTheirShapes) {
    auto marked = [](const Surface& s, int x, int y) { return (s.at(x, y) & 0xFFFFFF) == 0; };
    EXPECT_EQ(noiseStamp(0).width(), 1);
    const Surface circle = noiseStamp(1), plus = noiseStamp(4), cross = noiseStamp(3);
    EXPECT_TRUE(marked(circle, 0, 4) && marked(circle, 7, 4) && !marked(circle, 4, 4));
    EXPECT_TRUE(marked(plus, 3, 0) && marked(plus, 0, 3) && !marked(plus, 0, 0));
    EXPECT_TRUE(marked(cross, 0, 0) && marked(cross, 7, 7) && !marked(cross, 3, 0));
}

TEST_F(FalseColorTest, NoiseStaysInTheRectangleAndDrawsOnFromTheGenerator) {
    const Surface grey(40, 30, withColour(0, 128, 128, 128));
    auto noise = [](C& e, const ProcessRect&) { e.RandamNoise_Mono(255, 1, 1, 10, 5, 30, 25); };
    const Surface first = run(grey, noise);
    const Surface second = run(grey, noise);
    int changed = 0;
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const bool inside = x >= 10 && x < 30 && y >= 5 && y < 25;
            if (first.at(x, y) != grey.at(x, y)) {
                EXPECT_TRUE(inside) << x << "," << y;
                EXPECT_EQ(redOf(first.at(x, y)), 255);
                ++changed;
            }
        }
    }
    EXPECT_GT(changed, 40);
    // The generator runs on: a second run in the same program differs.
    EXPECT_FALSE(std::equal(first.pixels().begin(), first.pixels().end(), second.pixels().begin()));
}

struct CaptionLog : ProgressSink {
    std::vector<int> captions;
    int percents = 0;
    void showPercent(int) override { ++percents; }
    void showCaption(int id) override { captions.push_back(id); }
};

// Noise Corrdinate names both passes and takes every pixel from within the
// amplitude, never from outside the rectangle.
TEST_F(FalseColorTest, NoiseCoordinateMovesPixelsWithinTheAmplitude) {
    Surface source(40, 30);
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x)
            source.at(x, y) = withColour(0, x, y, 0);
    }
    CaptionLog log;
    context.progress = &log;
    C effect(context);
    effect.ImageGetDiBits(source);
    effect.ImageGetDiBitsTrans(source);
    effect.NoiserizeWater(8, 3, 3, 5, 5, 35, 25);
    Surface out;
    effect.ImageSetDiBitsTrans(out);
    EXPECT_EQ(log.captions, (std::vector<int>{3435, 3437}));
    EXPECT_GT(log.percents, 20);
    int moved = 0;
    for (int y = 0; y < 30; ++y) {
        for (int x = 0; x < 40; ++x) {
            const Pixel p = out.at(x, y);
            const bool inside = x >= 5 && x < 35 && y >= 5 && y < 25;
            if (!inside) {
                EXPECT_EQ(p, source.at(x, y));
                continue;
            }
            EXPECT_LE(std::abs(redOf(p) - x), 3);
            EXPECT_LE(std::abs(greenOf(p) - y), 3);
            EXPECT_TRUE(redOf(p) >= 5 && redOf(p) < 35 && greenOf(p) >= 5 && greenOf(p) < 25);
            moved += redOf(p) != x || greenOf(p) != y;
        }
    }
    EXPECT_GT(moved, 300);
}

} // namespace
} // namespace lumiran::testing
