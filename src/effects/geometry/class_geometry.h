#pragma once

#include "engine/pixel_frame.h"

#include <cstdint>
#include <span>

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

  private:
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
