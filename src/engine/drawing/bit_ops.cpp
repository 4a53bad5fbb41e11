#include "engine/drawing/bit_ops.h"

#include <array>
#include <utility>

namespace lumiran::drawing {
namespace {

// One loop per table, so each is branch-free and vectorises.
template <BinaryTable T>
constexpr Pixel fromSource(Pixel s, Pixel d) {
    if constexpr (T == 12) {
        return s; // no read of the target: the copy runs as a memory copy
    } else {
        return (s & SpareByte) | (operate<T>(s, d) & ColourBytes);
    }
}

template <BinaryTable T>
void combineRowOf(Pixel* __restrict dst, const Pixel* __restrict src, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = fromSource<T>(src[i], dst[i]);
}

template <BinaryTable T>
void gatherRowOf(Pixel* __restrict dst, const Pixel* __restrict srcRow,
                 const std::int32_t* __restrict columns, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = fromSource<T>(srcRow[columns[i]], dst[i]);
}

template <BinaryTable T>
void fillRowOf(Pixel* __restrict dst, Pixel colour, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i)
        dst[i] = (dst[i] & SpareByte) | (operate<T>(colour, dst[i]) & ColourBytes);
}

template <std::size_t... T>
constexpr auto tables(std::index_sequence<T...>) {
    struct Kernels {
        std::array<decltype(&combineRowOf<0>), 16> combineRows;
        std::array<decltype(&gatherRowOf<0>), 16> gatherRows;
        std::array<decltype(&fillRowOf<0>), 16> fillRows;
    };
    return Kernels{{&combineRowOf<T>...}, {&gatherRowOf<T>...}, {&fillRowOf<T>...}};
}

constexpr auto kernels = tables(std::make_index_sequence<16>{});

} // namespace

void combineRow(BinaryTable table, Pixel* dst, const Pixel* src, std::size_t n) {
    kernels.combineRows[table & 0x0F](dst, src, n);
}

void gatherRow(BinaryTable table, Pixel* dst, const Pixel* srcRow, const std::int32_t* columns,
               std::size_t n) {
    kernels.gatherRows[table & 0x0F](dst, srcRow, columns, n);
}

void fillRow(BinaryTable table, Pixel* dst, Pixel colour, std::size_t n) {
    kernels.fillRows[table & 0x0F](dst, colour, n);
}

} // namespace lumiran::drawing
