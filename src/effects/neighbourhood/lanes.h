#pragma once

// Eight 32-bit lanes as one value, so that a pixel rule written once runs
// on a block of pixels (vector registers) or on a single pixel (the scalar
// tail of a row) with the same source. GCC and Clang vector extensions:
// without a vector unit the compiler splits the operations itself.
#include <cstdint>
#include <cstring>

// Passing these by value changes the calling convention only between
// builds with and without the wide registers; all of it stays inline here.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace lumiran::neighbourhood {

inline constexpr int LaneCount = 8;

using Lanes = std::uint32_t __attribute__((vector_size(LaneCount * sizeof(std::uint32_t))));
using SignedLanes = std::int32_t __attribute__((vector_size(LaneCount * sizeof(std::int32_t))));

// All ones where the comparison holds, zero elsewhere, in either form.
[[nodiscard]] inline Lanes greaterMask(Lanes a, Lanes b) {
    return reinterpret_cast<Lanes>(a > b);
}
[[nodiscard]] constexpr std::uint32_t greaterMask(std::uint32_t a, std::uint32_t b) {
    return a > b ? ~0u : 0u;
}

[[nodiscard]] inline Lanes largest(Lanes a, Lanes b) {
    return a > b ? a : b;
}
[[nodiscard]] inline Lanes smallest(Lanes a, Lanes b) {
    return a > b ? b : a;
}
[[nodiscard]] constexpr std::uint32_t largest(std::uint32_t a, std::uint32_t b) {
    return a > b ? a : b;
}
[[nodiscard]] constexpr std::uint32_t smallest(std::uint32_t a, std::uint32_t b) {
    return a > b ? b : a;
}

// mask ? a : b, lane by lane, for a mask of all ones or zero.
template <typename V>
[[nodiscard]] inline V choose(V mask, V a, V b) {
    return (mask & a) | (~mask & b);
}

// Loads and stores of a block of consecutive elements at any alignment.
[[nodiscard]] inline Lanes loadLanes(const std::uint32_t* at) {
    Lanes v;
    std::memcpy(&v, at, sizeof v);
    return v;
}
inline void storeLanes(std::uint32_t* at, Lanes v) {
    std::memcpy(at, &v, sizeof v);
}
[[nodiscard]] inline std::uint32_t loadLanes1(const std::uint32_t* at) {
    return *at;
}

} // namespace lumiran::neighbourhood
