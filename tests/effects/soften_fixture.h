#pragma once

#include "effects/effect_fixture.h"
#include "effects/smoothing/class_soften.h"
#include "test_support.h"

namespace lumiran::testing {

// Runs Class_Soften operations as the program does: the source fetched
// twice, the separate destination written back.
struct SoftenFixture : EffectFixture<Class_Soften> {
    Surface run(const Surface& picture, const Call& call, const ProcessRect& rect) {
        Class_Soften effect(context);
        effect.ImageGetDiBits(picture);
        effect.ImageGetDiBitsTrans(picture);
        call(effect, rect);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
    Surface run(const Surface& picture, const Call& call) {
        return run(picture, call, ProcessRect::wholePicture(picture.width(), picture.height()));
    }

    [[nodiscard]] int failureNumber() const {
        return context.failures.empty() ? 0 : context.failures.front().number();
    }
};

// Colours from a fixed sequence, different at every pixel.
inline Surface randomPicture(int width, int height) {
    std::uint32_t state = 12345;
    return makePicture(width, height, [&](int, int) {
        state = state * 1664525u + 1013904223u;
        return static_cast<Pixel>(state >> 8);
    });
}

} // namespace lumiran::testing
