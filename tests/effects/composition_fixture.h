#pragma once

// Runs of the merges with the kept image: the fixture holds the kept image
// for as long as the context points at it.
#include "effect_fixture.h"
#include "effects/composition/class_composition.h"

namespace lumiran::testing {

struct CompositionFixture : EffectFixture<Class_Composition> {
    Surface kept;

    Surface merge(const Surface& document, const Surface& keptImage, const Call& call) {
        kept = keptImage;
        context.composeImage = &kept;
        return run(document, call);
    }
};

} // namespace lumiran::testing
