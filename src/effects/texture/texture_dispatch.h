#pragma once

// What the dispatch units of the texture classes share: the conversions of
// a dialog's values to the types of the operations' parameters, and the
// planners that run a call on a fresh object of a class.
#include "catalogue/control_values.h"
#include "catalogue/effect_dispatch.h"
#include "engine/numeric.h"

#include <cstddef>
#include <cstdint>

namespace lumiran::texture {

// A slider value handed to a 16-bit parameter: rounded half to even, with
// the overflow error inside the run when it does not fit.
[[nodiscard]] inline std::int16_t slider(const ControlValues& v, int number) {
    return roundTo<std::int16_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

// A slider value handed to a byte parameter (block sizes, colours).
[[nodiscard]] inline std::uint8_t sliderByte(const ControlValues& v, int number) {
    return roundTo<std::uint8_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

// A list row handed to a byte parameter.
[[nodiscard]] inline std::uint8_t row(int index) {
    if (index < 0 || index > 255) throw EffectError::overflow();
    return static_cast<std::uint8_t>(index);
}

// A case whose calls work in place on the source array. The conversions of
// the dialog's values happen inside the run, where the error trap is.
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner inPlace(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(
            runInPlace<Class>([call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

// A case whose calls read the source and write a separate destination.
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner withTrans(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(
            runWithTrans<Class>([call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

} // namespace lumiran::texture
