// The passes the colour table effects share: a lookup per channel, and the
// brightness form of the colour selector.
#include "effects/colour/channel_lookup.h"
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace lumiran {

std::int16_t Class_ColorTable::scaledByBrightness(int channel, double divisor, double factor) {
    return roundTo<std::int16_t>(std::abs(channel / divisor * factor));
}

void Class_ColorTable::applySelector(const ProcessRect& rect, std::int16_t selector,
                                     const LevelTable& rule, const LevelTable& brightness,
                                     DarkPixel dark) {
    if (selector == BrightnessSelector) {
        applyBrightness(rect, brightness, dark);
        return;
    }
    const ChannelMask mask = selectedChannels(selector);
    const LevelTable same = LevelTable::identity();
    applyTables(rect, {(mask & Red) != 0 ? rule : same, (mask & Green) != 0 ? rule : same,
                       (mask & Blue) != 0 ? rule : same});
}

void Class_ColorTable::applyTables(const ProcessRect& rect, const ChannelTables& tables,
                                   Store store) {
    SetProgressRange(rect.top, rect.bottom);
    const bool blend = store == Store::SharedTail && calculationFlag() > 0;
    if (!blend && tables.clean()) {
        // Nothing depends on more than one channel: the stored byte of each
        // channel value is known in advance.
        ChannelLookup lookup;
        for (std::size_t c = 0; c < LevelTable::Size; ++c) {
            const int level = static_cast<int>(c);
            Rgb16 v{tables.red[level], tables.green[level], tables.blue[level]};
            if (store == Store::SharedTail) v = clampResult(v);
            lookup.red[c] = static_cast<std::uint8_t>(v.red);
            lookup.green[c] = static_cast<std::uint8_t>(v.green);
            lookup.blue[c] = static_cast<std::uint8_t>(v.blue);
        }
        forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
            applyChannelLookup({row + begin, static_cast<std::size_t>(end - begin)}, lookup);
        });
        return;
    }
    forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
        for (int x = begin; x < end; ++x) {
            const int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
            Rgb16 v{tables.red.at(r), tables.green.at(g), tables.blue.at(b)};
            if (store == Store::SharedTail) v = finishPixel<ResultTail::Clamp>(r, g, b, v);
            row[x] = withColour(row[x], v.red, v.green, v.blue);
        }
    });
}

void Class_ColorTable::applyBrightness(const ProcessRect& rect, const LevelTable& brightness,
                                       DarkPixel dark) {
    SetProgressRange(rect.top, rect.bottom);
    // c / D never exceeds 3 (D is L, and no channel is above 2 L + 1), so
    // with a bounded table the product cannot leave 16 bits: the checked
    // conversion and its branch can go and the loop vectorises.
    constexpr int boundedFactor = 10000;
    if (calculationFlag() == 0 && brightness.clean() &&
        brightness.largestMagnitude() <= boundedFactor) {
        std::array<double, LevelTable::Size> factors{};
        for (std::size_t level = 0; level < factors.size(); ++level) {
            factors[level] = brightness[static_cast<int>(level)];
        }
        const int darkBecomesOne = dark == DarkPixel::BecomesOne ? 1 : 0;
        // Selects by arithmetic rather than by branches, which would keep
        // the compiler from vectorising.
        forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
            for (int x = begin; x < end; ++x) {
                const Pixel p = row[x];
                const int r = redOf(p), g = greenOf(p), b = blueOf(p);
                const int level =
                    lightness(std::max(r, std::max(g, b)), std::min(r, std::min(g, b)));
                const int black = level == 0 ? 1 : 0;
                const int becomesOne = black & darkBecomesOne;
                const double divisor = level + black;
                const double factor = factors[static_cast<std::size_t>(level)];
                auto scaled = [&](int c) {
                    const double channel = c + becomesOne * (1 - c);
                    return std::min(
                        roundInRange<std::int32_t>(std::abs(channel / divisor * factor)), 255);
                };
                row[x] = withColour(p, scaled(r), scaled(g), scaled(b));
            }
        });
        return;
    }
    forEachRow<RowOrder::AnyOrder>(rect, [&](Pixel* row, int begin, int end) {
        for (int x = begin; x < end; ++x) {
            int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
            const MaxMin m = MaxMinOfThree(r, g, b);
            const int level = lightness(m.max, m.min);
            double divisor = level;
            if (level == 0) {
                divisor = 1;
                // The pixel is overwritten in the array first, so the rest
                // of the rule, the blend included, sees 1 in each channel.
                if (dark == DarkPixel::BecomesOne) r = g = b = 1;
            }
            const double factor = brightness.at(level);
            Rgb16 v{scaledByBrightness(r, divisor, factor), scaledByBrightness(g, divisor, factor),
                    scaledByBrightness(b, divisor, factor)};
            v = finishPixel<ResultTail::Clamp>(r, g, b, v);
            row[x] = withColour(row[x], v.red, v.green, v.blue);
        }
    });
}

} // namespace lumiran
