// Class_Gradation: the period of the colour step, the walks covering their
// rectangle and nothing else, and the five blends.
#include "effects/colour/gradation/class_gradation.h"
#include "effects/colour/gradation/gradation_tone.h"
#include "texture_fixture.h"

#include <set>

namespace lumiran::testing {
namespace {

struct PeriodCase {
    int tone;
    long long walk;
    Colour start;
    long long period;
};

TEST(GradationTone, PeriodFollowsTheColoursTheWalkCrosses) {
    for (const PeriodCase& c : {
             // Below 256 rows brightening changes colour at every row.
             PeriodCase{0, 200, {0, 0, 0}, 0},
             PeriodCase{0, 383, {0, 0, 0}, 0}, // 1.496 rounds to 1, lowered to 0
             PeriodCase{0, 600, {0, 0, 0}, 1}, PeriodCase{0, 600, {128, 200, 250}, 4}, // 600 / 128
             PeriodCase{1, 600, {10, 20, 99}, 5},                                      // 600 / 100
             PeriodCase{2, 1024, {0, 0, 0}, 3}, PeriodCase{6, 720, {255, 0, 0}, 1},    // 720 / 360
         }) {
        const gradation::ToneStep step(static_cast<std::uint8_t>(c.tone), -1, c.start[0],
                                       c.start[1], c.start[2], c.walk);
        EXPECT_EQ(step.period(), c.period) << "tone " << c.tone << " walk " << c.walk;
    }
}

TEST(GradationTone, StepsEveryPeriodPlusOnePositionsAndStopsAtTheEnds) {
    gradation::ToneStep up(0, -3, 250, 0, 0, 600); // period 1: every second position
    std::vector<int> reds;
    for (int p = 0; p < 6; ++p) {
        reds.push_back(up.colour().red);
        up.step(p);
    }
    EXPECT_EQ(reds, (std::vector<int>{250, 250, 253, 253, 255, 255}));

    gradation::ToneStep bounce(2, 100, 200, 0, 0, 10); // period 0
    std::vector<int> seen;
    for (int p = 0; p < 5; ++p) {
        bounce.step(p);
        seen.push_back(bounce.colour().red);
    }
    // Up to the end, back down, and up again from below 1.
    EXPECT_EQ(seen, (std::vector<int>{255, 155, 55, 0, 100}));
}

struct GradationDraw : TextureFixture {
    // Kept picture 0 after the drawing; the back colour (1, 2, 3) is one no
    // grey walk from black reaches.
    Surface draw(Surface kept, std::uint8_t shape, std::uint8_t tone, int spiral,
                 std::optional<ProcessRect> rect = std::nullopt) {
        context.flags.backColor = {1, 2, 3};
        context.kept0 = &kept;
        Class_Gradation effect(context);
        const ProcessRect r = rect.value_or(ProcessRect::wholePicture(kept.width(), kept.height()));
        effect.Gradation_Draw(shape, -1, 0, r.left, r.top, r.right, r.bottom, 0, 0, 0, tone, 0,
                              static_cast<std::int16_t>(spiral));
        EXPECT_TRUE(context.failures.empty());
        return kept;
    }
};

TEST_F(GradationDraw, EveryShapeCoversItsRectangleAndNothingOutside) {
    const Surface picture = makeVariedPicture(47, 31);
    const ProcessRect rect{5, 4, 40, 27};
    for (int shape = 0; shape <= 13; ++shape) {
        for (const int spiral : {1, 9}) {
            const Surface drawn = draw(picture, static_cast<std::uint8_t>(shape), 0, spiral, rect);
            int cleared = 0;
            int changedOutside = 0;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = 0; x < picture.width(); ++x) {
                    const bool inside =
                        x >= rect.left && x < rect.right && y >= rect.top && y < rect.bottom;
                    if (inside && colourAt(drawn, x, y) == Colour{1, 2, 3}) ++cleared;
                    if (!inside && drawn.at(x, y) != picture.at(x, y)) ++changedOutside;
                }
            }
            EXPECT_EQ(cleared, 0) << "shape " << shape << " spiral " << spiral;
            EXPECT_EQ(changedOutside, 0) << "shape " << shape;
        }
    }
}

TEST_F(GradationDraw, HorizontalRowsStepTogetherOncePerPeriod) {
    // 600 rows from black: period 1, so each grey covers two rows.
    const Surface drawn = draw(Surface(3, 600), 0, 0, 1);
    for (int y = 0; y < 600; y += 97) {
        EXPECT_EQ(colourAt(drawn, 0, y), colourAt(drawn, 2, y)) << y;
        const int expected = std::min(255, y / 2);
        EXPECT_NEAR(colourAt(drawn, 1, y)[0], expected, 1) << y;
    }
    EXPECT_EQ(colourAt(drawn, 1, 599), (Colour{255, 255, 255}));
}

TEST_F(GradationDraw, ARainbowRunsThroughSeveralHues) {
    context.flags.backColor = {0, 0, 0};
    Surface kept(360, 4);
    context.kept0 = &kept;
    Class_Gradation effect(context);
    effect.Gradation_Draw(1, -30, 0, 0, 0, 360, 4, 255, 0, 0, 6, 0, 1);
    std::set<Colour> hues;
    for (int x = 0; x < 360; ++x)
        hues.insert(colourAt(kept, x, 2));
    // Steps of 30 degrees come round after twelve columns.
    EXPECT_EQ(hues.size(), 12u);
    EXPECT_EQ(colourAt(kept, 0, 2), (Colour{255, 0, 0}));
}

struct BlendCase {
    int mode;
    int drawing; // k
    int source;  // c
    int result;
};

TEST_F(GradationDraw, BlendsMeetTheDrawingPixelByPixel) {
    for (const BlendCase& c :
         {BlendCase{0, 100, 51, 76}, BlendCase{0, 100, 53, 76}, BlendCase{1, 200, 100, 255},
          BlendCase{2, 30, 100, 70}, BlendCase{2, 100, 30, 70}, BlendCase{3, 77, 77, 255},
          BlendCase{3, 200, 10, 65}, BlendCase{4, 0x0F, 0xFF, 0xF0}}) {
        Surface kept = uniformPicture(4, 3, c.drawing, c.drawing, c.drawing);
        context.kept0 = &kept;
        const Surface blended =
            run<Class_Gradation>(uniformPicture(4, 3, c.source, c.source, c.source),
                                 [&](Class_Gradation& e, const ProcessRect& r) {
                                     e.Gradation_Blend(static_cast<std::uint8_t>(c.mode), r.left,
                                                       r.top, r.right, r.bottom);
                                 });
        EXPECT_EQ(colourAt(blended, 3, 2), (Colour{c.result, c.result, c.result}))
            << "mode " << c.mode << " k " << c.drawing << " c " << c.source;
    }
}

} // namespace
} // namespace lumiran::testing
