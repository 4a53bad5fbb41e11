#include "effects/halftone/dithering/class_dithering.h"

#include <algorithm>
#include <array>

namespace lumiran {
namespace {

// The earlier positions a pixel gathers from, weight over 48, in the
// order the colour mode sums them.
struct Gather {
    int dx;
    int dy;
    double weight;
};

constexpr std::array<Gather, 12> Gathered{{
    {-2, -2, 1 / 48.0},
    {-1, -2, 3 / 48.0},
    {0, -2, 5 / 48.0},
    {1, -2, 3 / 48.0},
    {2, -2, 1 / 48.0},
    {-2, -1, 3 / 48.0},
    {-1, -1, 5 / 48.0},
    {0, -1, 7 / 48.0},
    {1, -1, 5 / 48.0},
    {2, -1, 3 / 48.0},
    {-2, 0, 5 / 48.0},
    {-1, 0, 7 / 48.0},
}};

} // namespace

void Class_Dithering::Dither_LimitSqure(std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom, std::int16_t colourMode,
                                        std::int16_t level) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const bool mono = colourMode == 0;
        BuildLevelTable(level, colourMode);
        SetProgressRange(rect.top, rect.bottom);
        if (!arraysReady()) return;
        const Span span = spanOf(rect);
        // The error made at a position is its source minus what the
        // result array holds there now; positions not yet reached still
        // hold the picture. Positions are clamped into the rectangle.
        forEachRow<RowOrder::TopToBottom>(rect, [&](int y, int x0, int x1) {
            for (int x = x0; x < x1; ++x) {
                std::array<Pixel, 12> source{};
                std::array<Pixel, 12> done{};
                for (std::size_t i = 0; i < Gathered.size(); ++i) {
                    const int gx = std::clamp(x + Gathered[i].dx, x0, x1 - 1);
                    const int gy = std::clamp(y + Gathered[i].dy, span.firstRow, span.endRow - 1);
                    source[i] = ImageBits.at(gx, gy);
                    done[i] = TransBits.at(gx, gy);
                }
                const Pixel self = ImageBits.at(x, y);
                Pixel& target = TransBits.at(x, y);
                if (mono) {
                    int sum = 0;
                    for (std::size_t i = 0; i < Gathered.size(); ++i) {
                        const Pixel s = source[i], d = done[i];
                        const int sourceGrey = ditherGrey(redOf(s), greenOf(s), blueOf(s));
                        const int doneGrey =
                            roundInRange<int>((redOf(d) + greenOf(d) + blueOf(d)) / 3.0);
                        sum = wrap16(
                            sum + roundInRange<int>((sourceGrey - doneGrey) * Gathered[i].weight));
                    }
                    const int grey = ditherGrey(redOf(self), greenOf(self), blueOf(self));
                    const int v = MonoLevelTable[static_cast<std::size_t>(toChannel(grey + sum))];
                    target = withColour(target, v, v, v);
                } else {
                    auto channel = [&](auto of, const LevelTable& table) {
                        int sum = 0;
                        for (std::size_t i = 0; i < Gathered.size(); ++i) {
                            sum = roundInRange<int>(
                                (of(source[i]) - of(done[i])) * Gathered[i].weight + sum);
                        }
                        return table[static_cast<std::size_t>(toChannel(of(self) + sum))];
                    };
                    target =
                        withColour(target, channel(redOf, LevelTableR),
                                   channel(greenOf, LevelTableG), channel(blueOf, LevelTableB));
                }
            }
        });
    });
}

} // namespace lumiran
