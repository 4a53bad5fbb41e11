#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace lumiran {

// One share of an error diffusion kernel: weight / divisor of the error
// goes to the pixel at (dx, dy). The pixel itself is not listed.
struct KernelTap {
    std::int8_t dx = 0;
    std::int8_t dy = 0;
    std::uint8_t weight = 0;
};

struct KernelSpec {
    int divisor = 1;
    std::span<const KernelTap> taps; // in list order: aliased shares resolve by it
};

namespace kernels {

inline constexpr std::array<KernelTap, 7> Burkes{
    {{1, 0, 8}, {2, 0, 4}, {-2, 1, 2}, {-1, 1, 4}, {0, 1, 8}, {1, 1, 4}, {2, 1, 2}}};
inline constexpr std::array<KernelTap, 4> FloydSteinberg{
    {{1, 0, 7}, {1, 1, 1}, {0, 1, 5}, {-1, 1, 3}}};
inline constexpr std::array<KernelTap, 12> JarvisJudiceNinke{{{1, 0, 7},
                                                              {2, 0, 5},
                                                              {-2, 1, 3},
                                                              {-1, 1, 5},
                                                              {0, 1, 7},
                                                              {1, 1, 5},
                                                              {2, 1, 3},
                                                              {-2, 2, 1},
                                                              {-1, 2, 3},
                                                              {0, 2, 5},
                                                              {1, 2, 3},
                                                              {2, 2, 1}}};
inline constexpr std::array<KernelTap, 5> ShiauFan{
    {{1, 0, 8}, {-3, 1, 1}, {-2, 1, 1}, {-1, 1, 2}, {0, 1, 4}}};
inline constexpr std::array<KernelTap, 12> Stucki{{{1, 0, 8},
                                                   {2, 0, 4},
                                                   {-2, 1, 2},
                                                   {-1, 1, 4},
                                                   {0, 1, 8},
                                                   {1, 1, 4},
                                                   {2, 1, 2},
                                                   {-2, 2, 1},
                                                   {-1, 2, 2},
                                                   {0, 2, 4},
                                                   {1, 2, 2},
                                                   {2, 2, 1}}};
inline constexpr std::array<KernelTap, 10> Sierra{{{1, 0, 5},
                                                   {2, 0, 3},
                                                   {-2, 1, 2},
                                                   {-1, 1, 4},
                                                   {0, 1, 5},
                                                   {1, 1, 4},
                                                   {2, 1, 2},
                                                   {-1, 2, 2},
                                                   {0, 2, 3},
                                                   {1, 2, 2}}};
// Rows +1 and +3 at -4, -2, +2, +4 and row +2 at -3, 0, +3.
inline constexpr std::array<KernelTap, 12> StevensonArce{{{2, 0, 32},
                                                          {-4, 1, 12},
                                                          {-2, 1, 26},
                                                          {2, 1, 30},
                                                          {4, 1, 16},
                                                          {-3, 2, 12},
                                                          {0, 2, 26},
                                                          {3, 2, 12},
                                                          {-4, 3, 5},
                                                          {-2, 3, 12},
                                                          {2, 3, 12},
                                                          {4, 3, 5}}};

} // namespace kernels

// The kernels by the filter list "Burkes", "Floyd & Steinberg", "Javis &
// Judice & Ninke", "Shiau & Fan", "Stucki", "Sierra", "Stevenson and Arce".
inline constexpr std::array<KernelSpec, 7> DiffusionKernels{{
    {32, kernels::Burkes},
    {16, kernels::FloydSteinberg},
    {48, kernels::JarvisJudiceNinke},
    {16, kernels::ShiauFan},
    {42, kernels::Stucki},
    {32, kernels::Sierra},
    {200, kernels::StevensonArce},
}};

} // namespace lumiran
