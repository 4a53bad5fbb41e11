// The error diffusions against the procedure written out literally: every
// entry read, the shares rounded from those values, the entries written
// from the last back to entry 0, one pixel after the other.
#include "effects/halftone/dithering/dither_kernels.h"
#include "effects/halftone/dithering/level_tables.h"
#include "halftone_fixture.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace lumiran::testing {
namespace {

// The error handed on, from entry 0's value and its new value.
using ErrorRule = std::function<int(int old, int fresh)>;

int roundEven(double v) {
    return static_cast<int>(std::nearbyint(v));
}

// With paint tables the grey indexes one table a channel and each channel
// hands on the grey minus its value.
void literalDiffusion(Surface& p, const ProcessRect& r, const KernelSpec& kernel, bool mono,
                      const LevelTable& table, const ErrorRule& errorOf,
                      const std::array<LevelTable, 3>* paint = nullptr) {
    const int right = std::min<int>(r.right, p.width()),
              bottom = std::min<int>(r.bottom, p.height());
    for (int y = r.top; y < bottom; ++y) {
        for (int x = r.left; x < right; ++x) {
            std::vector<std::pair<int, int>> at{{x, y}};
            for (const KernelTap& t : kernel.taps)
                at.emplace_back(std::clamp(x + t.dx, int{r.left}, right - 1),
                                std::clamp(y + t.dy, int{r.top}, bottom - 1));
            std::vector<std::array<int, 3>> old;
            for (const auto& [ax, ay] : at) {
                const Pixel v = p.at(ax, ay);
                old.push_back({redOf(v), greenOf(v), blueOf(v)});
            }
            std::array<int, 3> fresh{}, error{};
            if (paint != nullptr) {
                const auto& [r0, g0, b0] = old[0];
                const int grey = roundEven(0.3 * r0 + 0.59 * g0 + 0.11 * b0);
                for (std::size_t c = 0; c < 3; ++c) {
                    fresh[c] = (*paint)[c][static_cast<std::size_t>(grey)];
                    error[c] = grey - fresh[c];
                }
            } else if (mono) {
                const auto& [r0, g0, b0] = old[0];
                const int grey = roundEven(0.3 * r0 + 0.59 * g0 + 0.11 * b0);
                const int v = table[static_cast<std::size_t>(grey)];
                fresh = {v, v, v};
                const int e = errorOf(grey, v);
                error = {e, e, e};
            } else {
                for (std::size_t c = 0; c < 3; ++c) {
                    fresh[c] = table[static_cast<std::size_t>(old[0][c])];
                    error[c] = errorOf(old[0][c], fresh[c]);
                }
            }
            std::vector<std::array<int, 3>> written(at.size());
            written[0] = fresh;
            for (std::size_t i = 1; i < at.size(); ++i) {
                const double weight =
                    static_cast<double>(kernel.taps[i - 1].weight) / kernel.divisor;
                for (std::size_t c = 0; c < 3; ++c)
                    written[i][c] = roundEven(error[c] * weight + old[i][c]);
            }
            for (std::size_t i = at.size(); i-- > 0;) {
                const auto& [ax, ay] = at[i];
                auto c = [&](std::size_t k) { return std::clamp(written[i][k], 0, 255); };
                p.at(ax, ay) = withColour(p.at(ax, ay), c(0), c(1), c(2));
            }
        }
    }
}

int exactError(int old, int fresh) {
    return old - fresh;
}

struct Case {
    int width;
    int height;
    ProcessRect area;
};

// Whole pictures, inner rectangles, and rectangles narrower or lower than
// any kernel, where most shares are clamped.
const Case Cases[] = {
    {23, 17, {0, 0, 23, 17}}, {23, 17, {3, 2, 19, 14}}, {9, 7, {4, 3, 5, 4}},
    {9, 7, {2, 0, 3, 7}},     {9, 7, {0, 5, 9, 7}},     {30, 12, {1, 1, 29, 4}},
};

using Diffusion = HalftoneFixture<Class_Dithering>;

TEST_F(Diffusion, EveryKernelMatchesTheProcedureWrittenOut) {
    for (std::int16_t filter = 0; filter < 7; ++filter) {
        for (const bool mono : {true, false}) {
            for (const std::int16_t level : {2, 6}) {
                for (const Case& c : Cases) {
                    const Surface picture = noisePicture(c.width, c.height, 7u + filter);
                    Surface expected = picture;
                    literalDiffusion(expected, c.area, DiffusionKernels[filter], mono,
                                     levelTable(level), exactError);
                    const Surface got =
                        run(picture, c.area, [&](Class_Dithering& e, ProcessRect r) {
                            e.Dither_ErrorDiffuse(filter, r.left, r.top, r.right, r.bottom,
                                                  mono ? 0 : 1, level);
                        });
                    ASSERT_EQ(got, expected) << "filter " << filter << " mono " << mono << " level "
                                             << level << " width " << c.width;
                }
            }
        }
    }
}

// Channels at and next to their limits, with some mid values: most shares
// are limited, and a share that rounds by the old value meets odd and even
// channels alike.
Surface saturatedPicture(int width, int height, std::uint32_t seed) {
    static constexpr std::array<int, 8> Values{0, 1, 2, 127, 128, 253, 254, 255};
    auto next = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        return Values[(seed >> 24) % Values.size()];
    };
    return makePicture(width, height, [&next](int, int) {
        const int r = next();
        const int g = next();
        return makePixel(r, g, next());
    });
}

// One thread, and two with every picture shared out: the groups of rows
// on the second thread trail those on the first.
const RowThreading Threadings[] = {{.threads = 1}, {.threads = 2, .bandPixels = 1}};

TEST_F(Diffusion, RowsTogetherMatchTheRowsOneAfterTheOther) {
    // Several rows run at once, each some columns behind the row above.
    // Widths and heights around those lags (3 to 9 columns), the four rows
    // of a band and the 32 columns a thread runs before it tells the other,
    // rectangles inside the picture, and rows too few for a band or so near
    // the bottom that the kernel is clamped onto them.
    const ProcessRect areas[] = {
        {0, 0, 1, 14},  {5, 0, 7, 14},  {2, 1, 5, 13},  {0, 0, 40, 1},  {0, 0, 40, 2},
        {3, 2, 37, 5},  {1, 0, 5, 14},  {4, 3, 10, 12}, {0, 1, 9, 14},  {2, 0, 13, 9},
        {0, 0, 40, 14}, {7, 2, 26, 11}, {1, 4, 33, 10}, {0, 0, 19, 8},  {6, 5, 16, 6},
        {0, 0, 31, 13}, {1, 0, 33, 14}, {0, 3, 34, 14}, {2, 1, 67, 11}, {0, 0, 70, 14},
    };
    for (const RowThreading& threading : Threadings) {
        context.threading = threading;
        for (std::int16_t filter = 0; filter < 7; ++filter) {
            const auto seed = static_cast<std::uint32_t>(filter);
            for (const Surface& picture :
                 {noisePicture(70, 14, 11u + seed), saturatedPicture(70, 14, 5u + seed)}) {
                for (const bool mono : {true, false}) {
                    for (const std::int16_t level : {2, 8}) {
                        for (const ProcessRect& area : areas) {
                            Surface expected = picture;
                            literalDiffusion(expected, area, DiffusionKernels[filter], mono,
                                             levelTable(level), exactError);
                            const Surface got =
                                run(picture, area, [&](Class_Dithering& e, ProcessRect r) {
                                    e.Dither_ErrorDiffuse(filter, r.left, r.top, r.right, r.bottom,
                                                          mono ? 0 : 1, level);
                                });
                            ASSERT_EQ(got, expected)
                                << "threads " << threading.threads << " filter " << filter
                                << " mono " << mono << " level " << level << " area " << area.left
                                << "," << area.top << "," << area.right << "," << area.bottom;
                        }
                    }
                }
            }
        }
    }
}

// Stops the run once a number of rows have ended.
struct CancelAfter : ProgressSink {
    RunContext& context;
    int rows;
    void showPercent(int) override {
        if (--rows == 0) context.requestCancel();
    }
    CancelAfter(RunContext& c, int n) : context(c), rows(n) {}
};

TEST_F(Diffusion, TwoThreadsCountEveryRowAndStopTogether) {
    context.threading = {.threads = 2, .bandPixels = 1};
    const Surface picture = noisePicture(60, 30, 4);
    // Rows above and below the picture count too.
    const ProcessRect beyond{-5, -3, 70, 34};
    {
        Class_Dithering effect(context);
        effect.ImageGetDiBits(picture);
        effect.Dither_ErrorDiffuse(1, beyond.left, beyond.top, beyond.right, beyond.bottom, 0, 2);
        EXPECT_EQ(effect.progressCount(), 37);
    }
    // A cancel at a row's end stops the other thread too, at the end of its
    // group or while it waits on the stopped one.
    for (const int after : {1, 6, 20}) {
        cancel = 0;
        CancelAfter sink(context, after);
        context.progress = &sink;
        Class_Dithering effect(context);
        effect.ImageGetDiBits(picture);
        effect.Dither_ErrorDiffuse(5, 0, 0, 60, 30, 1, 2);
        EXPECT_TRUE(context.cancelled());
        EXPECT_GE(effect.progressCount(), after);
        EXPECT_LE(effect.progressCount(), after + 1);
        context.progress = nullptr;
    }
}

TEST_F(Diffusion, SmoothPicturesTakeTheHeldSharesWithoutLimitingAlike) {
    // Mid greys with small steps: the shares on the row are held back and
    // rarely limited, the path noise pictures seldom take.
    const Surface picture = makePicture(
        64, 6, [](int x, int y) { return makePixel(90 + x + y, 100 + x / 2, 80 + (x * y) % 40); });
    for (std::int16_t filter = 0; filter < 7; ++filter) {
        Surface expected = picture;
        literalDiffusion(expected, ProcessRect::wholePicture(64, 6), DiffusionKernels[filter], true,
                         levelTable(3), exactError);
        EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorDiffuse>(filter, rect, 0, 3)),
                  expected)
            << "filter " << filter;
    }
}

TEST_F(Diffusion, FixedAndRandomErrorsKeepOnlyTheSign) {
    const Surface picture = noisePicture(19, 11, 3);
    const ProcessRect whole = ProcessRect::wholePicture(19, 11);
    for (std::int16_t filter = 0; filter < 4; ++filter) {
        // 500 puts shares on the lower rows beyond what a signed byte holds.
        for (const std::int16_t size : {42, 500}) {
            for (const bool mono : {true, false}) {
                Surface expected = picture;
                literalDiffusion(
                    expected, whole, DiffusionKernels[filter], mono, levelTable(2),
                    [size](int old, int fresh) { return old - fresh >= 0 ? size : -size; });
                EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorFixed>(
                                           filter, rect, mono ? 0 : 1, 2, size)),
                          expected)
                    << "fixed " << size << ", filter " << filter;
            }
        }

        // One draw a pixel in mono, of 255 / level * rnd + 1.
        RandomGenerator draws;
        Surface expected = picture;
        literalDiffusion(expected, whole, DiffusionKernels[filter], true, levelTable(4),
                         [&draws](int old, int fresh) {
                             const int e = roundEven(255.0 / 4 * draws.next() + 1);
                             return old - fresh >= 0 ? e : -e;
                         });
        random = RandomGenerator();
        EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorDiffuseRandom>(
                                   static_cast<std::int16_t>(filter + 1), rect, 0, 4)),
                  expected)
            << "random, filter " << filter;

        // In colour one draw a channel, red, green, blue.
        RandomGenerator channelDraws;
        Surface expectedColour = picture;
        literalDiffusion(expectedColour, whole, DiffusionKernels[filter], false, levelTable(3),
                         [&channelDraws](int old, int fresh) {
                             const int e = roundEven(255.0 / 3 * channelDraws.next() + 1);
                             return old - fresh >= 0 ? e : -e;
                         });
        random = RandomGenerator();
        EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorDiffuseRandom>(
                                   static_cast<std::int16_t>(filter + 1), rect, 1, 3)),
                  expectedColour)
            << "random colour, filter " << filter;
    }
}

TEST_F(Diffusion, KernelsShareOutTheirWholeDivisor) {
    for (const KernelSpec& k : DiffusionKernels) {
        const int sum = std::accumulate(k.taps.begin(), k.taps.end(), 0,
                                        [](int s, const KernelTap& t) { return s + t.weight; });
        EXPECT_EQ(sum, k.divisor);
    }
}

TEST_F(Diffusion, OnePixelWideKeepsNoHorizontalShare) {
    // Every horizontal share of a column falls back on the pixel itself and
    // vanishes under its new value; the rows below take the first share
    // clamped onto them.
    const Surface column(1, 4, makePixel(100, 100, 100));
    Surface expected = column;
    literalDiffusion(expected, ProcessRect::wholePicture(1, 4), DiffusionKernels[1], true,
                     levelTable(2), exactError);
    EXPECT_EQ(run(column, op<&Class_Dithering::Dither_ErrorDiffuse>(1, rect, 0, 2)), expected);
}

TEST_F(Diffusion, ColorPaintRunsFromTheDrawingColour) {
    context.flags.drawingColor = {200, 100, 0};
    const Surface picture = noisePicture(21, 13, 8);
    const ProcessRect inner{2, 1, 19, 12};
    for (const RowThreading& threading : Threadings) {
        context.threading = threading;
        for (std::int16_t filter = 0; filter < 7; ++filter) {
            for (const std::int16_t paintType : {0, 1}) {
                for (const std::int16_t level : {2, 4, 6}) {
                    const std::array<LevelTable, 3> paint{
                        drawingColorLevelTable(level, paintType, 200),
                        drawingColorLevelTable(level, paintType, 100),
                        drawingColorLevelTable(level, paintType, 0)};
                    Surface expected = picture;
                    literalDiffusion(expected, inner, DiffusionKernels[filter], false, paint[0],
                                     exactError, &paint);
                    EXPECT_EQ(run(picture, inner,
                                  op<&Class_Dithering::Dither_ErrorDiffuseColorPaint>(
                                      filter, rect, paintType, level)),
                              expected)
                        << "filter " << filter << " paint type " << paintType << " level " << level;
                }
            }
        }
    }
    // A dark flat grey at level 2 takes the drawing colour (paint type 0)
    // or black (type 1) where it stays dark.
    const Surface dark(6, 3, makePixel(20, 20, 20));
    const Surface type0 =
        run(dark, op<&Class_Dithering::Dither_ErrorDiffuseColorPaint>(1, rect, 0, 2));
    EXPECT_EQ(colourOf(type0.at(0, 0)), (Colour{200, 100, 0}));
    const Surface type1 =
        run(dark, op<&Class_Dithering::Dither_ErrorDiffuseColorPaint>(1, rect, 1, 2));
    EXPECT_EQ(colourOf(type1.at(0, 0)), (Colour{0, 0, 0}));
}

TEST_F(Diffusion, FiltersOutsideTheirListChangeNothingAndLevelZeroFails) {
    const Surface picture = noisePicture(5, 4, 1);
    EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorDiffuse>(7, rect, 0, 2)), picture);
    EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorFixed>(4, rect, 0, 2, 42)), picture);
    EXPECT_EQ(run(picture, op<&Class_Dithering::Dither_ErrorDiffuseRandom>(5, rect, 0, 2)),
              picture);
    EXPECT_EQ(failureNumber(), 0);
    run(picture, op<&Class_Dithering::Dither_ErrorDiffuse>(1, rect, 0, 0));
    EXPECT_EQ(failureNumber(), EffectError::OverflowNumber);
}

} // namespace
} // namespace lumiran::testing
