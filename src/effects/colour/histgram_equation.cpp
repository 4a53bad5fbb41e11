// Histogram flattening: every new level receives the same count of pixels.
#include "effects/colour/channel_lookup.h"
#include "effects/colour/class_color_table.h"
#include "effects/colour/colour_selector.h"
#include "effects/colour/histogram_flattening.h"
#include "engine/colour_models.h"

#include <algorithm>
#include <array>
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
// the bands on all cores. A level whose pixels in a band all get one new
// level reads it from the band's table; only the few levels where a band
// crosses from one planned level to the next go through the cursor.
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
        steady_.resize(counts_.size());
        HistogramFlattening::Cursor running;
        for (std::size_t band = 0; band < counts_.size(); ++band) {
            cursors_[band] = running;
            for (int v = 0; v < HistogramFlattening::Levels; ++v) {
                const std::int32_t count = counts_[band][static_cast<std::size_t>(v)];
                steady_[band][static_cast<std::size_t>(v)] = static_cast<std::int16_t>(
                    count == 0 ? 0 : running.steadyLevel(*plan_, v, count));
            }
            running.skip(*plan_, counts_[band]);
        }
    }

    // The plan, one band's cursor and its table of steady levels (-1: ask
    // the cursor); empty for a channel that takes no part.
    struct Lane {
        const HistogramFlattening* plan = nullptr;
        HistogramFlattening::Cursor* cursor = nullptr;
        const std::int16_t* steady = nullptr;
        [[nodiscard]] int take(int level) const {
            const int known = steady[level];
            return known >= 0 ? known : cursor->take(*plan, level);
        }
    };
    // One band's levels as a byte table, the levels that are not steady
    // there set to 0 and listed in unsteady, in order; a channel that takes
    // no part keeps its levels.
    void fillLookup(int band, std::array<std::uint8_t, HistogramFlattening::Levels>& table,
                    std::vector<std::uint8_t>& unsteady) const {
        unsteady.clear();
        for (int v = 0; v < HistogramFlattening::Levels; ++v) {
            const auto at = static_cast<std::size_t>(v);
            const int level = plan_ ? steady_[static_cast<std::size_t>(band)][at] : v;
            table[at] = static_cast<std::uint8_t>(std::max(level, 0));
            if (level < 0) unsteady.push_back(static_cast<std::uint8_t>(v));
        }
    }

    [[nodiscard]] Lane lane(int band) {
        if (!plan_) return {};
        const auto at = static_cast<std::size_t>(band);
        return {&*plan_, &cursors_[at], steady_[at].data()};
    }

  private:
    std::vector<Histogram> counts_;
    std::optional<HistogramFlattening> plan_;
    std::vector<HistogramFlattening::Cursor> cursors_;
    std::vector<std::array<std::int16_t, HistogramFlattening::Levels>> steady_;
};

using Lane = BandedFlattening::Lane;

// A band's levels of every channel as byte tables, with the levels whose
// pixels there get more than one new level.
struct BandLookup {
    ChannelLookup table;
    std::array<std::vector<std::uint8_t>, 3> unsteady; // red, green, blue
};

// What a thread keeps between rows: the row as it was, and places.
struct RowScratch {
    std::vector<Pixel> source;
    std::vector<int> positions;
};

// A row through its band's tables. The few levels that are not steady in
// the band go through their cursors afterwards, each in row order: the
// cursors of different levels do not depend on each other.
void flattenRow(std::span<Pixel> row, const BandLookup& lookup, const std::array<Lane, 3>& lanes,
                RowScratch& scratch) {
    const bool steady =
        std::ranges::all_of(lookup.unsteady, [](const auto& l) { return l.empty(); });
    if (steady) {
        applyChannelLookup(row, lookup.table);
        return;
    }
    scratch.source.assign(row.begin(), row.end());
    applyChannelLookup(row, lookup.table);
    constexpr std::array<int, 3> shifts{16, 8, 0};
    for (std::size_t channel = 0; channel < lanes.size(); ++channel) {
        const int shift = shifts[channel];
        for (const std::uint8_t level : lookup.unsteady[channel]) {
            findChannelLevel(scratch.source, shift, level, scratch.positions);
            for (const int x : scratch.positions) {
                Pixel& p = row[static_cast<std::size_t>(x)];
                p = (p & ~(Pixel{0xFFu} << shift)) |
                    (static_cast<Pixel>(lanes[channel].take(level)) << shift);
            }
        }
    }
}

// Adds a row's red, green and blue levels to the histograms given. Pixels
// next to each other often share a level: counting them in four
// interleaved tables keeps each increment from waiting on the one before.
void countChannels(std::span<const Pixel> row, Histogram* red, Histogram* green, Histogram* blue) {
    constexpr std::size_t Ways = 4;
    std::array<std::array<std::array<std::int32_t, HistogramFlattening::Levels>, Ways>, 3> part{};
    std::size_t x = 0;
    for (; x + Ways <= row.size(); x += Ways) {
        for (std::size_t way = 0; way < Ways; ++way) {
            const Pixel p = row[x + way];
            ++part[0][way][static_cast<std::size_t>(redOf(p))];
            ++part[1][way][static_cast<std::size_t>(greenOf(p))];
            ++part[2][way][static_cast<std::size_t>(blueOf(p))];
        }
    }
    for (; x < row.size(); ++x) {
        const Pixel p = row[x];
        ++part[0][0][static_cast<std::size_t>(redOf(p))];
        ++part[1][0][static_cast<std::size_t>(greenOf(p))];
        ++part[2][0][static_cast<std::size_t>(blueOf(p))];
    }
    const std::array<Histogram*, 3> into{red, green, blue};
    for (std::size_t channel = 0; channel < into.size(); ++channel) {
        if (into[channel] == nullptr) continue;
        Histogram& h = *into[channel];
        for (std::size_t v = 0; v < h.size(); ++v) {
            h[v] += part[channel][0][v] + part[channel][1][v] + part[channel][2][v] +
                    part[channel][3][v];
        }
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

// Both passes share the rows out in the same bands; a few dozen at most:
// every band's histograms, cursors and tables are fresh pages to fault in.
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
        const Lane lane = grey.lane(bandOf(y));
        Pixel* row = ImageBits.row(y).data();
        for (int x = begin; x < end; ++x) {
            const int k = lane.take(averageGrey(redOf(row[x]), greenOf(row[x]), blueOf(row[x])));
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
        if (withRed || withGreen || withBlue) {
            countChannels(std::span(row + begin, row + end), withRed ? &red.counts(band) : nullptr,
                          withGreen ? &green.counts(band) : nullptr,
                          withBlue ? &blue.counts(band) : nullptr);
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
    std::vector<BandLookup> lookups(straight ? static_cast<std::size_t>(bandCount) : 0);
    for (std::size_t band = 0; band < lookups.size(); ++band) {
        BandLookup& lookup = lookups[band];
        const int at = static_cast<int>(band);
        red.fillLookup(at, lookup.table.red, lookup.unsteady[0]);
        green.fillLookup(at, lookup.table.green, lookup.unsteady[1]);
        blue.fillLookup(at, lookup.table.blue, lookup.unsteady[2]);
    }
    std::vector<RowScratch> scratch(static_cast<std::size_t>(std::max(bands.workers, 1)));
    rowsInBands(rect, bands, [&](int worker, int y, int begin, int end) {
        const int band = bandOf(y);
        Pixel* row = ImageBits.row(y).data();
        const Lane r0 = red.lane(band), g0 = green.lane(band), b0 = blue.lane(band);
        if (straight) {
            flattenRow(std::span(row + begin, row + end), lookups[static_cast<std::size_t>(band)],
                       {r0, g0, b0}, scratch[static_cast<std::size_t>(worker)]);
            return;
        }
        const Lane l0 = light.lane(band);
        for (int x = begin; x < end; ++x) {
            const int r = redOf(row[x]), g = greenOf(row[x]), b = blueOf(row[x]);
            Rgb16 v{static_cast<std::int16_t>(r), static_cast<std::int16_t>(g),
                    static_cast<std::int16_t>(b)};
            if (brightness) {
                const int level = lightnessOf(r, g, b);
                const double divisor = level == 0 ? 1 : level;
                const double factor = l0.take(level);
                v = {scaledByBrightness(r, divisor, factor), scaledByBrightness(g, divisor, factor),
                     scaledByBrightness(b, divisor, factor)};
            }
            if (withRed) v.red = static_cast<std::int16_t>(r0.take(r));
            if (withGreen) v.green = static_cast<std::int16_t>(g0.take(g));
            if (withBlue) v.blue = static_cast<std::int16_t>(b0.take(b));
            v = finishPixel<ResultTail::Clamp>(r, g, b, v);
            row[x] = withColour(row[x], v.red, v.green, v.blue);
        }
    });
}

} // namespace lumiran
