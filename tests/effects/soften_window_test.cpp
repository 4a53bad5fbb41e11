// The window filters of Class_Soften against the literal column-walking
// model, and the rules the model does not make obvious: margins, flat
// pictures, the first-window quirk, the stale result fields.
#include "effects/smoothing/soften_window.h"
#include "soften_fixture.h"
#include "soften_reference.h"

#include <gtest/gtest.h>

namespace lumiran::testing {
namespace {

using reference::Entry;
using Window = std::vector<Entry>;
using Soften = SoftenFixture;

// --- The rules as the text gives them, on the window by ring index. ---

reference::Rule weights(std::vector<double> w) {
    return [w](const Window& e, Entry&) { return reference::weighted(w, e); };
}

reference::Rule mean() {
    return [](const Window& e, Entry&) {
        const Entry s = reference::windowSum(e);
        const int n = static_cast<int>(e.size());
        return Entry{s.r / n, s.g / n, s.b / n};
    };
}

reference::Rule adaptive(int limit) {
    return [limit](const Window& e, Entry& c) {
        const int n = static_cast<int>(e.size());
        const Entry s = reference::windowSum(e);
        auto d = [&](int sum, int centre) {
            const double square = std::nearbyint(std::pow(sum / n - centre, 2));
            return n == 9 ? static_cast<int>(std::nearbyint(std::sqrt(square)))
                          : std::clamp(static_cast<int>(square), 1, 128);
        };
        const int weight = std::clamp((d(s.r, c.r) + d(s.g, c.g) + d(s.b, c.b)) / 3 - 64, 1, limit);
        const Entry ring{s.r - e[0].r, s.g - e[0].g, s.b - e[0].b};
        auto out = [&](int ringSum, int centre) {
            return (ringSum + weight * centre) / (weight + n - 1);
        };
        return Entry{out(ring.r, e[0].r), out(ring.g, e[0].g), out(ring.b, e[0].b)};
    };
}

reference::Rule weightPerChannel() {
    return [](const Window& e, Entry&) {
        const int n = static_cast<int>(e.size());
        const Entry s = reference::windowSum(e);
        auto out = [n](int sum, int centre) {
            const int ring = sum - centre;
            const int w = std::clamp(std::abs(centre * (n - 1) - ring) / 8, 1, 128);
            return (ring + w * centre) / (w + n - 1);
        };
        return Entry{out(s.r, e[0].r), out(s.g, e[0].g), out(s.b, e[0].b)};
    };
}

reference::Rule sharpen() {
    return [](const Window& e, Entry& c) {
        const int n = static_cast<int>(e.size());
        const Entry s = reference::windowSum(e);
        return Entry{2 * c.r - s.r / n, 2 * c.g - s.g / n, 2 * c.b - s.b / n};
    };
}

reference::Rule savitzkyGolay() {
    const std::vector<double> w{11, 9, 10, 9, 10, 10, 9,  10, 9,  3,  6, 7, 6, 3,  6,  6,  7,
                                7,  6, 6,  3, 6,  7,  6,  3,  -7, -2, 1, 2, 1, -2, -7, -2, -2,
                                1,  1, 2,  2, 1,  1,  -2, -2, -7, -2, 1, 2, 1, -2, -7};
    return [w](const Window& e, Entry&) {
        const Entry s = reference::weighted(w, e);
        return Entry{s.r / 147, s.g / 147, s.b / 147};
    };
}

// Weights -1 on the kernel's entries and the large one on the direction's.
reference::Rule highpass(int t, int kind, int selector, int direction) {
    const int size = kind == 2 ? 25 : 9;
    std::vector<double> w(static_cast<std::size_t>(size), -1.0);
    if (kind == 0) {
        for (int corner : {1, 3, 6, 8})
            w[static_cast<std::size_t>(corner)] = 0;
    }
    const int entries3[] = {0, 2, 7, 4, 5, 1, 3, 6, 8};
    const int entries5[] = {0, 11, 22, 16, 17, 9, 13, 20, 24};
    int at = kind == 2 ? entries5[direction] : entries3[direction];
    if (kind == 0 && direction > 4) at = 0;
    w[static_cast<std::size_t>(at)] = kind == 0 ? 5.0 : kind == 1 ? 9.0 : 25.0;
    return [=](const Window& e, Entry& c) {
        const Entry f = reference::weighted(w, e, true);
        auto mix = [t](int fc, int src) {
            return static_cast<int>(std::nearbyint((t * fc + (10 - t) * src) / 10.0));
        };
        const Entry v{mix(f.r, c.r), mix(f.g, c.g), mix(f.b, c.b)};
        if (selector == 7) {
            auto lightness = [](const Entry& x) {
                return static_cast<int>(
                    std::nearbyint((std::max({x.r, x.g, x.b}) + std::min({x.r, x.g, x.b})) / 2.0));
            };
            int l1 = lightness(c);
            const int l2 = lightness(v);
            if (l1 == 0) {
                l1 = 1;
                c = {1, 1, 1};
            }
            auto scale = [&](int src) {
                return static_cast<int>(std::nearbyint(static_cast<double>(src * l2) / l1));
            };
            return Entry{scale(c.r), scale(c.g), scale(c.b)};
        }
        const bool red[] = {true, true, false, false, true, false, true};
        const bool green[] = {true, false, true, false, true, true, false};
        const bool blue[] = {true, false, false, true, false, true, true};
        if (selector > 6) return c;
        return Entry{red[selector] ? v.r : c.r, green[selector] ? v.g : c.g,
                     blue[selector] ? v.b : c.b};
    };
}

struct ModelCase {
    const char* name;
    std::function<void(Class_Soften&, const ProcessRect&)> call;
    int reach;
    bool quirk;
    reference::Rule rule;
};

Soften::Call smoothing(int kind) {
    return [kind](Class_Soften& e, const ProcessRect& r) {
        e.Smoothing(static_cast<std::uint8_t>(kind), r.left, r.top, r.right, r.bottom);
    };
}

std::vector<ModelCase> modelCases() {
    using E = Class_Soften;
    using R = const ProcessRect&;
    std::vector<ModelCase> cases{
        {"Smoothing0", smoothing(0), 1, true,
         weights({0.25, 0.0625, 0.125, 0.0625, 0.125, 0.125, 0.0625, 0.125, 0.0625})},
        {"Smoothing1", smoothing(1), 1, true, weights({0.25, 0, 0.19, 0, 0.18, 0.18, 0, 0.19, 0})},
        {"Smoothing2", smoothing(2), 1, true,
         weights({0.04, 0.15, 0.09, 0.15, 0.09, 0.09, 0.15, 0.09, 0.15})},
        {"Smoothing3", smoothing(3), 1, false, mean()},
        {"Smoothing7", smoothing(7), 2, false, mean()},
        {"Smoothing12", smoothing(12), 3, false, mean()},
        {"Smoothing10", smoothing(10), 1, false, adaptive(128)},
        {"Smoothing11", smoothing(11), 2, false, adaptive(255)},
        {"Smoothing14", smoothing(14), 3, false, adaptive(255)},
        {"Smoothing13", smoothing(13), 3, false, savitzkyGolay()},
    };
    for (int size = 0; size <= 2; ++size) {
        const auto s = static_cast<std::uint8_t>(size);
        cases.push_back(
            {"EdgeSaving0",
             [s](E& e, R r) { e.Edge_SavingSmooth(s, 0, r.left, r.top, r.right, r.bottom); },
             size + 1, false, adaptive(size == 0 ? 128 : 255)});
        cases.push_back(
            {"EdgeSaving1",
             [s](E& e, R r) { e.Edge_SavingSmooth(s, 1, r.left, r.top, r.right, r.bottom); },
             size + 1, false, weightPerChannel()});
        cases.push_back({"Sharpen",
                         [s](E& e, R r) { e.Sharpen(s, r.left, r.top, r.right, r.bottom); },
                         size + 1, false, sharpen()});
    }
    for (int kind = 0; kind <= 3; ++kind) {
        const auto k = static_cast<std::uint8_t>(kind);
        cases.push_back(
            {"MovingAverage",
             [k](E& e, R r) { e.MovingAverage(k, 0, r.left, r.top, r.right, r.bottom); }, kind + 4,
             false, mean()});
    }
    const int highpassCases[][4] = {{5, 0, 0, 0}, {5, 0, 1, 3}, {3, 0, 0, 6}, {5, 1, 0, 0},
                                    {9, 1, 2, 5}, {1, 1, 7, 8}, {5, 1, 4, 2}, {5, 2, 0, 1},
                                    {7, 2, 7, 7}, {5, 2, 6, 4}, {5, 1, 9, 0}};
    for (const auto& [t, kind, selector, direction] : highpassCases) {
        cases.push_back({"Highpass",
                         [=](E& e, R r) {
                             e.HighpassFilter(
                                 static_cast<std::int16_t>(t), static_cast<std::uint8_t>(kind),
                                 static_cast<std::uint8_t>(selector), r.left, r.top, r.right,
                                 r.bottom, static_cast<std::uint8_t>(direction));
                         },
                         kind == 2 ? 2 : 1, false, highpass(t, kind, selector, direction)});
    }
    return cases;
}

TEST_F(Soften, EveryWindowFilterMatchesTheColumnWalkingModel) {
    const Surface picture = randomPicture(41, 33);
    // Mostly dark pixels so that the lightness selector meets a black source.
    const Surface dark = makePicture(41, 33, [&](int x, int y) {
        const Pixel p = picture.at(x, y);
        return (x + y) % 3 == 0 ? makePixel(0, 0, 0) : (p & 0x003F3F3Fu);
    });
    for (const ModelCase& c : modelCases()) {
        for (const std::uint8_t flag : {0, 3}) {
            context.flags.calculationFlag = flag;
            for (const Surface* source : {&picture, &dark}) {
                const Surface expected =
                    reference::windowFilter(*source, c.reach, c.quirk, c.rule, flag);
                const Surface result = run(*source, c.call);
                ASSERT_TRUE(result == expected)
                    << c.name << " reach " << c.reach << " flag " << int(flag);
            }
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(Soften, FlatPicturesStayFlatButKindOneDims) {
    const Surface grey(12, 10, makePixel(200, 200, 200));
    const std::pair<Call, int> cases[] = {
        {smoothing(1), 198}, // round(200 * 0.99)
        {smoothing(0), 200},
        {smoothing(2), 200},
        {smoothing(3), 200},
        {smoothing(10), 200},
        {smoothing(11), 200},
        {smoothing(14), 200},
        {smoothing(13), 200},
        {[](Class_Soften& e, const ProcessRect& r) {
             e.HighpassFilter(5, 1, 0, r.left, r.top, r.right, r.bottom, 0);
         },
         200},
    };
    for (const auto& [call, value] : cases) {
        const Surface result = run(grey, call);
        EXPECT_EQ(result.at(5, 5), makePixel(value, value, value)) << value;
        // The last column and row of the rectangle keep the source.
        EXPECT_EQ(result.at(11, 5), grey.at(11, 5));
        EXPECT_EQ(result.at(5, 9), grey.at(5, 9));
    }
}

TEST_F(Soften, TheFirstWindowOfAColumnTakesItsCentreFromTheTopRow) {
    // Row 0 black, the rest 100: the column's first pixel sees the black
    // centre, the second sees it once more as its top entry.
    const Surface picture =
        makePicture(3, 5, [](int, int y) { return y == 0 ? 0u : makePixel(100, 100, 100); });
    const Surface result = run(picture, smoothing(0));
    EXPECT_EQ(redOf(result.at(1, 1)), 50); // 100 * 8 / 16
    EXPECT_EQ(redOf(result.at(1, 2)), 88); // 87.5, half to even
    EXPECT_EQ(redOf(result.at(1, 3)), 100);
    // The mean kinds read the true centre.
    EXPECT_EQ(redOf(run(picture, smoothing(3)).at(1, 1)), 66);
}

TEST_F(Soften, KindsEightAndNineStoreTheStaleResultFields) {
    const Surface grey(6, 7, makePixel(200, 200, 200));
    for (const int kind : {8, 9}) {
        context.flags.calculationFlag = 0;
        EXPECT_EQ(run(grey, smoothing(kind)).at(2, 3), makePixel(0, 0, 0));
        // With (r + r1) / 2 each pixel halves the way from the last result
        // to its own colour, down one column and then down the next.
        context.flags.calculationFlag = 1;
        const Surface chain = run(grey, smoothing(kind));
        const int expected[] = {100, 150, 175, 187, 193, 196};
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(redOf(chain.at(2 + i / 3, 2 + i % 3)), expected[i]) << i;
    }
    context.flags.calculationFlag = 0;
    const Surface picture = randomPicture(9, 9);
    for (const int kind : {4, 5, 6, 15, 255})
        EXPECT_TRUE(run(picture, smoothing(kind)) == picture) << kind;
}

TEST_F(Soften, ARectangleLimitsReadsAsWellAsWrites) {
    // The same filter on a rectangle and on a crop of it agree, and nothing
    // outside the rectangle moves; a rectangle beyond the picture is cut.
    const Surface picture = randomPicture(30, 24);
    const ProcessRect rect{5, 4, 22, 19};
    Surface crop(17, 15);
    for (int y = 0; y < 15; ++y) {
        for (int x = 0; x < 17; ++x)
            crop.at(x, y) = picture.at(x + 5, y + 4);
    }
    for (const ModelCase& c : modelCases()) {
        const Surface inRect = run(picture, c.call, rect);
        const Surface cropped = run(crop, c.call);
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 30; ++x) {
                const bool inside = x >= 5 && x < 22 && y >= 4 && y < 19;
                ASSERT_EQ(inRect.at(x, y), inside ? cropped.at(x - 5, y - 4) : picture.at(x, y))
                    << c.name << " " << x << "," << y;
            }
        }
        EXPECT_TRUE(run(picture, c.call, {-3, -3, 40, 40}) == run(picture, c.call)) << c.name;
    }
}

TEST_F(Soften, TinyPicturesAreLeftAsTheyAre) {
    for (const auto& [w, h] : {std::pair{1, 1}, std::pair{2, 2}, std::pair{3, 2}}) {
        const Surface picture = randomPicture(w, h);
        for (const ModelCase& c : modelCases()) {
            const Surface result = run(picture, c.call);
            EXPECT_TRUE(result == picture) << c.name << " " << w << "x" << h;
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

TEST(SoftenDivider, MeansByMultiplyAndShiftAreExact) {
    for (int side = 3; side <= 15; side += 2) {
        const int n = side * side;
        const soften::Divider divide = soften::dividerFor(n, 255 * n);
        for (int v = 0; v <= 255 * n; ++v)
            ASSERT_EQ(static_cast<int>(divide(static_cast<std::uint32_t>(v))), v / n) << n;
    }
}

} // namespace
} // namespace lumiran::testing
