#pragma once

#include "effects/colour/class_color_op.h"
#include "test_support.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>

namespace lumiran::testing {

using Colour = std::array<int, 3>;

inline Colour colourOf(Pixel p) {
    return {redOf(p), greenOf(p), blueOf(p)};
}

// Runs Class_ColorOp operations on small pictures, one fresh object per
// run as the program does.
struct ColorOpFixture : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    using Call = std::function<void(Class_ColorOp&, const ProcessRect&)>;

    Surface run(const Surface& picture, const Call& call) {
        Class_ColorOp effect(context);
        effect.ImageGetDiBits(picture);
        call(effect, ProcessRect::wholePicture(picture.width(), picture.height()));
        Surface result;
        effect.ImageSetDiBits(result);
        return result;
    }

    // The stored colour of a one-pixel picture after the call.
    Colour runOn(int r, int g, int b, const Call& call) {
        return colourOf(run(Surface(1, 1, makePixel(r, g, b)), call).at(0, 0));
    }

    [[nodiscard]] int failureNumber() const {
        return context.failures.empty() ? 0 : context.failures.front().number();
    }
};

} // namespace lumiran::testing
