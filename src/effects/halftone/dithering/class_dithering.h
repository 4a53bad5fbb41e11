#pragma once

#include "effects/halftone/dithering/level_tables.h"
#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

class DiffusionKernel;
namespace diffusion {
struct Bounds;
}

// Reduction to few grey or colour levels: ordered dithers, error
// diffusions, a random dither, a gathering diffusion, a 2 x 2 dot pattern
// and two local-mean thresholders. Reads ImageBits, writes TransBits; both
// are fetched from the same picture and TransBits is written back.
//
// The ordered dithers, the error diffusions and the random dither read
// nothing but the pixel they write, or work in the result alone: when no
// TransBits was fetched they work in ImageBits itself, which is then
// written back, so a run holds one array the picture's size, not two.
//
// Colour mode 0 works on the luminance grey round(0.3 r + 0.59 g + 0.11 b)
// and writes it to all three channels; any other mode works per channel.
// The rectangle is used as far as it lies in the picture.
class Class_Dithering : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Ordered dithers with the named matrices (types 0..8 of the 4 x 4
    // table, 0..5 of the 8 x 8 table); adjust shifts the matrix scale.
    // Levels outside 2..8 give black.
    void OrderedDither4x4(std::int16_t type, std::int16_t adjust, std::int16_t left,
                          std::int16_t top, std::int16_t right, std::int16_t bottom,
                          std::int16_t colourMode, std::int16_t level);
    void OrderedDither8x8(std::int16_t type, std::int16_t adjust, std::int16_t left,
                          std::int16_t top, std::int16_t right, std::int16_t bottom,
                          std::int16_t colourMode, std::int16_t level);

    // Error diffusion with kernels 0..6 ("Burkes" .. "Stevenson and Arce").
    void Dither_ErrorDiffuse(std::int16_t filter, std::int16_t left, std::int16_t top,
                             std::int16_t right, std::int16_t bottom, std::int16_t colourMode,
                             std::int16_t level);

    // Filter 0: the random dither without diffusion. Filters 1..4: the
    // kernels 0..3 with an error of random size.
    void Dither_ErrorDiffuseRandom(std::int16_t filter, std::int16_t left, std::int16_t top,
                                   std::int16_t right, std::int16_t bottom, std::int16_t colourMode,
                                   std::int16_t level);

    // Kernels 0..3 with an error of fixed size.
    void Dither_ErrorFixed(std::int16_t filter, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom, std::int16_t colourMode,
                           std::int16_t level, std::int16_t fixedError);

    // Error diffusion of the grey into the drawing colour's tables; paint
    // type 0 runs from the drawing colour to white, any other from black
    // to the drawing colour.
    void Dither_ErrorDiffuseColorPaint(std::int16_t filter, std::int16_t left, std::int16_t top,
                                       std::int16_t right, std::int16_t bottom,
                                       std::int16_t paintType, std::int16_t level);

    // The gathering diffusion: each pixel takes the errors made at twelve
    // earlier positions.
    void Dither_LimitSqure(std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom, std::int16_t colourMode, std::int16_t level);

    // 2 x 2 blocks pushed up or down by 256 / level after their mean.
    void DotsPatternMethod(std::int16_t left, std::int16_t top, std::int16_t right,
                           std::int16_t bottom, std::int16_t colourMode, std::int16_t level);

    // Black or white by the 3 x 3 mean against thresholds moved by edges.
    void DinamicThresholding(std::int16_t colourMode, std::int16_t maximumThreshold,
                             std::int16_t minimumThreshold, double darken, double edge,
                             std::int16_t left, std::int16_t top, std::int16_t right,
                             std::int16_t bottom);

    // Black or white by the 3 x 3 mean, weighted by weight 0..2.
    void LimitTheMeanValue(std::int16_t colourMode, std::int16_t weight, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom);

  private:
    void BuildLevelTable(std::int16_t level, std::int16_t colourMode);
    void BuildDrawingColorLevelTable(std::int16_t level, std::int16_t paintType);

    // Both arrays fetched and of one size: the effects write nothing otherwise.
    [[nodiscard]] bool arraysReady() const;
    // For the effects that can work in one array: ImageBits fetched, and
    // TransBits either not fetched or of its size.
    [[nodiscard]] bool resultReady() const;
    // The array those effects write: TransBits, or ImageBits without it.
    [[nodiscard]] Surface& result() { return TransBits.empty() ? ImageBits : TransBits; }

    template <int CellSize>
    void orderedDither(std::int16_t type, std::int16_t adjust, const ProcessRect& rect,
                       std::int16_t colourMode, std::int16_t level);

    // The diffusions differ only in how entry 0's error is sized.
    enum class ErrorSize { Exact, Random, Fixed };
    void diffuse(int kernel, const ProcessRect& rect, bool mono, std::int16_t level, ErrorSize size,
                 std::int16_t fixedError);
    void diffuseColorPaint(int kernel, const ProcessRect& rect);
    // The rows top to bottom with the kernel compiled in: in a wavefront of
    // several rows, or one after the other where quantise must be called
    // in scan order.
    template <bool OneError, typename Quantise>
    void rowsOf(int kernel, const ProcessRect& rect, const diffusion::Bounds& bounds,
                const DiffusionKernel& prepared, Quantise& quantise, bool byGreyAlone,
                bool inScanOrder);
    // Whether the rows of a wavefront are worth a second thread.
    [[nodiscard]] bool sharesRows(const diffusion::Bounds& bounds);
    template <typename Rows>
    void rowsOnTwoThreads(const ProcessRect& rect, const diffusion::Bounds& bounds, Rows& rows);
    void randomDither(const ProcessRect& rect, bool mono, std::int16_t level);

    LevelTable MonoLevelTable{};
    LevelTable LevelTableR{};
    LevelTable LevelTableG{};
    LevelTable LevelTableB{};
};

} // namespace lumiran
