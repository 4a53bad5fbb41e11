#pragma once

#include "effects/neighbourhood/neighbourhood_frame.h"

#include <array>
#include <cstdint>

namespace lumiran {

// Edge detection: convolutions with named kernels, per channel, from
// ImageBits into TransBits (fetch both). The result fields start at 0 for
// each pixel; sums are 16-bit. The outermost rows and columns a kernel does
// not fit stay as fetched.
//
// The 3x3 kernels are nine weights: the centre, then the ring in reading
// order (upper left, top, upper right, left, right, lower left, bottom,
// lower right). Their window enters each column with its centre entry read
// from the rectangle's top row, one row too high: the first row of
// results sees the row above in place of its own pixel, and the window,
// shifting that entry up, gives it to the second row as its top entry.
class Class_Edge : public NeighbourhoodFrame {
  public:
    using NeighbourhoodFrame::NeighbourhoodFrame;

    // The squared differences to the lower and the right neighbour: kind 0
    // per channel, 1 their mean, 2 the root per channel, 3 the roots' mean.
    void DifferentalFilter(std::uint8_t kind, std::int16_t left, std::int16_t top,
                           std::int16_t right, std::int16_t bottom);

    // Weights of the 2x2 block: the pixel, its right, lower and lower right
    // neighbours.
    void Edge_Matrix4(std::int16_t w0, std::int16_t w1, std::int16_t w2, std::int16_t w3,
                      std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom);

    // A 3x3 kernel: the centre weight first, then the ring.
    void Edge_Matrix9(std::int16_t centre, std::int16_t w1, std::int16_t w2, std::int16_t w3,
                      std::int16_t w4, std::int16_t w5, std::int16_t w6, std::int16_t w7,
                      std::int16_t w8, std::int16_t left, std::int16_t top, std::int16_t right,
                      std::int16_t bottom);

    // Sobel (kernel 0) or Rosenfeld (1); combine 0 gives Gx, 1 Gy, 2 both.
    void Edge_Sobel(std::uint8_t kernel, std::int16_t left, std::int16_t top, std::int16_t right,
                    std::int16_t bottom, std::uint8_t combine);

    // Roberts' cross times the gain: kind 0 the root of the squares, 1 the
    // sum of the absolute values.
    void Edge_Robarts(std::uint8_t kind, std::int16_t gain, std::int16_t left, std::int16_t top,
                      std::int16_t right, std::int16_t bottom);

    // The compass kernel of 5 and -3 for an angle of 0, 45, ..., 360 degrees;
    // any other angle keeps the kernel of the last call (zero at first).
    void Edge_Kirsch(std::int16_t angle, std::int16_t left, std::int16_t top, std::int16_t right,
                     std::int16_t bottom);

    // A kernel of w and -w for one of eight directions.
    void Edge_Extraction(std::uint8_t direction, std::int16_t left, std::int16_t top,
                         std::int16_t right, std::int16_t bottom, std::int16_t weight);

    // Each channel shaped by a wave of its ratio to the window's mean
    // (window kind 0..2: 3x3..7x7).
    void Edge_Expansion(std::uint8_t windowKind, std::int16_t left, std::int16_t top,
                        std::int16_t right, std::int16_t bottom);

    using Kernel = std::array<int, 9>;

  private:
    void convolve(const Kernel& kernel, const ProcessRect& rect);
    // Each 2x2 block of the rectangle through rule(block) into TransBits.
    template <typename Rule>
    void blocks(const ProcessRect& rect, Rule rule);

    Kernel kirsch_{};
};

} // namespace lumiran
