#pragma once

#include "effects/geometry/class_geometry.h"
#include "test_support.h"

#include <functional>
#include <gtest/gtest.h>

namespace lumiran::testing {

// A picture whose colour tells where each pixel stood: red x, green y,
// blue 7. Sizes up to 256.
inline Surface positionPicture(int width, int height) {
    return makePicture(width, height, [](int x, int y) { return makePixel(x, y, 7); });
}

struct SourcePlace {
    int x = 0;
    int y = 0;
    friend bool operator==(const SourcePlace&, const SourcePlace&) = default;
};

inline SourcePlace placeOf(Pixel p) {
    return {redOf(p), greenOf(p)};
}

// Runs Class_Geometry as a run does: both arrays from the picture, the
// call, TransBits back; the blit warps draw between the kept pictures, the
// target starting as a copy of the picture.
struct GeometryFixture : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    using Call = std::function<void(Class_Geometry&, const ProcessRect&)>;

    Surface warp(const Surface& picture, const ProcessRect& rect, const Call& call) {
        Surface kept0 = picture;
        Surface kept1 = picture;
        context.kept0 = &kept0;
        context.kept1 = &kept1;
        Class_Geometry effect(context);
        effect.ImageGetDiBits(kept0);
        effect.ImageGetDiBitsTrans(kept0);
        call(effect, rect);
        effect.ImageSetDiBitsTrans(kept1);
        context.kept0 = context.kept1 = nullptr;
        return kept1;
    }

    // The blit warps: kept picture 1 after the call, starting as `target`.
    Surface drawn(const Surface& picture, const Surface& target, const Call& call) {
        Surface kept0 = picture;
        Surface kept1 = target;
        context.kept0 = &kept0;
        context.kept1 = &kept1;
        Class_Geometry effect(context);
        call(effect, ProcessRect::wholePicture(picture.width(), picture.height()));
        context.kept0 = context.kept1 = nullptr;
        return kept1;
    }

    Surface warp(const Surface& picture, const Call& call) {
        return warp(picture, ProcessRect::wholePicture(picture.width(), picture.height()), call);
    }

    [[nodiscard]] bool failedWithOverflow() const {
        return cancel == 1 && context.failures.size() == 1 &&
               context.failures.front().number() == EffectError::OverflowNumber;
    }
};

} // namespace lumiran::testing
