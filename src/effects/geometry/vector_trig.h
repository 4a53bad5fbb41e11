#pragma once

#include <span>

namespace lumiran::trig {

// The trigonometric functions over whole rows of angles, written without
// branches so that the compiler runs them on the vector unit: the warps
// need one or two of them for every pixel, and the library's scalar calls
// would take most of a warp's time. Within a few units in the last place of
// the library's results (the program's own results came from 80-bit
// hardware functions, so a last-bit difference is of no concern); angles
// beyond a million radians, infinities and NaN go to the library.
// Outputs must be as long as the inputs and may be the same span.
void sinCos(std::span<const double> angles, std::span<double> sines, std::span<double> cosines);
void sine(std::span<const double> angles, std::span<double> out);
void cosine(std::span<const double> angles, std::span<double> out);
void tangent(std::span<const double> angles, std::span<double> out);
void arcTangent(std::span<const double> values, std::span<double> out);

// By a function number as the warps choose it: 0 sin, 1 cos, 2 tan.
void byFunction(int function, std::span<const double> angles, std::span<double> out);

} // namespace lumiran::trig
