#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>
#include <type_traits>

namespace lumiran {

// Per-pixel colour transforms, working in place on ImageBits.
//
// Type selections are bytes, coordinates and slider values 16-bit, as the
// dialogs hand them on; only Blackend's amount is floating point.
class Class_ColorOp : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Grey of one kind (0..13), the same value in all three channels.
    // Unclamped when no calculation type is set: kinds 12 and 13 wrap below 0.
    void Gray_Effect(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom);

    // Each channel moved away from the luminance grey by a multiple of the
    // amount; type 1 then adds the spread of the result.
    void Blackend(double amount, std::uint8_t type, std::int16_t left, std::int16_t top,
                  std::int16_t right, std::int16_t bottom);

    // A wave over brightness with the given period; types 0..3 take the
    // base value from Y, r, g, b, type 4 is a cos+sin swing of Y.
    void SilverMountain(std::uint8_t type, std::int16_t period, std::uint8_t invert,
                        std::int16_t addRed, std::int16_t addGreen, std::int16_t addBlue,
                        std::uint8_t mono, std::uint8_t random, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);

    // Rescales the channels so that the lightness moves by amount. Runs only
    // for flag 1.
    void BlightnessAdjust(std::uint8_t flag, std::int16_t amount, std::int16_t left,
                          std::int16_t top, std::int16_t right, std::int16_t bottom);

    // Brightness growing with the distance from a centre given in percent
    // of the rectangle.
    void Momo_Effect(std::int16_t amount, std::int16_t addRed, std::int16_t addGreen,
                     std::int16_t addBlue, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom, std::int16_t xPercent, std::int16_t yPercent);

    // Hue, saturation and value turned about the given values. Runs only
    // for method 0.
    void HSVInvert(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                   std::uint8_t method, std::int16_t hue, std::int16_t saturation,
                   std::int16_t intensity, std::int16_t redOperand, std::int16_t greenOperand,
                   std::int16_t blueOperand);

    // Hue as rings around a centre given in percent of the rectangle.
    void HSVCycle(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                  std::uint8_t method, std::int16_t hue, std::int16_t saturation,
                  std::int16_t intensity, std::int16_t xPercent, std::int16_t yPercent);

    // One colour scaled by a grey (basis 0 Y, 1 max, 2 min). Runs column by
    // column, so a cancel leaves whole columns done.
    void OneColorStyle(std::uint8_t basis, std::uint8_t style, std::int16_t red, std::int16_t green,
                       std::int16_t blue, std::int16_t left, std::int16_t top, std::int16_t right,
                       std::int16_t bottom);

    // Shifts in one colour model: 0 RGB, 1 YCbCr, 2 HSV, 3 HLS, 4 CMYK, 5 YUV.
    void ColorBalanceAdjust(std::uint8_t model, std::int16_t a, std::int16_t b, std::int16_t c,
                            std::int16_t k, std::int16_t left, std::int16_t top, std::int16_t right,
                            std::int16_t bottom);

    // Channel swaps (kinds 0..7, stored as they are) and channels replaced
    // by the lightness (8..13, clamped); never blended by calculation type.
    void RGBExchange(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom);

    // Adds the signed difference of a channel pair to the channels chosen
    // by use; reverse flips the sign.
    void DifferenceOperation(std::uint8_t pair, std::uint8_t use, std::int16_t left,
                             std::int16_t top, std::int16_t right, std::int16_t bottom,
                             bool reverse);

    // One value of the pixel (source 0..6) overwrites the channels the
    // target row names.
    void Invasion_Effect(std::uint8_t source, std::uint8_t target, std::int16_t left,
                         std::int16_t top, std::int16_t right, std::int16_t bottom);

    // Adds the spread of the channels two or three times (types 0..3).
    void AutumnsColor(std::uint8_t type, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom);

    // Pink (hue 0) or violet (hue 1) tint by the spread, types 0..2.
    void SakuraFilter(std::uint8_t hue, std::uint8_t type, std::int16_t left, std::int16_t top,
                      std::int16_t right, std::int16_t bottom);

    // Moves the channels apart (degree above 0) or together, and greys
    // pixels darker than the degree.
    void GrayatSaturation(std::uint8_t channel, std::int16_t degree, std::int16_t left,
                          std::int16_t top, std::int16_t right, std::int16_t bottom,
                          std::uint8_t kind);

    // Pictures of hue and saturation, modes 0..4.
    void Hue(std::uint8_t mode, std::int16_t threshold, std::int16_t left, std::int16_t top,
             std::int16_t right, std::int16_t bottom);

    // Washed-out colours by the spread. Type 1 with base 0 and types 2 and 3
    // read the previous pixel's channels, so the pixels run in loop order.
    void Deterioration(std::uint8_t type, std::uint8_t base, std::uint8_t keep, std::int16_t left,
                       std::int16_t top, std::int16_t right, std::int16_t bottom, std::int16_t a,
                       std::int16_t b, std::int16_t c, std::int16_t weight, std::int16_t redOperand,
                       std::int16_t greenOperand, std::int16_t blueOperand);

    // SakuraFilter then reads ImageBits, lent, and makes TransBits itself:
    // each row copied and tinted in one pass, on every core, rather than
    // the whole picture copied on one thread first
    // (dispatch::onSourceWithOwnTrans).
    void tintIntoOwnTrans() { tintIntoOwnTrans_ = true; }

  private:
    // mapPixels in place, or onto TransBits as tintIntoOwnTrans asks.
    template <ResultTail Tail, typename Rule>
    void mapTint(const ProcessRect& rect, Rule rule);

    bool tintIntoOwnTrans_ = false;
};

} // namespace lumiran
