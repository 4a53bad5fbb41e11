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
constexpr ByOrder<ChannelMask> MiddleStepByOrder{
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

} // namespace

void Class_ColorOp::GrayatSaturation(std::uint8_t channel, std::int16_t degree, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::uint8_t kind) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // round(d * (a / 255)) for every spread d of 0..255; |d / 255| <= 1
        // keeps it inside 16 bits.
        std::array<int, 256> step{};
        for (int d = 0; d < 256; ++d)
            step[d] = roundTo<std::int16_t>(d * (degree / 255.0));
        const ChannelMask greyed = channel == 0   ? AllChannels
                                   : channel == 1 ? Red
                                   : channel == 2 ? Green
                                   : channel == 3 ? Blue
                                                  : NoChannel;

        eachPixel<Ending::SharedTail>(rect, [&](int r, int g, int b) {
            const int mx = std::max({r, g, b});
            const int mn = std::min({r, g, b});
            const int md = programMedian(r, g, b);
            const int d1 = step[mx - mn];
            const int d2 = step[mx - md];
            const ChannelMask largest = channelsEqualTo(mx, r, g, b);
            const ChannelMask smallest = channelsEqualTo(mn, r, g, b);
            const ChannelMask middle = entryFor(MiddleStepByOrder, channelOrder(r, g, b));
            Channels c{r, g, b};
            if (degree >= 0) {
                c.add(largest, d1);
                c.add(smallest, -d1);
                c.add(middle, -std::abs(d2));
            } else {
                c.add(middle, std::abs(d2));
                c.add(smallest, std::abs(d1));
            }
            // Pixels darker than the degree are greyed.
            const int v = roundInRange<std::int32_t>((r + g + b) / 3.0);
            if (v < degree) {
                int grey = 0;
                switch (kind) {
                case 0:
                    grey = v;
                    break;
                case 1:
                    grey = mx;
                    break;
                case 2:
                    grey = md;
                    break;
                case 3:
                    grey = mn;
                    break;
                default:
                    break;
                }
                c.set(greyed, grey);
            }
            return c.fields();
        });
    });
}

} // namespace lumiran
