#include "effects/halftone/binarization/binarization_support.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "engine/colour_models.h"

#include <array>

namespace lumiran {
namespace {

using namespace bilevel;

// The channels kinds 1..7 test: RGB, r, g, b, r & g, g & b, r & b.
constexpr std::array<Channels, 8> TestedByKind{
    0,
    AllChannels,
    RedChannel,
    GreenChannel,
    BlueChannel,
    RedChannel | GreenChannel,
    GreenChannel | BlueChannel,
    RedChannel | BlueChannel,
};

// The channels holding a value.
constexpr Channels channelsAt(int value, int r, int g, int b) {
    return static_cast<Channels>((r == value ? RedChannel : 0) | (g == value ? GreenChannel : 0) |
                                 (b == value ? BlueChannel : 0));
}

} // namespace

void Class_Binarization::Binarization(std::int16_t threshold, std::int16_t kind, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (!resultReady()) return;
        const int t = threshold;
        auto test = [t](int v) { return v < t ? 0 : 255; };
        auto run = [&](auto rule) { mapOwnPixels(rect, rule); };
        // Chosen channels take the test of one value, the others stay.
        auto testInto = [test](Channels chosen, int value, int r, int g, int b) {
            return replaced(chosen, test(value), r, g, b);
        };
        switch (kind) {
        case 0:
            run([=](int r, int g, int b) {
                const auto v = static_cast<std::int16_t>(test(luminance(r, g, b)));
                return Rgb16{v, v, v};
            });
            break;
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
        case 6:
        case 7: {
            const Channels tested = TestedByKind[static_cast<std::size_t>(kind)];
            run([=](int r, int g, int b) {
                auto one = [&](Channels c, int v) {
                    return static_cast<std::int16_t>((tested & c) != 0 ? test(v) : v);
                };
                return Rgb16{one(RedChannel, r), one(GreenChannel, g), one(BlueChannel, b)};
            });
            break;
        }
        case 8:
            run([=](int r, int g, int b) {
                const int mx = std::max({r, g, b});
                return testInto(channelsAt(mx, r, g, b), mx, r, g, b);
            });
            break;
        case 9:
            run([=](int r, int g, int b) {
                const int mn = std::min({r, g, b});
                return testInto(channelsAt(mn, r, g, b), mn, r, g, b);
            });
            break;
        case 10:
            // The lightness tested, into all three channels.
            run([=](int r, int g, int b) {
                const MaxMin m = MaxMinOfThree(r, g, b);
                return testInto(AllChannels, lightness(m.max, m.min), r, g, b);
            });
            break;
        case 11:
            // The lightness tested, into the largest and smallest channels.
            run([=](int r, int g, int b) {
                const MaxMin m = MaxMinOfThree(r, g, b);
                const Channels ends = channelsAt(m.max, r, g, b) | channelsAt(m.min, r, g, b);
                return testInto(ends, lightness(m.max, m.min), r, g, b);
            });
            break;
        default:
            break;
        }
    });
}

} // namespace lumiran
