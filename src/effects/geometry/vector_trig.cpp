#include "effects/geometry/vector_trig.h"

#include "effects/geometry/vector_trig_kernel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace lumiran::trig {
namespace {

using kernels::kernel;
using kernels::reducible;
using kernels::SinCos;

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
