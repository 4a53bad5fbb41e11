// Scatterize, Sway 2 and Nebura against their rules written out plainly,
// pixel by pixel or block by block: their fast paths (draws taken a row at
// a time, the trigonometric kernel inline, blocks drawn by rows of the
// target on several threads) must give the same picture.
#include "effects/geometry/vector_trig.h"
#include "engine/drawing/drawing.h"
#include "engine/numeric.h"
#include "geometry_fixture.h"

#include <cmath>
#include <span>
#include <string>
#include <vector>

namespace lumiran::testing {
namespace {

using G = Class_Geometry;

const ProcessRect Rects[] = {{0, 0, 37, 29}, {-5, 4, 21, 40}, {9, -3, 60, 18}};

std::string nameOf(const ProcessRect& r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) +
           "," + std::to_string(r.bottom);
}

struct WarpPaths : GeometryFixture {
    Surface picture = positionPicture(37, 29);

    // A warp pixel by pixel through the one-pixel sampler.
    Surface sampled(const ProcessRect& r, const std::function<void(G&, int, int)>& pixel) {
        return warp(picture, r, [&](G& e, const ProcessRect& rect) {
            for (int y = std::max<int>(rect.top, 0);
                 y < std::min<int>(rect.bottom, picture.height()); ++y)
                for (int x = std::max<int>(rect.left, 0);
                     x < std::min<int>(rect.right, picture.width()); ++x)
                    pixel(e, x, y);
        });
    }
};

TEST_F(WarpPaths, ScatterizeDrawsXThenYForEveryPixelInRowOrder) {
    // A tall picture on three threads in bands of a row or two: its rows
    // draw from several places of the sequence at once.
    const Surface tall = positionPicture(23, 75);
    const ProcessRect TallRects[] = {{0, 0, 23, 75}, {3, -6, 19, 70}};
    for (const bool isTall : {false, true}) {
        if (isTall) {
            picture = tall;
            context.threading = {3, 23};
        }
        for (const ProcessRect& r : isTall ? std::span<const ProcessRect>(TallRects)
                                           : std::span<const ProcessRect>(Rects)) {
            for (const std::uint8_t direction : {0, 1, 2}) {
                for (const std::int16_t range : {8, 0, -5}) {
                    random = RandomGenerator();
                    const Surface fast = warp(picture, r, [&](G& e, const ProcessRect& rect) {
                        e.Scatterize(direction, range, rect.left, rect.top, rect.right,
                                     rect.bottom);
                    });
                    const std::uint32_t after = random.state();
                    random = RandomGenerator();
                    const auto offset = [&] {
                        return static_cast<double>(
                            roundTo<std::int32_t>((range + 1) * random.next() - range / 2.0));
                    };
                    const Surface plain = sampled(r, [&](G& e, int x, int y) {
                        const double mx = direction == 1 ? x : x + offset();
                        const double my = direction == 0 ? y : y + offset();
                        e.WarpSample(direction, x, y, mx, my, r.left, r.top, r.right, r.bottom);
                    });
                    const std::string what = nameOf(r) + " direction " + std::to_string(direction) +
                                             " range " + std::to_string(range);
                    EXPECT_EQ(fast, plain) << what;
                    EXPECT_EQ(after, random.state()) << what;
                    // With TransBits left to the call, the rows and columns
                    // outside the rectangle still come from the source.
                    random = RandomGenerator();
                    Class_Geometry own(context);
                    own.ImageGetDiBits(picture);
                    own.Scatterize(direction, range, r.left, r.top, r.right, r.bottom);
                    Surface unfetched;
                    own.ImageSetDiBitsTrans(unfetched);
                    EXPECT_EQ(unfetched, fast) << what << " unfetched";
                }
            }
        }
    }
}

// Sway 2 from the rule: x1 = A f(y1 w) + x, y1 = A f(x1 w) + y (the kinds
// "2" of their own coordinate), with the row functions of vector_trig.
double wave(int kind, bool horizontal, double amplitude, double angle) {
    // The waves of the eleven kinds: 0 sin, 1 cos, 2 tan, 3 |sin|, 4 sin + cos.
    static constexpr int Waves[11][2] = {{0, 0}, {1, 1}, {2, 2}, {0, 1}, {3, 3}, {0, 0},
                                         {1, 1}, {2, 2}, {0, 1}, {4, 4}, {3, 3}};
    const int w = Waves[kind][horizontal ? 0 : 1];
    double s = 0, c = 0;
    trig::sinCos(std::span(&angle, 1), std::span(&s, 1), std::span(&c, 1));
    double v = 0;
    trig::byFunction(w == 3 ? 0 : w == 4 ? 0 : w, std::span(&angle, 1), std::span(&v, 1));
    if (w == 3) v = std::abs(v);
    if (w == 4) v = s + c;
    return amplitude * v;
}

TEST_F(WarpPaths, Sway2FollowsItsRoundsForEveryKind) {
    struct Case {
        std::int16_t amplitude;
        std::int16_t period;
        std::uint8_t iterations;
    };
    // Period 3 drives tan to huge values, whose next angles the library
    // takes; a negative period turns the waves round.
    for (const Case c : {Case{12, 36, 0}, Case{12, 36, 3}, Case{40, 3, 2}, Case{7, -20, 1}}) {
        for (std::uint8_t kind = 0; kind < 11; ++kind) {
            const bool own = kind >= 5 && kind != 9;
            const ProcessRect& r = Rects[kind % 3];
            const Surface fast = warp(picture, r, [&](G& e, const ProcessRect& rect) {
                e.Sway2(2, kind, c.amplitude, c.period, rect.left, rect.top, rect.right,
                        rect.bottom, c.iterations);
            });
            const Surface plain = sampled(r, [&](G& e, int x, int y) {
                const auto angle = [&](double v) { return v * 6.2831 / c.period; };
                double x1 = x, y1 = y;
                for (int round = 0; round <= c.iterations + 1; ++round) {
                    const double newX = wave(kind, true, c.amplitude, angle(own ? x1 : y1)) + x;
                    const double from = own ? y1 : round == 0 ? x : newX;
                    y1 = wave(kind, false, c.amplitude, angle(from)) + y;
                    x1 = newX;
                }
                e.WarpSample(2, x, y, x1, y1, r.left, r.top, r.right, r.bottom);
            });
            EXPECT_EQ(fast, plain) << "kind " << int{kind} << " period " << c.period
                                   << " iterations " << int{c.iterations};
        }
    }
}

// Nebura block by block: each 2 x 2 block of the rectangle, columns
// outside and rows inside, goes by one BitBlt to its swirled place.
Surface neburaByBlocks(const Surface& picture, double radius, int shift, const ProcessRect& r) {
    Surface target(picture.width(), picture.height());
    Cls(target, RGB(0, 0, 0));
    const double cx = wrap16(r.right - r.left) / 2.0 + r.left;
    const double cy = wrap16(r.bottom - r.top) / 2.0 + r.top;
    for (int x = r.left; x < r.right; x += 2) {
        for (int y = r.top; y < r.bottom; y += 2) {
            const double dx = x - cx, dy = y - cy;
            double t = std::sqrt(dx * dx + dy * dy) / (radius / 4) / 3.14159;
            double s = 0, c = 0;
            trig::sinCos(std::span(&t, 1), std::span(&s, 1), std::span(&c, 1));
            const double mx = std::clamp(dx * s + cx - dy * c + shift, static_cast<double>(r.left),
                                         static_cast<double>(r.right - 1));
            const double my =
                std::clamp(dx * c + cy + dy * s + shift * 0.5, static_cast<double>(r.top),
                           static_cast<double>(r.bottom - 1));
            BitBlt(target, roundTo<std::int32_t>(mx), roundTo<std::int32_t>(my), 2, 2, picture, x,
                   y, SRCCOPY);
        }
    }
    return target;
}

TEST_F(WarpPaths, NeburaDrawsItsBlocksInOrderOnAnyNumberOfThreads) {
    const Surface black(37, 29);
    for (const int threads : {1, 2, 3}) {
        context.threading = {.threads = threads, .bandPixels = 1};
        for (const ProcessRect& r : Rects) {
            for (const auto& [radius, shift] : {std::pair{42.0, 0}, {5.0, 7}, {-9.0, -3}}) {
                const Surface fast = drawn(picture, black, [&](G& e, const ProcessRect&) {
                    e.Nebura(radius, static_cast<std::int16_t>(shift), r.left, r.top, r.right,
                             r.bottom);
                });
                EXPECT_EQ(fast, neburaByBlocks(picture, radius, shift, r))
                    << nameOf(r) << " radius " << radius << " threads " << threads;
            }
        }
    }
}

} // namespace
} // namespace lumiran::testing
