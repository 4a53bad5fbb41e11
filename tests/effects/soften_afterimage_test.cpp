// The afterimages against their formulas worked out sample by sample, the
// 16-bit sums, the failing divisions, and the two shapes left to us.
#include "soften_fixture.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using Soften = SoftenFixture;
using R = const ProcessRect&;

// Sample j of pixel (x, y) before the bounds, by the text of each effect.
using Displace = std::function<std::pair<double, double>(int x, int y, int j)>;

Surface afterImageModel(const Surface& in, int count, int type, const Displace& displace) {
    Surface out = in;
    for (int x = 1; x < in.width() - 1; ++x) {
        for (int y = 1; y < in.height() - 1; ++y) {
            std::array<std::int16_t, 3> s{};
            std::array<int, 3> first{}, v{};
            for (int j = 0; j <= count; ++j) {
                const auto [px, py] = displace(x, y, j);
                int xj = static_cast<int>(std::nearbyint(px)),
                    yj = static_cast<int>(std::nearbyint(py));
                if (xj < 0 || xj > in.width() - 1) xj = x;
                if (yj < 0 || yj > in.height() - 1) yj = y;
                const Pixel e = in.at(xj, yj);
                const std::array<int, 3> c{redOf(e), greenOf(e), blueOf(e)};
                for (std::size_t k = 0; k < 3; ++k) {
                    s[k] = static_cast<std::int16_t>(s[k] + c[k]);
                    if (j == 0) first[k] = c[k];
                }
            }
            for (std::size_t k = 0; k < 3; ++k)
                v[k] = s[k] / (count + 1);
            const int w = std::min((std::abs(v[0] - first[0]) + std::abs(v[1] - first[1]) +
                                    std::abs(v[2] - first[2])) /
                                       3,
                                   128);
            for (std::size_t k = 0; k < 3 && type == 1; ++k)
                v[k] = (s[k] - first[k] + w * first[k]) / (count + w);
            out.at(x, y) = storeResult(out.at(x, y), v[0], v[1], v[2], in.at(x, y), 0);
        }
    }
    return out;
}

// Direction 0 keeps y, 1 keeps x.
std::pair<double, double> directed(int direction, int x, int y, double xj, double yj) {
    return {direction == 1 ? x : xj, direction == 0 ? y : yj};
}

Displace wave(double a, double w, int direction) {
    return [=](int x, int y, int j) {
        const double xj =
            std::nearbyint(a * std::cos((x + j) * 6.28 / w) + a * std::sin((y + j) * 6.28 / w) + x);
        const double yj =
            std::nearbyint(a * std::cos((y + j) * 6.28 / w) + a * std::sin(xj * 6.28 / w) + y);
        return directed(direction, x, y, xj, yj);
    };
}

// The centre of a 37x29 picture at 30 % and 60 %: round(11.1), round(17.4).
constexpr double Cx = 11, Cy = 17;

Displace ripple(double a, double wavelength, int direction, double cx = Cx, double cy = Cy) {
    return [=](int x, int y, int j) {
        const double t =
            std::sqrt(0.6 * std::pow(x - cx, 2) + std::pow(y - cy, 2)) * (1.0 - wavelength / 100);
        return directed(direction, x, y, x + j + a / 5.0 * std::sin(t),
                        y + j + a / 8.0 * std::sin(t));
    };
}

Displace vortex(double a, int direction, double cx = Cx, double cy = Cy) {
    return [=](int x, int y, int j) {
        const double dx = x + j - cx, dy = y + j - cy;
        const double t = std::sqrt(0.6 * dx * dx + dy * dy) / (a / 4.0) / 3.14;
        return directed(direction, x, y, std::sin(t) * dx + cx - std::cos(t) * dy,
                        std::cos(t) * dx + cy + std::sin(t) * dy);
    };
}

TEST_F(Soften, AfterImagesMatchTheirFormulas) {
    const Surface picture = randomPicture(37, 29);
    for (std::uint8_t type = 0; type <= 1; ++type) {
        for (std::uint8_t d = 0; d <= 2; ++d) {
            const Surface waved = run(picture, [&](Class_Soften& e, R r) {
                e.AfterImage_Wave(9, type, d, r.left, r.top, r.right, r.bottom, 12, 32, 30, 60);
            });
            EXPECT_TRUE(waved == afterImageModel(picture, 9, type, wave(12, 32, d)))
                << "wave " << +type << +d;
            const Surface rippled = run(picture, [&](Class_Soften& e, R r) {
                e.AfterImage_Ripple(5, type, d, r.left, r.top, r.right, r.bottom, 62, 62, 30, 60);
            });
            EXPECT_TRUE(rippled == afterImageModel(picture, 5, type, ripple(62, 62, d)))
                << "ripple " << +type << +d;
            // 300 samples take the path without the rows of turned points.
            for (const int count : {9, 300}) {
                const Surface turned = run(picture, [&](Class_Soften& e, R r) {
                    e.AfterImage_Vortex(static_cast<std::int16_t>(count), type, d, r.left, r.top,
                                        r.right, r.bottom, 42, 30, 60);
                });
                EXPECT_TRUE(turned == afterImageModel(picture, count, type, vortex(42, d)))
                    << "vortex " << +type << +d << " " << count;
            }
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

// The vortex's turned points come from the vector sine and cosine, rows in
// bands on several threads: every sample must land where the library's
// values put it, for tight and wide twists and centres off the middle.
TEST_F(Soften, VortexSamplesLandWhereTheLibraryPutsThem) {
    context.threading = {3, 500};
    struct Case {
        int width, height;
        std::int16_t amplitude, xPercent, yPercent, count;
    };
    for (const Case c : {Case{301, 203, 42, 50, 50, 3}, Case{256, 250, 1, 20, 90, 2},
                         Case{199, 257, -37, 0, 100, 4}, Case{120, 90, 900, 75, 33, 1}}) {
        const Surface picture = randomPicture(c.width, c.height);
        const double cx = std::nearbyint(c.width / 100.0 * c.xPercent);
        const double cy = std::nearbyint(c.height / 100.0 * c.yPercent);
        for (std::uint8_t d = 0; d <= 2; ++d) {
            const Surface turned = run(picture, [&](Class_Soften& e, R r) {
                e.AfterImage_Vortex(c.count, d % 2, d, r.left, r.top, r.right, r.bottom,
                                    c.amplitude, c.xPercent, c.yPercent);
            });
            EXPECT_TRUE(turned ==
                        afterImageModel(picture, c.count, d % 2, vortex(c.amplitude, d, cx, cy)))
                << c.width << "x" << c.height << " amplitude " << c.amplitude << " direction "
                << +d;
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

// The wave and the ripple take their samples over runs of a row, the
// ripple's sines from the vector unit, rows on several threads: rows wider
// than a run, amplitudes and wavelengths that reach far or hit halves.
TEST_F(Soften, WaveAndRippleRunsMatchTheirFormulasOnThreads) {
    context.threading = {3, 500};
    struct Case {
        int width, height;
        std::int16_t amplitude, wavelength, count;
    };
    for (const Case c : {Case{301, 67, 12, 32, 9}, Case{530, 41, 100, 7, 4},
                         Case{260, 50, -45, -90, 2}, Case{300, 33, 5, 100, 1}}) {
        const Surface picture = randomPicture(c.width, c.height);
        const double cx = std::nearbyint(c.width / 100.0 * 30);
        const double cy = std::nearbyint(c.height / 100.0 * 60);
        for (std::uint8_t d = 0; d <= 2; ++d) {
            const Surface waved = run(picture, [&](Class_Soften& e, R r) {
                e.AfterImage_Wave(c.count, d % 2, d, r.left, r.top, r.right, r.bottom, c.amplitude,
                                  c.wavelength, 30, 60);
            });
            EXPECT_TRUE(waved == afterImageModel(picture, c.count, d % 2,
                                                 wave(c.amplitude, c.wavelength, d)))
                << "wave " << c.width << " amplitude " << c.amplitude << " direction " << +d;
            const Surface rippled = run(picture, [&](Class_Soften& e, R r) {
                e.AfterImage_Ripple(c.count, d % 2, d, r.left, r.top, r.right, r.bottom,
                                    c.amplitude, c.wavelength, 30, 60);
            });
            EXPECT_TRUE(rippled == afterImageModel(picture, c.count, d % 2,
                                                   ripple(c.amplitude, c.wavelength, d, cx, cy)))
                << "ripple " << c.width << " amplitude " << c.amplitude << " direction " << +d;
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(Soften, AfterImageSumsWrapAtSixteenBits) {
    // No displacement: every sample is the white pixel itself. 9 + 1
    // samples stay white; 200 + 1 sum to 51255, which wraps below zero.
    const Surface white(5, 5, makePixel(255, 255, 255));
    for (const auto& [count, expected] : {std::pair{9, 255}, std::pair{200, 0}}) {
        const Surface result = run(white, [count](Class_Soften& e, R r) {
            e.AfterImage_Wave(static_cast<std::int16_t>(count), 0, 2, r.left, r.top, r.right,
                              r.bottom, 0, 32, 50, 50);
        });
        EXPECT_EQ(result.at(2, 2), makePixel(expected, expected, expected)) << count;
    }
}

TEST_F(Soften, ADivisionByZeroEndsTheRunAsCancelled) {
    // Amplitude 0 of the vortex, wavelength 0 of the wave: the infinity
    // fails at the rounding. A count of -1 divides by no samples.
    const std::pair<Call, int> cases[] = {
        {[](Class_Soften& e, R r) {
             e.AfterImage_Vortex(9, 0, 0, r.left, r.top, r.right, r.bottom, 0, 50, 50);
         },
         EffectError::OverflowNumber},
        {[](Class_Soften& e, R r) {
             e.AfterImage_Wave(9, 0, 0, r.left, r.top, r.right, r.bottom, 12, 0, 50, 50);
         },
         EffectError::OverflowNumber},
        {[](Class_Soften& e, R r) {
             e.AfterImage_Ripple(-1, 0, 0, r.left, r.top, r.right, r.bottom, 12, 32, 50, 50);
         },
         EffectError::DivisionByZeroNumber},
    };
    for (const auto& [call, number] : cases) {
        cancel = 0;
        context.failures.clear();
        (void)run(randomPicture(8, 8), call);
        EXPECT_TRUE(context.cancelled()) << number;
        ASSERT_EQ(context.failures.size(), 1u);
        EXPECT_EQ(context.failures.front().number(), number);
    }
}

TEST_F(Soften, SpecialSoftenBlursAlongItsShape) {
    // Stripes along the rows: a horizontal line of samples changes nothing,
    // a vertical one mixes the stripes; a circle about the centre runs
    // along the rows above and below it but across them left and right.
    const Surface rows = makePicture(21, 21, [](int, int y) {
        return y % 2 == 0 ? makePixel(200, 0, 40) : makePixel(0, 200, 40);
    });
    auto special = [](int level, int type) {
        return [=](Class_Soften& e, R r) {
            e.Soften_Circle(0, static_cast<std::int16_t>(level), r.left, r.top, r.right, r.bottom,
                            static_cast<std::uint8_t>(type));
        };
    };
    const Pixel mixed = makePixel(120, 80, 40); // rows 8..12: three even, two odd
    EXPECT_TRUE(run(rows, special(5, 2)) == rows);
    EXPECT_EQ(run(rows, special(5, 3)).at(10, 10), mixed);
    const Surface circle = run(rows, special(5, 0));
    EXPECT_EQ(circle.at(10, 4), rows.at(10, 4));
    EXPECT_EQ(circle.at(4, 10), mixed);
    // Level 1, or a type beyond the list, leaves the picture.
    const Surface picture = randomPicture(9, 9);
    EXPECT_TRUE(run(picture, special(1, 4)) == picture);
    EXPECT_TRUE(run(picture, special(5, 13)) == picture);
}

TEST_F(Soften, SelectiveAveragingKeepsEdgesAndSoftensSpecks) {
    const Surface edge =
        makePicture(12, 12, [](int x, int) { return x < 6 ? 0u : makePixel(250, 250, 250); });
    const Surface speck = makePicture(
        12, 12, [](int x, int y) { return makePixel(x == 6 && y == 6 ? 255 : 100, 100, 100); });
    for (const std::uint8_t measure : {0, 1}) {
        const Call call = [measure](Class_Soften& e, R r) {
            e.Edge_PreservingSmoothing(measure, r.left, r.top, r.right, r.bottom);
        };
        EXPECT_TRUE(run(edge, call) == edge) << +measure;
        // Every sub-window holds the centre: the quietest, the 3x3, averages it.
        EXPECT_EQ(run(speck, call).at(6, 6), makePixel(117, 100, 100)) << +measure;
    }
}

} // namespace
} // namespace lumiran::testing
