// Histogram flattening: every new level receives the same count of pixels.
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"
#include "effects/colour/histogram_flattening.h"
#include "engine/colour_models.h"

#include <optional>

namespace lumiran {
namespace {

using Histogram = HistogramFlattening::Histogram;

// The wanted count per level: the rectangle's area, not the pixels that lie
// in the picture, over 256.
std::int32_t wantedPerLevel(const ProcessRect& rect) {
    const std::int32_t area =
        std::int32_t{wrap16(rect.right - rect.left)} * std::int32_t{wrap16(rect.bottom - rect.top)};
    return roundTo<std::int32_t>(area / 256.0);
}

int lightnessOf(int r, int g, int b) {
    const MaxMin m = MaxMinOfThree(r, g, b);
    return lightness(m.max, m.min);
}

// The plan for one channel, made only when the channel takes part.
std::optional<HistogramFlattening> planFor(bool selected, const Histogram& histogram,
                                           std::int32_t perLevel) {
    if (!selected) return std::nullopt;
    return HistogramFlattening(histogram, perLevel);
}

} // namespace

void Class_ColorTable::Histgram_Equation(std::int16_t mode, std::int16_t left, std::int16_t top,
                                         std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // Both passes step the one range: the bar runs on past 100 in the
        // second, as it did.
        SetProgressRange(rect.top, rect.bottom);
        if (mode == 0) {
            equaliseAverage(rect);
        } else {
            equaliseChannels(rect, static_cast<std::int16_t>(mode - 1));
        }
    });
}

// Mode 0: the average grey, written to all three channels straight, without
// clamp or calculation type.
void Class_ColorTable::equaliseAverage(const ProcessRect& rect) {
    Histogram histogram{};
    const bool counted = forEachRow(rect, [&](Pixel* row, int begin, int end) {
        for (int x = begin; x < end; ++x) {
            ++histogram[static_cast<std::size_t>(
                averageGrey(redOf(row[x]), greenOf(row[x]), blueOf(row[x])))];
        }
    });
    if (!counted) return;
    HistogramFlattening plan(histogram, wantedPerLevel(rect));
    forEachRow(rect, [&](Pixel* row, int begin, int end) {
        for (int x = begin; x < end; ++x) {
            const int k = plan.take(averageGrey(redOf(row[x]), greenOf(row[x]), blueOf(row[x])));
            row[x] = withColour(row[x], k, k, k);
        }
    });
}

// Modes 1..8: each selected channel flattened by a histogram of its own, or
// the lightness flattened and the channels scaled by the brightness form.
void Class_ColorTable::equaliseChannels(const ProcessRect& rect, std::int16_t selector) {
    const bool brightness = selector == BrightnessSelector;
    const ChannelMask mask = selectedChannels(selector);
    Histogram red{}, green{}, blue{}, light{};
    const bool counted = forEachRow(rect, [&](Pixel* row, int begin, int end) {
        for (int x = begin; x < end; ++x) {
            const int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
            if (brightness) ++light[static_cast<std::size_t>(lightnessOf(r, g, b))];
            if ((mask & Red) != 0) ++red[static_cast<std::size_t>(r)];
            if ((mask & Green) != 0) ++green[static_cast<std::size_t>(g)];
            if ((mask & Blue) != 0) ++blue[static_cast<std::size_t>(b)];
        }
    });
    if (!counted) return;
    const std::int32_t perLevel = wantedPerLevel(rect);
    auto lightPlan = planFor(brightness, light, perLevel);
    auto redPlan = planFor((mask & Red) != 0, red, perLevel);
    auto greenPlan = planFor((mask & Green) != 0, green, perLevel);
    auto bluePlan = planFor((mask & Blue) != 0, blue, perLevel);
    forEachRow(rect, [&](Pixel* row, int begin, int end) {
        for (int x = begin; x < end; ++x) {
            const int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
            Rgb16 v{static_cast<std::int16_t>(r), static_cast<std::int16_t>(g),
                    static_cast<std::int16_t>(b)};
            if (brightness) {
                const int level = lightnessOf(r, g, b);
                const double divisor = level == 0 ? 1 : level;
                const double factor = lightPlan->take(level);
                v = {scaledByBrightness(r, divisor, factor), scaledByBrightness(g, divisor, factor),
                     scaledByBrightness(b, divisor, factor)};
            }
            if (redPlan) v.red = static_cast<std::int16_t>(redPlan->take(r));
            if (greenPlan) v.green = static_cast<std::int16_t>(greenPlan->take(g));
            if (bluePlan) v.blue = static_cast<std::int16_t>(bluePlan->take(b));
            v = finishPixel<ResultTail::Clamp>(r, g, b, v);
            row[x] = withColour(row[x], v.red, v.green, v.blue);
        }
    });
}

} // namespace lumiran
