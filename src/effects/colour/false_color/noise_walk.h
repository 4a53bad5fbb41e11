#pragma once

#include "engine/process_rect.h"
#include "engine/random_generator.h"
#include "engine/surface.h"

#include <functional>

namespace lumiran {

// Rows of the walk of "Noise Corrdinate"'s first pass over a rectangle:
// (bottom - top) / 4 + 1, each of (right - left) / 4 + 1 places.
[[nodiscard]] int noiseWalkRows(const ProcessRect& rect);

// The grey field of that pass on a picture of width by height: a grey that
// starts at 128 and moves one step up or down at random (held within
// 1..255) is dropped as a disc at each place drawn as
// (round((right - left) Rnd + left), round((bottom - top) Rnd + top)).
// rowDone runs after each row of places; the walk stops when it returns
// false.
[[nodiscard]] Surface noiseWalkField(int width, int height, const ProcessRect& rect,
                                     RandomGenerator& random, const std::function<bool()>& rowDone);

} // namespace lumiran
