#pragma once

#include "effects/halftone/dithering/dither_kernels.h"
#include "engine/numeric.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace lumiran {

// A kernel prepared for one picture: its shares as double weights with
// their element offsets, its reach, and the rounding of each share.
//
// A neighbour's channel becomes round(error * weight + old). Unless the
// product lies within a hair of a half, that is old + round(error *
// weight) for every old 0..255, so the shift is looked up by error; near
// a half the parity of old decides the tie and the sum is rounded as it
// stands.
class DiffusionKernel {
  public:
    struct Tap {
        int dx = 0;
        int dy = 0;
        double weight = 0;
        std::ptrdiff_t offset = 0; // dy rows and dx columns away, in elements
    };

    DiffusionKernel(const KernelSpec& spec, int pictureWidth);

    [[nodiscard]] const std::vector<Tap>& taps() const { return taps_; }
    [[nodiscard]] int reachLeft() const { return reachLeft_; }
    [[nodiscard]] int reachRight() const { return reachRight_; }
    [[nodiscard]] int reachDown() const { return reachDown_; }

    // The shift of a tap for an error, or NoShift where old decides.
    static constexpr int NoShift = INT16_MIN;
    [[nodiscard]] int shift(std::size_t tap, int error) const {
        const auto index = static_cast<unsigned>(error + ErrorRange);
        if (index > 2u * ErrorRange) return NoShift;
        return shifts_[tap * RowLength + index];
    }

    // round(error * weight + old), the share's arithmetic as it stands.
    [[nodiscard]] int exact(std::size_t tap, int error, int old) const {
        return roundInRange<int>(error * taps_[tap].weight + old);
    }

    [[nodiscard]] int spread(std::size_t tap, int error, int old) const {
        const int s = shift(tap, error);
        return s != NoShift ? old + s : exact(tap, error, old);
    }

  private:
    // Errors of the level tables stay within ±255; random and fixed ones
    // are smaller at the dialog's values. Larger ones are rounded directly.
    static constexpr int ErrorRange = 512;
    static constexpr std::size_t RowLength = 2 * ErrorRange + 1;

    std::vector<Tap> taps_;
    std::vector<std::int16_t> shifts_;
    int reachLeft_ = 0;
    int reachRight_ = 0;
    int reachDown_ = 0;
};

} // namespace lumiran
