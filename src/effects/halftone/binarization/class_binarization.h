#pragma once

#include "engine/drawing/colour_ref.h"
#include "engine/pixel_frame.h"

#include <cstdint>
#include <optional>
#include <span>

namespace lumiran {

class BorderTraceGrid;

// Bilevel effects: thresholds, dilation and erosion, 8-connected border
// following and feature points. Reads ImageBits, writes TransBits; both are
// fetched from the same picture and TransBits is written back. The
// thresholds (Binarization, DrawingColorBinarization, TransformationBinarize)
// read nothing but the pixel they write: when no TransBits was fetched they
// work in ImageBits itself, which is then written back, so a run holds one
// array the picture's size, not two.
//
// The luminance of this class weighs 0.299, 0.587, 0.114. Measures of the
// border and feature effects: 0 luminance, 1 round((r + g + b) / 3), 2 r,
// 3 g, 4 b. The rectangle is used as far as it lies in the picture.
class Class_Binarization : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Channels tested against the threshold by kind 0..11: 0 on the
    // luminance, 1..7 on chosen channels, 8 and 9 on the largest and the
    // smallest channels, 10 and 11 on the lightness.
    void Binarization(std::int16_t threshold, std::int16_t kind, std::int16_t left,
                      std::int16_t top, std::int16_t right, std::int16_t bottom);

    // Two-colour thresholds in the given colour (kinds 0..3); form 1 keeps
    // the source in place of the black or white side.
    void DrawingColorBinarization(std::int16_t threshold, std::int16_t kind, std::int16_t form,
                                  std::int16_t left, std::int16_t top, std::int16_t right,
                                  std::int16_t bottom, std::uint8_t red, std::uint8_t green,
                                  std::uint8_t blue);

    // The average's threshold result into the chosen channels (0 all, 1..3
    // r, g, b): mode 0 always, -1 only black, 1 only white.
    void TransformationBinarize(std::int16_t threshold, std::int16_t left, std::int16_t top,
                                std::int16_t right, std::int16_t bottom, std::int16_t mode,
                                std::int16_t channel);

    // Around every interior pixel whose average is at least (dilation) or
    // at most (erosion) the threshold, the shape (0 the cross of five, 1
    // the 3 x 3 square) goes white or black in the chosen channels.
    void Dilatation(std::int16_t shape, std::int16_t threshold, std::int16_t left, std::int16_t top,
                    std::int16_t right, std::int16_t bottom, std::int16_t channel);
    void Erosion(std::int16_t shape, std::int16_t threshold, std::int16_t left, std::int16_t top,
                 std::int16_t right, std::int16_t bottom, std::int16_t channel);

    // Borders of the foreground traced 8-connected: black on white, or
    // (colour, on channel 0..2) in the drawing colour over the picture.
    void BorderFollowing_Mono(std::int16_t measure, std::int16_t polarity, std::int16_t threshold,
                              std::int16_t startKind, std::int16_t left, std::int16_t top,
                              std::int16_t right, std::int16_t bottom);
    void BorderFollowing_Color(std::int16_t channel, std::int16_t polarity, std::int16_t threshold,
                               std::int16_t startKind, std::int16_t left, std::int16_t top,
                               std::int16_t right, std::int16_t bottom);
    // The colour calls on channels 0, 1 and 2 in turn as one pass, each
    // over the result of the one before (ImageBits with the marks so far),
    // sharing the progress bar as a sequence of the three calls does.
    void BorderFollowing_ColorInTurn(std::int16_t polarity, std::int16_t threshold,
                                     std::int16_t startKind, std::int16_t left, std::int16_t top,
                                     std::int16_t right, std::int16_t bottom);

    // Foreground pixels of connection number kind + 1 (end points, line
    // points, branches, crossings), marked by circles of the radius: black
    // on white, or (colour, on channel 0..2) in the drawing colour over the
    // picture.
    void FeaturePointExtract_Mono(std::int16_t measure, std::int16_t radius, std::int16_t threshold,
                                  std::int16_t kind, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::int16_t polarity);
    void FeaturePointExtract_Color(std::int16_t channel, std::int16_t radius,
                                   std::int16_t threshold, std::int16_t kind, std::int16_t left,
                                   std::int16_t top, std::int16_t right, std::int16_t bottom,
                                   std::int16_t polarity);

  private:
    [[nodiscard]] bool arraysReady() const;
    // For the thresholds: ImageBits fetched, TransBits not fetched or of its size.
    [[nodiscard]] bool resultReady() const;

    // A threshold's rule over the rectangle, into TransBits or, without
    // it, back into ImageBits.
    template <typename Rule>
    void mapOwnPixels(const ProcessRect& rect, Rule&& rule) {
        if (TransBits.empty()) {
            mapPixels<ResultTail::Clamp, Destination::InPlace>(rect, rule);
        } else {
            mapPixels<ResultTail::Clamp, Destination::Trans>(rect, rule);
        }
    }

    void morphology(std::int16_t shape, const ProcessRect& rect, std::int16_t channel, bool dilate,
                    std::int16_t threshold);
    void followBorders(std::span<const int> measures, std::int16_t polarity, std::int16_t threshold,
                       std::int16_t startKind, const ProcessRect& rect, bool overPicture);
    // The foreground of a measure into the grid; with marksIn, marked
    // pixels count as that colour.
    void measureForeground(BorderTraceGrid& grid, const Span& s, int measure, int polarity,
                           int threshold, std::optional<Pixel> marksIn);
    // The grid's marks in the ink: over TransBits, or with ownResult into
    // a TransBits made here from ImageBits.
    void drawMarks(const BorderTraceGrid& grid, const Span& s, Pixel ink, bool ownResult);
    void extractFeatures(int measure, std::int16_t radius, std::int16_t threshold,
                         std::int16_t kind, const ProcessRect& rect, std::int16_t polarity,
                         bool overPicture);

    // The progress bar set to a stage's percentage; false once cancelled.
    bool reachStage(int percent);

    // Marks go in the drawing colour over the picture, otherwise in black
    // on the rectangle cleared to white.
    [[nodiscard]] ColourRef markColour(bool overPicture);
    void clearMarks(const Span& span);
    // TransBits as a copy of ImageBits, made on the run's threads, when the
    // run left it to the call.
    void copyToTransIfUnfetched();
};

} // namespace lumiran
