#pragma once

#include "engine/process_rect.h"
#include "engine/random_generator.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace lumiran {

// Rows of the walk of "Noise Corrdinate"'s first pass over a rectangle:
// (bottom - top) / 4 + 1, each of (right - left) / 4 + 1 places.
[[nodiscard]] int noiseWalkRows(const ProcessRect& rect);

// The walk's field, one grey a pixel of the picture. A disc is painted as
// the canvas's Circle of radius 4 paints it with its inside filled in the
// same grey, clipped to the picture, but as a few row runs: the general
// shape call cost more than a peer's whole spread run.
class NoiseField {
  public:
    static constexpr int DiscRadius = 4;

    NoiseField(int width, int height, std::uint8_t grey);

    void disc(int x, int y, std::uint8_t grey);
    // The rows of the disc from firstRow up to endRow only.
    void disc(int x, int y, std::uint8_t grey, int firstRow, int endRow);
    [[nodiscard]] std::uint8_t at(int x, int y) const {
        return greys_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                      static_cast<std::size_t>(x)];
    }

  private:
    NoiseField(int width, int height);

    int width_;
    int height_;
    std::unique_ptr<std::uint8_t[]> greys_;
};

// One place of the walk: a disc of grey centred on (x, y).
struct NoisePlace {
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint8_t grey = 0;
};

// The places of the next `rows` rows of the walk below, in order, added to
// places: drawn
// from random in the order the walk draws them; grey is the walk's grey,
// carried on from the rows before (128 at the start).
void drawNoisePlaces(const ProcessRect& rect, RandomGenerator& random, int rows, int& grey,
                     std::vector<NoisePlace>& places);

// The walk of that pass over a field the size of the picture: a grey that
// starts at 128 and moves one step up or down at random (held within
// 1..255) is dropped as a disc at each place drawn as
// (round((right - left) Rnd + left), round((bottom - top) Rnd + top)).
// rowDone runs after each row of places; the walk stops when it returns
// false.
void noiseWalk(NoiseField& field, const ProcessRect& rect, RandomGenerator& random,
               const std::function<bool()>& rowDone);

// The same on a field of its own, started at 128.
[[nodiscard]] NoiseField noiseWalkField(int width, int height, const ProcessRect& rect,
                                        RandomGenerator& random,
                                        const std::function<bool()>& rowDone);

} // namespace lumiran
