// Histogram flattening: every new level receives the same count of pixels.
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"
#include "effects/colour/histogram_flattening.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <optional>
#include <span>
#include <vector>

namespace lumiran {
namespace {

using Histogram = HistogramFlattening::Histogram;

constexpr int SurveyCaption = 3441; // "ﾋｽﾄｸﾞﾗﾑ調査中..."

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

// One channel's flattening over bands of rows. The first pass counts each
// band's histogram, every band on one thread; the plan is made from their
// sum, and each band's cursor starts where the bands above it leave off. The
// second pass so hands out the same levels as one pass in scan order, with
// the bands on all cores.
class BandedFlattening {
  public:
    explicit BandedFlattening(int bands) : counts_(static_cast<std::size_t>(bands)) {}

    [[nodiscard]] Histogram& counts(int band) { return counts_[static_cast<std::size_t>(band)]; }

    void makePlan(std::int32_t perLevel) {
        Histogram total{};
        for (const Histogram& band : counts_) {
            for (std::size_t v = 0; v < total.size(); ++v)
                total[v] += band[v];
        }
        plan_.emplace(total, perLevel);
        cursors_.resize(counts_.size());
        HistogramFlattening::Cursor running;
        for (std::size_t band = 0; band < counts_.size(); ++band) {
            cursors_[band] = running;
            running.skip(*plan_, counts_[band]);
        }
    }

    [[nodiscard]] int take(int band, int level) {
        return cursors_[static_cast<std::size_t>(band)].take(*plan_, level);
    }

    // The plan and one band's cursor; empty for a channel that takes no part.
    struct Lane {
        const HistogramFlattening* plan = nullptr;
        HistogramFlattening::Cursor* cursor = nullptr;
        [[nodiscard]] int take(int level) const { return cursor->take(*plan, level); }
    };
    [[nodiscard]] Lane lane(int band) {
        if (!plan_) return {};
        return {&*plan_, &cursors_[static_cast<std::size_t>(band)]};
    }

  private:
    std::vector<Histogram> counts_;
    std::optional<HistogramFlattening> plan_;
    std::vector<HistogramFlattening::Cursor> cursors_;
};

using Lane = BandedFlattening::Lane;

// A band's row, each channel that takes part through its cursor.
void flattenRow(std::span<Pixel> row, Lane red, Lane green, Lane blue) {
    for (Pixel& p : row) {
        int r = redOf(p), g = greenOf(p), b = blueOf(p);
        if (red.plan != nullptr) r = red.take(r);
        if (green.plan != nullptr) g = green.take(g);
        if (blue.plan != nullptr) b = blue.take(b);
        p = withColour(p, r, g, b);
    }
}

} // namespace

void Class_ColorTable::Histgram_Equation(std::int16_t mode, std::int16_t left, std::int16_t top,
                                         std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        // Both passes step the one range: the bar runs on past 100 in the
        // second, as it did.
        SetProgressRange(rect.top, rect.bottom);
        if (context().progress != nullptr) context().progress->showCaption(SurveyCaption);
        if (mode == 0) {
            equaliseAverage(rect);
        } else {
            equaliseChannels(rect, static_cast<std::int16_t>(mode - 1));
        }
    });
}

// Both passes share the rows out in the same bands; a few hundred at most,
// so that the bands' histograms and cursors stay small.
PixelFrame::BandPlan Class_ColorTable::flatteningBands(const ProcessRect& rect) const {
    BandPlan plan = bandPlan(rect);
    const int rows = std::max(1, loopEnd(rect.bottom) - rect.top);
    constexpr int MaxBands = 256;
    plan.bandRows = std::max(plan.bandRows, (rows + MaxBands - 1) / MaxBands);
    return plan;
}

// Mode 0: the average grey, written to all three channels straight, without
// clamp or calculation type.
void Class_ColorTable::equaliseAverage(const ProcessRect& rect) {
    const BandPlan bands = flatteningBands(rect);
    const auto bandOf = [&](int y) { return (y - rect.top) / bands.bandRows; };
    BandedFlattening grey(bandOf(std::max(loopEnd(rect.bottom) - 1, int{rect.top})) + 1);
    const bool counted = rowsInBands(rect, bands, [&](int, int y, int begin, int end) {
        Histogram& histogram = grey.counts(bandOf(y));
        const Pixel* row = ImageBits.row(y).data();
        for (int x = begin; x < end; ++x) {
            ++histogram[static_cast<std::size_t>(
                averageGrey(redOf(row[x]), greenOf(row[x]), blueOf(row[x])))];
        }
    });
    if (!counted) return;
    grey.makePlan(wantedPerLevel(rect));
    rowsInBands(rect, bands, [&](int, int y, int begin, int end) {
        const int band = bandOf(y);
        Pixel* row = ImageBits.row(y).data();
        for (int x = begin; x < end; ++x) {
            const int k =
                grey.take(band, averageGrey(redOf(row[x]), greenOf(row[x]), blueOf(row[x])));
            row[x] = withColour(row[x], k, k, k);
        }
    });
}

// Modes 1..8: each selected channel flattened by a histogram of its own, or
// the lightness flattened and the channels scaled by the brightness form.
void Class_ColorTable::equaliseChannels(const ProcessRect& rect, std::int16_t selector) {
    const bool brightness = selector == BrightnessSelector;
    const ChannelMask mask = selectedChannels(selector);
    const bool withRed = (mask & Red) != 0, withGreen = (mask & Green) != 0,
               withBlue = (mask & Blue) != 0;
    const BandPlan bands = flatteningBands(rect);
    const auto bandOf = [&](int y) { return (y - rect.top) / bands.bandRows; };
    const int bandCount = bandOf(std::max(loopEnd(rect.bottom) - 1, int{rect.top})) + 1;
    // A channel that takes no part keeps no bands.
    BandedFlattening light(brightness ? bandCount : 0), red(withRed ? bandCount : 0),
        green(withGreen ? bandCount : 0), blue(withBlue ? bandCount : 0);
    const bool counted = rowsInBands(rect, bands, [&](int, int y, int begin, int end) {
        const int band = bandOf(y);
        const Pixel* row = ImageBits.row(y).data();
        if (brightness) {
            Histogram& h = light.counts(band);
            for (int x = begin; x < end; ++x)
                ++h[static_cast<std::size_t>(
                    lightnessOf(redOf(row[x]), greenOf(row[x]), blueOf(row[x])))];
        }
        if (withRed) {
            Histogram& h = red.counts(band);
            for (int x = begin; x < end; ++x)
                ++h[static_cast<std::size_t>(redOf(row[x]))];
        }
        if (withGreen) {
            Histogram& h = green.counts(band);
            for (int x = begin; x < end; ++x)
                ++h[static_cast<std::size_t>(greenOf(row[x]))];
        }
        if (withBlue) {
            Histogram& h = blue.counts(band);
            for (int x = begin; x < end; ++x)
                ++h[static_cast<std::size_t>(blueOf(row[x]))];
        }
    });
    if (!counted) return;
    const std::int32_t perLevel = wantedPerLevel(rect);
    if (brightness) light.makePlan(perLevel);
    if (withRed) red.makePlan(perLevel);
    if (withGreen) green.makePlan(perLevel);
    if (withBlue) blue.makePlan(perLevel);
    // Without the brightness form or a blend, every result is a level in
    // range and the clamp changes nothing: the channels go straight through
    // their cursors.
    const bool straight = !brightness && calculationFlag() == 0;
    rowsInBands(rect, bands, [&](int, int y, int begin, int end) {
        const int band = bandOf(y);
        Pixel* row = ImageBits.row(y).data();
        if (straight) {
            flattenRow(std::span(row + begin, row + end), red.lane(band), green.lane(band),
                       blue.lane(band));
            return;
        }
        for (int x = begin; x < end; ++x) {
            const int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
            Rgb16 v{static_cast<std::int16_t>(r), static_cast<std::int16_t>(g),
                    static_cast<std::int16_t>(b)};
            if (brightness) {
                const int level = lightnessOf(r, g, b);
                const double divisor = level == 0 ? 1 : level;
                const double factor = light.take(band, level);
                v = {scaledByBrightness(r, divisor, factor), scaledByBrightness(g, divisor, factor),
                     scaledByBrightness(b, divisor, factor)};
            }
            if (withRed) v.red = static_cast<std::int16_t>(red.take(band, r));
            if (withGreen) v.green = static_cast<std::int16_t>(green.take(band, g));
            if (withBlue) v.blue = static_cast<std::int16_t>(blue.take(band, b));
            v = finishPixel<ResultTail::Clamp>(r, g, b, v);
            row[x] = withColour(row[x], v.red, v.green, v.blue);
        }
    });
}

} // namespace lumiran
