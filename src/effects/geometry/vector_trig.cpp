#include "effects/geometry/vector_trig.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace lumiran::trig {
namespace {

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

// atan on |u| <= tan(pi/8): x - x^3 p(x^2).
constexpr double A0 = 3.33333333333329318027e-01;
constexpr double A1 = -1.99999999998764832476e-01;
constexpr double A2 = 1.42857142725034663711e-01;
constexpr double A3 = -1.11111104054623557880e-01;
constexpr double A4 = 9.09088713343650656196e-02;
constexpr double A5 = -7.69187620504482999495e-02;
constexpr double A6 = 6.66107313738753120669e-02;
constexpr double A7 = -5.83357013379057348645e-02;
constexpr double A8 = 4.97687799461593236017e-02;
constexpr double A9 = -3.65315727442169155270e-02;
constexpr double A10 = 1.62858201153657823623e-02;
constexpr double TanEighthPi = 0.41421356237309504880;
constexpr double QuarterPi = 7.85398163397448278999e-01;
constexpr double HalfPi = 1.57079632679489655800e+00;

inline double arcTangentKernel(double x) {
    const double ax = std::fabs(x);
    const bool large = ax > 1.0;
    const double t = large ? 1.0 / ax : ax;
    const bool upper = t > TanEighthPi;
    const double u = upper ? (t - 1.0) / (t + 1.0) : t;
    const double z = u * u;
    const double p =
        z *
        (A0 +
         z * (A1 +
              z * (A2 +
                   z * (A3 +
                        z * (A4 +
                             z * (A5 + z * (A6 + z * (A7 + z * (A8 + z * (A9 + z * A10))))))))));
    const double a = (upper ? QuarterPi : 0.0) + (u - u * p);
    return std::copysign(large ? HalfPi - a : a, x);
}

// Runs the vector kernel over blocks of a row and repairs the few angles it
// cannot reduce with the library's function; a block keeps its inputs, so
// the output may be the input.
template <typename Kernel, typename Library>
void overBlocks(std::span<const double> in, std::span<double> out, Kernel kernelOf,
                Library library) {
    constexpr std::size_t Block = 64;
    double saved[Block];
    for (std::size_t start = 0; start < in.size(); start += Block) {
        const std::size_t n = std::min(Block, in.size() - start);
        for (std::size_t i = 0; i < n; ++i)
            saved[i] = in[start + i];
        double* o = out.data() + start;
        for (std::size_t i = 0; i < n; ++i)
            o[i] = kernelOf(saved[i]);
        for (std::size_t i = 0; i < n; ++i) {
            if (!reducible(saved[i])) o[i] = library(saved[i]);
        }
    }
}

} // namespace

void sinCos(std::span<const double> angles, std::span<double> sines, std::span<double> cosines) {
    constexpr std::size_t Block = 64;
    double saved[Block];
    for (std::size_t start = 0; start < angles.size(); start += Block) {
        const std::size_t n = std::min(Block, angles.size() - start);
        for (std::size_t i = 0; i < n; ++i)
            saved[i] = angles[start + i];
        double* s = sines.data() + start;
        double* c = cosines.data() + start;
        for (std::size_t i = 0; i < n; ++i) {
            const SinCos v = kernel(saved[i]);
            s[i] = v.sin;
            c[i] = v.cos;
        }
        for (std::size_t i = 0; i < n; ++i) {
            if (reducible(saved[i])) continue;
            s[i] = std::sin(saved[i]);
            c[i] = std::cos(saved[i]);
        }
    }
}

void sine(std::span<const double> angles, std::span<double> out) {
    overBlocks(
        angles, out, [](double x) { return kernel(x).sin; }, [](double x) { return std::sin(x); });
}

void cosine(std::span<const double> angles, std::span<double> out) {
    overBlocks(
        angles, out, [](double x) { return kernel(x).cos; }, [](double x) { return std::cos(x); });
}

void tangent(std::span<const double> angles, std::span<double> out) {
    overBlocks(
        angles, out,
        [](double x) {
            const SinCos v = kernel(x);
            return v.sin / v.cos;
        },
        [](double x) { return std::tan(x); });
}

void arcTangent(std::span<const double> values, std::span<double> out) {
    const std::size_t n = values.size();
    for (std::size_t i = 0; i < n; ++i)
        out[i] = arcTangentKernel(values[i]);
}

void byFunction(int function, std::span<const double> angles, std::span<double> out) {
    switch (function) {
    case 0:
        sine(angles, out);
        break;
    case 1:
        cosine(angles, out);
        break;
    default:
        tangent(angles, out);
        break;
    }
}

} // namespace lumiran::trig
