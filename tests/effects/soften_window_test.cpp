// The window filters of Class_Soften against the literal column-walking
// model, and what the model does not make obvious: margins, flat pictures,
// the first-window quirk, the stale result fields.
#include "effects/colour/colour_selector.h"
#include "soften_fixture.h"

#include <gtest/gtest.h>
#include <numeric>

namespace lumiran::testing {
namespace {

using Soften = SoftenFixture;
using Channels = std::array<int, 3>;

int channel(Pixel p, int c) {
    return c == 0 ? redOf(p) : c == 1 ? greenOf(p) : blueOf(p);
}

// A rule worked channel by channel on the values by ring index.
WindowRule eachChannel(std::function<int(const std::vector<int>&)> f) {
    return [f](const Window& w, Pixel&) {
        Channels out;
        for (int c = 0; c < 3; ++c) {
            std::vector<int> values;
            for (const Pixel p : w)
                values.push_back(channel(p, c));
            out[static_cast<std::size_t>(c)] = f(values);
        }
        return out;
    };
}

int sum(const std::vector<int>& v) {
    return std::accumulate(v.begin(), v.end(), 0);
}

int n(const std::vector<int>& v) {
    return static_cast<int>(v.size());
}

// The weights as doubles summed in index order, each product rounded first
// where the filter says so, the sum rounded half to even.
int weighted(const std::vector<double>& weights, const std::vector<int>& v, bool roundEach) {
    double s = 0;
    for (std::size_t i = 0; i < weights.size(); ++i)
        s += roundEach ? std::nearbyint(weights[i] * v[i]) : weights[i] * v[i];
    return static_cast<int>(std::nearbyint(s));
}

WindowRule weights(std::vector<double> w) {
    return eachChannel([w](const auto& v) { return weighted(w, v, false); });
}

const WindowRule mean = eachChannel([](const auto& v) { return sum(v) / n(v); });

WindowRule adaptive(int limit) {
    return [limit](const Window& w, Pixel&) {
        const int size = static_cast<int>(w.size());
        Channels s{}, d{}, out{};
        for (std::size_t c = 0; c < 3; ++c) {
            for (const Pixel p : w)
                s[c] += channel(p, static_cast<int>(c));
            const double square = std::pow(s[c] / size - channel(w[0], static_cast<int>(c)), 2);
            d[c] = size == 9 ? static_cast<int>(std::nearbyint(std::sqrt(square)))
                             : std::clamp(static_cast<int>(square), 1, 128);
        }
        const int k = std::clamp((d[0] + d[1] + d[2]) / 3 - 64, 1, limit);
        for (std::size_t c = 0; c < 3; ++c) {
            const int centre = channel(w[0], static_cast<int>(c));
            out[c] = (s[c] - centre + k * centre) / (k + size - 1);
        }
        return out;
    };
}

const WindowRule weightPerChannel = eachChannel([](const auto& v) {
    const int ring = sum(v) - v[0];
    const int w = std::clamp(std::abs(v[0] * (n(v) - 1) - ring) / 8, 1, 128);
    return (ring + w * v[0]) / (w + n(v) - 1);
});

const WindowRule sharpen = eachChannel([](const auto& v) { return 2 * v[0] - sum(v) / n(v); });

const WindowRule savitzkyGolay = eachChannel([](const auto& v) {
    const std::vector<double> w{11, 9, 10, 9, 10, 10, 9,  10, 9,  3,  6, 7, 6, 3,  6,  6,  7,
                                7,  6, 6,  3, 6,  7,  6,  3,  -7, -2, 1, 2, 1, -2, -7, -2, -2,
                                1,  1, 2,  2, 1,  1,  -2, -2, -7, -2, 1, 2, 1, -2, -7};
    return weighted(w, v, false) / 147;
});

// Weights -1 on the kernel's entries and the large one on the direction's.
WindowRule highpass(int t, int kind, int selector, int direction) {
    std::vector<double> w(kind == 2 ? 25 : 9, -1.0);
    if (kind == 0) {
        for (const int corner : {1, 3, 6, 8})
            w[static_cast<std::size_t>(corner)] = 0;
    }
    const int entries3[] = {0, 2, 7, 4, 5, 1, 3, 6, 8};
    const int entries5[] = {0, 11, 22, 16, 17, 9, 13, 20, 24};
    const int at = kind == 2                    ? entries5[direction]
                   : kind == 1 || direction < 5 ? entries3[direction]
                                                : 0;
    w[static_cast<std::size_t>(at)] = kind == 0 ? 5.0 : kind == 1 ? 9.0 : 25.0;
    const WindowRule filtered = eachChannel([=](const auto& v) {
        return static_cast<int>(
            std::nearbyint((t * weighted(w, v, true) + (10 - t) * v[0]) / 10.0));
    });
    return [=](const Window& window, Pixel& source) {
        const Channels v = filtered(window, source);
        const Channels src{channel(source, 0), channel(source, 1), channel(source, 2)};
        if (selector == 7) {
            auto lightness = [](const Channels& x) {
                return static_cast<int>(std::nearbyint((*std::max_element(x.begin(), x.end()) +
                                                        *std::min_element(x.begin(), x.end())) /
                                                       2.0));
            };
            int l1 = lightness(src);
            Channels scaled = src;
            if (l1 == 0) {
                l1 = 1;
                scaled = {1, 1, 1};
                source = makePixel(1, 1, 1, spareOf(source));
            }
            for (int& c : scaled)
                c = static_cast<int>(std::nearbyint(double(c * lightness(v)) / l1));
            return scaled;
        }
        const ChannelMask m = selectedChannels(selector);
        return Channels{(m & Red) != 0 ? v[0] : src[0], (m & Green) != 0 ? v[1] : src[1],
                        (m & Blue) != 0 ? v[2] : src[2]};
    };
}

struct ModelCase {
    std::string name;
    Soften::Call call;
    int reach;
    WindowRule rule;
};

Soften::Call smoothing(int kind) {
    return [kind](Class_Soften& e, const ProcessRect& r) {
        e.Smoothing(static_cast<std::uint8_t>(kind), r.left, r.top, r.right, r.bottom);
    };
}

std::vector<ModelCase> modelCases() {
    using R = const ProcessRect&;
    std::vector<ModelCase> cases{
        {"Smoothing0", smoothing(0), 1,
         weights({0.25, 0.0625, 0.125, 0.0625, 0.125, 0.125, 0.0625, 0.125, 0.0625})},
        {"Smoothing1", smoothing(1), 1, weights({0.25, 0, 0.19, 0, 0.18, 0.18, 0, 0.19, 0})},
        {"Smoothing2", smoothing(2), 1,
         weights({0.04, 0.15, 0.09, 0.15, 0.09, 0.09, 0.15, 0.09, 0.15})},
        {"Smoothing3", smoothing(3), 1, mean},
        {"Smoothing7", smoothing(7), 2, mean},
        {"Smoothing12", smoothing(12), 3, mean},
        {"Smoothing10", smoothing(10), 1, adaptive(128)},
        {"Smoothing11", smoothing(11), 2, adaptive(255)},
        {"Smoothing14", smoothing(14), 3, adaptive(255)},
        {"Smoothing13", smoothing(13), 3, savitzkyGolay},
    };
    for (std::uint8_t s = 0; s <= 3; ++s) {
        const std::string size = std::to_string(s);
        cases.push_back(
            {"MovingAverage" + size,
             [s](Class_Soften& e, R r) { e.MovingAverage(s, 0, r.left, r.top, r.right, r.bottom); },
             s + 4, mean});
        if (s == 3) break;
        cases.push_back({"EdgeSavingType1Size" + size,
                         [s](Class_Soften& e, R r) {
                             e.Edge_SavingSmooth(s, 1, r.left, r.top, r.right, r.bottom);
                         },
                         s + 1, weightPerChannel});
        cases.push_back(
            {"Sharpen" + size,
             [s](Class_Soften& e, R r) { e.Sharpen(s, r.left, r.top, r.right, r.bottom); }, s + 1,
             sharpen});
    }
    // Threshold, filter kind, colour row, direction.
    const int highpassCases[][4] = {{5, 0, 1, 3}, {3, 0, 0, 6}, {9, 1, 2, 5}, {1, 1, 7, 8},
                                    {5, 2, 0, 1}, {7, 2, 7, 7}, {5, 1, 9, 0}};
    for (const auto& [t, kind, row, direction] : highpassCases) {
        cases.push_back({"Highpass" + std::to_string(kind) + std::to_string(row),
                         [=](Class_Soften& e, R r) {
                             e.HighpassFilter(
                                 static_cast<std::int16_t>(t), static_cast<std::uint8_t>(kind),
                                 static_cast<std::uint8_t>(row), r.left, r.top, r.right, r.bottom,
                                 static_cast<std::uint8_t>(direction));
                         },
                         kind == 2 ? 2 : 1, highpass(t, kind, row, direction)});
    }
    return cases;
}

TEST_F(Soften, EveryWindowFilterMatchesTheColumnWalkingModel) {
    const Surface picture = randomPicture(41, 33);
    // Dark, with black pixels for the lightness row's black source.
    const Surface dark = makePicture(41, 33, [&](int x, int y) {
        return (x + y) % 3 == 0 ? 0u : picture.at(x, y) & 0x003F3F3Fu;
    });
    for (const ModelCase& c : modelCases()) {
        for (const std::uint8_t flag : {0, 3}) {
            context.flags.calculationFlag = flag;
            for (const Surface* source : {&picture, &dark}) {
                const bool quirk =
                    c.name.starts_with("Smoothing") && c.name.size() == 10 && c.name.back() <= '2';
                ASSERT_TRUE(run(*source, c.call) ==
                            windowModel(*source, c.reach, quirk, c.rule, flag))
                    << c.name << " flag " << int(flag);
            }
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

TEST_F(Soften, FlatPicturesStayFlatButKindOneDims) {
    const Surface grey(12, 10, makePixel(200, 200, 200));
    for (const ModelCase& c : modelCases()) {
        const int value = c.name == "Smoothing1" ? 198 : 200; // round(200 * 0.99)
        const Surface result = run(grey, c.call);
        EXPECT_EQ(result.at(5, 5), makePixel(value, value, value)) << c.name;
        // The last column and row of the rectangle keep the source.
        EXPECT_EQ(result.at(11, 5), grey.at(11, 5)) << c.name;
        EXPECT_EQ(result.at(5, 9), grey.at(5, 9)) << c.name;
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
    EXPECT_EQ(redOf(run(picture, smoothing(3)).at(1, 1)), 66); // the means read the true centre
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
    // The same filter on a rectangle and on a crop of it agree, nothing
    // outside the rectangle moves, a rectangle beyond the picture is cut,
    // and pictures smaller than the window stay as they are.
    const Surface picture = randomPicture(30, 24);
    const Surface crop =
        makePicture(17, 15, [&](int x, int y) { return picture.at(x + 5, y + 4); });
    for (const ModelCase& c : modelCases()) {
        const Surface inRect = run(picture, c.call, {5, 4, 22, 19});
        const Surface cropped = run(crop, c.call);
        for (int y = 0; y < 24; ++y) {
            for (int x = 0; x < 30; ++x) {
                const bool inside = x >= 5 && x < 22 && y >= 4 && y < 19;
                ASSERT_EQ(inRect.at(x, y), inside ? cropped.at(x - 5, y - 4) : picture.at(x, y))
                    << c.name << " " << x << "," << y;
            }
        }
        EXPECT_TRUE(run(picture, c.call, {-3, -3, 40, 40}) == run(picture, c.call)) << c.name;
        for (const int side : {1, 2}) {
            const Surface tiny = randomPicture(side, side);
            EXPECT_TRUE(run(tiny, c.call) == tiny) << c.name << " " << side;
        }
    }
    EXPECT_TRUE(context.failures.empty());
}

} // namespace
} // namespace lumiran::testing
