#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

// Window filters that soften or sharpen, and the afterimages that average
// displaced samples. Every operation reads ImageBits and writes TransBits;
// pixels the loops do not reach keep the source copy TransBits holds.
//
// A window of reach k (3x3: 1, 5x5: 2, 7x7: 3) visits the centres from
// left + k to right - 1 - k and top + k to bottom - 1 - k, so the whole
// window lies inside the rectangle and a margin of k is never written. A
// rectangle reaching beyond the picture is first cut to it. The original
// walked columns with a sliding window; the result of a pixel depends only
// on the source, so the loops here walk rows (the exceptions say so).
class Class_Soften : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Kinds 0..2 weighted 3x3, 3 mean 3x3, 7 mean 5x5, 12 mean 7x7,
    // 10, 11, 14 adaptive 3x3, 5x5, 7x7, 13 Savitzky-Golay 7x7. Kinds 8 and
    // 9 store the stale result fields; 4, 5, 6 and any other kind do nothing.
    void Smoothing(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                   std::int16_t bottom);

    // Size 0..2 is 3x3, 5x5, 7x7. Type 0 is the adaptive smoothing with one
    // weight, type 1 a weight per channel. Other sizes or types do nothing.
    void Edge_SavingSmooth(std::uint8_t size, std::uint8_t type, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom);

    // The mean (type 0) or centre-weighted mean (any other type) of count + 1
    // samples displaced by a wave; direction 0 horizontal, 1 vertical,
    // 2 both. The percentages place a centre that the wave does not use.
    void AfterImage_Wave(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                         std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom, std::int16_t amplitude, std::int16_t wavelength,
                         std::int16_t xPercent, std::int16_t yPercent);

    // The same with a displacement by the distance from the centre.
    void AfterImage_Ripple(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                           std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom, std::int16_t amplitude, std::int16_t wavelength,
                           std::int16_t xPercent, std::int16_t yPercent);

    // The same with samples turned about the centre. Amplitude 0 fails.
    void AfterImage_Vortex(std::int16_t count, std::uint8_t type, std::uint8_t direction,
                           std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom, std::int16_t amplitude, std::int16_t xPercent,
                           std::int16_t yPercent);

    // The mean of the quietest of five 3x3 sub-windows around the pixel;
    // measure 0 ranks them by variance, 1 by standard deviation.
    void Edge_PreservingSmoothing(std::uint8_t measure, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom);

    // A mean of level samples along the shape of the type (0..12).
    void Soften_Circle(std::uint8_t unused, std::int16_t level, std::int16_t left, std::int16_t top,
                       std::int16_t right, std::int16_t bottom, std::uint8_t type);

    // Sliding mean, size kind 0..3 for 9x9, 11x11, 13x13, 15x15.
    void MovingAverage(std::uint8_t sizeKind, std::uint8_t unused, std::int16_t left,
                       std::int16_t top, std::int16_t right, std::int16_t bottom);

    // 2 c - mean over a 3x3, 5x5 or 7x7 window (size kind 0..2).
    void Sharpen(std::uint8_t sizeKind, std::int16_t left, std::int16_t top, std::int16_t right,
                 std::int16_t bottom);

    // Filter kind 0 five-point cross, 1 3x3, 2 5x5; the direction (0..8)
    // puts the large weight on the centre or a neighbour; the threshold
    // 1..9 mixes filter and source; the colour selector picks the channels.
    void HighpassFilter(std::int16_t threshold, std::uint8_t filterKind, std::uint8_t selector,
                        std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom, std::uint8_t direction);

  private:
    // The shared handler, after a check that TransBits was fetched along
    // with ImageBits: a missing destination is the subscript error rather
    // than a write outside an array.
    template <typename Body>
    void guardedTrans(Body&& body) {
        guarded([&] {
            if (!TransBits.sameSize(ImageBits)) throw EffectError::subscriptOutOfRange();
            body();
        });
    }

    // Runs rule over the centres of a window of the given reach (1..7):
    // makeRule(std::integral_constant<int, K>) gives the rule for K.
    template <typename MakeRule>
    void windowFilter(int reach, const ProcessRect& rect, MakeRule makeRule);
    template <int K, typename Rule>
    void windowRows(const ProcessRect& centres, Rule rule);
    template <typename Chunked, typename Fill, typename Rule>
    void centreRows(const ProcessRect& centres, Fill fill, Rule rule);

    // The loop of the afterimages: samplesAt(x, y) gives the sampler of a
    // pixel, sample(j) the position of its j-th sample before the bounds.
    template <RowOrder Order, typename SamplesAt>
    void afterImageRows(int count, int type, const ProcessRect& rect, SamplesAt samplesAt);
    // One row of them, bounds the rectangle cut to the picture.
    template <typename SamplesAt>
    void afterImageRow(int count, int type, const ProcessRect& bounds, int y, int firstColumn,
                       int endColumn, SamplesAt& samplesAt);
    // The same over runs of a row: sumRun(run, bounds, y, x0, m) fills the
    // sums of the run's m pixels from x0 (see after_image_runs.h).
    template <typename SumRun>
    void afterImageRuns(int count, int type, const ProcessRect& rect, SumRun sumRun);

    void meanSmoothing(int reach, const ProcessRect& rect);
    void adaptiveSmoothing(int reach, const ProcessRect& rect);
    void channelWeightedSmoothing(int reach, const ProcessRect& rect);
    void weightedSmoothing(int kind, const ProcessRect& rect);
    void savitzkyGolay(const ProcessRect& rect);
    void staleResultFields(const ProcessRect& rect);

    // The result fields of the last pixel: kinds 8 and 9 store them as
    // they stand. Every other loop keeps its results in locals.
    Rgb16 resultFields_{};
};

} // namespace lumiran
