#pragma once

// What the dispatch files of Class_Geometry share: the dialog values as the
// calls hand them on, and the shapes of a case.
#include "catalogue/dispatch_values.h"
#include "effects/geometry/class_geometry.h"
#include "engine/numeric.h"

#include <utility>
#include <vector>

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

// The same for calls that read their source only through ImageBits: kept
// picture 0 is lent to ImageBits rather than copied.
template <typename Call>
EffectPlanner warpOnSource(Call call) {
    return dispatch::withTransOnSource<Class_Geometry>(call);
}

// The same again for warps whose rows make TransBits themselves (warpRows
// with TransBits left unfetched): no copy of the whole picture first.
template <typename Call>
EffectPlanner warpOnSourceOwnTrans(Call call) {
    return dispatch::onSourceWithOwnTrans<Class_Geometry>(call);
}

// A call that draws from kept picture 0 onto kept picture 1 itself.
template <typename Call>
EffectBody drawingBody(Call call, const ControlValues& values) {
    return [call, values](EffectInvocation& run) {
        run.context.kept0 = &run.keptPicture0;
        run.context.kept1 = &run.keptPicture1;
        Class_Geometry effect(run.context);
        call(effect, values, run.rect);
    };
}

// The warps that draw from kept picture 0 onto kept picture 1 themselves.
template <typename Call>
EffectPlanner drawing(Call call) {
    return [call](V values) { return EffectPlan::ready(drawingBody(call, values)); };
}

// The same for a call that lays the background under what it draws
// itself: the run leaves kept picture 1 empty for it, rather than filling
// it on one thread first. A preview still hands it a picture to draw over.
template <typename Call>
EffectPlanner drawingOnOwnBackground(Call call) {
    return [call](V values) {
        return EffectPlan::ready(EffectBody{ReplacingBody{drawingBody(call, values)}});
    };
}

// Several calls in a row as one sequence. The first draws over the
// background as a lone call does; each later one draws from the result of
// the one before over that same result, as the calls of one routine do.
template <typename First, typename... Rest>
EffectPlanner drawingSteps(First first, Rest... rest) {
    return [=](V values) {
        std::vector<EffectBody> steps{drawingBody(first, values)};
        const auto overPrevious = [&](const auto& call) {
            steps.emplace_back(
                ReplacingBody{[draw = drawingBody(call, values)](EffectInvocation& run) {
                    run.keptPicture1 = run.keptPicture0;
                    draw(run);
                }});
        };
        (overPrevious(rest), ...);
        return EffectPlan::ready(runInSequence(std::move(steps)));
    };
}

} // namespace geometry_dispatch
} // namespace lumiran
