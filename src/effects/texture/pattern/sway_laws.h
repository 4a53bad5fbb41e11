#pragma once

// The coordinate laws of the colour sways: for each type a few steps, each
// setting u (from x) or v (from y) to A times a sum of waves of x, y or of
// the u or v set before, plus the coordinate: u = A f(a K / W) + ... + x.
#include <array>
#include <cstdint>
#include <span>

namespace lumiran::pattern {

enum class Wave : std::uint8_t { Sin, Cos, Tan };
enum class Axis : std::uint8_t { X, Y, U, V };

struct WaveTerm {
    Wave wave = Wave::Sin;
    Axis of = Axis::X;
};

struct LawStep {
    Axis sets = Axis::U; // U or V
    std::uint8_t count = 0;
    std::array<WaveTerm, 2> terms{};
};

struct SwayLaw {
    std::uint8_t count = 0;
    std::array<LawStep, 3> steps{};
};

// The laws of Color_Sway1 (0..5, as the types name them), Color_Sway2..4
// (0..10 each); sway is 1..4.
[[nodiscard]] std::span<const SwayLaw> swayLaws(int sway);

// u and v at (x, y) for amplitude A and wave W by a law.
struct Coordinates {
    double u = 0;
    double v = 0;
};
[[nodiscard]] Coordinates applyLaw(const SwayLaw& law, double x, double y, double amplitude,
                                   double wave);

} // namespace lumiran::pattern
