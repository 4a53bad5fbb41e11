// The afterimages against the formulas worked out sample by sample, the
// 16-bit sums, the failing amplitude, and the two shapes left to us.
#include "soften_fixture.h"

#include <cmath>
#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using Soften = SoftenFixture;

struct Point {
    double x, y;
};

// Sample j of pixel (x, y) before the bounds, by the text of each effect.
using Displace = std::function<Point(int x, int y, int j)>;

Surface afterImageModel(const Surface& in, int count, int type, const Displace& displace) {
    Surface out = in;
    for (int x = 1; x < in.width() - 1; ++x) {
        for (int y = 1; y < in.height() - 1; ++y) {
            int s[3] = {0, 0, 0};
            int first[3] = {0, 0, 0};
            for (int j = 0; j <= count; ++j) {
                const Point p = displace(x, y, j);
                int xj = static_cast<int>(std::nearbyint(p.x));
                int yj = static_cast<int>(std::nearbyint(p.y));
                if (xj < 0) xj = x;
                if (yj < 0) yj = y;
                if (xj > in.width() - 1) xj = x;
                if (yj > in.height() - 1) yj = y;
                const Pixel e = in.at(xj, yj);
                const int c[3] = {redOf(e), greenOf(e), blueOf(e)};
                for (int k = 0; k < 3; ++k) {
                    s[k] = static_cast<std::int16_t>(s[k] + c[k]);
                    if (j == 0) first[k] = c[k];
                }
            }
            int v[3];
            for (int k = 0; k < 3; ++k)
                v[k] = s[k] / (count + 1);
            if (type == 1) {
                const int d = (std::abs(v[0] - first[0]) + std::abs(v[1] - first[1]) +
                               std::abs(v[2] - first[2])) /
                              3;
                const int w = std::min(d, 128);
                for (int k = 0; k < 3; ++k)
                    v[k] = (s[k] - first[k] + w * first[k]) / (count + w);
            }
            const Rgb16 r =
                clampResult({static_cast<std::int16_t>(v[0]), static_cast<std::int16_t>(v[1]),
                             static_cast<std::int16_t>(v[2])});
            out.at(x, y) = withColour(out.at(x, y), r.red, r.green, r.blue);
        }
    }
    return out;
}

Displace wave(double a, double w, int direction) {
    return [=](int x, int y, int j) {
        double xj = x + j, yj = y + j;
        xj = std::nearbyint(a * std::cos(xj * 6.28 / w) + a * std::sin(yj * 6.28 / w) + x);
        yj = std::nearbyint(a * std::cos(yj * 6.28 / w) + a * std::sin(xj * 6.28 / w) + y);
        if (direction == 0) yj = y;
        if (direction == 1) xj = x;
        return Point{xj, yj};
    };
}

// The centre of a whole picture of the given size at 30 % and 60 %.
constexpr double CentreX(int width) {
    return width / 100.0 * 30;
}
constexpr double CentreY(int height) {
    return height / 100.0 * 60;
}

Displace ripple(double a, double wavelength, int direction, double cx, double cy) {
    return [=](int x, int y, int j) {
        const double t =
            std::sqrt(0.6 * std::pow(x - cx, 2) + std::pow(y - cy, 2)) * (1.0 - wavelength / 100);
        const double xj = x + j + a / 5.0 * std::sin(t);
        const double yj = y + j + a / 8.0 * std::sin(t);
        return direction == 0   ? Point{xj, double(y)}
               : direction == 1 ? Point{double(x), yj}
                                : Point{xj, yj};
    };
}

Displace vortex(double a, int direction, double cx, double cy) {
    return [=](int x, int y, int j) {
        const double dx = x + j - cx, dy = y + j - cy;
        const double t = std::sqrt(0.6 * dx * dx + dy * dy) / (a / 4.0) / 3.14;
        const double xj = std::sin(t) * dx + cx - std::cos(t) * dy;
        const double yj = std::cos(t) * dx + cy + std::sin(t) * dy;
        return direction == 0   ? Point{xj, double(y)}
               : direction == 1 ? Point{double(x), yj}
                                : Point{xj, yj};
    };
}

TEST_F(Soften, AfterImagesMatchTheirFormulas) {
    const Surface picture = randomPicture(37, 29);
    const double cx = std::nearbyint(CentreX(37)), cy = std::nearbyint(CentreY(29));
    for (int type = 0; type <= 1; ++type) {
        for (int direction = 0; direction <= 2; ++direction) {
            const auto t = static_cast<std::uint8_t>(type);
            const auto d = static_cast<std::uint8_t>(direction);
            const Surface waved = run(picture, [&](Class_Soften& e, const ProcessRect& r) {
                e.AfterImage_Wave(9, t, d, r.left, r.top, r.right, r.bottom, 12, 32, 30, 60);
            });
            EXPECT_TRUE(waved == afterImageModel(picture, 9, type, wave(12, 32, direction)))
                << "wave " << type << direction;
            const Surface rippled = run(picture, [&](Class_Soften& e, const ProcessRect& r) {
                e.AfterImage_Ripple(5, t, d, r.left, r.top, r.right, r.bottom, 62, 62, 30, 60);
            });
            EXPECT_TRUE(rippled ==
                        afterImageModel(picture, 5, type, ripple(62, 62, direction, cx, cy)))
                << "ripple " << type << direction;
            // 300 samples take the path without the cache of turned rows.
            for (const int count : {9, 300}) {
                const Surface turned = run(picture, [&](Class_Soften& e, const ProcessRect& r) {
                    e.AfterImage_Vortex(static_cast<std::int16_t>(count), t, d, r.left, r.top,
                                        r.right, r.bottom, 42, 30, 60);
                });
                EXPECT_TRUE(turned ==
                            afterImageModel(picture, count, type, vortex(42, direction, cx, cy)))
                    << "vortex " << type << direction << " " << count;
            }
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(Soften, AfterImageSumsWrapAtSixteenBits) {
    // No displacement: every sample is the white pixel itself. 9 + 1
    // samples stay white; 200 + 1 sum to 51255, which wraps below zero.
    const Surface white(5, 5, makePixel(255, 255, 255));
    auto still = [](int count) {
        return [count](Class_Soften& e, const ProcessRect& r) {
            e.AfterImage_Wave(static_cast<std::int16_t>(count), 0, 2, r.left, r.top, r.right,
                              r.bottom, 0, 32, 50, 50);
        };
    };
    EXPECT_EQ(run(white, still(9)).at(2, 2), white.at(2, 2));
    EXPECT_EQ(run(white, still(200)).at(2, 2), makePixel(0, 0, 0));
}

TEST_F(Soften, ADivisionByZeroEndsTheRunAsCancelled) {
    // The vortex divides by its amplitude, the wave by its wavelength: the
    // infinity fails at the rounding. A count of -1 divides by no samples.
    const Surface picture = randomPicture(8, 8);
    const Call calls[] = {
        [](Class_Soften& e, const ProcessRect& r) {
            e.AfterImage_Vortex(9, 0, 0, r.left, r.top, r.right, r.bottom, 0, 50, 50);
        },
        [](Class_Soften& e, const ProcessRect& r) {
            e.AfterImage_Wave(9, 0, 0, r.left, r.top, r.right, r.bottom, 12, 0, 50, 50);
        },
        [](Class_Soften& e, const ProcessRect& r) {
            e.AfterImage_Ripple(-1, 0, 0, r.left, r.top, r.right, r.bottom, 12, 32, 50, 50);
        },
    };
    const int numbers[] = {EffectError::OverflowNumber, EffectError::OverflowNumber,
                           EffectError::DivisionByZeroNumber};
    for (int i = 0; i < 3; ++i) {
        cancel = 0;
        context.failures.clear();
        (void)run(picture, calls[i]);
        EXPECT_TRUE(context.cancelled()) << i;
        EXPECT_EQ(failureNumber(), numbers[i]) << i;
    }
}

TEST_F(Soften, SpecialSoftenBlursAlongItsShape) {
    // Stripes along the rows: a horizontal line of samples changes nothing,
    // a vertical one mixes the stripes; a circle around the centre runs
    // along the rows above and below the centre but across them left and
    // right of it.
    const Surface rows = makePicture(21, 21, [](int, int y) {
        return y % 2 == 0 ? makePixel(200, 0, 40) : makePixel(0, 200, 40);
    });
    auto special = [](int type) {
        return [type](Class_Soften& e, const ProcessRect& r) {
            e.Soften_Circle(0, 5, r.left, r.top, r.right, r.bottom,
                            static_cast<std::uint8_t>(type));
        };
    };
    const Pixel mixed = makePixel(120, 80, 40); // rows 8..12: three even, two odd
    EXPECT_TRUE(run(rows, special(2)) == rows);
    EXPECT_EQ(run(rows, special(3)).at(10, 10), mixed);
    const Surface circle = run(rows, special(0));
    EXPECT_EQ(circle.at(10, 4), rows.at(10, 4));
    EXPECT_EQ(circle.at(4, 10), mixed);
    // Level 1, or a type beyond the list, leaves the picture.
    const Surface picture = randomPicture(9, 9);
    EXPECT_TRUE(run(picture, [](Class_Soften& e, const ProcessRect& r) {
                    e.Soften_Circle(0, 1, r.left, r.top, r.right, r.bottom, 4);
                }) == picture);
    EXPECT_TRUE(run(picture, special(13)) == picture);
}

TEST_F(Soften, SelectiveAveragingKeepsEdgesAndSoftensSpecks) {
    const Surface edge =
        makePicture(12, 12, [](int x, int) { return x < 6 ? 0u : makePixel(250, 250, 250); });
    const Surface speck = makePicture(
        12, 12, [](int x, int y) { return makePixel(x == 6 && y == 6 ? 255 : 100, 100, 100); });
    for (const std::uint8_t measure : {0, 1}) {
        const Call call = [measure](Class_Soften& e, const ProcessRect& r) {
            e.Edge_PreservingSmoothing(measure, r.left, r.top, r.right, r.bottom);
        };
        EXPECT_TRUE(run(edge, call) == edge) << int(measure);
        // Every sub-window holds the centre: the quietest, the 3x3, averages it.
        EXPECT_EQ(run(speck, call).at(6, 6), makePixel(117, 100, 100)) << int(measure);
    }
}

} // namespace
} // namespace lumiran::testing
