// The row functions the warps use in place of the library's sin, cos, tan
// and atan agree with it to within a few units in the last place.
#include "effects/geometry/vector_trig.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace lumiran::trig {
namespace {

struct RowFunction {
    const char* name;
    std::function<void(std::span<const double>, std::span<double>)> row;
    double (*library)(double);
};

class VectorTrig : public ::testing::TestWithParam<RowFunction> {};

TEST_P(VectorTrig, AgreesWithTheLibrary) {
    std::mt19937_64 engine(15);
    std::vector<double> angles;
    for (const double range : {1.0, 10.0, 1e3, 1e5, 2e6})
        for (int i = 0; i < 4000; ++i)
            angles.push_back(std::uniform_real_distribution<double>(-range, range)(engine));
    // Whole multiples of pi/2, where the quadrants meet, and the exceptions.
    for (int k = -40; k <= 40; ++k)
        angles.push_back(k * 1.5707963267948966);
    const double inf = std::numeric_limits<double>::infinity();
    angles.insert(angles.end(), {0.0, -0.0, inf, -inf, std::nan("")});
    std::vector<double> out(angles.size());
    GetParam().row(angles, out);
    for (std::size_t i = 0; i < angles.size(); ++i) {
        const double expected = GetParam().library(angles[i]);
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(out[i])) << angles[i];
            continue;
        }
        // A few units in the last place of the value, or of 1 near a zero.
        const double tolerance =
            8 * std::numeric_limits<double>::epsilon() * std::max(std::abs(expected), 1.0);
        ASSERT_NEAR(out[i], expected, tolerance) << GetParam().name << "(" << angles[i] << ")";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Functions, VectorTrig,
    ::testing::Values(RowFunction{"sin", sine, [](double x) { return std::sin(x); }},
                      RowFunction{"cos", cosine, [](double x) { return std::cos(x); }},
                      RowFunction{"tan", tangent, [](double x) { return std::tan(x); }},
                      RowFunction{"atan", arcTangent, [](double x) { return std::atan(x); }},
                      RowFunction{"sinOfSinCos",
                                  [](std::span<const double> in, std::span<double> out) {
                                      std::vector<double> c(in.size());
                                      sinCos(in, out, c);
                                  },
                                  [](double x) { return std::sin(x); }}),
    [](const auto& testInfo) { return std::string(testInfo.param.name); });

TEST(VectorTrig, WorksInPlace) {
    std::vector<double> v{0.5, 2e6, -3.0};
    tangent(v, v);
    EXPECT_DOUBLE_EQ(v[0], std::tan(0.5));
    EXPECT_DOUBLE_EQ(v[1], std::tan(2e6));
    EXPECT_DOUBLE_EQ(v[2], std::tan(-3.0));
}

} // namespace
} // namespace lumiran::trig
