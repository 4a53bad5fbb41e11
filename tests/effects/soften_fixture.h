#pragma once

#include "effects/effect_fixture.h"
#include "effects/smoothing/class_soften.h"
#include "test_support.h"

#include <cmath>
#include <functional>
#include <vector>

namespace lumiran::testing {

// Runs Class_Soften operations as the program does: the source fetched
// twice, the separate destination written back.
struct SoftenFixture : EffectFixture<Class_Soften> {
    Surface run(const Surface& picture, const Call& call, const ProcessRect& rect) {
        return runTrans(picture, call, rect);
    }
    Surface run(const Surface& picture, const Call& call) { return runTrans(picture, call); }
};

// Colours from a fixed sequence, different at every pixel.
inline Surface randomPicture(int width, int height) {
    std::uint32_t state = 12345;
    return makePicture(width, height, [&](int, int) {
        state = state * 1664525u + 1013904223u;
        return static_cast<Pixel>(state >> 8);
    });
}

inline Pixel storeResult(Pixel previous, int r, int g, int b, Pixel source, std::uint8_t flag) {
    const Rgb16 v{static_cast<std::int16_t>(r), static_cast<std::int16_t>(g),
                  static_cast<std::int16_t>(b)};
    const Rgb16 e =
        flag > 0 ? applyCalculationType(flag, redOf(source), greenOf(source), blueOf(source), v)
                 : clampResult(v);
    return withColour(previous, e.red, e.green, e.blue);
}

// A slow, literal model of the window filters: the window an array by
// rings (0 the centre, then each ring in reading order), walked down each
// column by shifting its entries up a row and reading the new bottom row.
// rule(window, centre) gives R, G, B and may change the blend's source.
using Window = std::vector<Pixel>;
using WindowRule = std::function<std::array<int, 3>(const Window&, Pixel&)>;

inline Surface windowModel(const Surface& in, int reach, bool firstWindowQuirk,
                           const WindowRule& rule, std::uint8_t flag) {
    std::vector<std::pair<int, int>> ring{{0, 0}};
    for (int r = 1; r <= reach; ++r) {
        for (int dy = -r; dy <= r; ++dy) {
            for (int dx = -r; dx <= r; ++dx) {
                if (std::max(std::abs(dx), std::abs(dy)) == r) ring.emplace_back(dx, dy);
            }
        }
    }
    auto slot = [&](int dx, int dy) {
        return static_cast<std::size_t>(std::find(ring.begin(), ring.end(), std::pair{dx, dy}) -
                                        ring.begin());
    };
    Surface out = in;
    Window w(ring.size());
    for (int x = reach; x < in.width() - reach; ++x) {
        for (std::size_t i = 0; i < ring.size(); ++i)
            w[i] = in.at(x + ring[i].first, reach + ring[i].second);
        if (firstWindowQuirk) w[0] = in.at(x, 0);
        for (int y = reach; y < in.height() - reach; ++y) {
            if (y > reach) {
                for (int dy = -reach; dy <= reach; ++dy) {
                    for (int dx = -reach; dx <= reach; ++dx) {
                        w[slot(dx, dy)] = dy < reach ? w[slot(dx, dy + 1)] : in.at(x + dx, y + dy);
                    }
                }
            }
            Pixel source = w[0];
            const auto [r, g, b] = rule(w, source);
            out.at(x, y) = storeResult(out.at(x, y), r, g, b, source, flag);
        }
    }
    return out;
}

} // namespace lumiran::testing
