// The parts the feature points are built from, each against the plain rule
// it stands for, and the result the call makes itself when the run leaves
// TransBits to it.
#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/circle_stamp.h"
#include "effects/halftone/binarization/connection_row.h"
#include "effects/halftone/binarization/foreground_rows.h"
#include "engine/drawing/drawing.h"
#include "halftone_fixture.h"

#include <array>
#include <string>

namespace lumiran::testing {
namespace {

std::uint32_t nextRandom(std::uint32_t& seed) {
    seed = seed * 1664525u + 1013904223u;
    return seed >> 8;
}

TEST(ForegroundRows, AgreeWithTheMeasureOnEveryMeasurePolarityAndThreshold) {
    // Noise, plus every colour whose luminance sum lies on a half near the
    // thresholds: there the floating rounding decides, half to even.
    std::vector<Pixel> pixels;
    std::uint32_t seed = 11;
    for (int i = 0; i < 4000; ++i)
        pixels.push_back(nextRandom(seed));
    for (int r = 0; r < 256; ++r) {
        for (int g = 0; g < 256; ++g) {
            for (int b = 0; b < 256; b += 3) {
                const int sum = 299 * r + 587 * g + 114 * b;
                const int half = (sum - 500) / 1000;
                if (sum % 1000 == 500 && (half == 127 || half == 128 || half == 0 || half == 254))
                    pixels.push_back(makePixel(r, g, b, r ^ b));
            }
        }
    }
    pixels.push_back(makePixel(0, 0, 0));
    pixels.push_back(makePixel(255, 255, 255));
    std::vector<std::uint8_t> out(pixels.size());
    for (const int measure : {0, 1, 2, 3, 4, 5, -1}) {
        for (const int polarity : {0, 1, -3}) {
            for (const int threshold : {-2, 0, 1, 85, 127, 128, 129, 255, 256, 300}) {
                const ForegroundRule rule(measure, polarity, threshold);
                rule.classify(pixels.data(), static_cast<int>(pixels.size()), out.data());
                for (std::size_t i = 0; i < pixels.size(); ++i) {
                    const int v = bilevel::measured(measure, pixels[i]);
                    const bool expected = polarity == 0 ? v >= threshold : v <= threshold;
                    ASSERT_EQ(out[i], expected ? 1 : 0)
                        << "measure " << measure << " polarity " << polarity << " threshold "
                        << threshold << " pixel " << std::hex << pixels[i];
                }
            }
        }
    }
}

TEST(ConnectionRow, CountsTheChangesRoundTheRing) {
    constexpr std::array<std::pair<int, int>, 8> ring{
        {{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}}};
    constexpr int n = 67; // not a multiple of any vector width
    std::uint32_t seed = 3;
    for (int trial = 0; trial < 40; ++trial) {
        std::array<std::array<std::uint8_t, n>, 3> rows{};
        for (auto& row : rows) {
            for (auto& cell : row)
                cell = static_cast<std::uint8_t>(nextRandom(seed) % 3 == 0 ? 0 : 1);
        }
        for (const int wanted : {-1, 0, 1, 2, 3, 4, 9}) {
            std::array<std::uint8_t, n> keep{};
            keep.fill(7);
            markConnection(rows[0].data(), rows[1].data(), rows[2].data(), n, wanted, keep.data());
            EXPECT_EQ(keep[0], 7);
            EXPECT_EQ(keep[n - 1], 7);
            for (int x = 1; x < n - 1; ++x) {
                int changes = 0;
                for (std::size_t k = 0; k < ring.size(); ++k) {
                    const auto [ax, ay] = ring[k];
                    const auto [bx, by] = ring[(k + 1) % ring.size()];
                    if (rows[1 + ay][x + ax] == 0 && rows[1 + by][x + bx] == 1) ++changes;
                }
                const bool kept = rows[1][x] == 1 && changes == wanted;
                ASSERT_EQ(keep[x], kept ? 1 : 0) << "trial " << trial << " x " << x;
            }
        }
    }
}

TEST(CircleStampTest, PaintsWhatTheCanvasPaintsInsideAnyClip) {
    constexpr int width = 40;
    constexpr int height = 30;
    std::uint32_t seed = 9;
    const Surface background = makePicture(width, height, [&](int, int) {
        return static_cast<Pixel>(nextRandom(seed) | (nextRandom(seed) << 24));
    });
    struct Case {
        int radius;
        int x;
        int y;
        std::array<int, 4> clip; // left, top, right, bottom
    };
    const Case cases[] = {
        {0, 5, 5, {0, 0, width, height}},    {1, 0, 0, {0, 0, width, height}},
        {2, 20, 15, {0, 0, width, height}},  {2, 39, 29, {3, 4, 40, 30}},
        {3, 10, 10, {8, 9, 12, 30}},         {7, 20, 2, {0, 0, width, height}},
        {12, 20, 15, {15, 13, 26, 17}},      {12, -5, 40, {0, 0, width, height}},
        {20, 20, 15, {0, 10, width, 11}},    {255, 100, 15, {0, 0, width, height}},
        {-1, 20, 15, {0, 0, width, height}},
    };
    const Pixel ink = colourBitsOf(RGB(12, 200, 7));
    for (const Case& c : cases) {
        Surface byCanvas = background;
        Canvas canvas(byCanvas);
        canvas.setClip(c.clip[0], c.clip[1], c.clip[2], c.clip[3]);
        canvas.Circle(c.x, c.y, c.radius, RGB(12, 200, 7));
        Surface byStamp = background;
        const auto stamp = CircleStamp::of(c.radius);
        ASSERT_TRUE(stamp.has_value());
        stamp->paint(byStamp, c.x, c.y, ink, c.clip[0], c.clip[1], c.clip[2], c.clip[3]);
        EXPECT_EQ(byStamp, byCanvas) << "radius " << c.radius << " at " << c.x << "," << c.y;
    }
    EXPECT_FALSE(CircleStamp::of(CircleStamp::MaxRadius + 1).has_value());
}

// The call makes its result itself when no TransBits was fetched; it must
// be the result two fetched arrays give, on one thread and on several.
struct FeaturePointsOwnResult : HalftoneFixture<Class_Binarization> {
    Surface withOwnResult(const Surface& picture, const ProcessRect& area, const Call& call) {
        Class_Binarization effect(context);
        effect.ImageGetDiBits(picture);
        call(effect, area);
        Surface result;
        effect.ImageSetDiBitsTrans(result);
        return result;
    }
};

TEST_F(FeaturePointsOwnResult, IsWhatTwoArraysGive) {
    using B = Class_Binarization;
    context.flags.drawingColor = {250, 20, 90};
    std::uint32_t seed = 21;
    // Blobs of noise: many end points, lines and branches.
    const Surface picture = makePicture(150, 170, [&](int x, int y) {
        const int wave = ((x * 7 + y * 3) % 40 < 20 ? 60 : 0) + ((x ^ y) & 16 ? 40 : 0);
        const int v = std::min(255, wave + static_cast<int>(nextRandom(seed) % 120));
        return makePixel(v, 255 - v, (v * 3) & 255, static_cast<int>(nextRandom(seed)));
    });
    const std::pair<std::string, Call> calls[] = {
        {"mono end points", op<&B::FeaturePointExtract_Mono>(0, 2, 128, 0, rect, 0)},
        {"mono lines, average", op<&B::FeaturePointExtract_Mono>(1, 1, 100, 1, rect, 1)},
        {"mono branches, large marks", op<&B::FeaturePointExtract_Mono>(2, 300, 90, 2, rect, 0)},
        {"colour crossings", op<&B::FeaturePointExtract_Color>(1, 3, 120, 3, rect, 0)},
        {"colour end points", op<&B::FeaturePointExtract_Color>(2, 12, 140, 0, rect, 1)},
        {"colour, no such channel", op<&B::FeaturePointExtract_Color>(3, 2, 128, 0, rect, 0)},
    };
    const ProcessRect areas[] = {
        {0, 0, 150, 170}, {7, 33, 120, 160}, {-5, -5, 400, 2}, {200, 200, 300, 300}};
    for (const int threads : {1, 3}) {
        context.threading = {threads, 64};
        for (const auto& [name, call] : calls) {
            for (const ProcessRect& area : areas) {
                EXPECT_EQ(withOwnResult(picture, area, call), run(picture, area, call))
                    << name << " on " << threads << " threads, " << area.left << "," << area.top
                    << "," << area.right << "," << area.bottom;
            }
        }
    }
}

TEST_F(FeaturePointsOwnResult, CancelledAfterTheScanLeavesTheSource) {
    CancellingProgress progress(cancel);
    context.progress = &progress;
    const Surface picture = noisePicture(40, 30, 4);
    const Surface result =
        withOwnResult(picture, {2, 3, 35, 25},
                      op<&Class_Binarization::FeaturePointExtract_Mono>(0, 2, 128, 0, rect, 0));
    EXPECT_EQ(result, picture);
    EXPECT_EQ(progress.shown, std::vector<int>{33});
}

} // namespace
} // namespace lumiran::testing
