// Embossing and the stamped reliefs of WallEmboss and ForceFields.
#include "effects/neighbourhood/class_neighborhood_op.h"
#include "neighbourhood_fixture.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using Op = Class_NeighborhoodOp;

struct Emboss : NeighbourhoodFixture<Op> {
    Surface emboss(const Surface& picture, std::uint8_t direction, std::uint8_t colourKind,
                   std::uint8_t kind, std::int16_t d = 1, std::int16_t size = 1) {
        return runTrans(picture, [=](Op& e, const ProcessRect& r) {
            e.Embossing(direction, colourKind, kind, r.left, r.top, r.right, r.bottom, d, 128, 128,
                        128, size);
        });
    }
};

TEST_F(Emboss, EachDirectionWeighsItsTwoSamples) {
    // A bright pixel of 10 on black, d = 2: the pixel that has it as A at
    // distance 2 gets 128 + 2 * 10, the one that has it as B 128 - 2 * 10,
    // and the pixel itself, its own centre sample of weight 1, 128 + 10.
    Surface picture(9, 9, makePixel(0, 0, 0));
    picture.at(4, 4) = makePixel(10, 10, 10);
    const std::array<std::pair<std::pair<int, int>, std::pair<int, int>>, 8> samples{{
        {{1, 0}, {-1, 0}},
        {{-1, 0}, {1, 0}},
        {{0, -1}, {0, 1}},
        {{0, 1}, {0, -1}},
        {{-1, -1}, {1, 1}},
        {{-1, 1}, {1, -1}},
        {{1, -1}, {-1, 1}},
        {{1, 1}, {-1, -1}},
    }};
    for (std::uint8_t direction = 0; direction < 8; ++direction) {
        const Surface result = emboss(picture, direction, 0, 0, 2);
        const auto [a, b] = samples[direction];
        EXPECT_EQ(colourAt(result, 4 - 2 * a.first, 4 - 2 * a.second)[0], 148) << int{direction};
        EXPECT_EQ(colourAt(result, 4 - 2 * b.first, 4 - 2 * b.second)[0], 108) << int{direction};
        EXPECT_EQ(colourAt(result, 4, 4)[0], 138) << int{direction};
    }
}

TEST_F(Emboss, KindsFinishAFlatPicture) {
    // A and B cancel; the centre weighs 1, so the sums are the channel plus
    // the offsets 128, clipped: 255, 228, 255.
    const Surface flat(5, 5, makePixel(200, 100, 200));
    const std::array<Colour, 8> expected{{
        {255, 228, 255}, // as it stands
        {200, 100, 200}, // without the offsets: the centre alone
        {220, 255, 220}, // the sine of t = c: 0.861 times 255, 2.278 times 228
        {227, 177, 227}, // the mean 246 turns white, halved with the channel
        {227, 164, 227},
        {72, 0, 72}, // c - sum + 127
        {223, 173, 223},
        {255, 218, 255}, // shifted by the relief's mean 246 less 128
    }};
    for (std::uint8_t kind = 0; kind < 8; ++kind) {
        EXPECT_EQ(colourAt(emboss(flat, 0, 0, kind), 2, 2), expected[kind]) << int{kind};
    }
}

TEST_F(Emboss, ColourKindsChangeTheSamples) {
    // A step from black to (200, 100, 50), direction 0 and no offsets: the
    // pixel left of the step sees the colour as A and black as B and as its
    // centre; a lightened channel lifts the black centre and B alike.
    const Surface step =
        makePicture(3, 1, [](int x, int) { return x == 2 ? makePixel(200, 100, 50) : 0u; });
    const std::array<Colour, 7> expected{{
        {200, 100, 50},
        {200, 100, 50},
        {124, 124, 124}, // the luminance rule, 124.5 to even
        {116, 116, 116},
        {227, 100, 50}, // red lightened: 127 + 227 - 127
        {200, 177, 50},
        {200, 100, 152},
    }};
    for (std::uint8_t colourKind = 0; colourKind < 7; ++colourKind) {
        EXPECT_EQ(colourAt(emboss(step, 0, colourKind, 1), 1, 0), expected[colourKind])
            << int{colourKind};
    }
}

TEST_F(Emboss, SamplesAreClampedToTheRectangleNotThePicture) {
    // Red 10, 20, 30, 40: centre + A - B + 128.
    const Surface row = makePicture(4, 1, [](int x, int) { return makePixel(10 * (x + 1), 0, 0); });
    const Surface whole = emboss(row, 0, 0, 0);
    EXPECT_EQ(colourAt(whole, 0, 0)[0], 10 + 20 - 10 + 128);
    EXPECT_EQ(colourAt(whole, 1, 0)[0], 20 + 30 - 10 + 128);
    const Surface inner = runTrans(
        row,
        [](Op& e, const ProcessRect& r) {
            e.Embossing(0, 0, 0, r.left, r.top, r.right, r.bottom, 1, 128, 128, 128, 1);
        },
        ProcessRect{1, 0, 3, 1});
    // Column 1 is the rectangle's left edge: its B is itself.
    EXPECT_EQ(colourAt(inner, 1, 0)[0], 20 + 30 - 20 + 128);
    EXPECT_EQ(colourAt(inner, 2, 0)[0], 30 + 30 - 20 + 128);
    EXPECT_TRUE(unchangedOutside(inner, row, 1, 0, 3, 1));
}

TEST_F(Emboss, BlockMeansSmoothTheSamples) {
    // A single bright pixel spread over 3 x 3 blocks: 90 / 9, weighted 2.
    Surface picture(9, 9, makePixel(0, 0, 0));
    picture.at(4, 4) = makePixel(90, 90, 90);
    const Surface result = emboss(picture, 0, 0, 0, 2, 3);
    EXPECT_EQ(colourAt(result, 2, 4)[0], 128 + 20);
    EXPECT_EQ(colourAt(result, 6, 3)[0], 128 - 20);
}

TEST_F(Emboss, StampedReliefsRepeatAndKeepTheirFrame) {
    const Surface picture = randomPicture(40, 30, 256, 5);
    auto wall = [](Op& e, const ProcessRect& r) {
        e.WallEmboss(3, 0, r.left, r.top, r.right, r.bottom, 42, 128, 128, 128, 1);
    };
    auto fields = [](Op& e, const ProcessRect& r) {
        e.ForceFields(0, r.left, r.top, r.right, r.bottom, 22, 5);
    };
    // One weight per pixel, +d and -d: a flat picture has no relief under
    // any stamp, only the offset laid over it.
    const Surface flat(40, 30, makePixel(60, 90, 120));
    for (const auto& call : {Call(wall), Call(fields)}) {
        random = RandomGenerator{};
        const Surface first = runTrans(picture, call);
        random = RandomGenerator{};
        const Surface second = runTrans(picture, call);
        EXPECT_TRUE(first.sameColours(second));
        EXPECT_FALSE(first.sameColours(picture));
        EXPECT_TRUE(unchangedOutside(first, picture, 3, 3, 37, 27));
        const Surface relief = runTrans(flat, call);
        for (int y = 3; y < 27; ++y) {
            for (int x = 3; x < 37; ++x)
                ASSERT_EQ(colourAt(relief, x, y), (Colour{94, 109, 124})) << x << "," << y;
        }
    }
    // Without stamps every weight is 0: the offset laid over the picture.
    const Surface plain = runTrans(picture, [](Op& e, const ProcessRect& r) {
        e.WallEmboss(3, 0, r.left, r.top, r.right, r.bottom, 0, 128, 0, 255, 1);
    });
    const Colour c = colourAt(picture, 10, 10);
    EXPECT_EQ(colourAt(plain, 10, 10), (Colour{(128 + c[0]) / 2, c[1] / 2, (255 + c[2]) / 2}));
}

} // namespace
} // namespace lumiran::testing
