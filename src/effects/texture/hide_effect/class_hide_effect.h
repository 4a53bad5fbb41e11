#pragma once

#include "effects/texture/mosaic/block_walk.h"
#include "engine/pixel_frame.h"

#include <cstdint>
#include <span>

namespace lumiran {

namespace hide {
struct Lighting;
struct BlockTerms;
class SphereRow;
} // namespace hide

// The class that lights things: blocks or tiles of the picture shaded as
// spheres under a light vector, and the cloud and noise stamps. The sphere
// and block effects read ImageBits and write TransBits; the stamps work in
// place, each on what the stamps before it left.
//
// Light sliders are -10..10 (over 10, then normalised); reflection is the
// specular weight per channel, ambient the constant term of the shading.
class Class_HideEffect : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // "Sketch Noise": pencil stamps of side width (types 0..9) dropped at
    // random until as many as fit the rectangle's area have fallen.
    void Texture_Cloud(std::uint8_t width, std::uint8_t height, std::int16_t left, std::int16_t top,
                       std::int16_t right, std::int16_t bottom, std::uint8_t type);
    // "Mist": soft round stamps of white (background 0) or, over a white
    // rectangle, of the picture (background 1); depth 0 shallow, 1 deep.
    void Texture_Cloud2(std::uint8_t width, std::uint8_t height, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::uint8_t depth, std::uint8_t background);

    // Blocks of size as spheres of their mean colour; type 0 shades the
    // mean, any other each pixel's own colour.
    void Mosaic_Shading(std::uint8_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom, std::int16_t type, std::int16_t lightX,
                        std::int16_t lightY, std::int16_t lightZ, std::int16_t reflection,
                        std::int16_t ambient);
    // The same blocks at origins drawn at random, as many as the regular
    // walk lays. TransBits may be left unfetched: the call then starts it
    // as a copy of ImageBits itself.
    void Mosaic_ShadingRandom(std::uint8_t size, std::int16_t left, std::int16_t top,
                              std::int16_t right, std::int16_t bottom, std::int16_t type,
                              std::int16_t lightX, std::int16_t lightY, std::int16_t lightZ,
                              std::int16_t reflection, std::int16_t ambient);
    // Every second row of blocks shifted by half a block.
    void Mosaic_ShadingGap(std::uint8_t width, std::uint8_t height, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom,
                           std::uint8_t reserved1, std::uint8_t reserved2, std::int16_t lightX,
                           std::int16_t lightY, std::int16_t lightZ, std::uint8_t reserved3,
                           std::int16_t reflection, std::int16_t ambient);
    // Each block glows from its centre with its mean over the picture.
    void Mosaic_Glowing(std::uint8_t width, std::uint8_t height, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::uint8_t reserved1, std::uint8_t reserved2);
    // The picture as a relief whose height is its grey, depth size, lit.
    void ShadingTexture(std::uint8_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                        std::int16_t bottom, std::int16_t lightX, std::int16_t lightY,
                        std::int16_t lightZ, std::int16_t reflection, std::int16_t ambient);

    // One sphere of radius percent of the smaller side, centred; drawMode 0
    // shades the drawing colour, 1 the picture; the selector (0 RGB .. 6
    // red & blue) names the channels that change.
    void Specular(double radiusPercent, std::int16_t left, std::int16_t top, std::int16_t right,
                  std::int16_t bottom, std::int16_t lightX, std::int16_t lightY,
                  std::int16_t lightZ, std::int16_t reflectionRed, std::int16_t reflectionGreen,
                  std::int16_t reflectionBlue, double ambient, std::uint8_t drawMode,
                  std::uint8_t selector);
    // The picture tiled by spheres; type 0..4 the lens inside each sphere,
    // background 0 the picture, 1 black, 2 white.
    void Crystal_Ball(double radiusPercent, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom, std::int16_t lightX, std::int16_t lightY,
                      std::int16_t lightZ, std::int16_t reflectionRed, std::int16_t reflectionGreen,
                      std::int16_t reflectionBlue, double ambient, std::uint8_t type,
                      std::uint8_t background);
    // The tiles' spheres refract the picture by the types' sine laws.
    void Crystal_Line(double radiusPercent, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom, std::int16_t lightX, std::int16_t lightY,
                      std::int16_t lightZ, std::int16_t reflectionRed, std::int16_t reflectionGreen,
                      std::int16_t reflectionBlue, double ambient, std::uint8_t type,
                      std::uint8_t background);
    // As many spheres as the tiling has, at centres drawn at random.
    void Crystal_Random(double radiusPercent, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                        std::int16_t lightY, std::int16_t lightZ, std::int16_t reflectionRed,
                        std::int16_t reflectionGreen, std::int16_t reflectionBlue, double ambient,
                        std::uint8_t type, std::uint8_t background);
    // Spots of light at random, each adding ambient times the diffuse term
    // and the highlight to the picture: type t makes them (5 - t) / 5 of the
    // radius and as many more as keep the covered area.
    void RandomSpot(double radiusPercent, std::int16_t left, std::int16_t top, std::int16_t right,
                    std::int16_t bottom, std::int16_t lightX, std::int16_t lightY,
                    std::int16_t lightZ, std::int16_t reflectionRed, std::int16_t reflectionGreen,
                    std::int16_t reflectionBlue, double ambient, std::uint8_t type,
                    std::uint8_t background);
    // The flat picture under a lamp over its centre (moved by x and y, at
    // the height z tenths of the radius).
    void Crystal_Lighting(double radiusPercent, std::int16_t left, std::int16_t top,
                          std::int16_t right, std::int16_t bottom, std::int16_t lightX,
                          std::int16_t lightY, std::int16_t lightZ, std::int16_t reflectionRed,
                          std::int16_t reflectionGreen, std::int16_t reflectionBlue, double ambient,
                          std::uint8_t reserved1, std::uint8_t reserved2);

    // Discs of radius size / 4 in blocks at random origins brighten the
    // picture by size / 2 (type 0) or three quarters of size (type 1).
    void MonochromeNoise(std::uint8_t width, std::uint8_t height, std::int16_t left,
                         std::int16_t top, std::int16_t right, std::int16_t bottom,
                         std::uint8_t type);

  private:
    // The blocks of the grid shaded as spheres, one progress step a row of
    // blocks.
    void shadedWalk(const ProcessRect& rect, const mosaic::BlockGrid& grid, std::int16_t type,
                    const hide::Lighting& lighting);
    // One block as a sphere of radius size / 2 around its middle, whose
    // terms at each cell the walk works out once; mean is the block's mean.
    // Only the cells on picture rows rowBegin to rowEnd - 1 are painted.
    void shadeBlock(std::span<const int> rows, std::span<const int> columns, std::int16_t type,
                    const hide::Lighting& lighting, const hide::BlockTerms& terms, Rgb16 mean,
                    int rowBegin, int rowEnd);
    // Mosaic_ShadingRandom where nothing can fail: every row of blocks drawn
    // and counted first, then the blocks painted in bands of picture rows
    // on every core, each band taking its blocks in drawing order. With
    // copySource, TransBits is made here and each band first copies its
    // rows of the source into it.
    void scatteredShading(const mosaic::Extent& extent, int blockRows, int blockColumns, int size,
                          std::int16_t type, const hide::Lighting& lighting,
                          const hide::BlockTerms& terms, bool copySource);
    // Every pixel of the rectangle in the tiling of spheres of radius q:
    // inside a sphere the lit colour of the source its lens(dx, dy, cx, cy)
    // names, outside the background.
    template <typename Lens>
    void spheresOverTiles(const ProcessRect& rect, const hide::Lighting& lighting, int q,
                          std::uint8_t background, Lens lens);
    // One sphere of the row's radius painted over TransBits on the rows
    // rowBegin .. rowEnd - 1, the parts outside the span dropped; sphere is
    // the scratch row of its terms. plain: no blend, no overflow possible.
    template <typename Lens>
    void sphereAt(int cx, int cy, const hide::Lighting& lighting, const Span& span, int rowBegin,
                  int rowEnd, bool spot, bool plain, hide::SphereRow& sphere, Lens lens);
    // The spheres at centres drawn at random, over the background; a spot
    // adds its light to the picture instead of shading it.
    void randomSpheres(const ProcessRect& rect, const hide::Lighting& lighting, int q, int count,
                       std::uint8_t type, std::uint8_t background, bool spot);
    // Progress in hundredths of a count that may pass 16 bits; false when
    // the run is to stop.
    bool stepHundredths(long long done, long long total);
    int hundredthsShown_ = 0;
};

} // namespace lumiran
