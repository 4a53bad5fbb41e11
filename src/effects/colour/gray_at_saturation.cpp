#include "effects/colour/class_color_op.h"
#include "effects/colour/color_op_support.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace lumiran {
namespace {

// The channels that take the middle step. Both equal channels on two equal
// ones, all three when all are equal; and on purpose not the true middle
// for g > r > b (blue), g > b > r (none) and r = g above b (blue).
constexpr ByOrder<std::uint32_t> MiddleStepByOrder{
    /* r > g > b */ Green,
    /* r > b > g */ Blue,
    /* b > r > g */ Red,
    /* b > g > r */ Green,
    /* g > b > r */ NoChannel,
    /* g > r > b */ Blue,
    /* r = b > g */ Red | Blue,
    /* r > g = b */ Green | Blue,
    /* g > r = b */ Red | Blue,
    /* g = b > r */ Green | Blue,
    /* r = g > b */ Blue,
    /* b > r = g */ Red | Green,
    /* r = g = b */ AllChannels,
};

constexpr auto MiddleStepByKey = byOrderKey(MiddleStepByOrder);

} // namespace

void Class_ColorOp::GrayatSaturation(std::uint8_t channel, std::int16_t degree, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t kind) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // round(d * (a / 255)) of a spread d of 0..255: d / 255 <= 1 keeps
        // it inside 16 bits, so it needs no range check.
        const double ratio = degree / 255.0;
        auto step = [ratio](int d) { return roundInRange<std::int32_t>(d * ratio); };
        const ChannelMask greyedChannels = channel == 0   ? AllChannels
                                           : channel == 1 ? Red
                                           : channel == 2 ? Green
                                           : channel == 3 ? Blue
                                                          : NoChannel;

        auto rule = [&]<bool Apart>(int r, int g, int b) {
            const int mx = std::max({r, g, b});
            const int mn = std::min({r, g, b});
            const int md = programMedianOf(r, g, b);
            const int d1 = step(mx - mn);
            const int d2 = std::abs(step(mx - md));
            const ChannelMask largest = channelsEqualTo(mx, r, g, b);
            const ChannelMask smallest = channelsEqualTo(mn, r, g, b);
            const auto middle = static_cast<ChannelMask>(
                MiddleStepByKey[static_cast<std::size_t>(orderKey(r, g, b))]);
            Channels c{r, g, b};
            if constexpr (Apart) {
                c.add(largest, d1);
                c.add(smallest, -d1);
                c.add(middle, -d2);
            } else {
                c.add(middle, d2);
                c.add(smallest, std::abs(d1));
            }
            // Pixels darker than the degree are greyed.
            const int v = roundInRange<std::int32_t>((r + g + b) / 3.0);
            const int grey =
                (kind == 0) * v + (kind == 1) * mx + (kind == 2) * md + (kind == 3) * mn;
            const bool dark = v < degree;
            auto pick = [&](ChannelMask which, int stepped) {
                return dark && (greyedChannels & which) != 0 ? grey : stepped;
            };
            return Channels{pick(Red, c.red), pick(Green, c.green), pick(Blue, c.blue)}.fields();
        };
        if (degree >= 0) {
            mapPixels<ResultTail::Clamp>(
                rect, [&](int r, int g, int b) { return rule.template operator()<true>(r, g, b); });
        } else {
            mapPixels<ResultTail::Clamp>(rect, [&](int r, int g, int b) {
                return rule.template operator()<false>(r, g, b);
            });
        }
    });
}

} // namespace lumiran
