#include "engine/random_generator.h"

namespace lumiran {

double RandomGenerator::next() {
    // 24-bit linear congruential step; unsigned 32-bit wrap leaves the low
    // 24 bits exactly as the modulus 2^24 would.
    state_ = (state_ * 1140671485u + 12820163u) & 0xFFFFFFu;
    return static_cast<double>(state_) / 16777216.0;
}

} // namespace lumiran
