#pragma once

#include "effects/colour/class_color_table.h"
#include "effects/effect_fixture.h"
#include "test_support.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>

namespace lumiran::testing {

struct ColorTableFixture : EffectFixture<Class_ColorTable> {

    // The colour of one pixel after the call, spare byte dropped.
    Pixel runOn(int r, int g, int b, const Call& call) {
        return run(Surface(1, 1, makePixel(r, g, b)), call).at(0, 0) & 0xFFFFFFu;
    }

    // The stored value of every level when each channel holds it: a 256x1
    // grey ramp, read back on the channel asked for.
    std::array<int, 256> levels(const Call& call, int channel = 0) {
        const Surface out =
            run(makePicture(256, 1, [](int x, int) { return makePixel(x, x, x); }), call);
        std::array<int, 256> result{};
        for (int x = 0; x < 256; ++x) {
            const Pixel p = out.at(x, 0);
            result[static_cast<std::size_t>(x)] = channel == 0   ? redOf(p)
                                                  : channel == 1 ? greenOf(p)
                                                                 : blueOf(p);
        }
        return result;
    }

    [[nodiscard]] int failureNumber() const {
        return context.failures.empty() ? 0 : context.failures.front().number();
    }
};

} // namespace lumiran::testing
