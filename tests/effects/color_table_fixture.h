#pragma once

#include "color_op_fixture.h" // op(), rect and the shared helpers
#include "effects/colour/class_color_table.h"

#include <array>
#include <gtest/gtest.h>
#include <initializer_list>
#include <utility>

namespace lumiran::testing {

using LevelValues = std::array<int, 256>;

// Expects the table to hold each listed level's value.
inline void expectLevels(const LevelValues& table,
                         std::initializer_list<std::pair<int, int>> expected) {
    for (const auto& [level, value] : expected)
        EXPECT_EQ(table[static_cast<std::size_t>(level)], value) << "level " << level;
}

struct ColorTableFixture : EffectFixture<Class_ColorTable> {

    // The colour of one pixel after the call, spare byte dropped.
    Pixel runOn(int r, int g, int b, const Call& call) {
        return run(Surface(1, 1, makePixel(r, g, b)), call).at(0, 0) & 0xFFFFFFu;
    }

    // The stored value of every level: a 256x1 grey ramp, read back on red.
    LevelValues levels(const Call& call) {
        const Surface out =
            run(makePicture(256, 1, [](int x, int) { return makePixel(x, x, x); }), call);
        LevelValues result{};
        for (int x = 0; x < 256; ++x)
            result[static_cast<std::size_t>(x)] = redOf(out.at(x, 0));
        return result;
    }

    [[nodiscard]] int failureNumber() const {
        return context.failures.empty() ? 0 : context.failures.front().number();
    }
};

} // namespace lumiran::testing
