// The sample blurs and diffusion of Class_Geometry: the mean and its
// rounding, the fallback of samples outside the rectangle, the passes.
#include "effects/geometry/blur_passes.h"
#include "geometry_fixture.h"

#include <array>
#include <utility>
#include <vector>

namespace lumiran::testing {
namespace {

using Blurs = GeometryFixture;

// A picture whose red is its own value v(x, y) = 10 x + 3 y (small sizes),
// green and blue fixed.
Surface valuePicture(int width, int height) {
    return makePicture(width, height,
                       [](int x, int y) { return makePixel(10 * x + 3 * y, 50, 9); });
}

// The means by multiplication against the plain quotients, over every sum
// of up to five channels.
TEST(BlurMean, MatchesTheQuotients) {
    for (std::uint32_t sum = 0; sum <= 5 * 255; ++sum) {
        const std::uint32_t half = sum / 2 + ((sum % 2 == 1 && (sum / 2) % 2 == 1) ? 1 : 0);
        ASSERT_EQ(blur::mean(sum, 2), half) << sum;
        ASSERT_EQ(blur::mean(sum, 3), sum / 3) << sum;
        ASSERT_EQ(blur::mean(sum, 5), sum / 5) << sum;
    }
}

// A blur distance beyond the rectangle makes every sample the pixel itself.
TEST_F(Blurs, DistanceBeyondTheRectangleChangesNothing) {
    const Surface picture = valuePicture(7, 5);
    for (std::uint8_t direction = 0; direction < 4; ++direction) {
        EXPECT_EQ(warp(picture,
                       [=](Class_Geometry& e, const ProcessRect& r) {
                           e.Blur_Normal(direction, 9, r.left, r.top, r.right, r.bottom);
                       }),
                  picture)
            << +direction;
    }
    // A radius of 0 runs no pass.
    EXPECT_EQ(warp(picture,
                   [](Class_Geometry& e, const ProcessRect& r) {
                       e.Blur_Gaussian(2, 0, r.left, r.top, r.right, r.bottom);
                   }),
              picture);
}

// Mean of three, truncated; a sample outside falls back on that axis to the
// pixel's own coordinate, not to the edge.
TEST_F(Blurs, NormalMeanAndFallback) {
    const Surface picture = valuePicture(7, 5);
    const auto v = [](int x, int y) { return 10 * x + 3 * y; };
    struct Case {
        std::uint8_t direction;
        int x, y;
        int expected;
    };
    const Case cases[] = {
        {0, 3, 2, (v(5, 2) + v(3, 2) + v(1, 2)) / 3},
        {0, 0, 2, (v(2, 2) + v(0, 2) + v(0, 2)) / 3}, // left sample falls back
        {1, 4, 1, (v(4, 3) + v(4, 1) + v(4, 1)) / 3}, // upper sample falls back
        {2, 5, 4, (v(5, 4) + v(3, 2) + v(5, 4)) / 3}, // (7, 6) outside on both axes
        {2, 1, 4, (v(3, 4) + v(1, 4) + v(1, 2)) / 3}, // (3, 6): own row; (-1, 2): own column
        {3, 6, 1, (v(4, 3) + v(6, 1) + v(6, 1)) / 3}, // (8, -1): own pixel
    };
    for (const Case& c : cases) {
        const Surface result = warp(picture, [&](Class_Geometry& e, const ProcessRect& r) {
            e.Blur_Normal(c.direction, 2, r.left, r.top, r.right, r.bottom);
        });
        EXPECT_EQ(redOf(result.at(c.x, c.y)), c.expected)
            << +c.direction << " at " << c.x << "," << c.y;
        EXPECT_EQ(greenOf(result.at(c.x, c.y)), 50);
    }
}

// Kinds 0..7 round the mean of two half to even; passes run from the radius
// down to 1, each over the last.
TEST_F(Blurs, GaussianRoundsAndShrinks) {
    Surface row(4, 1);
    const int values[] = {3, 4, 5, 9};
    for (int x = 0; x < 4; ++x)
        row.at(x, 0) = makePixel(values[x], 0, 0);
    const auto gaussian = [&](std::uint8_t kind, std::int16_t radius) {
        return warp(row, [=](Class_Geometry& e, const ProcessRect& r) {
            e.Blur_Gaussian(kind, radius, r.left, r.top, r.right, r.bottom);
        });
    };
    const Surface once = gaussian(2, 1);     // the sample to the right
    const int expectedOnce[] = {4, 4, 7, 9}; // 3.5 -> 4, 4.5 -> 4, 7, own
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(redOf(once.at(x, 0)), expectedOnce[x]) << x;
    // Radius 2: first d = 2 ((3+5)/2=4, (4+9)/2=6.5->6, 5, 9), then d = 1.
    const Surface twice = gaussian(2, 2);
    const int expectedTwice[] = {5, 6, 7, 9}; // (4+6)/2, 5.5 -> 6, (5+9)/2, 9
    for (int x = 0; x < 4; ++x)
        EXPECT_EQ(redOf(twice.at(x, 0)), expectedTwice[x]) << x;
    // The vertical kinds on a single row sample the pixel itself.
    EXPECT_EQ(gaussian(0, 3), row);
    EXPECT_EQ(gaussian(9, 3), row);
}

// The passes as written, pixel by pixel, against the row loops with their
// fast middle and fallback edges.
TEST_F(Blurs, GaussianMatchesThePasses) {
    const Surface picture = makePicture(40, 300, [](int x, int y) {
        return makePixel((x * 37 + y * 11) % 256, (x * y) % 251, (x + 3 * y) % 7 * 30);
    });
    struct Kind {
        std::uint8_t kind;
        std::vector<std::pair<int, int>> steps; // unit offsets of the samples
    };
    const Kind kinds[] = {{1, {{0, 1}}}, {3, {{-1, 0}}}, {9, {{0, 1}, {0, -1}}}};
    for (const Kind& k : kinds) {
        Surface expected = picture;
        for (int d = 3; d >= 1; --d) {
            const Surface in = expected;
            for (int y = 0; y < in.height(); ++y) {
                for (int x = 0; x < in.width(); ++x) {
                    int sums[3] = {redOf(in.at(x, y)), greenOf(in.at(x, y)), blueOf(in.at(x, y))};
                    for (const auto& [ux, uy] : k.steps) {
                        int sx = x + ux * d, sy = y + uy * d;
                        if (sx < 0 || sx >= in.width()) sx = x;
                        if (sy < 0 || sy >= in.height()) sy = y;
                        const Pixel v = in.at(sx, sy);
                        sums[0] += redOf(v);
                        sums[1] += greenOf(v);
                        sums[2] += blueOf(v);
                    }
                    const auto mean = [&](int s) {
                        return static_cast<int>(blur::mean(static_cast<std::uint32_t>(s),
                                                           static_cast<int>(k.steps.size()) + 1));
                    };
                    expected.at(x, y) = makePixel(mean(sums[0]), mean(sums[1]), mean(sums[2]));
                }
            }
        }
        const Surface result = warp(picture, [&](Class_Geometry& e, const ProcessRect& r) {
            e.Blur_Gaussian(k.kind, 3, r.left, r.top, r.right, r.bottom);
        });
        EXPECT_EQ(result, expected) << +k.kind;
    }
}

// The map blurs follow their map: the rows nearest the top edge of the
// "from the top" map are not blurred at all, lower rows are.
TEST_F(Blurs, MapDecidesTheLength) {
    const Surface picture = valuePicture(20, 20);
    for (int mode = 0; mode < 2; ++mode) {
        const Surface result = warp(picture, [&](Class_Geometry& e, const ProcessRect& r) {
            if (mode == 0) {
                e.Blur_Circle(0, 12, r.left, r.top, r.right, r.bottom, 7);
            } else {
                e.Blur_CircleSoften(2, 12, r.left, r.top, r.right, r.bottom, 7);
            }
        });
        EXPECT_EQ(result.at(5, 0), picture.at(5, 0)) << mode;
        EXPECT_NE(result.at(5, 19), picture.at(5, 19)) << mode;
    }
}

// A flat picture has no outline to diffuse; a step bends only near it.
TEST_F(Blurs, DiffuseOutlineMovesOnlyAtEdges) {
    const Surface flat(9, 9, makePixel(40, 40, 40));
    Surface step = makePicture(
        9, 9, [](int x, int) { return x < 4 ? makePixel(10, 10, 10) : makePixel(13, 13, 13); });
    for (std::uint8_t kind = 0; kind < 3; ++kind) {
        const auto outline = [&](const Surface& picture, int type) {
            return warp(picture, [=](Class_Geometry& e, const ProcessRect& r) {
                if (type == 1) {
                    e.DiffuseOutline1(kind, r.left, r.top, r.right, r.bottom);
                } else {
                    e.DiffuseOutline2(kind, r.left, r.top, r.right, r.bottom);
                }
            });
        };
        EXPECT_EQ(outline(flat, 1), flat) << +kind;
        EXPECT_EQ(outline(flat, 2), flat) << +kind;
    }
    // Kind 0: column 3 is darker by 3 than its right neighbour, so it takes
    // the pixel 3 to the left; elsewhere nothing moves.
    step.at(0, 2) = makePixel(11, 10, 9); // mean 10, a marker at column 0
    const Surface result = warp(step, [](Class_Geometry& e, const ProcessRect& r) {
        e.DiffuseOutline1(0, r.left, r.top, r.right, r.bottom);
    });
    EXPECT_EQ(result.at(3, 2), step.at(0, 2));
    EXPECT_EQ(result.at(2, 2), step.at(2, 2));
    EXPECT_EQ(result.at(5, 2), step.at(5, 2));
}

// The below-right neighbour of a pixel on the last column or row lies
// outside: the pixel itself stands in for it, not the pixel below or to the
// right, so there is no step to follow. Brighter pixels sit where the
// per-axis neighbour would be, markers where the step would lead.
TEST_F(Blurs, DiffuseOutlineNeighbourOutsideIsThePixel) {
    Surface picture(9, 9, makePixel(40, 40, 40));
    picture.at(8, 5) = makePixel(43, 43, 43);
    picture.at(4, 8) = makePixel(43, 43, 43);
    for (const auto& [x, y] : {std::pair{5, 1}, {8, 1}, {0, 5}, {3, 5}})
        picture.at(x, y) = makePixel(200, 0, 0);
    struct Case {
        int type, x, y;
    };
    for (const Case c : {Case{1, 8, 4}, {2, 8, 4}, {1, 3, 8}, {2, 3, 8}}) {
        const Surface result = warp(picture, [&](Class_Geometry& e, const ProcessRect& r) {
            if (c.type == 1) {
                e.DiffuseOutline1(2, r.left, r.top, r.right, r.bottom);
            } else {
                e.DiffuseOutline2(2, r.left, r.top, r.right, r.bottom);
            }
        });
        EXPECT_EQ(result.at(c.x, c.y), picture.at(c.x, c.y))
            << "type " << c.type << " at " << c.x << "," << c.y;
    }
}

// Both outlines against the rule pixel by pixel, every kind, on rows split
// among threads, over the whole picture and an inner rectangle whose last
// row and column have neighbours outside it. Channels within a narrow band
// keep most moves inside the rectangle.
TEST_F(Blurs, DiffuseOutlinesFollowTheRuleOnThreads) {
    context.threading = {3, 500};
    std::uint32_t seed = 12345;
    const Surface picture = makePicture(61, 47, [&](int, int) {
        seed = seed * 1103515245u + 12345u;
        const auto v = [&](int shift) { return 90 + static_cast<int>((seed >> shift) % 40); };
        return makePixel(v(8), v(14), v(20));
    });
    const auto model = [&](int kind, bool byBlue, const ProcessRect& r) {
        Surface out = picture;
        const int right = std::min<int>(r.right, picture.width());
        const int bottom = std::min<int>(r.bottom, picture.height());
        const auto within = [](int own, int moved, int first, int end) {
            return moved >= first && moved < end ? moved : own;
        };
        const int dx = kind == 1 ? 0 : 1, dy = kind == 0 ? 0 : 1;
        for (int y = r.top; y < bottom; ++y) {
            for (int x = r.left; x < right; ++x) {
                const Pixel p = picture.at(x, y);
                const bool inside = x + dx < right && y + dy < bottom;
                const Pixel n = inside ? picture.at(x + dx, y + dy) : p;
                const int m2 = (redOf(n) + greenOf(n) + blueOf(n) + 1) / 3;
                const int m = (redOf(p) + greenOf(p) + blueOf(p)) / 3;
                const int d = byBlue ? blueOf(p) - m2 : m - m2;
                const int sx = byBlue || dx == 0 ? x : within(x, x + d, r.left, right);
                const int sy = byBlue || dy != 0 ? within(y, y + d, r.top, bottom) : y;
                out.at(x, y) = picture.at(sx, sy);
            }
        }
        return out;
    };
    for (const ProcessRect rect : {ProcessRect{0, 0, 61, 47}, ProcessRect{7, 5, 50, 40}}) {
        for (std::uint8_t kind = 0; kind < 3; ++kind) {
            for (const bool byBlue : {false, true}) {
                const Surface result =
                    warp(picture, rect, [&](Class_Geometry& e, const ProcessRect& r) {
                        if (byBlue) {
                            e.DiffuseOutline2(kind, r.left, r.top, r.right, r.bottom);
                        } else {
                            e.DiffuseOutline1(kind, r.left, r.top, r.right, r.bottom);
                        }
                    });
                EXPECT_EQ(result, model(kind, byBlue, rect))
                    << "kind " << +kind << (byBlue ? " by blue" : "") << " rect " << rect.left;
            }
        }
    }
}

// 1x1 pictures and rectangles beyond the picture: every sample stays in the
// array, and a single pixel has only itself to mix with.
TEST_F(Blurs, BadRectangles) {
    // Each operation on the rectangle q, whatever rectangle the run has.
    using Operation = void (*)(Class_Geometry&, const ProcessRect&);
    const Operation operations[] = {
        [](Class_Geometry& e, const ProcessRect& q) {
            e.Blur_Normal(3, 4, q.left, q.top, q.right, q.bottom);
        },
        [](Class_Geometry& e, const ProcessRect& q) {
            e.Blur_Gaussian(8, 3, q.left, q.top, q.right, q.bottom);
        },
        [](Class_Geometry& e, const ProcessRect& q) {
            e.Blur_Circle(2, 40, q.left, q.top, q.right, q.bottom, 11);
        },
        [](Class_Geometry& e, const ProcessRect& q) {
            e.Blur_CircleSoften(10, 5, q.left, q.top, q.right, q.bottom, 2);
        },
        [](Class_Geometry& e, const ProcessRect& q) {
            e.DiffuseOutline1(2, q.left, q.top, q.right, q.bottom);
        },
        [](Class_Geometry& e, const ProcessRect& q) {
            e.DiffuseOutline2(1, q.left, q.top, q.right, q.bottom);
        },
        [](Class_Geometry& e, const ProcessRect& q) {
            e.Diffuse_Color(100, q.left, q.top, q.right, q.bottom, 3, -3, 40, 0, 0, 9);
        },
    };
    const Surface one = valuePicture(1, 1);
    const Surface picture = valuePicture(6, 4);
    for (std::size_t i = 0; i < std::size(operations); ++i) {
        const auto on = [&](ProcessRect q) -> Call {
            return [&, q](Class_Geometry& e, const ProcessRect&) { operations[i](e, q); };
        };
        EXPECT_EQ(warp(one, on({0, 0, 1, 1})), one) << i;
        warp(picture, on({-5, -5, 50, 50}));
        EXPECT_EQ(warp(picture, on({10, 10, 20, 20})), picture) << i;
        EXPECT_TRUE(context.failures.empty()) << i;
    }
}

} // namespace
} // namespace lumiran::testing
