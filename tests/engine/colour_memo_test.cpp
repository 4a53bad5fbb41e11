#include "engine/colour_memo.h"
#include "engine/effect_error.h"

#include <gtest/gtest.h>

namespace lumiran {
namespace {

TEST(ColourMemo, WorksOutEachColourOnceAndRepeatsErrors) {
    int calls = 0;
    ColourMemo memo([&calls](int r, int g, int b) {
        ++calls;
        if (r == 255) throw EffectError::overflow();
        return Rgb16{static_cast<std::int16_t>(b), static_cast<std::int16_t>(g),
                     static_cast<std::int16_t>(r)};
    });
    EXPECT_EQ(memo(1, 2, 3), (Rgb16{3, 2, 1}));
    EXPECT_EQ(memo(1, 2, 3), (Rgb16{3, 2, 1}));
    EXPECT_EQ(calls, 1);
    // Colours that share a slot replace each other and stay right.
    for (int g = 0; g < 256; ++g)
        EXPECT_EQ(memo(7, g, 9), (Rgb16{9, static_cast<std::int16_t>(g), 7}));
    EXPECT_EQ(memo(1, 2, 3), (Rgb16{3, 2, 1}));
    // A colour whose rule fails is not remembered: it fails again.
    EXPECT_THROW(memo(255, 0, 0), EffectError);
    EXPECT_THROW(memo(255, 0, 0), EffectError);
    // Black (key 0) is a colour like any other, not an empty slot.
    EXPECT_EQ(memo(0, 0, 0), (Rgb16{0, 0, 0}));
}

} // namespace
} // namespace lumiran
