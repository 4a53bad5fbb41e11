#pragma once

#include "effects/texture/mosaic/block_walk.h"
#include "effects/texture/mosaic/cell_rules.h"
#include "engine/pixel_frame.h"

#include <cstdint>

namespace lumiran {

// Mosaics: the picture replaced block by block with the block's mean colour,
// painted by a rule of the cell or through a shape mask. Means are taken
// from ImageBits before a block is painted, so most operations paint in
// place; Mosaic_Lozenge and Mosaic_ShippouTunagi, whose blocks overlap,
// write TransBits.
//
// Block sizes are bytes; a size of 0 makes an empty block, whose mean the
// conversion refuses with the overflow error. After each cell's rule comes
// the blend by calculation type with the block's first source pixel, or the
// clamp. Shape masks are drawn once per run on a work picture.
class Class_Mosaic : public PixelFrame {
  public:
    using PixelFrame::PixelFrame;

    // Type 0 plain; 1 a raised edge (M + 5 w) over a falling slope (M - 3 j);
    // 2 the reverse.
    void Mosaic_Normal(std::uint8_t width, std::uint8_t height, std::int16_t left, std::int16_t top,
                       std::int16_t right, std::int16_t bottom, std::uint8_t type);

    // Block of size x size through a shape mask: 0 circle, 1 pyramid, 2..7
    // triangles, 8..15 lozenges, 16 a smiling face. Where the mask is black
    // the pixel stays; any other shape value draws nothing, so all stays.
    void Mosaic_Circle(std::uint8_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                       std::int16_t bottom, std::uint8_t shape);

    // Stones on a board: a disc white or black by the block's grey against
    // the threshold, the board in the given colour around it.
    void Mosaic_Osero(std::uint8_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom, std::uint8_t threshold, std::uint8_t red,
                      std::uint8_t green, std::uint8_t blue);

    // The interlocking circles of shippou-tsunagi as a mosaic of its pieces:
    // the stars around the corners and centres of the blocks, and the petals
    // between them, on blocks of half the size whose lens slants one way or
    // the other like a chequer (the two-cell pattern). Each piece takes the
    // mean of its block. Type 0 paints stars and petals, type 1 the stars
    // alone; kind 1 leaves the circles' arcs to the picture. Reads ImageBits
    // and writes TransBits, since the stars' blocks overlap.
    void Mosaic_ShippouTunagi(std::uint8_t size, std::int16_t left, std::int16_t top,
                              std::int16_t right, std::int16_t bottom, std::uint8_t type,
                              std::uint8_t kind);

    // As many blocks as a regular walk has, each at an origin drawn at
    // random. Types: 0 plain, 1 a slope, 2 a white frame, 3 a black frame,
    // 4 a dot, 5 a lozenge (4 and 5 leave the pixels outside the shape).
    void Mosaic_Random(std::uint8_t width, std::uint8_t height, std::int16_t left, std::int16_t top,
                       std::int16_t right, std::int16_t bottom, std::uint8_t type);
    // Mosaic_Random, Mosaic_Lozenge and Mosaic_ShippouTunagi then read
    // ImageBits, lent, and paint a TransBits they make themselves on every
    // core (dispatch::onSourceWithOwnTrans; Mosaic_Random's threads each
    // copy the rows they paint), rather than work on copies of the whole
    // picture made on one thread first.
    void blocksIntoOwnTrans() { blocksIntoOwnTrans_ = true; }

    // Bricks: every second row of blocks (columns when columns is true)
    // shifted by half a block. Type 0 plain, 1 a relief edge, 2 a black and
    // white edge.
    void Mosaic_Blick(std::uint8_t width, std::uint8_t height, std::int16_t left, std::int16_t top,
                      std::int16_t right, std::int16_t bottom, bool columns, std::uint8_t type);

    // Tiles with a joint: type 0 a relief (M - 18, M + 18), 1 black and white
    // lines, 2 black, grey and white lines. Every caller passes True as the
    // reserved flag, and no rule reads it.
    void Mosaic_Tile(std::uint8_t width, std::uint8_t height, std::int16_t left, std::int16_t top,
                     std::int16_t right, std::int16_t bottom, bool reserved, std::uint8_t type);

    // Radial and linear gradations between the block's mean and white or
    // black, types 0..5.
    void Mosaic_Gradation2(std::uint8_t width, std::uint8_t height, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom,
                           std::uint8_t reserved, std::uint8_t type);

    // Slopes of 3 per column (types 0, 1) or 1.5 per diagonal step (2, 3)
    // inside the block's edge.
    void Mosaic_Gradation1(std::uint8_t width, std::uint8_t height, std::int16_t left,
                           std::int16_t top, std::int16_t right, std::int16_t bottom,
                           std::uint8_t reserved, std::uint8_t type);

    // Shape 0: lozenges that tile the rectangle, on blocks every half block
    // down with every second row shifted by half a block. Shape 1: the discs
    // of Mosaic_Circle in rows shifted by half a block. Reads ImageBits and
    // writes TransBits, since the blocks overlap.
    void Mosaic_Lozenge(std::uint8_t width, std::uint8_t height, std::int16_t left,
                        std::int16_t top, std::int16_t right, std::int16_t bottom,
                        std::uint8_t reserved, std::uint8_t shape);

    // Each pixel's own colour lit as a relief repeating every size pixels:
    // kind 0 a cushion, any other a pyramid. Light x, y, z -10..10.
    void ShadingTexture2(std::uint8_t size, std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom, std::uint8_t kind, std::int16_t lightX,
                         std::int16_t lightY, std::int16_t lightZ, std::int16_t reflection,
                         std::int16_t ambient);

    // The block's mean lit as the relief of ShadingTexture2.
    void Mosaic_GradShading(std::uint8_t size, std::int16_t left, std::int16_t top,
                            std::int16_t right, std::int16_t bottom, std::uint8_t kind,
                            std::int16_t lightX, std::int16_t lightY, std::int16_t lightZ,
                            std::int16_t reflection, std::int16_t ambient);

  private:
    // Walks the blocks of the grid over the rectangle (cut to the picture)
    // and hands each to paint(const mosaic::Block&), one progress step per
    // row of blocks; the progress range is the walk's rows unless the caller
    // set one for several walks. Rows of blocks that write disjoint rows run
    // on several threads; otherwise, and with Order TopToBottom, in order.
    template <RowOrder Order = RowOrder::AnyOrder, typename Paint>
    void walkBlocks(const ProcessRect& rect, const mosaic::BlockGrid& grid, Paint&& paint,
                    bool ownProgressRange = true);
    // The rectangle cut to the picture.
    [[nodiscard]] mosaic::Extent extentOf(const ProcessRect& rect) const;

    // Paints the block by the rule: the colours of its classes from the
    // block's mean, each blended with the block's first source pixel or
    // clamped, then every cell of a class in its colour. Folded cells are
    // painted as often as they fold, the last writer winning.
    void paintRule(Surface& target, const mosaic::Block& block, const mosaic::CellRule& rule);

    // Every block of the plain grid of width x height painted by the rule.
    void ruleMosaic(const ProcessRect& rect, int width, int height, const mosaic::CellRule& rule);

    // Every cell in one colour.
    void paintUniform(Surface& target, const mosaic::Block& block, Rgb16 colour);

    // Mosaic_Normal's type 0 over the plain grid: the means of a whole row
    // of blocks summed row by row, then the rows painted, each pixel once.
    void uniformMosaic(const ProcessRect& rect, int width, int height);

    bool blocksIntoOwnTrans_ = false;
};

} // namespace lumiran
