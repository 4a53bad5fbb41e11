#pragma once

#include "engine/process_rect.h"
#include "engine/run_context.h"
#include "engine/surface.h"
#include "test_support.h"

#include <array>
#include <gtest/gtest.h>
#include <optional>
#include <vector>

namespace lumiran::testing {

inline Surface uniformPicture(int width, int height, int r, int g, int b) {
    return Surface(width, height, makePixel(r, g, b));
}

// Runs operations of the texture classes on small pictures, one fresh
// object per run as the program does.
struct TextureFixture : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    // The picture after call(effect, rect) on a fresh object: in place, or
    // from ImageBits into TransBits.
    template <typename Class, typename Call>
    Surface run(const Surface& picture, Call call, bool trans = false,
                std::optional<ProcessRect> rect = std::nullopt) {
        Class effect(context);
        effect.ImageGetDiBits(picture);
        if (trans) effect.ImageGetDiBitsTrans(picture);
        call(effect, rect.value_or(ProcessRect::wholePicture(picture.width(), picture.height())));
        Surface result;
        if (trans) {
            effect.ImageSetDiBitsTrans(result);
        } else {
            effect.ImageSetDiBits(result);
        }
        return result;
    }

    std::vector<int> failureNumbers() const {
        std::vector<int> numbers;
        for (const EffectError& e : context.failures)
            numbers.push_back(e.number());
        return numbers;
    }
};

} // namespace lumiran::testing
