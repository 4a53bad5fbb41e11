#pragma once

// What the families' cases share: a dialog's values converted to the types
// of the operations' parameters, and the planners of a one-call case. The
// conversions happen inside the run, where the error trap catches them.
#include "catalogue/control_values.h"
#include "catalogue/effect_dispatch.h"
#include "engine/effect_error.h"
#include "engine/numeric.h"

#include <cstddef>
#include <cstdint>

namespace lumiran::dispatch {

// Slider n handed to a 16-bit parameter: rounded half to even, with the
// overflow error when it does not fit.
[[nodiscard]] inline std::int16_t slider(const ControlValues& v, int number) {
    return roundTo<std::int16_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

// Slider n handed to a byte parameter (block sizes, colours).
[[nodiscard]] inline std::uint8_t sliderByte(const ControlValues& v, int number) {
    return roundTo<std::uint8_t>(v.sliders[static_cast<std::size_t>(number - 1)]);
}

// A list row handed to a byte parameter.
[[nodiscard]] inline std::uint8_t row(int index) {
    if (index < 0 || index > 255) throw EffectError::overflow();
    return static_cast<std::uint8_t>(index);
}

// A list row or check state handed to a 16-bit parameter.
[[nodiscard]] inline std::int16_t value16(int value) {
    if (value < INT16_MIN || value > INT16_MAX) throw EffectError::overflow();
    return static_cast<std::int16_t>(value);
}

// A case of calls on one fresh object of the class that work in place on
// the source array: call(object, values, rect).
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner inPlace(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(
            runInPlace<Class>([call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

// The same on kept picture 0 itself where the run allows it
// (runInPlaceOnSource): for calls that keep every spare byte.
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner inPlaceOnSource(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(runInPlaceOnSource<Class>(
            [call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

// The same for calls that read the source and write a separate destination.
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner withTrans(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(
            runWithTrans<Class>([call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

// The same with the source lent rather than copied (runWithTransOnSource).
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner withTransOnSource(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(runWithTransOnSource<Class>(
            [call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

// The same with TransBits left to the call (runOnSourceWithOwnTrans).
template <typename Class, typename Call>
[[nodiscard]] EffectPlanner onSourceWithOwnTrans(Call call) {
    return [call](const ControlValues& v) {
        return EffectPlan::ready(runOnSourceWithOwnTrans<Class>(
            [call, v](Class& e, const ProcessRect& r) { call(e, v, r); }));
    };
}

} // namespace lumiran::dispatch
