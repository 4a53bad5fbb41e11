#include "engine/random_generator.h"

#include <array>
#include <cstddef>

namespace lumiran {
namespace {

constexpr std::uint32_t Multiplier = 1140671485u;
constexpr std::uint32_t Increment = 12820163u;
constexpr std::uint32_t Mask = 0xFFFFFFu;

// One step s -> a s + c, or several composed: unsigned 32-bit wrap keeps
// the low 24 bits exactly as the modulus 2^24 would, so the state is masked
// only where it is read.
struct Step {
    std::uint32_t a = 1;
    std::uint32_t c = 0;
    [[nodiscard]] constexpr std::uint32_t operator()(std::uint32_t s) const { return a * s + c; }
    // This step after other.
    [[nodiscard]] constexpr Step after(Step other) const { return {a * other.a, a * other.c + c}; }
};

constexpr Step stepsOf(std::uint64_t count) {
    Step total, power{Multiplier, Increment};
    for (; count != 0; count >>= 1) {
        if ((count & 1) != 0) total = power.after(total);
        power = power.after(power);
    }
    return total;
}

[[nodiscard]] double valueOf(std::uint32_t state) {
    return static_cast<double>(static_cast<std::int32_t>(state & Mask)) / 16777216.0;
}

} // namespace

double RandomGenerator::next() {
    state_ = Step{Multiplier, Increment}(state_)&Mask;
    return static_cast<double>(state_) / 16777216.0;
}

void RandomGenerator::skip(std::uint64_t count) {
    state_ = stepsOf(count)(state_) & Mask;
}

void RandomGenerator::take(std::span<double> out) {
    constexpr std::size_t Lanes = 16;
    const std::size_t whole = out.size() / Lanes * Lanes;
    if (whole != 0) {
        // Lane k makes values k, k + Lanes, k + 2 Lanes, ...
        std::array<std::uint32_t, Lanes> lanes{};
        std::uint32_t s = state_;
        for (std::uint32_t& lane : lanes)
            lane = s = Step{Multiplier, Increment}(s);
        constexpr Step jump = stepsOf(Lanes);
        double* values = out.data();
        for (std::size_t i = 0; i < whole; i += Lanes) {
            for (std::size_t k = 0; k < Lanes; ++k) {
                values[i + k] = valueOf(lanes[k]);
                lanes[k] = jump(lanes[k]);
            }
        }
        skip(whole);
    }
    for (std::size_t i = whole; i < out.size(); ++i)
        out[i] = next();
}

} // namespace lumiran
