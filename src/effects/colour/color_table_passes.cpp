// The passes the colour table effects share: a lookup per channel, and the
// brightness form of the colour selector.
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"
#include "engine/colour_models.h"

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
    applyTables(rect, {mask.red ? rule : same, mask.green ? rule : same, mask.blue ? rule : same});
}

void Class_ColorTable::applyTables(const ProcessRect& rect, const ChannelTables& tables,
                                   Store store) {
    SetProgressRange(rect.top, rect.bottom);
    const bool blend = store == Store::SharedTail && calculationFlag() > 0;
    if (!blend && tables.clean()) {
        // Nothing depends on more than one channel: the stored byte of each
        // channel value is known in advance, already shifted into place.
        std::array<Pixel, LevelTable::Size> red{}, green{}, blue{};
        for (int c = 0; c < LevelTable::Size; ++c) {
            Rgb16 v{tables.red[c], tables.green[c], tables.blue[c]};
            if (store == Store::SharedTail) v = clampResult(v);
            red[c] = makePixel(v.red, 0, 0);
            green[c] = makePixel(0, v.green, 0);
            blue[c] = makePixel(0, 0, v.blue);
        }
        forEachRow(rect, [&](Pixel* row, int begin, int end) {
            for (int x = begin; x < end; ++x) {
                const Pixel p = row[x];
                row[x] = (p & 0xFF000000u) | red[(p >> 16) & 0xFFu] | green[(p >> 8) & 0xFFu] |
                         blue[p & 0xFFu];
            }
        });
        return;
    }
    forEachRow(rect, [&](Pixel* row, int begin, int end) {
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
    forEachRow(rect, [&](Pixel* row, int begin, int end) {
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
