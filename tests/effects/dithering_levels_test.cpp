// The level tables of the dithers and their grey.
#include "effects/halftone/dithering/diffusion_row.h"
#include "effects/halftone/dithering/level_tables.h"

#include <cmath>
#include <gtest/gtest.h>
#include <tuple>
#include <vector>

namespace lumiran {
namespace {

struct Band {
    int first;
    int last;
    int value;
};

TEST(LevelTable, BandsOfTheRuleStartAtAStep) {
    // From level 5 up the bands start at 256 / level: no black at all.
    const std::vector<std::pair<int, std::vector<Band>>> levels{
        {4, {{0, 42, 0}, {43, 127, 85}, {128, 212, 170}, {213, 255, 255}}},
        {5, {{0, 25, 51}, {26, 103, 102}, {104, 155, 153}, {156, 207, 204}, {208, 255, 255}}},
        {6,
         {{0, 21, 43},
          {22, 87, 86},
          {88, 131, 129},
          {132, 175, 172},
          {176, 219, 215},
          {220, 255, 255}}},
        {7,
         {{0, 17, 37},
          {18, 75, 74},
          {76, 113, 111},
          {114, 151, 148},
          {152, 189, 185},
          {190, 227, 222},
          {228, 255, 255}}},
        {8,
         {{0, 15, 32},
          {16, 65, 64},
          {66, 98, 96},
          {99, 131, 128},
          {132, 164, 160},
          {165, 197, 192},
          {198, 230, 224},
          {231, 255, 255}}}};
    for (const auto& [level, bands] : levels) {
        const LevelTable t = levelTable(static_cast<std::int16_t>(level));
        for (const Band& b : bands) {
            for (int i = b.first; i <= b.last; ++i)
                ASSERT_EQ(t[static_cast<std::size_t>(i)], b.value)
                    << "level " << level << " index " << i;
        }
    }
}

TEST(LevelTable, LevelZeroIsTheOverflowError) {
    EXPECT_THROW((void)levelTable(0), EffectError);
}

TEST(DrawingColorLevelTable, RowsWithTheirQuirks) {
    using Entry = std::tuple<int, int, int, int>; // level, paint type, index, value (c = 200)
    const Entry entries[] = {
        {2, 0, 127, 200},
        {2, 0, 128, 255},
        // Paint type 1 at level 2 keeps 128 itself black.
        {2, 1, 128, 0},
        {2, 1, 129, 200},
        // Level 3 from the colour: c, c + (255 - c) / 2, c + 2 ((255 - c) / 2).
        {3, 0, 63, 200},
        {3, 0, 64, 227},
        {3, 0, 192, 254},
        // Level 4, paint type 1: the third band c / 6 is darker than the second c / 3.
        {4, 1, 42, 0},
        {4, 1, 43, 66},
        {4, 1, 128, 33},
        {4, 1, 213, 200},
        // Level 5, paint type 1: s = 51, step 200 / 4; the first band has s
        // entries, the others s + 1.
        {5, 1, 50, 0},
        {5, 1, 51, 50},
        {5, 1, 102, 50},
        {5, 1, 103, 100},
        // Level 5 from the colour: step (255 - 200) / 4 = 13.
        {5, 0, 0, 200},
        {5, 0, 51, 213}};
    for (const auto& [level, type, index, value] : entries) {
        const LevelTable t = drawingColorLevelTable(static_cast<std::int16_t>(level),
                                                    static_cast<std::int16_t>(type), 200);
        EXPECT_EQ(t[static_cast<std::size_t>(index)], value)
            << "level " << level << " type " << type << " index " << index;
    }
    // Level 1 divides the step by zero.
    EXPECT_THROW((void)drawingColorLevelTable(1, 0, 200), EffectError);
}

TEST(DitherGrey, AgreesWithTheDoubleSumForEveryColour) {
    int differences = 0;
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; ++b) {
                const int expected =
                    static_cast<int>(std::nearbyint(0.3 * r + 0.59 * g + 0.11 * b));
                differences += ditherGrey(r, g, b) != expected;
                differences += ditherGreyFloating(r, g, b) != expected;
                differences += ditherGreyBranchless(r, g, b) != expected;
            }
        }
    }
    EXPECT_EQ(differences, 0);
}

TEST(DitherGrey, OneMultiplyDividesEveryHundredfoldSumAndFindsItsTies) {
    int differences = 0;
    for (int h = 0; h <= 100 * 255; ++h) {
        const std::uint32_t product = diffusion::hundredths(h);
        differences += diffusion::greyOf(product) != (h + 50) / 100;
        differences += diffusion::endsIn50(product) != (h % 100 == 50);
    }
    EXPECT_EQ(differences, 0);
}

#if defined(__SSE4_1__)
TEST(DitherGrey, HeldBytesGiveTheGreyOfEveryColour) {
    // The bytes held less 128 in a vector lane; the spare byte must not count.
    int differences = 0;
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; ++b) {
                const __m128i held =
                    _mm_cvtsi32_si128(static_cast<int>(0xA5808080u ^ makePixel(r, g, b)));
                const int h = 30 * r + 59 * g + 11 * b;
                const std::uint32_t product = diffusion::heldHundredths(held);
                differences += diffusion::greyOf(product) != (h + 50) / 100;
                differences += diffusion::endsIn50(product) != (h % 100 == 50);
                differences += diffusion::heldTiedGrey(held) != ditherGrey(r, g, b);
            }
        }
    }
    EXPECT_EQ(differences, 0);
}
#endif

} // namespace
} // namespace lumiran
