#pragma once

#include "effects/colour/level_table.h"
#include "engine/pixel_frame.h"

#include <algorithm>
#include <cstdint>

namespace lumiran {

// Effects that map each channel value through a rule or a 256-entry table,
// independently of the pixel's place. Works in place on ImageBits.
//
// Most operations take a colour selector: 0 "RGB", 1 "赤", 2 "緑", 3 "青",
// 4 "赤&緑", 5 "緑&青", 6 "赤&青" give the rule to those channels and keep
// the others; 7 "光度" is the brightness form (the rule on the pixel's
// lightness L, then every channel scaled by rule(L) / L). A selector outside
// 0..7 selects no channel: the pixels only go through the shared tail.
class Class_ColorTable : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // |value - c|; the brightness form scales by value - L, sign kept.
    void Negative(std::int16_t selector, std::int16_t value, std::int16_t left, std::int16_t top,
                  std::int16_t right, std::int16_t bottom);
    // Kinds 0..5 name channels that get + amount, the others - amount;
    // kinds 6, 7, 8 give + amount to the channels of the largest, middle or
    // smallest rank. Any other kind changes nothing.
    void ColorEmphasize(std::int16_t amount, std::int16_t kind, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);
    // A channel within low..high takes the matching component of the colour.
    void ShadeRangeExChange(std::int16_t high, std::int16_t low, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom,
                            std::int16_t red, std::int16_t green, std::int16_t blue);
    // A channel within low..high becomes value.
    void ShadeRangeAdjust(std::int16_t selector, std::int16_t high, std::int16_t low,
                          std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom, std::int16_t value);
    // Exact flattening of the histogram. Mode 0 works on the average grey
    // and writes it to all three channels; modes 1..8 are selector + 1.
    void Histgram_Equation(std::int16_t mode, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom);
    // Stretches by width, which is both offset and range; below 10 nothing runs.
    void Histgram_Expansion(std::int16_t width, std::int16_t selector, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Posterize to level steps.
    void ColorTableOperation(std::int16_t selector, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom, std::int16_t level);
    // Mid-tones 86..169 get + amount.
    void MedianLevelEmphasize(std::int16_t selector, std::int16_t amount, std::int16_t left,
                              std::int16_t top, std::int16_t right, std::int16_t bottom);
    // round((sin(c sine pi / horizontal) + 1 + cos(c cosine pi / vertical))
    // light) under the selector.
    void Phantom(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                 std::int16_t selector, double sine, double cosine, double light, double horizontal,
                 double vertical);
    // Kinds 0..5 overwrite the channels not named with value, straight into
    // the array; kinds 6..8 keep the channels of that rank.
    void ColorViewChange(std::int16_t kind, std::int16_t value, std::int16_t left, std::int16_t top,
                         std::int16_t right, std::int16_t bottom);
    // A channel above threshold becomes 255 - c.
    void Sorarization(std::int16_t threshold, std::int16_t selector, std::int16_t left,
                      std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Every channel: 255 within low..high, else 0.
    void LevelSlice(std::int16_t high, std::int16_t low, std::int16_t left, std::int16_t top,
                    std::int16_t right, std::int16_t bottom);
    // Through a triangle table that climbs by step from start.
    void TransformationSlarize(std::int16_t selector, std::int16_t step, std::int16_t start,
                               std::int16_t left, std::int16_t top, std::int16_t right,
                               std::int16_t bottom);
    // Through a table of random steps, one every period + 1 levels.
    void RandomTable(std::int16_t selector, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom, std::int16_t period);
    // Limits channels to low..high; the low test looks at the source value.
    void ColorLength(std::int16_t high, std::int16_t low, std::int16_t selector, std::int16_t left,
                     std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Type 0 waves on the luminance grey, any other type on each channel.
    void Kani(double sine, double cosine, double red, double green, double blue, std::int16_t left,
              std::int16_t top, std::int16_t right, std::int16_t bottom, std::int16_t type);
    // Each channel's distance from its colour component after scaling by
    // the pixel's distance from weight; red and blue have a floor of 64.
    void Uni(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
             double red, double green, double blue, double light, double weight);
    // Gamma by percent on the scale maxLevel (the dialogs pass 255).
    void GanmaRevision(std::int16_t maxLevel, std::int16_t percent, std::int16_t left,
                       std::int16_t top, std::int16_t right, std::int16_t bottom);

  private:
    // How the result fields reach the array.
    enum class Store {
        SharedTail, // calculation type, or the clamp
        Direct,     // low bytes as they stand, no calculation type
    };

    // How the brightness form treats a pixel of lightness 0.
    enum class DarkPixel {
        DivideByOne, // D = 1, the pixel as it is
        BecomesOne,  // the pixel's bytes are first overwritten with 1
    };

    // Rule f on the channels of the selector. brightness is what the
    // brightness form scales by, indexed by L.
    void applySelector(const ProcessRect& rect, std::int16_t selector, const LevelTable& rule,
                       const LevelTable& brightness, DarkPixel dark = DarkPixel::DivideByOne);
    void applySelector(const ProcessRect& rect, std::int16_t selector, const LevelTable& rule) {
        applySelector(rect, selector, rule, rule);
    }
    // One table per channel, one pass over the rectangle.
    void applyTables(const ProcessRect& rect, const ChannelTables& tables,
                     Store store = Store::SharedTail);
    void applyBrightness(const ProcessRect& rect, const LevelTable& brightness, DarkPixel dark);
    // The brightness form of one channel: |round(c / D times T)|.
    [[nodiscard]] static std::int16_t scaledByBrightness(int channel, double divisor,
                                                         double factor);
    // Histogram flattening for the modes on channels (1..8).
    void equaliseChannels(const ProcessRect& rect, std::int16_t selector);
    void equaliseAverage(const ProcessRect& rect);
    [[nodiscard]] BandPlan flatteningBands(const ProcessRect& rect) const;

    // The rows of the rectangle as work(row, firstColumn, endColumn). In
    // order unless the caller knows its rows are independent: histograms
    // count into one table and flattening hands out levels in scan order.
    template <RowOrder Order = RowOrder::TopToBottom, typename RowWork>
    bool forEachRow(const ProcessRect& rect, RowWork&& work) {
        return PixelFrame::forEachRow<Order>(
            rect, [&](int y, int begin, int end) { work(ImageBits.row(y).data(), begin, end); });
    }
};

} // namespace lumiran
