#pragma once

// Square windows of the neighbourhood filters: the order of their samples,
// the pixels whose window fits, and the rows of values a window reads.
#include "engine/pixel.h"
#include "engine/surface.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace lumiran::neighbourhood {

struct Offset {
    int dx = 0;
    int dy = 0;
};

[[nodiscard]] constexpr int windowSide(int reach) {
    return 2 * reach + 1;
}
[[nodiscard]] constexpr int windowLength(int reach) {
    return windowSide(reach) * windowSide(reach);
}

// The median of a packed-colour window, sorted largest first: element 4 of
// 9 and 13, not 12, of 25.
[[nodiscard]] constexpr int medianRank(int reach) {
    return reach == 1 ? 4 : 13;
}

// A window as an array by rings: index 0 is the centre, then the ring at
// distance 1 in reading order, then the ring at distance 2, and so on. The
// 3x3 ring is the kernel order of the edge filters (upper left, top, upper
// right, left, right, lower left, bottom, lower right).
template <int Reach>
[[nodiscard]] constexpr std::array<Offset, windowLength(Reach)> makeRingOrder() {
    std::array<Offset, windowLength(Reach)> order{};
    std::size_t next = 1;
    for (int ring = 1; ring <= Reach; ++ring) {
        for (int dy = -ring; dy <= ring; ++dy) {
            for (int dx = -ring; dx <= ring; ++dx) {
                const int distance = dx < 0 ? -dx : dx;
                const int height = dy < 0 ? -dy : dy;
                if ((distance > height ? distance : height) == ring) order[next++] = {dx, dy};
            }
        }
    }
    return order;
}
template <int Reach>
inline constexpr auto ringOrder = makeRingOrder<Reach>();

// Columns [firstColumn, endColumn) and rows [firstRow, endRow) of a picture.
struct Area {
    int firstColumn = 0;
    int endColumn = 0;
    int firstRow = 0;
    int endRow = 0;

    [[nodiscard]] bool empty() const { return firstColumn >= endColumn || firstRow >= endRow; }
    [[nodiscard]] int width() const { return endColumn - firstColumn; }
    // The centres whose window of the given reach lies inside: the loops run
    // from left + reach to right - 1 - reach, and the same for rows.
    [[nodiscard]] Area inner(int reach) const {
        return {firstColumn + reach, endColumn - reach, firstRow + reach, endRow - reach};
    }
    [[nodiscard]] bool containsRow(int y) const { return y >= firstRow && y < endRow; }
};

// The key by which the rank filters sort: (b * 256 + g) * 256 + r, blue
// the most significant part.
[[nodiscard]] constexpr std::uint32_t packedColour(Pixel p) {
    return ((p & 0xFFu) << 16) | (p & 0xFF00u) | ((p >> 16) & 0xFFu);
}
// The colour bytes of a key, spare byte 0.
[[nodiscard]] constexpr Pixel unpackColour(std::uint32_t key) {
    return ((key & 0xFFu) << 16) | (key & 0xFF00u) | ((key >> 16) & 0xFFu);
}

// What a window row holds per pixel.
enum class Sample {
    Packed,         // the packed colour
    NegativePacked, // the packed colour of the negative, 255 - c per channel
    Red,
    Green,
    Blue,
};

[[nodiscard]] constexpr std::uint32_t sampleOf(Sample kind, Pixel p) {
    switch (kind) {
    case Sample::Packed:
        return packedColour(p);
    case Sample::NegativePacked:
        return packedColour(p) ^ 0xFFFFFFu;
    case Sample::Red:
        return (p >> 16) & 0xFFu;
    case Sample::Green:
        return (p >> 8) & 0xFFu;
    case Sample::Blue:
        return p & 0xFFu;
    }
    return 0;
}

// Rows are worked in chunks of at most this many centres, so that the
// values a window reads stay in small arrays on the stack.
inline constexpr int ChunkColumns = 256;

// The 2 * Reach + 1 rows a chunk of centres reads, converted once so that
// each sample of a window is a plain load. Local column Reach is the first
// centre; row dy (-Reach..Reach) starts at row(dy).
template <int Reach>
class WindowChunk {
  public:
    static constexpr int Stride = ChunkColumns + 2 * Reach;

    // Centres firstCentre .. firstCentre + centres - 1 of row y; the caller
    // sees to it that the windows lie in the picture and centres is at most
    // ChunkColumns.
    WindowChunk(const Surface& picture, Sample kind, int y, int firstCentre, int centres)
        : columns_(centres + 2 * Reach) {
        for (int dy = -Reach; dy <= Reach; ++dy) {
            const Pixel* source = picture.row(y + dy).data() + firstCentre - Reach;
            convert(source, values_.data() + (dy + Reach) * Stride, kind);
        }
    }

    [[nodiscard]] const std::uint32_t* row(int dy) const {
        return values_.data() + (dy + Reach) * Stride;
    }
    [[nodiscard]] int columns() const { return columns_; }

  private:
    // One loop per kind, so that each converts a row with vector operations.
    void convert(const Pixel* source, std::uint32_t* __restrict target, Sample kind) const {
        switch (kind) {
        case Sample::Packed:
            for (int i = 0; i < columns_; ++i)
                target[i] = sampleOf(Sample::Packed, source[i]);
            break;
        case Sample::NegativePacked:
            for (int i = 0; i < columns_; ++i)
                target[i] = sampleOf(Sample::NegativePacked, source[i]);
            break;
        case Sample::Red:
            for (int i = 0; i < columns_; ++i)
                target[i] = sampleOf(Sample::Red, source[i]);
            break;
        case Sample::Green:
            for (int i = 0; i < columns_; ++i)
                target[i] = sampleOf(Sample::Green, source[i]);
            break;
        case Sample::Blue:
            for (int i = 0; i < columns_; ++i)
                target[i] = sampleOf(Sample::Blue, source[i]);
            break;
        }
    }

    int columns_;
    std::array<std::uint32_t, static_cast<std::size_t>(windowSide(Reach) * Stride)> values_;
};

// Calls chunk(firstCentre, centres) over [from, to) in chunks of at most
// ChunkColumns centres.
template <typename Chunk>
void forEachChunk(int from, int to, Chunk&& chunk) {
    for (int x = from; x < to; x += ChunkColumns) {
        chunk(x, to - x < ChunkColumns ? to - x : ChunkColumns);
    }
}

} // namespace lumiran::neighbourhood
