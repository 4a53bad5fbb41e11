#pragma once

#include "engine/effect_error.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>

namespace lumiran {

// Round half to even, as every float-to-integer store of the effects does.
// Adding and removing 1.5 * 2^52 makes the FPU round in its default mode,
// which is ties-to-even, without a library call on the hot path. Values of
// 2^52 and beyond (and infinities and NaNs) are whole already and pass as
// they are: a select rather than a branch, so loops over it vectorise.
[[nodiscard]] inline double roundHalfEven(double value) {
    constexpr double shifter = 6755399441055744.0; // 1.5 * 2^52
    // Without -ffast-math the compiler may not fold this pair away.
    const double rounded = (value + shifter) - shifter;
    return std::abs(value) < 4503599627370496.0 ? rounded : value;
}

// Float-to-integer conversion with the runtime's range check: a value that
// does not fit the target after rounding (or an infinity or a NaN) raises
// the overflow error that reaches the effect's handler.
template <std::integral T>
[[nodiscard]] T roundTo(double value) {
    const double rounded = roundHalfEven(value);
    constexpr double low = static_cast<double>(std::numeric_limits<T>::min());
    constexpr double high = static_cast<double>(std::numeric_limits<T>::max());
    if (!(rounded >= low && rounded <= high)) throw EffectError::overflow();
    return static_cast<T>(rounded);
}

// The same rounding without the guard, kept in floating point, for values
// known to lie well inside the 32-bit range: no branch, so loops vectorise.
[[nodiscard]] inline double roundHalfEvenInRange(double value) {
    constexpr double shifter = 6755399441055744.0; // as in roundHalfEven
    return (value + shifter) - shifter;
}

// The conversion where the value cannot leave the target's range (a
// weighted mean of channels, say): no check, so pixel loops can vectorise.
template <std::integral T>
[[nodiscard]] T roundInRange(double value) {
    return static_cast<T>(roundHalfEvenInRange(value));
}

// 16-bit fields keep the low 16 bits of whatever is stored into them.
[[nodiscard]] constexpr std::int16_t wrap16(std::int32_t value) {
    return static_cast<std::int16_t>(value);
}

} // namespace lumiran
