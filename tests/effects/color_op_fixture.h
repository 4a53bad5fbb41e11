#pragma once

#include "effects/colour/class_color_op.h"
#include "effects/effect_fixture.h"
#include "test_support.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>

namespace lumiran::testing {

using Colour = std::array<int, 3>;

inline Colour colourOf(Pixel p) {
    return {redOf(p), greenOf(p), blueOf(p)};
}

struct ColorOpFixture : EffectFixture<Class_ColorOp> {

    // The stored colour of a one-pixel picture after the call.
    Colour runOn(int r, int g, int b, const Call& call) {
        return colourOf(run(Surface(1, 1, makePixel(r, g, b)), call).at(0, 0));
    }

    [[nodiscard]] int failureNumber() const {
        return context.failures.empty() ? 0 : context.failures.front().number();
    }
};

} // namespace lumiran::testing
