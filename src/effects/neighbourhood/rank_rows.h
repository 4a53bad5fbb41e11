#pragma once

// Rank selection along a row of windows, a block of pixels at a time.
#include "effects/neighbourhood/window.h"

#include <cstdint>

namespace lumiran::neighbourhood {

// For each centre x in [firstCentre, firstCentre + centres) of row y, the
// element at `rank` of its window in ring order, into out[x - firstCentre]:
// packedRankChunk after the partial Shell sort with its early stop (for
// packed colours), channelRankChunk of the fully sorted window (for the
// separate channels). reach is 1 or 2, rank lies in
// 0 .. windowLength(reach) - 1, centres is at most ChunkColumns and the
// windows lie inside the picture.
struct RankChunk {
    const Surface& picture;
    Sample kind;
    int reach;
    int rank;
    int y;
    int firstCentre;
    int centres;
};
void packedRankChunk(const RankChunk& chunk, std::uint32_t* out);
void channelRankChunk(const RankChunk& chunk, std::uint32_t* out);

// What the rank filters sort.
enum class RankSort {
    Packed,         // packed colours, with the early stop
    NegativePacked, // packed colours of the negative, with the early stop
    Channels,       // each channel on its own, fully sorted
};

// The rank element of each window of the chunk as colour bytes (spare
// byte 0): the unpacked key, the negative's colour for NegativePacked, or
// the three channel ranks.
void rankColours(const Surface& picture, RankSort sort, int reach, int rank, int y, int firstCentre,
                 int centres, Pixel* out);

} // namespace lumiran::neighbourhood
