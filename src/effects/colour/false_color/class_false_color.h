#pragma once

#include "effects/colour/false_color/tone_tables.h"
#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

// Recolouring from brightness (tints, pseudo colours, fluorescent and
// retro colours) and the noise effects that sprinkle stamps of colour.
// Works in place on ImageBits; the noise draws from the one generator.
class Class_FalseColor : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Blue tints: 0 "夜", 1 "ｻｯｸｽ･ﾌﾞﾙｰ", 2 "海雪", 3 "紫みの赤". The choice
    // keeps RGB (0), the source's hue at the tint's lightness (1) or one
    // channel (2..4 red, green, blue).
    void BlueSepia(std::uint8_t type, std::int16_t adjust, std::uint8_t choice, std::int16_t left,
                   std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Yellow tints: 0 "夕焼け", 1 "ﾚﾓﾝ･ｲｴﾛｰ", 2 "写真風ｾﾋﾟｱ", 3 "赤みの紫".
    void YellowOperation(std::uint8_t type, std::int16_t adjust, std::uint8_t choice,
                         std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom);
    // Pseudo colour by bands of 30 grey levels, types 0..7.
    void FalseColor(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                    std::uint8_t type);
    void FluorescenceRevision(std::uint8_t type, std::int16_t adjust, std::int16_t left,
                              std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Form 1 adds the spread of the results to all three channels.
    void Retrospection(std::uint8_t form, double adjust, std::uint8_t selector, std::int16_t left,
                       std::int16_t top, std::int16_t right, std::int16_t bottom);
    // The factor is unused: the type (0 normal, 1..4 absolute difference
    // times the type) is the factor.
    void Color_Adjusten(std::uint8_t factor, std::uint8_t type, std::int16_t red,
                        std::int16_t green, std::int16_t blue, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);

    // Stamps (0 "点", 1 "円", 2 "ﾏｷﾋﾞｼ", 3 "ﾊﾞﾂ", 4 "+") laid at random
    // places; colour 0 "ごま塩" black or white at random, 1 white, 2 black.
    void RandamNoise_Mono(std::int16_t amount, std::uint8_t colour, std::uint8_t type,
                          std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom);
    // Mode 0 gives each stamp a random colour, mode 1 the colour given.
    void RandamNoise_Color(std::int16_t amount, std::uint8_t mode, std::int16_t red,
                           std::int16_t green, std::int16_t blue, std::uint8_t type,
                           std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom);

    // "Noise Corrdinate": pass 1 draws a grey noise field by a random walk,
    // pass 2 moves each pixel by amplitude times a trigonometric function
    // (0 sine, 1 cosine, 2 tangent, 3 sine and cosine, 4 cosine and sine)
    // of the field's grey over the wavelength. Reads ImageBits and writes
    // TransBits.
    void NoiserizeWater(std::int16_t wavelength, std::int16_t amplitude, std::uint8_t function,
                        std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom);

  private:
    // The recolourings' loop where the calculation type does not blend: the
    // tables over every row, rows on all cores. Returns false where it
    // blends, for the caller's rule per pixel.
    bool recolour(const ProcessRect& rect, ToneKey key, const ToneTables& tables) {
        if (calculationFlag() > 0) return false;
        SetProgressRange(rect.top, rect.bottom);
        forEachRow(rect, [&](int y, int first, int end) {
            applyToneTables(ImageBits.row(y).subspan(static_cast<std::size_t>(first),
                                                     static_cast<std::size_t>(end - first)),
                            key, tables);
        });
        return true;
    }
    void tint(bool blue, std::uint8_t type, std::int16_t adjust, std::uint8_t choice,
              const ProcessRect& rect);
    template <typename Colour>
    void stamps(std::int16_t amount, std::uint8_t type, const ProcessRect& rect, Colour&& colour);
};

} // namespace lumiran
