#pragma once

#include "engine/process_rect.h"
#include "engine/run_context.h"
#include "engine/surface.h"

#include <functional>
#include <gtest/gtest.h>

namespace lumiran::testing {

// Runs operations of one effect class on small pictures, one fresh object
// per run as the program does.
template <typename Class>
struct EffectFixture : ::testing::Test {
    CancelFlag cancel{0};
    RandomGenerator random;
    RunContext context{cancel, random};

    using Call = std::function<void(Class&, const ProcessRect&)>;

    Surface run(const Surface& picture, const Call& call) {
        Class effect(context);
        effect.ImageGetDiBits(picture);
        call(effect, ProcessRect::wholePicture(picture.width(), picture.height()));
        Surface result;
        effect.ImageSetDiBits(result);
        return result;
    }

    // The same for operations that read ImageBits and write TransBits, both
    // fetched from the picture.
    Surface runTrans(const Surface& picture, const Call& call, const ProcessRect& rect) {
        Class effect(context);
        effect.ImageGetDiBits(picture);
        effect.ImageGetDiBitsTrans(picture);
        call(effect, rect);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
    Surface runTrans(const Surface& picture, const Call& call) {
        return runTrans(picture, call,
                        ProcessRect::wholePicture(picture.width(), picture.height()));
    }
};

} // namespace lumiran::testing
