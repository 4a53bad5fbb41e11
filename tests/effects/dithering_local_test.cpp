// The dot pattern, the local-mean thresholders, the gathering diffusion and
// the random dither.
#include "effects/halftone/dithering/level_tables.h"
#include "halftone_fixture.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lumiran::testing {
namespace {

using Local = HalftoneFixture<Class_Dithering>;

Surface flat(int width, int height, int r, int g, int b) {
    return Surface(width, height, makePixel(r, g, b));
}

TEST_F(Local, DotsPatternMovesBlocksByTheirMeanAndLeavesAnOddColumn) {
    // Mono, level 2 (d = 128): a mean of 120 lies in 102..152: -, +, +, -.
    const Surface mono =
        run(flat(3, 2, 120, 120, 120), op<&Class_Dithering::DotsPatternMethod>(rect, 0, 2));
    EXPECT_EQ(toRows(mono), (std::vector<std::string>{"#.?", ".#?"}));
    EXPECT_EQ(colourOf(mono.at(2, 0)), (Colour{120, 120, 120}));
    // Colour: each channel by its own mean, written without a table.
    const Surface colour =
        run(flat(2, 2, 30, 220, 120), op<&Class_Dithering::DotsPatternMethod>(rect, 1, 2));
    EXPECT_EQ(colourOf(colour.at(0, 0)), (Colour{0, 255, 0}));
    EXPECT_EQ(colourOf(colour.at(1, 0)), (Colour{0, 255, 248}));
    EXPECT_EQ(colourOf(colour.at(0, 1)), (Colour{0, 255, 248}));
    // An odd last row stays too.
    const Surface tall =
        run(flat(2, 3, 120, 120, 120), op<&Class_Dithering::DotsPatternMethod>(rect, 0, 2));
    EXPECT_EQ(colourOf(tall.at(0, 2)), (Colour{120, 120, 120}));
}

TEST_F(Local, DinamicThresholdingUnderThreeWhitensItsSideColumnsOnly) {
    const Surface picture = noisePicture(2, 5, 4);
    const Surface out =
        run(picture, op<&Class_Dithering::DinamicThresholding>(0, 255, 0, 0.5, 2.0, rect));
    for (int y = 0; y < 5; ++y) {
        EXPECT_EQ(colourOf(out.at(0, y)), (Colour{255, 255, 255}));
        EXPECT_EQ(colourOf(out.at(1, y)), (Colour{255, 255, 255}));
    }
    const Surface low = noisePicture(6, 2, 4);
    const Surface flatOut =
        run(low, op<&Class_Dithering::DinamicThresholding>(0, 255, 0, 0.5, 2.0, rect));
    EXPECT_EQ(flatOut.at(2, 0), low.at(2, 0)) << "the top row keeps the picture in the result";
}

TEST_F(Local, DinamicThresholdingReadsTheFirstCentreFromTheTopRow) {
    // On dark 10 with edge 1 and no darkening, the first pixel of a column
    // sees the whitened top row as its centre: P = U = 255, Q = 10,
    // T = round(122.5) = 122, the mean 118 lies below: black. From its true
    // centre it would be white.
    const Surface out = run(flat(5, 6, 10, 10, 10),
                            op<&Class_Dithering::DinamicThresholding>(0, 255, 0, 0.0, 1.0, rect));
    EXPECT_EQ(colourOf(out.at(2, 1)), (Colour{0, 0, 0}));
    EXPECT_EQ(colourOf(out.at(2, 3)), (Colour{255, 255, 255}));
    // The thresholds decide first: a mean at or above the maximum is white,
    // one at or below the minimum black.
    const Surface high = run(flat(5, 6, 100, 100, 100),
                             op<&Class_Dithering::DinamicThresholding>(0, 100, 0, 0.5, 2.0, rect));
    EXPECT_EQ(colourOf(high.at(2, 3)), (Colour{255, 255, 255}));
    const Surface low = run(flat(5, 6, 100, 100, 100),
                            op<&Class_Dithering::DinamicThresholding>(1, 255, 200, 0.5, 2.0, rect));
    EXPECT_EQ(colourOf(low.at(2, 3)), (Colour{0, 0, 0}));
}

// The thresholder as it reads: white borders, then column by column a
// window sliding down from the source, whose first centre comes from the
// top row.
Surface literalDinamic(const Surface& picture, bool mono, int maximum, int minimum, double darken,
                       double edge) {
    Surface source = picture;
    Surface out = picture;
    const int right = picture.width(), bottom = picture.height();
    for (int x = 0; x < right; ++x) {
        source.at(x, 0) |= 0xFFFFFFu;
        source.at(x, bottom - 1) |= 0xFFFFFFu;
    }
    for (int y = 0; y < bottom; ++y) {
        out.at(0, y) |= 0xFFFFFFu;
        out.at(right - 1, y) |= 0xFFFFFFu;
    }
    auto roundEven = [](double v) { return static_cast<int>(std::nearbyint(v)); };
    for (int x = 1; x <= right - 2; ++x) {
        std::array<std::array<Pixel, 3>, 3> w{};
        for (int j = 0; j < 3; ++j) {
            for (int i = 0; i < 3; ++i)
                w[j][i] = source.at(x - 1 + i, j);
        }
        w[1][1] = source.at(x, 0);
        for (int y = 1; y <= bottom - 2; ++y) {
            auto mean = [&](int (*of)(Pixel)) {
                int sum = 0;
                for (const auto& row : w) {
                    for (const Pixel p : row)
                        sum += of(p);
                }
                return sum / 9;
            };
            auto sum3 = [](Pixel p) { return (redOf(p) + greenOf(p) + blueOf(p)) / 3; };
            auto decide = [&](int m, int compared, double t) {
                if (m >= maximum) return 255;
                if (m <= minimum) return 0;
                return compared < roundEven(t) ? 0 : 255;
            };
            int v[3];
            if (mono) {
                const int a = (mean(redOf) + mean(greenOf) + mean(blueOf)) / 3;
                const int p = sum3(w[1][1]), q = sum3(w[1][0]), u = sum3(w[0][1]);
                v[0] = v[1] = v[2] =
                    decide(a, a, ((p - u) / 2.0 + (p - q) / 2.0) * edge + a * darken / 10);
            } else {
                int (*channels[3])(Pixel) = {redOf, greenOf, blueOf};
                for (int c = 0; c < 3; ++c) {
                    const auto of = channels[c];
                    const int m = mean(of);
                    v[c] = decide(m, of(w[1][1]),
                                  ((m - of(w[1][0])) / 2.0 + (m - of(w[0][1])) / 2.0) * edge +
                                      m * darken / 10);
                }
            }
            out.at(x, y) = withColour(out.at(x, y), v[0], v[1], v[2]);
            if (y + 2 <= bottom - 1) {
                w[0] = w[1];
                w[1] = w[2];
                for (int i = 0; i < 3; ++i)
                    w[2][i] = source.at(x - 1 + i, y + 2);
            }
        }
    }
    return out;
}

TEST_F(Local, DinamicThresholdingMatchesTheColumnWalkWrittenOut) {
    struct Setting {
        int maximum, minimum;
        double darken, edge;
    };
    // The defaults, slider ends, and thresholds that take most pixels out.
    const Setting settings[] = {
        {255, 0, 0.5, 2.0}, {255, 0, -2.0, -10.0}, {255, 0, 2.0, 10.0}, {180, 60, 1.3, 0.7}};
    for (const bool mono : {true, false}) {
        for (const Setting& s : settings) {
            const Surface picture = noisePicture(11, 9, 4);
            const auto call = [&](Class_Dithering& e, ProcessRect r) {
                e.DinamicThresholding(mono ? 0 : 1, static_cast<std::int16_t>(s.maximum),
                                      static_cast<std::int16_t>(s.minimum), s.darken, s.edge,
                                      r.left, r.top, r.right, r.bottom);
            };
            EXPECT_EQ(run(picture, call),
                      literalDinamic(picture, mono, s.maximum, s.minimum, s.darken, s.edge))
                << "mono " << mono << " darken " << s.darken << " edge " << s.edge;
        }
    }
}

TEST_F(Local, LimitTheMeanValueTellsEqualityApartByMode) {
    // A flat grey equals its mean: black in mono, white in colour.
    const Surface picture = flat(4, 4, 100, 100, 100);
    EXPECT_EQ(colourOf(run(picture, op<&Class_Dithering::LimitTheMeanValue>(0, 0, rect)).at(1, 1)),
              (Colour{0, 0, 0}));
    EXPECT_EQ(colourOf(run(picture, op<&Class_Dithering::LimitTheMeanValue>(1, 0, rect)).at(1, 1)),
              (Colour{255, 255, 255}));
    // Weight 2 raises a mean of 100 to round(105.5) = 106, above the centre.
    EXPECT_EQ(colourOf(run(picture, op<&Class_Dithering::LimitTheMeanValue>(1, 2, rect)).at(1, 1)),
              (Colour{0, 0, 0}));
    // The top and bottom rows keep the picture.
    EXPECT_EQ(colourOf(run(picture, op<&Class_Dithering::LimitTheMeanValue>(0, 0, rect)).at(1, 3)),
              (Colour{100, 100, 100}));
}

TEST_F(Local, LimitTheMeanValueReadsPastTheFirstColumnIntoTheRowAbove) {
    // Black, with one white pixel at the end of row 2. From row 3 on the
    // window of column 0 takes the element before it in the array, the end
    // of the row above: pixel (0, 4) sees the white one and its mean rises
    // above its black centre.
    Surface picture = flat(4, 7, 0, 0, 0);
    picture.at(3, 2) = makePixel(255, 255, 255);
    const Surface out = run(picture, op<&Class_Dithering::LimitTheMeanValue>(1, 0, rect));
    EXPECT_EQ(colourOf(out.at(0, 4)), (Colour{0, 0, 0}));
    EXPECT_EQ(colourOf(out.at(0, 5)), (Colour{255, 255, 255}));
}

// The gathering written out: in mono each earlier position's grey error
// rounded alone, in colour each channel's running sum rounded at every
// position.
Surface literalLimitSqure(const Surface& source, int level, bool mono) {
    const LevelTable table = levelTable(static_cast<std::int16_t>(level));
    Surface done = source;
    auto grey = [](Pixel p) {
        return static_cast<int>(
            std::nearbyint(0.3 * redOf(p) + 0.59 * greenOf(p) + 0.11 * blueOf(p)));
    };
    const int weights[3][5] = {{1, 3, 5, 3, 1}, {3, 5, 7, 5, 3}, {5, 7, 0, 0, 0}};
    for (int y = 0; y < source.height(); ++y) {
        for (int x = 0; x < source.width(); ++x) {
            int sum = 0;
            std::array<int, 3> sums{};
            for (int j = 0; j < 3; ++j) {
                for (int i = 0; i < 5; ++i) {
                    if (weights[j][i] == 0) continue;
                    const int gx = std::clamp(x + i - 2, 0, source.width() - 1);
                    const int gy = std::clamp(y + j - 2, 0, source.height() - 1);
                    const Pixel d = done.at(gx, gy), s = source.at(gx, gy);
                    const double w = weights[j][i] / 48.0;
                    const int doneGrey =
                        static_cast<int>(std::nearbyint((redOf(d) + greenOf(d) + blueOf(d)) / 3.0));
                    sum += static_cast<int>(std::nearbyint((grey(s) - doneGrey) * w));
                    const std::array<int, 3> sc{redOf(s), greenOf(s), blueOf(s)};
                    const std::array<int, 3> dc{redOf(d), greenOf(d), blueOf(d)};
                    for (std::size_t c = 0; c < 3; ++c)
                        sums[c] = static_cast<int>(std::nearbyint((sc[c] - dc[c]) * w + sums[c]));
                }
            }
            const Pixel p = source.at(x, y);
            auto quantised = [&](int v) {
                return table[static_cast<std::size_t>(std::clamp(v, 0, 255))];
            };
            if (mono) {
                const int v = quantised(grey(p) + sum);
                done.at(x, y) = withColour(done.at(x, y), v, v, v);
            } else {
                done.at(x, y) =
                    withColour(done.at(x, y), quantised(redOf(p) + sums[0]),
                               quantised(greenOf(p) + sums[1]), quantised(blueOf(p) + sums[2]));
            }
        }
    }
    return done;
}

TEST_F(Local, LimitSqureGathersTheErrorsOfTwelveEarlierPositions) {
    const Surface picture = noisePicture(13, 9, 5);
    for (const bool mono : {true, false}) {
        for (const std::int16_t level : {2, 7}) {
            EXPECT_EQ(
                run(picture, op<&Class_Dithering::Dither_LimitSqure>(rect, mono ? 0 : 1, level)),
                literalLimitSqure(picture, level, mono))
                << "mono " << mono << " level " << level;
        }
    }
}

TEST_F(Local, RandomDitherRepeatsOnlyFromAFreshGenerator) {
    const Surface picture = noisePicture(8, 5, 2);
    const auto dither = op<&Class_Dithering::Dither_ErrorDiffuseRandom>(0, rect, 1, 4);
    const Surface first = run(picture, dither);
    EXPECT_NE(run(picture, dither), first);
    random = RandomGenerator();
    EXPECT_EQ(run(picture, dither), first);
    // Mono, level 2: n = round(round(256 rnd + 1) - 128) added to the grey.
    random = RandomGenerator();
    RandomGenerator draws;
    const Surface mono =
        run(picture, op<&Class_Dithering::Dither_ErrorDiffuseRandom>(0, rect, 0, 2));
    for (int y = 0; y < 5; ++y) {
        for (int x = 0; x < 8; ++x) {
            const int n =
                static_cast<int>(std::nearbyint(std::nearbyint(256 * draws.next() + 1) - 128));
            const Pixel p = picture.at(x, y);
            const int grey = static_cast<int>(
                std::nearbyint(0.3 * redOf(p) + 0.59 * greenOf(p) + 0.11 * blueOf(p)));
            ASSERT_EQ(redOf(mono.at(x, y)), std::clamp(grey + n, 0, 255) < 128 ? 0 : 255);
        }
    }
}

TEST_F(Local, EmptyAndOutsideRectanglesChangeNothing) {
    const Surface picture = noisePicture(6, 5, 8);
    const ProcessRect empty{2, 2, 2, 4}, outside{10, 10, 20, 20}, negative{-8, -8, -2, -2};
    for (const ProcessRect& area : {empty, outside, negative}) {
        EXPECT_EQ(run(picture, area, op<&Class_Dithering::Dither_ErrorDiffuse>(1, rect, 0, 2)),
                  picture);
        EXPECT_EQ(run(picture, area, op<&Class_Dithering::OrderedDither8x8>(0, 0, rect, 0, 2)),
                  picture);
        EXPECT_EQ(run(picture, area,
                      op<&Class_Dithering::DinamicThresholding>(0, 255, 0, 0.5, 2.0, rect)),
                  picture);
        EXPECT_EQ(run(picture, area, op<&Class_Dithering::LimitTheMeanValue>(0, 0, rect)), picture);
        EXPECT_EQ(run(picture, area, op<&Class_Dithering::DotsPatternMethod>(rect, 0, 2)), picture);
        EXPECT_EQ(run(picture, area, op<&Class_Dithering::Dither_LimitSqure>(rect, 0, 2)), picture);
    }
    EXPECT_EQ(failureNumber(), 0);
}

} // namespace
} // namespace lumiran::testing
