#pragma once

// What the neighbourhood family's cases share: the dialog's values as the
// calls take them, and the shapes of a case.
#include "catalogue/effect_dispatch.h"
#include "engine/numeric.h"

#include <cstddef>
#include <cstdint>

namespace lumiran::dispatch {

// Slider n handed to a 16-bit parameter: rounded half to even, with the
// overflow error inside the run when it does not fit.
inline std::int16_t slider(const ControlValues& v, int number) {
    return roundTo<std::int16_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

// A list row handed to a byte parameter.
inline std::uint8_t row(int index) {
    if (index < 0 || index > 255) throw EffectError::overflow();
    return static_cast<std::uint8_t>(index);
}

enum class Array { InPlace, Trans };

// A case of one call on a fresh object over the process rectangle. The
// conversions of the dialog's values happen inside the run, where the
// handler catches them.
template <typename Class, Array Where, typename Call>
EffectPlanner planner(Call call) {
    return [call](const ControlValues& values) {
        auto bound = [call, values](Class& e, ProcessRect r) { call(e, values, r); };
        if constexpr (Where == Array::InPlace) {
            return EffectPlan::ready(runInPlace<Class>(bound));
        } else {
            return EffectPlan::ready(runWithTrans<Class>(bound));
        }
    };
}

// Two calls in a row, each on a fresh object with both arrays: the second
// reads what the first wrote into kept picture 1. A failed first call ends
// the run there.
template <typename Class, typename First, typename Second>
EffectBody chained(First first, Second second) {
    return [first, second](EffectInvocation& run) {
        runWithTrans<Class>(first)(run);
        if (run.context.cancelled()) return;
        Class effect(run.context);
        effect.ImageGetDiBits(run.keptPicture1);
        effect.ImageGetDiBitsTrans(run.keptPicture1);
        second(effect, run.rect);
        effect.ImageSetDiBitsTrans(run.keptPicture1);
    };
}

} // namespace lumiran::dispatch
