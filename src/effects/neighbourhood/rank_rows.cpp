#include "effects/neighbourhood/rank_rows_impl.h"

namespace lumiran::neighbourhood {

void packedRankChunk(const RankChunk& chunk, std::uint32_t* out) {
    (chunk.reach == 1 ? partialSortKernel3(chunk.rank) : partialSortKernel5(chunk.rank))(chunk,
                                                                                         out);
}
void channelRankChunk(const RankChunk& chunk, std::uint32_t* out) {
    (chunk.reach == 1 ? sortedKernel3(chunk.rank) : sortedKernel5(chunk.rank))(chunk, out);
}

void rankColours(const Surface& picture, RankSort sort, int reach, int rank, int y, int firstCentre,
                 int centres, Pixel* out) {
    if (sort != RankSort::Channels) {
        const Sample kind = sort == RankSort::Packed ? Sample::Packed : Sample::NegativePacked;
        packedRankChunk({picture, kind, reach, rank, y, firstCentre, centres}, out);
        for (int i = 0; i < centres; ++i)
            out[i] = unpackColour(out[i] & 0xFFFFFFu);
        return;
    }
    std::array<std::uint32_t, ChunkColumns> green, blue;
    channelRankChunk({picture, Sample::Red, reach, rank, y, firstCentre, centres}, out);
    channelRankChunk({picture, Sample::Green, reach, rank, y, firstCentre, centres}, green.data());
    channelRankChunk({picture, Sample::Blue, reach, rank, y, firstCentre, centres}, blue.data());
    for (int i = 0; i < centres; ++i) {
        const auto at = static_cast<std::size_t>(i);
        out[i] = (out[i] << 16) | (green[at] << 8) | blue[at];
    }
}

} // namespace lumiran::neighbourhood
