#pragma once

#include "engine/pixel.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

// The stored byte of every channel value, one table per channel.
struct ChannelLookup {
    std::array<std::uint8_t, 256> red{};
    std::array<std::uint8_t, 256> green{};
    std::array<std::uint8_t, 256> blue{};
};

// Replaces each pixel's colour bytes through the tables; the spare byte
// stays. Vectorised where the processor has byte permutes.
void applyChannelLookup(std::span<Pixel> pixels, const ChannelLookup& lookup);

// The places, in order, of the pixels whose channel at bit shift (0 blue, 8
// green, 16 red) holds level; replaces what positions held.
void findChannelLevel(std::span<const Pixel> pixels, int shift, std::uint8_t level,
                      std::vector<int>& positions);

} // namespace lumiran
