#include "effects/colour/channel_lookup.h"
#include "effects/colour/color_op_support.h"
#include "effects/colour/colour_selector.h"
#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/pseudo_colour_bands.h"
#include "engine/colour_models.h"

#include <algorithm>
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
        // One result per grey, so the loop is a lookup.
        ToneTables tables;
        GreyTables byGrey{};
        for (int y = 0; y < 256; ++y) {
            const BandOffsets offsets = pseudoColourOffsets(type, y);
            for (std::size_t c = 0; c < 3; ++c) {
                byGrey[c][static_cast<std::size_t>(y)] = y + offsets[c];
                tables.set(c, y, wrap16(y + offsets[c]));
            }
        }
        const ProcessRect rect{left, top, right, bottom};
        if (recolour(rect, ToneKey::PseudoGrey, tables)) return;
        mapPixels<ResultTail::Clamp>(rect, [&byGrey](int r, int g, int b) {
            const auto y = static_cast<std::size_t>(pseudoGrey(r, g, b));
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
        ToneTables tables;
        // A sum that can leave 16 bits wraps before the clamp: no table.
        bool wraps = false;
        for (int y = 0; y < 256; ++y) {
            const double e = y / 255.0 * (255 - adjust);
            for (std::size_t c = 0; c < 3; ++c) {
                const int s = 255 + adjust - 2 * roundTo<std::int16_t>(e + offsets[c]);
                shift[c][static_cast<std::size_t>(y)] = s;
                tables.shift(c, y, s);
                wraps = wraps || s < -32768 || s > 32767 - 255;
            }
        }
        const ProcessRect rect{left, top, right, bottom};
        if (!wraps && recolour(rect, ToneKey::ComplementLuma, tables)) return;
        mapPixels<ResultTail::Clamp>(rect, [&shift](int r, int g, int b) {
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
            Channels c{level(y), level(roundInRange<int>(189.0 / 255.0 * y + 66)),
                       level(roundInRange<int>(123.0 / 255.0 * y + 132))};
            if (form == 1) {
                const MaxMin m = MaxMinOfThree(c.red, c.green, c.blue);
                c.add(AllChannels, m.max - m.min);
            }
            byGrey[static_cast<std::size_t>(y)] = c;
        }
        const ChannelMask selected = selectedChannels(selector);
        if (selector != BrightnessSelector) {
            ToneTables tables;
            const ChannelMask masks[3] = {Red, Green, Blue};
            for (std::size_t c = 0; c < 3; ++c) {
                if (!(selected & masks[c])) {
                    tables.keep(c);
                    continue;
                }
                for (int y = 0; y < 256; ++y) {
                    const Channels& level = byGrey[static_cast<std::size_t>(y)];
                    tables.set(c, y,
                               wrap16(c == 0   ? level.red
                                      : c == 1 ? level.green
                                               : level.blue));
                }
            }
            if (recolour({left, top, right, bottom}, ToneKey::ComplementLuma, tables)) return;
        }
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
            if (calculationFlag() == 0) {
                ChannelLookup lookup;
                for (std::size_t c = 0; c < 256; ++c) {
                    lookup.red[c] = static_cast<std::uint8_t>(std::clamp<int>(reds[c], 0, 255));
                    lookup.green[c] = static_cast<std::uint8_t>(std::clamp<int>(greens[c], 0, 255));
                    lookup.blue[c] = static_cast<std::uint8_t>(std::clamp<int>(blues[c], 0, 255));
                }
                SetProgressRange(rect.top, rect.bottom);
                forEachRow(rect, [&](int y, int first, int end) {
                    applyChannelLookup(
                        ImageBits.row(y).subspan(static_cast<std::size_t>(first),
                                                 static_cast<std::size_t>(end - first)),
                        lookup);
                });
                return;
            }
            mapPixels<ResultTail::Clamp>(rect, [&](int r, int g, int b) {
                return Rgb16{reds[static_cast<std::size_t>(r)], greens[static_cast<std::size_t>(g)],
                             blues[static_cast<std::size_t>(b)]};
            });
            return;
        }
        const int times = type;
        ToneTables tables;
        for (int y = 0; y < 256; ++y) {
            tables.set(0, y, wrap16(std::abs(red - y) * times));
            tables.set(1, y, wrap16(std::abs(green - y) * times));
            tables.set(2, y, wrap16(std::abs(blue - y) * times));
        }
        if (recolour(rect, ToneKey::Luma, tables)) return;
        mapPixels<ResultTail::Clamp>(rect, [=](int r, int g, int b) {
            const int y = luminanceY(r, g, b);
            return Channels{std::abs(red - y) * times, std::abs(green - y) * times,
                            std::abs(blue - y) * times}
                .fields();
        });
    });
}

} // namespace lumiran
