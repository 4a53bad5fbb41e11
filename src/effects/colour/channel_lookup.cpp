#include "effects/colour/channel_lookup.h"

#include <bit>

#if defined(__AVX512VBMI__) && defined(__AVX512BW__)
#include <immintrin.h>
#define LUMIRAN_BYTE_PERMUTE 1
#endif

namespace lumiran {
namespace {

void lookupScalar(std::span<Pixel> pixels, const ChannelLookup& lookup) {
    for (Pixel& p : pixels) {
        p = (p & 0xFF000000u) | (Pixel{lookup.red[(p >> 16) & 0xFFu]} << 16) |
            (Pixel{lookup.green[(p >> 8) & 0xFFu]} << 8) | Pixel{lookup.blue[p & 0xFFu]};
    }
}

// From first on, so that places count from the start of the row.
void findScalar(std::span<const Pixel> pixels, std::size_t first, int shift, std::uint8_t level,
                std::vector<int>& positions) {
    for (std::size_t i = first; i < pixels.size(); ++i) {
        if (((pixels[i] >> shift) & 0xFFu) == level) positions.push_back(static_cast<int>(i));
    }
}

#ifdef LUMIRAN_BYTE_PERMUTE

// A 256-byte table in four registers: two-source byte permutes look up the
// low and the high half, the index's top bit picks between them. Gathers
// would be far slower on processors that mitigate gather data sampling.
class ByteTable {
  public:
    explicit ByteTable(const std::array<std::uint8_t, 256>& entries)
        : quarter0_(_mm512_loadu_si512(entries.data())),
          quarter1_(_mm512_loadu_si512(entries.data() + 64)),
          quarter2_(_mm512_loadu_si512(entries.data() + 128)),
          quarter3_(_mm512_loadu_si512(entries.data() + 192)) {}

    [[nodiscard]] __m512i operator()(__m512i index) const {
        const __m512i low = _mm512_permutex2var_epi8(quarter0_, index, quarter1_);
        const __m512i high = _mm512_permutex2var_epi8(quarter2_, index, quarter3_);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
    }

  private:
    __m512i quarter0_, quarter1_, quarter2_, quarter3_;
};

void lookupVector(std::span<Pixel> pixels, const ChannelLookup& lookup) {
    const ByteTable red(lookup.red), green(lookup.green), blue(lookup.blue);
    // Byte lanes of the elements: blue, green, red, spare.
    constexpr __mmask64 blueLanes = 0x1111111111111111ull;
    constexpr __mmask64 greenLanes = blueLanes << 1;
    constexpr __mmask64 redLanes = blueLanes << 2;
    constexpr std::size_t perVector = 16;
    std::size_t i = 0;
    for (; i + perVector <= pixels.size(); i += perVector) {
        Pixel* at = pixels.data() + i;
        const __m512i source = _mm512_loadu_si512(at);
        __m512i result = _mm512_mask_blend_epi8(blueLanes, source, blue(source));
        result = _mm512_mask_blend_epi8(greenLanes, result, green(source));
        result = _mm512_mask_blend_epi8(redLanes, result, red(source));
        _mm512_storeu_si512(at, result);
    }
    lookupScalar(pixels.subspan(i), lookup);
}

void findVector(std::span<const Pixel> pixels, int shift, std::uint8_t level,
                std::vector<int>& positions) {
    // Masks rather than shifts: the channel compared where it stands.
    const auto field = static_cast<int>(Pixel{0xFFu} << shift);
    const auto wanted = static_cast<int>(Pixel{level} << shift);
    const __m512i mask = _mm512_set1_epi32(field);
    const __m512i target = _mm512_set1_epi32(wanted);
    constexpr std::size_t perVector = 16;
    std::size_t i = 0;
    for (; i + perVector <= pixels.size(); i += perVector) {
        const __m512i source = _mm512_loadu_si512(pixels.data() + i);
        const __m512i channel = _mm512_and_si512(source, mask);
        for (unsigned hits = _mm512_cmpeq_epi32_mask(channel, target); hits != 0;
             hits &= hits - 1) {
            positions.push_back(static_cast<int>(i) + std::countr_zero(hits));
        }
    }
    findScalar(pixels, i, shift, level, positions);
}

#endif

} // namespace

void findChannelLevel(std::span<const Pixel> pixels, int shift, std::uint8_t level,
                      std::vector<int>& positions) {
    positions.clear();
#ifdef LUMIRAN_BYTE_PERMUTE
    findVector(pixels, shift, level, positions);
#else
    findScalar(pixels, 0, shift, level, positions);
#endif
}

void applyChannelLookup(std::span<Pixel> pixels, const ChannelLookup& lookup) {
#ifdef LUMIRAN_BYTE_PERMUTE
    lookupVector(pixels, lookup);
#else
    lookupScalar(pixels, lookup);
#endif
}

} // namespace lumiran
