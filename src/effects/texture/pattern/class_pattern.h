#pragma once

#include "effects/texture/mosaic/block_walk.h"
#include "engine/pixel_frame.h"

#include <cstdint>
#include <vector>

namespace lumiran {
namespace pattern {
class Bands;
class JointRule;
struct TileLayout;
} // namespace pattern

// Generated patterns painted over the picture in place on ImageBits:
// trigonometric colour fields, banded rings, tile-wall lines and stipple.
// Most end with the weight blend of the pattern's colour P with the source
// c, round(((10 - w) P + w c) / 10) (weight 10 the source, 0 the pattern),
// and then the blend by calculation type or the clamp.
//
// The band rule turns a whole number m into colour: with period p,
// round(|C - 256 / p * (m mod p)|) per channel; a period of 0 is the
// division-by-zero error, which ends the run as cancelled.
class Class_Pattern : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Sine-cosine colour fields: per channel an amplitude A and a wave W
    // bend the coordinates u and v by the type's law, and the colour is
    // round(((sin(u pi / A) + 1) / 2) ((cos(v pi / W) + 1) / 2) 255).
    // Color_Sway1 has types 0..5; 2..4 have 0..10, where Color_Sway2 feeds
    // u into v, Color_Sway3 feeds back into u once more, and Color_Sway4
    // starts from v.
    void Color_Sway1(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::int16_t redAmplitude,
                     std::int16_t redWave, std::int16_t greenAmplitude, std::int16_t greenWave,
                     std::int16_t blueAmplitude, std::int16_t blueWave);
    void Color_Sway2(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::int16_t redAmplitude,
                     std::int16_t redWave, std::int16_t greenAmplitude, std::int16_t greenWave,
                     std::int16_t blueAmplitude, std::int16_t blueWave);
    void Color_Sway3(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::int16_t redAmplitude,
                     std::int16_t redWave, std::int16_t greenAmplitude, std::int16_t greenWave,
                     std::int16_t blueAmplitude, std::int16_t blueWave);
    void Color_Sway4(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::int16_t redAmplitude,
                     std::int16_t redWave, std::int16_t greenAmplitude, std::int16_t greenWave,
                     std::int16_t blueAmplitude, std::int16_t blueWave);

    // Products of waves across and down around the rectangle's centre, with
    // horizontal and vertical periods and a colour; the type picks the
    // waves (0..5), the combination how the two make one value (0..4).
    void FF1(std::uint8_t type, std::uint8_t combination, std::int16_t left, std::int16_t top,
             std::int16_t right, std::int16_t bottom, std::int16_t horizontal,
             std::int16_t vertical, std::int16_t red, std::int16_t green, std::int16_t blue,
             std::int16_t weight);
    // The same with periods of each channel's own (combinations 0..3).
    void FF2(std::uint8_t type, std::uint8_t combination, std::int16_t left, std::int16_t top,
             std::int16_t right, std::int16_t bottom, std::int16_t redHorizontal,
             std::int16_t redVertical, std::int16_t greenHorizontal, std::int16_t greenVertical,
             std::int16_t blueHorizontal, std::int16_t blueVertical, std::int16_t weight);
    // Color_Sway1's field with its waves run degree times as fast.
    void FF3(std::int16_t weight, std::uint8_t type, std::int16_t left, std::int16_t top,
             std::int16_t right, std::int16_t bottom, std::int16_t redAmplitude,
             std::int16_t redWave, std::int16_t greenAmplitude, std::int16_t greenWave,
             std::int16_t blueAmplitude, std::int16_t blueWave, double degree);

    // Sine and cosine of x / p1 and y / p2 (types 0..7 pair them with the
    // axes in turn); form 0 a gradation, 1 dots where the product is high.
    // With random on, both periods are drawn for every pixel as
    // round(p Rnd + 1), so the rows run in order.
    void Smoke(std::uint8_t type, std::uint8_t form, std::int16_t left, std::int16_t top,
               std::int16_t right, std::int16_t bottom, std::int16_t horizontal,
               std::int16_t vertical, std::int16_t red, std::int16_t green, std::int16_t blue,
               std::int16_t weight, bool random);

    // Joints of tiles width by height, neighbouring tiles sharing their
    // joint; every second row of tiles (columns when columns is true)
    // shifted by half a tile. Line types: 0 a groove (source - 18, then + 18
    // below and right of it), 1 black and white, 2 black, grey and white,
    // 3 black.
    void LineInput_Gap(std::int16_t width, std::int16_t height, std::int16_t left, std::int16_t top,
                       std::int16_t right, std::int16_t bottom, bool columns, std::uint8_t type);
    // The same without the shift; every caller passes True as the reserved
    // flag, and no rule reads it.
    void LineInput_Normal(std::int16_t width, std::int16_t height, std::int16_t left,
                          std::int16_t top, std::int16_t right, std::int16_t bottom, bool reserved,
                          std::uint8_t type);

    // Quarter circles joining the middles of each tile's sides: types 0..6
    // lay the two turns in fixed orders (or whole circles), 7 at random.
    // Colour types as the line types of the joints. The reserved byte is 0
    // in every call.
    void Draw_ArcCrest(std::int16_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                       std::int16_t bottom, std::uint8_t type, std::uint8_t colour,
                       std::uint8_t reserved);
    // Lozenges, triangles, a lattice, frames, asterisks or polka dots.
    void LineInput_Lozenge(std::int16_t size, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom, std::uint8_t type,
                           std::uint8_t colour);
    // Shippou-tsunagi: circles of half a tile around its corners and centre,
    // and three further arrangements.
    void LineInput_Circle(std::int16_t size, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom, std::uint8_t type,
                          std::uint8_t colour);

    // A chequer of blocks, the first one at the top left, each changed by
    // a block call on the picture: operation 0 inverts, 1 blackens, 2
    // whitens, 8 copies a block from a random place of the rectangle. Any
    // other operation changes nothing. The reserved flag is True in every
    // call and read by nothing.
    void CheckedPattern(bool reserved, std::int16_t width, std::int16_t height, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::uint8_t operation);

    // A stipple of the colour on every second pixel pair: a quarter, a half
    // or three quarters of the pixels (types 0..2). No post-step.
    void ShadePatternMethod(std::uint8_t type, std::int16_t left, std::int16_t top,
                            std::int16_t right, std::int16_t bottom, std::uint8_t red,
                            std::uint8_t green, std::uint8_t blue);

    // Ramps across and down mixed with the colour, types 0..3.
    void ColorSpread(std::uint8_t type, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom, std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                     std::int16_t weight);

    // Bands of round(sqrt(sqrt(x^e) + sqrt(y^e))), e = 6 + type, period the
    // strength.
    void Wamai(std::uint8_t type, std::int16_t left, std::int16_t top, std::int16_t right,
               std::int16_t bottom, std::uint8_t red, std::uint8_t green, std::uint8_t blue,
               std::int16_t weight, std::int16_t strength);

    // Rings around the rectangle's centre.
    void FF4(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
             std::uint8_t red, std::uint8_t green, std::uint8_t blue, std::int16_t weight,
             std::int16_t strength);

    // Bands of products of x and y (types 0..3).
    void ColorTile1(std::uint8_t type, std::int16_t left, std::int16_t top, std::int16_t right,
                    std::int16_t bottom, std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                    std::int16_t weight, std::int16_t strength);

    // Bands of square roots of bent coordinates (types 0..3).
    void ColorTile2(std::uint8_t type, std::int16_t left, std::int16_t top, std::int16_t right,
                    std::int16_t bottom, std::uint8_t red, std::uint8_t green, std::uint8_t blue,
                    std::int16_t amplitude, std::int16_t wave, std::int16_t strength,
                    std::int16_t power, std::int16_t weight);

    // ImageGetDiBits for the tile walls: ImageBits takes the picture's size
    // now and each row's pixels when a wall's row loop first reaches it, so
    // the copy runs on the loop's threads; finishRows() copies the rows no
    // loop reached. The picture must outlive the object's use of ImageBits.
    void ImageGetDiBitsByRows(const Surface& picture);
    void finishRows();

  private:
    // The row y of ImageBits from the picture of ImageGetDiBitsByRows, once;
    // nothing after ImageGetDiBits.
    void takeRow(int y);
    // The per-pixel frame of the colour fields: pattern(x, y) gives P for
    // the three channels, which the weight blend mixes with the source.
    template <RowOrder Order = RowOrder::AnyOrder, typename Pattern>
    void blendPattern(const ProcessRect& rect, std::int16_t weight, Pattern&& pattern);
    // The same a row at a time: fillRow(y, first, end, colours) gives P for
    // the columns first..end-1 of row y, from tables of the row and the
    // columns where it can; the blends then run over the row in one loop.
    template <RowOrder Order = RowOrder::AnyOrder, typename FillRow>
    void blendPatternRows(const ProcessRect& rect, std::int16_t weight, FillRow&& fillRow);
    // The weight blend and the post-step over a row, p holding the row's
    // red, green and blue pattern values one after the other.
    template <bool Blend>
    void blendRow(Pixel* __restrict row, const std::int16_t* __restrict p, int count,
                  int weight) const;
    // The banded effects: rowMeasure(y, first, end, m) gives m for the
    // columns first..end-1 of row y, whole numbers in floating point whose
    // range the caller has checked; each goes through the band rule of the
    // colour and the weight blend.
    template <typename RowMeasure>
    void paintBands(const ProcessRect& rect, int period, std::uint8_t red, std::uint8_t green,
                    std::uint8_t blue, std::int16_t weight, RowMeasure&& rowMeasure);
    // One row of the band rule and the weight blend, then the post-step.
    template <bool Blend>
    void paintBandRow(const pattern::Bands& shared, Pixel* __restrict row, double* __restrict m,
                      int count) const;
    // Colours the pixels whose level (0 a joint's line, 1 and 2 right of and
    // below it) the line type colours, each then blended or clamped; other
    // pixels stay untouched. levelRow(y, first, end, scratch) gives the
    // levels of a row's columns [first, end), in scratch or elsewhere.
    template <typename LevelRow>
    void paintJoints(const ProcessRect& rect, std::uint8_t lineType, LevelRow&& levelRow);
    // The rule's colours over count pixels of a row by their levels, each
    // then blended or clamped; levels the rule does not colour stay.
    template <bool Blend>
    void paintLevelRow(const pattern::JointRule& rule, Pixel* row, const std::uint8_t* levels,
                       int count) const;
    // CheckedPattern's inversion, black or white on its blocks.
    void checkedColumns(int blockColumns, int width, int height, const ProcessRect& rect,
                        std::uint8_t operation);
    // work(first, end) for bands of the columns of blocks 0..count-1, on the
    // run's threads, claimed in turn; each column of a finished band counts
    // for progress, and a cancel stops every thread after its current band.
    // work must not throw.
    template <typename Work>
    void forEachBlockColumn(int count, Work&& work);
    // The grid joints of LineInput_Normal and LineInput_Gap.
    void gridJoints(const ProcessRect& rect, std::int16_t width, std::int16_t height, int shift,
                    bool columns, std::uint8_t type);
    // A wall of drawn tiles; the layout picks each tile's drawing.
    void drawnJoints(const ProcessRect& rect, int size, std::vector<mosaic::CellMask> variants,
                     pattern::TileLayout layout, std::uint8_t type);
    const Surface* rowSource_ = nullptr;
    std::vector<std::uint8_t> rowTaken_; // written only by the row's own loop
    void colorSway(int law, std::int16_t weight, std::uint8_t type, const ProcessRect& rect,
                   const std::int16_t (&amplitudeAndWave)[6], double degree = 1);
};

} // namespace lumiran
