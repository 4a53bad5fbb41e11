#pragma once

#include "engine/pixel.h"

#include <cstdint>

namespace lumiran {

// The foreground test of the border and feature effects (a measure against
// a threshold, polarity 0 keeping values at or above it, any other at or
// below it) for whole rows, in integers so that the rows vectorise. The
// luminance's rounding is decided on 299 r + 587 g + 114 b; only where that
// sum sits exactly on a half does the floating rule decide, pixel by pixel.
class ForegroundRule {
  public:
    ForegroundRule(int measure, int polarity, int threshold);

    // out[i] = 1 where in[i] is foreground, else 0, for i < n.
    void classify(const Pixel* in, int n, std::uint8_t* out) const;

  private:
    int measure_;
    int polarity_;
    int threshold_;
    // The foreground's keys: low <= key <= high.
    int low_;
    int high_;
    // The luminance key of a rounding half, where the integer test cannot tell.
    int tie_;
};

} // namespace lumiran
