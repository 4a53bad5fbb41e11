#pragma once

// The vector kernel of sin and cos behind vector_trig, for loops that fuse
// it with their own arithmetic; its results are those of vector_trig's
// functions for the same angles.
#include <cstdint>

namespace lumiran::trig::kernels {

// Angles up to here keep the reduction exact: k times the first part of
// pi/2 needs no more than 53 bits while k stays below 2^20.
constexpr double ReductionLimit = 1.0e6;

// pi/2 in three parts of 33 bits each and the rest, and 2/pi.
constexpr double HalfPi1 = 1.57079632673412561417e+00;
constexpr double HalfPi2 = 6.07710050630396597660e-11;
constexpr double HalfPi3 = 2.02226624871116645580e-21;
constexpr double HalfPi3Tail = 8.47842766036889956997e-32;
constexpr double TwoOverPi = 6.36619772367581382433e-01;
constexpr double Shifter = 6755399441055744.0; // 1.5 * 2^52: adding it rounds

// Minimax polynomials of sin and cos on [-pi/4, pi/4].
constexpr double S1 = -1.66666666666666324348e-01;
constexpr double S2 = 8.33333333332248946124e-03;
constexpr double S3 = -1.98412698298579493134e-04;
constexpr double S4 = 2.75573137070700676789e-06;
constexpr double S5 = -2.50507602534068634195e-08;
constexpr double S6 = 1.58969099521155010221e-10;
constexpr double C1 = 4.16666666666666019037e-02;
constexpr double C2 = -1.38888888888741095749e-03;
constexpr double C3 = 2.48015872894767294178e-05;
constexpr double C4 = -2.75573143513906633035e-07;
constexpr double C5 = 2.08757232129817482790e-09;
constexpr double C6 = -1.13596475577881948265e-11;

struct SinCos {
    double sin;
    double cos;
};

// Branch-free: the quadrant selects by arithmetic, so a loop of these
// vectorises. Exact only below ReductionLimit; the callers repair the rest.
inline SinCos kernel(double x) {
    const double k = (x * TwoOverPi + Shifter) - Shifter;
    const double r = (((x - k * HalfPi1) - k * HalfPi2) - k * HalfPi3) - k * HalfPi3Tail;
    const double z = r * r;
    const double s = r + r * z * (S1 + z * (S2 + z * (S3 + z * (S4 + z * (S5 + z * S6)))));
    const double c =
        1.0 - 0.5 * z + z * z * (C1 + z * (C2 + z * (C3 + z * (C4 + z * (C5 + z * C6)))));
    // Within the limit k is small, so the conversion is exact.
    const auto quadrant =
        static_cast<std::int64_t>(k < ReductionLimit && k > -ReductionLimit ? k : 0);
    const bool swap = (quadrant & 1) != 0;
    const double sv = swap ? c : s;
    const double cv = swap ? s : c;
    return {(quadrant & 2) != 0 ? -sv : sv, ((quadrant + 1) & 2) != 0 ? -cv : cv};
}

inline bool reducible(double x) {
    return x < ReductionLimit && x > -ReductionLimit;
}

} // namespace lumiran::trig::kernels
