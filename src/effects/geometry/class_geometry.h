#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

// The distortions: warps that work out, for each pixel of the rectangle,
// where in the picture it comes from (read from ImageBits, written into
// TransBits through WarpSample), and warps that move columns, rows or
// blocks with the drawing calls from kept picture 0 onto kept picture 1.
//
// Centres are percentages of the rectangle (px, py); axes 0 moves pixels
// horizontally only, 1 vertically only, 2 both. Kinds, axes and functions
// are bytes, slider values 16-bit, radii doubles, as the dialogs hand them
// on. Each operation is a further .cpp file of this class.
class Class_Geometry : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // The sampler of every reverse-mapping warp: the mapped position is
    // clamped to the rectangle (and the picture), rounded half to even, and
    // the whole source element is copied to (x, y) of TransBits: by axes 0
    // from (x', y), 1 from (x, y'), 2 from (x', y'); any other axes writes
    // nothing. A position that is not a number ends the run as overflow.
    void WarpSample(std::uint8_t axes, int x, int y, double mappedX, double mappedY,
                    std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom);

    // t = r / radius; functions 0..2 scale the offset by sin, cos, tan of
    // t, function 3 crosses them. A radius of 0 does nothing.
    void PowerHole(double radius, std::uint8_t function, std::uint8_t axes, std::int16_t left,
                   std::int16_t top, std::int16_t right, std::int16_t bottom, std::int16_t xPercent,
                   std::int16_t yPercent);

    // Blow up: the offset scaled by a function of r against the half sizes
    // (kind 0), of their ratio the other way (1), or of each axis alone (2).
    // Always both axes. A radius of 0 does nothing.
    void Wave_FishEye(double radius, std::uint8_t function, std::uint8_t kind, std::int16_t left,
                      std::int16_t top, std::int16_t right, std::int16_t bottom,
                      std::int16_t xPercent, std::int16_t yPercent);

    // Suck in: the offset divided by a function of r against a quarter of
    // the sizes. A radius of 0 does nothing.
    void Wave_Suck(double radius, std::uint8_t function, std::uint8_t axes, std::int16_t left,
                   std::int16_t top, std::int16_t right, std::int16_t bottom, std::int16_t xPercent,
                   std::int16_t yPercent);

    // A turn growing with r, shifted right by the strength.
    void Whirlpool(std::int16_t strength, std::uint8_t axes, std::int16_t left, std::int16_t top,
                   std::int16_t right, std::int16_t bottom, std::int16_t xPercent,
                   std::int16_t yPercent);

    // Vortex, kinds 0..6. A radius of 0 does nothing.
    void Wave_Circle(double radius, std::uint8_t axes, std::uint8_t kind, std::int16_t left,
                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                     std::int16_t xPercent, std::int16_t yPercent);

    // The rectangle turned about the centre; what the turn brings from
    // outside the rectangle, and the whole picture outside it, is black.
    void Rotate(std::int16_t degrees, std::uint8_t axes, std::int16_t left, std::int16_t top,
                std::int16_t right, std::int16_t bottom, std::int16_t xPercent,
                std::int16_t yPercent);

    // Waves seen from a slant (kinds 0..6), damped in percent, the shift
    // added count + 1 times.
    void Wave_Sea(std::uint8_t kind, std::uint8_t axes, std::int16_t amplitude,
                  std::int16_t damping, std::int16_t left, std::int16_t top, std::int16_t right,
                  std::int16_t bottom, std::int16_t count, std::int16_t xPercent,
                  std::int16_t yPercent);
    // The same with each axis driven by its own distance from the centre.
    void Wave_Sea2(std::uint8_t kind, std::uint8_t axes, std::int16_t amplitude,
                   std::int16_t damping, std::int16_t left, std::int16_t top, std::int16_t right,
                   std::int16_t bottom, std::int16_t count, std::int16_t xPercent,
                   std::int16_t yPercent);

    // Rows swayed by a function of y and columns by one of x (kinds 0..10),
    // with up to three harmonics.
    void Sway1(std::uint8_t axes, std::uint8_t kind, std::int16_t amplitude, std::int16_t period,
               std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
               std::uint8_t harmonics);
    // The sway fed back into itself iterations + 1 times.
    void Sway2(std::uint8_t axes, std::uint8_t kind, std::int16_t amplitude, std::int16_t period,
               std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
               std::uint8_t iterations);

    // Polar coordinates: the angle about the centre picks the column, the
    // distance the row. Kinds 0..3 take the angle by atan, sin, cos, tan.
    void Sphere(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                std::uint8_t kind, std::int16_t xPercent, std::int16_t yPercent, std::int16_t turn);

    // Displacement by a map of grey rings about the centre, kinds 0..4.
    void Ripploid(double period, std::int16_t left, std::int16_t top, std::int16_t right,
                  std::int16_t bottom, std::uint8_t kind, std::int16_t xPercent,
                  std::int16_t yPercent, std::uint8_t axes);

    // Turns by a grey map of a spiral (kinds 0 and 2) or rings (kind 1).
    void EddyingCurrent(std::uint8_t kind, double strength, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom, std::int16_t xPercent,
                        std::int16_t yPercent, std::uint8_t axes);

    // Displacement by one of 18 grey maps (kinds 0..17), shaped by the
    // function (0..4) of the map's level.
    void Ripple(std::int16_t amplitude, std::int16_t period, std::uint8_t kind, std::int16_t left,
                std::int16_t top, std::int16_t right, std::int16_t bottom, std::uint8_t axes,
                std::uint8_t function, std::int16_t xPercent, std::int16_t yPercent);

    // Every pixel from a random place within range (direction 0 x, 1 y,
    // 2 both). Draws from the random generator, so rows run in order.
    void Scatterize(std::uint8_t direction, std::int16_t range, std::int16_t left, std::int16_t top,
                    std::int16_t right, std::int16_t bottom);

    // Cells of glass from tan (kind 0) or the crossed forms with cos (1),
    // tan (2), sin (3).
    void LatticeGlass(std::int16_t cell, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom, std::uint8_t kind);

    // Columns (even modes) or rows (odd modes) of kept picture 0 copied onto
    // kept picture 1 shifted by a wave: modes 0/1 plain, 2/3 four terms,
    // 4/5 reciprocal, 6/7 absolute; kinds 0 sin, 1 cos, 2 tan, 3 sin & cos.
    void Wave_Sin(std::int16_t offset, std::int16_t amplitude, std::int16_t period,
                  std::uint8_t mode, std::uint8_t kind, std::int16_t left, std::int16_t top,
                  std::int16_t right, std::int16_t bottom);

    // A swirl mapped forward in 2 x 2 blocks from kept picture 0 onto kept
    // picture 1, which is black first: the holes stay dark.
    void Nebura(double radius, std::int16_t shift, std::int16_t left, std::int16_t top,
                std::int16_t right, std::int16_t bottom);

    // --- Blocks and strips, drawn from kept picture 0 onto kept picture 1.
    // A background kind of 0 ("画像") first lays the picture on the target,
    // so uncovered places show it; 1 ("背景色") leaves the target as it is.

    // Patches of width x height keep their own place at random spots: one
    // for every column of every height-th row.
    void CuttingPicture(std::int16_t width, std::int16_t height, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Blocks fly from their place in passes + 1 steps: kind 0 outward from
    // the centre, 1 inward, 2 any way, 3 outward by their distance.
    void BlockScatter_Type1(std::int16_t size, std::int16_t passes, std::uint8_t kind,
                            std::int16_t left, std::int16_t top, std::int16_t right,
                            std::int16_t bottom);
    // Each block moved by chance: kind 0 its target corner, 1 its source
    // corner, 2 both, 3 source across and target down; direction 0 moves
    // along x only, 1 along y only, 2 both.
    void BlockScatter_Type2(std::uint8_t direction, std::int16_t spread, std::int16_t size,
                            std::int16_t backgroundKind, std::uint8_t kind, std::int16_t left,
                            std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Strips of `size` exchanged in pairs (group 0) or turned in threes
    // (group 1): kind 0 columns, 1 rows, 2 both.
    void BlockReplace(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom, std::int16_t size, std::uint8_t group);
    // One call of a run of BlockReplace calls that share size and rectangle.
    struct BlockReplaceStep {
        std::uint8_t kind = 0;
        std::uint8_t group = 0;
    };
    // The calls in turn, each over the result of the one before, drawn from
    // kept picture 0 into kept picture 1 in one pass. Returns false, drawing
    // nothing, where a call would not draw (bad arguments) or the kept
    // pictures differ in size: the caller then makes the calls one by one.
    bool BlockReplaceInOne(std::span<const BlockReplaceStep> steps, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom,
                           std::int16_t size);
    // The halves pushed apart in saw teeth from the middle line: notches.
    void Notches(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                 std::int16_t step);
    // Shears: rows (columns) shifted by their distance from the top (left)
    // edge, or from the bottom (right) edge with slope -1.
    void Slope_Horizontal(std::int16_t factor, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom, std::int16_t slope,
                          std::int16_t backgroundKind);
    void Slope_Vertical(std::int16_t factor, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom, std::int16_t slope,
                        std::int16_t backgroundKind);
    // Zig-zag by a triangle walk 0..step..0: kinds 0 rows, 1 columns, 2 both
    // moved; kinds 3, 4, 5 pixel by pixel from ImageBits into TransBits.
    void Transform_Crank(std::uint8_t kind, std::int16_t step, std::int16_t left, std::int16_t top,
                         std::int16_t right, std::int16_t bottom, std::int16_t backgroundKind);
    // Scroll by percent of the size: kind 0 across, 1 down, 2 both; wrap
    // kind 0 around, 1 leaves the uncovered part, 2 stretch, 3 edge fill.
    void Transform_Scroll(std::uint8_t kind, std::int16_t percent, std::int16_t left,
                          std::int16_t top, std::int16_t right, std::int16_t bottom,
                          std::uint8_t wrapKind);
    // Bands of `interval` slid by `slide` more each: direction 0 rows
    // across, 1 columns down.
    void Warp_Slide(std::int16_t interval, std::int16_t slide, std::uint8_t direction,
                    std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom,
                    std::int16_t backgroundKind);
    // Bands of columns, then of rows, stretched to widths 1, 2, ... level + 1.
    void GraduallyEnlarge(std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom, std::int16_t level);
    // Rows (direction 0) or columns narrowed to `level` waists.
    void Squeeze(std::int16_t backgroundKind, std::int16_t level, std::int16_t left,
                 std::int16_t top, std::int16_t right, std::int16_t bottom, std::uint8_t direction);
    // Circles of the picture at random places, one per block: kind % 5 the
    // radius form, kind / 5 where the picture inside comes from. An empty
    // kept picture 1 is made here and gets the background colour first.
    void Random_Circle(std::int16_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                       std::int16_t bottom, std::uint8_t kind);
    // Pulls: kinds 0 across, 1 down (reverse: the other way); 2 and 3 sink
    // the middle of the columns (rows).
    void Transform_Bling(std::int16_t amount, std::int16_t parts, std::uint8_t kind,
                         std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom, std::int16_t reverse);
    // Bands of value / (step + 1) shifted alternately: direction 0 rows,
    // -1 columns.
    void Transform_Jagged(std::int16_t value, std::int16_t step, std::int16_t direction,
                          std::int16_t left, std::int16_t top, std::int16_t right,
                          std::int16_t bottom, std::int16_t backgroundKind);

    // --- Blurs and diffusion, ImageBits into TransBits with the shared tail.

    // Mean of the pixel and two samples at +-distance: direction 0 along
    // the row, 1 the column, 2 and 3 the diagonals. A sample outside the
    // rectangle takes the pixel's own coordinate.
    void Blur_Normal(std::uint8_t direction, std::int16_t distance, std::int16_t left,
                     std::int16_t top, std::int16_t right, std::int16_t bottom);
    // Passes from radius down to 1, each over the result of the last:
    // kinds 0..7 one sample (round of the mean of two), 8 along the row at
    // d and d / 2, 9..11 two mirrored samples (mean of three).
    void Blur_Gaussian(std::uint8_t kind, std::int16_t radius, std::int16_t left, std::int16_t top,
                       std::int16_t right, std::int16_t bottom);
    // A grey map of the picture's size, one level a pixel (row by row), the
    // blur length at each pixel (0..min(size, 255)); kinds 0..11.
    void Draw_BlurMap(std::uint8_t kind, std::int16_t size, std::int16_t left, std::int16_t top,
                      std::int16_t right, std::int16_t bottom, std::vector<std::uint8_t>& map);
    // Blur_Normal with the distance read from the map of mapKind.
    void Blur_Circle(std::uint8_t direction, std::int16_t size, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, std::uint8_t mapKind);
    // Blur_Gaussian whose offsets the map scales pixel by pixel.
    void Blur_CircleSoften(std::uint8_t kind, std::int16_t size, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom,
                           std::uint8_t mapKind);
    // The pixel taken from where the brightness step to its neighbour (kind
    // 0 right, 1 below, 2 below right) points.
    void DiffuseOutline1(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom);
    // The pixel taken from up or down by its blue against the neighbour's mean.
    void DiffuseOutline2(std::uint8_t kind, std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom);
    // Red, green and blue each from their own offset, mixed in by ratio (%).
    void Diffuse_Color(std::int16_t ratio, std::int16_t left, std::int16_t top, std::int16_t right,
                       std::int16_t bottom, std::int16_t redX, std::int16_t redY,
                       std::int16_t greenX, std::int16_t greenY, std::int16_t blueX,
                       std::int16_t blueY);

  private:
    // Source and target of the block effects; the target gets the picture
    // first for background kind 0. Null when the run has no kept pictures.
    struct Pictures {
        const Surface* source = nullptr;
        Surface* target = nullptr;
        explicit operator bool() const { return source != nullptr && target != nullptr; }
    };
    Pictures blitPictures(std::int16_t backgroundKind);
    // Crank's kinds 3..5: each pixel against its sample at the walk's offset,
    // ImageBits into TransBits; starts TransBits itself when left unfetched.
    void crankBlend(std::uint8_t kind, int step, const ProcessRect& rect);
    template <bool Blend>
    void crankBlendRow(std::uint8_t kind, int step, const ProcessRect& rect, const Span& span,
                       std::span<const int> columnShifts, int y);
    // The map of the map blurs as their first pass; the caption then names
    // the second.
    std::vector<std::uint8_t> blurMapFirst(std::uint8_t mapKind, std::int16_t size,
                                           const ProcessRect& rect);
    // Slope Horizontal and Slope Vertical: bands of the rectangle moved
    // along one axis.
    void slopeMove(bool horizontal, std::int16_t factor, const ProcessRect& rect,
                   std::int16_t slope, std::int16_t backgroundKind);
    // One pass of the sample blurs: taps(x, y, taps) fills the sample
    // positions of a pixel, count is the pixel and its samples.
    template <typename Taps>
    void sampleMeanPass(const ProcessRect& rect, int count, Taps&& taps);
    // A blur pass with fixed offsets (the fast path of the sample blurs).
    void fixedMeanPass(const ProcessRect& rect, std::span<const int> dxs, std::span<const int> dys);
    // ImageBits takes TransBits, for the next of several passes.
    void nextPass();
    // The clamp limits of the sampler: the rectangle cut to the picture.
    struct SampleBounds {
        double left = 0;
        double top = 0;
        double right = 0; // inclusive
        double bottom = 0;
    };
    [[nodiscard]] SampleBounds boundsOf(const Span& span) const;
    // The rows of a reverse-mapping warp: positions by row, then the sampler.
    template <RowOrder Order = RowOrder::AnyOrder, typename Fill>
    void warpRows(const ProcessRect& rect, std::uint8_t axes, Fill&& fill);
    // Sea Wave and Vertical Wave: the distance from the centre as one
    // ellipse or by axis.
    void seaWave(bool byAxis, std::uint8_t kind, std::uint8_t axes, std::int16_t amplitude,
                 std::int16_t damping, const ProcessRect& rect, std::int16_t count,
                 std::int16_t xPercent, std::int16_t yPercent);
    // The sampler over a row; index is room for one source index a pixel.
    void sampleRow(std::uint8_t axes, int y, int firstColumn, std::span<const double> xs,
                   std::span<const double> ys, const SampleBounds& bounds,
                   std::span<std::uint32_t> index);
};

} // namespace lumiran
