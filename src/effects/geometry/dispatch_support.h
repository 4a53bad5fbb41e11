#pragma once

// What the dispatch files of Class_Geometry share: the dialog values as the
// calls hand them on, and the shapes of a case.
#include "catalogue/dispatch_values.h"
#include "effects/geometry/class_geometry.h"
#include "engine/numeric.h"

#include <utility>

namespace lumiran {

// The block effects, blurs and diffusion (block_dispatch.cpp).
void registerBlockAndBlurEffects(EffectDispatch& d);

namespace geometry_dispatch {

using V = const ControlValues&;
using R = ProcessRect;

using dispatch::row;
using dispatch::slider;

// A slider of frm_Mani handed on as the double it holds: D(S3) and the like.
inline double exact(V v, int number) {
    return v.sliders[static_cast<std::size_t>(number - 1)];
}

// The warps that sample: kept picture 0 into ImageBits and TransBits, the
// call, TransBits into kept picture 1.
template <typename Call>
EffectPlanner warp(Call call) {
    return dispatch::withTrans<Class_Geometry>(call);
}

// The warps that draw from kept picture 0 onto kept picture 1 themselves.
template <typename Call>
EffectPlanner drawing(Call call) {
    return [call](V values) {
        return EffectPlan::ready([call, values](EffectInvocation& run) {
            run.context.kept0 = &run.keptPicture0;
            run.context.kept1 = &run.keptPicture1;
            Class_Geometry effect(run.context);
            call(effect, values, run.rect);
        });
    };
}

// Several calls in a row, each drawing from the result of the one before
// (the first from kept picture 0) onto kept picture 1; a cancel or failure
// ends the row.
template <typename... Calls>
EffectPlanner drawingSteps(Calls... calls) {
    return [=](V values) {
        return EffectPlan::ready([=](EffectInvocation& run) {
            Surface previous;
            bool first = true;
            const auto step = [&](const auto& call) {
                if (run.context.cancelled()) return;
                if (!first) previous = run.keptPicture1;
                run.context.kept0 = first ? &run.keptPicture0 : &previous;
                run.context.kept1 = &run.keptPicture1;
                Class_Geometry effect(run.context);
                call(effect, values, run.rect);
                first = false;
            };
            (step(calls), ...);
            run.context.kept0 = &run.keptPicture0;
        });
    };
}

} // namespace geometry_dispatch
} // namespace lumiran
