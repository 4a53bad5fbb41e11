#pragma once

#include <cstdint>

namespace lumiran {

// The process-wide uniform generator in [0, 1). It is never seeded, so a
// fresh process repeats its sequence, and preview and run draw from the same
// one instance held by the program state.
class RandomGenerator {
  public:
    static constexpr std::uint32_t InitialState = 327680;

    // Next value in [0, 1), a multiple of 2^-24.
    [[nodiscard]] double next();
    [[nodiscard]] std::uint32_t state() const { return state_; }

  private:
    std::uint32_t state_ = InitialState;
};

} // namespace lumiran
