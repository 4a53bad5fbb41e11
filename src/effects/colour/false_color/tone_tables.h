#pragma once

#include "engine/pixel.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace lumiran {

// The key a recolouring reads from each pixel.
enum class ToneKey : std::uint8_t {
    Luma,             // luminanceY(r, g, b)
    ComplementLuma,   // luminanceY(255 - r, 255 - g, 255 - b)
    PseudoGrey,       // pseudoGrey(r, g, b)
    GreenBlueDeficit, // 510 - b - g, 0..510
};

// round(0.587 g + 0.299 r + 0.114 b), the grey of the pseudo colours.
[[nodiscard]] int pseudoGrey(int r, int g, int b);

// The key of one pixel, as the formulas above compute it.
[[nodiscard]] int toneKeyOf(ToneKey key, Pixel p);

// For each key and channel (red, green, blue) the stored byte
// min(255, base + raise[key]) - lower[key], at least 0, where base is the
// source channel if the channel keeps it and 0 otherwise: a plain lookup, or
// a clamped shift of the source.
struct ToneTables {
    static constexpr std::size_t Keys = 512;
    std::array<std::array<std::uint8_t, Keys>, 3> raise{};
    std::array<std::array<std::uint8_t, Keys>, 3> lower{};
    std::array<bool, 3> keepsSource{};
    bool lowers = false; // whether any lower entry is above 0

    // The channel becomes value, clamped to 0..255, at this key.
    void set(std::size_t channel, int key, int value);
    // The channel becomes the source plus shift, clamped, at this key.
    void shift(std::size_t channel, int key, int shift);
    // The channel keeps the source at every key.
    void keep(std::size_t channel) {
        keepsSource[channel] = true;
        raise[channel].fill(0);
        lower[channel].fill(0);
    }
};

// Recolours pixels through the tables; the spare byte stays. Vectorised
// with byte permutes where the processor has them.
void applyToneTables(std::span<Pixel> pixels, ToneKey key, const ToneTables& tables);

} // namespace lumiran
