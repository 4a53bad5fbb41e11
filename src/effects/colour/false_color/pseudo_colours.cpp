#include "effects/colour/color_op_support.h"
#include "effects/colour/colour_selector.h"
#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/pseudo_colour_bands.h"
#include "engine/colour_models.h"

#include <array>
#include <cmath>

namespace lumiran {
namespace {

// Offsets of the fluorescent types 0..5, red, green, blue.
constexpr std::array<std::array<int, 3>, 6> FluorescentOffsets{{
    {140, 60, 220},
    {60, 140, 220},
    {220, 140, 60},
    {140, 220, 60},
    {60, 220, 140},
    {220, 60, 140},
}};

// Three channel tables indexed by a grey.
using GreyTables = std::array<std::array<int, 256>, 3>;

} // namespace

void Class_FalseColor::FalseColor(std::int16_t left, std::int16_t top, std::int16_t right,
                                  std::int16_t bottom, std::uint8_t type) {
    guarded([&] {
        // One result per grey, so the loop is a lookup; a table per channel
        // so that the lookups vectorise as gathers.
        GreyTables byGrey{};
        for (int y = 0; y < 256; ++y) {
            const BandOffsets offsets = pseudoColourOffsets(type, y);
            for (std::size_t c = 0; c < 3; ++c)
                byGrey[c][static_cast<std::size_t>(y)] = y + offsets[c];
        }
        mapPixels<ResultTail::Clamp>({left, top, right, bottom}, [&byGrey](int r, int g, int b) {
            const auto y =
                static_cast<std::size_t>(roundInRange<int>(0.587 * g + 0.299 * r + 0.114 * b));
            return Channels{byGrey[0][y], byGrey[1][y], byGrey[2][y]}.fields();
        });
    });
}

void Class_FalseColor::FluorescenceRevision(std::uint8_t type, std::int16_t adjust,
                                            std::int16_t left, std::int16_t top, std::int16_t right,
                                            std::int16_t bottom) {
    guarded([&] {
        const auto& offsets = FluorescentOffsets[type < FluorescentOffsets.size() ? type : 0];
        // 255 + adjust - 2 R' for each grey of the complements.
        GreyTables shift{};
        for (int y = 0; y < 256; ++y) {
            const double e = y / 255.0 * (255 - adjust);
            for (std::size_t c = 0; c < 3; ++c) {
                shift[c][static_cast<std::size_t>(y)] =
                    255 + adjust - 2 * roundTo<std::int16_t>(e + offsets[c]);
            }
        }
        mapPixels<ResultTail::Clamp>({left, top, right, bottom}, [&shift](int r, int g, int b) {
            const auto y = static_cast<std::size_t>(luminanceY(255 - r, 255 - g, 255 - b));
            return Channels{r + shift[0][y], g + shift[1][y], b + shift[2][y]}.fields();
        });
    });
}

void Class_FalseColor::Retrospection(std::uint8_t form, double adjust, std::uint8_t selector,
                                     std::int16_t left, std::int16_t top, std::int16_t right,
                                     std::int16_t bottom) {
    guarded([&] {
        // Red follows the grey, green and blue fall behind it: an old
        // photograph's warm cast.
        std::array<Channels, 256> byGrey{};
        for (int y = 0; y < 256; ++y) {
            auto level = [&](double value) { return roundTo<std::int16_t>(255 - value + adjust); };
            Channels c{level(y), level(std::round(189.0 / 255.0 * y + 66)),
                       level(std::round(123.0 / 255.0 * y + 132))};
            if (form == 1) {
                const MaxMin m = MaxMinOfThree(c.red, c.green, c.blue);
                c.add(AllChannels, m.max - m.min);
            }
            byGrey[static_cast<std::size_t>(y)] = c;
        }
        if (selector == 0) {
            GreyTables tables{};
            for (std::size_t y = 0; y < 256; ++y) {
                tables[0][y] = byGrey[y].red;
                tables[1][y] = byGrey[y].green;
                tables[2][y] = byGrey[y].blue;
            }
            mapPixels<ResultTail::Clamp>(
                {left, top, right, bottom}, [&tables](int r, int g, int b) {
                    const auto y = static_cast<std::size_t>(luminanceY(255 - r, 255 - g, 255 - b));
                    return Channels{tables[0][y], tables[1][y], tables[2][y]}.fields();
                });
            return;
        }
        const ChannelMask selected = selectedChannels(selector);
        mapPixels<ResultTail::Clamp>(
            {left, top, right, bottom}, [&byGrey, selected, selector](int r, int g, int b) {
                const Channels c =
                    byGrey[static_cast<std::size_t>(luminanceY(255 - r, 255 - g, 255 - b))];
                if (selector == BrightnessSelector) {
                    const int d = nonZero(lightness(std::max({r, g, b}), std::min({r, g, b})));
                    const MaxMin m = MaxMinOfThree(c.red, c.green, c.blue);
                    const int t = lightness(m.max, m.min);
                    return Rgb16{scaledChannel(r, d, t), scaledChannel(g, d, t),
                                 scaledChannel(b, d, t)};
                }
                Channels result{r, g, b};
                if (selected & Red) result.red = c.red;
                if (selected & Green) result.green = c.green;
                if (selected & Blue) result.blue = c.blue;
                return result.fields();
            });
    });
}

void Class_FalseColor::Color_Adjusten(std::uint8_t, std::uint8_t type, std::int16_t red,
                                      std::int16_t green, std::int16_t blue, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        if (type == 0) {
            auto table = [](int colour) {
                std::array<std::int16_t, 256> t{};
                for (int c = 0; c < 256; ++c) {
                    t[static_cast<std::size_t>(c)] =
                        roundTo<std::int16_t>((255 - colour) / 255.0 * c + colour);
                }
                return t;
            };
            const auto reds = table(red), greens = table(green), blues = table(blue);
            mapPixels<ResultTail::Clamp>(rect, [&](int r, int g, int b) {
                return Rgb16{reds[static_cast<std::size_t>(r)], greens[static_cast<std::size_t>(g)],
                             blues[static_cast<std::size_t>(b)]};
            });
            return;
        }
        const int times = type;
        mapPixels<ResultTail::Clamp>(rect, [=](int r, int g, int b) {
            const int y = luminanceY(r, g, b);
            return Channels{std::abs(red - y) * times, std::abs(green - y) * times,
                            std::abs(blue - y) * times}
                .fields();
        });
    });
}

} // namespace lumiran
