#pragma once

#include "catalogue/control_values.h"
#include "catalogue/effect_dispatch.h"
#include "engine/numeric.h"

#include <cstddef>
#include <cstdint>

namespace lumiran::halftone {

// A slider value handed to a 16-bit parameter: rounded half to even, with
// the overflow error inside the run when it does not fit.
[[nodiscard]] inline std::int16_t slider(const ControlValues& v, int number) {
    return roundTo<std::int16_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

// A list row or check state handed to a 16-bit parameter.
[[nodiscard]] inline std::int16_t value16(int value) {
    if (value < INT16_MIN || value > INT16_MAX) throw EffectError::overflow();
    return static_cast<std::int16_t>(value);
}

// A case making its calls on one fresh object of the class, which reads
// kept picture 0 twice (source and result) and writes the result into
// kept picture 1. The conversions of the dialog's values happen inside
// the run, where the error trap catches them.
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner planner(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(
            runWithTrans<Class>([call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

} // namespace lumiran::halftone
