#include "effects/texture/pattern/weight_blend_row.h"

#include "effects/texture/pattern/pattern_frame.h"

#if defined(__AVX512BW__)
#include <immintrin.h>
#define LUMIRAN_BLEND_WORDS 1
#endif

namespace lumiran::pattern {
namespace {

void blendScalar(Pixel* row, const std::int16_t* p, int count, int from, int weight) {
    for (int i = from; i < count; ++i) {
        const Pixel source = row[i];
        const Rgb16 v = clampResult({weightBlend(p[i], redOf(source), weight),
                                     weightBlend(p[count + i], greenOf(source), weight),
                                     weightBlend(p[2 * count + i], blueOf(source), weight)});
        row[i] = withColour(source, v.red, v.green, v.blue);
    }
}

#ifdef LUMIRAN_BLEND_WORDS

// One channel of 32 pixels as 16-bit lanes.
__m512i channelWords(__m512i first, __m512i second, int shift) {
    const __m512i byte = _mm512_set1_epi32(0xFF);
    const __m256i low =
        _mm512_cvtepi32_epi16(_mm512_and_si512(_mm512_srli_epi32(first, shift), byte));
    const __m256i high =
        _mm512_cvtepi32_epi16(_mm512_and_si512(_mm512_srli_epi32(second, shift), byte));
    return _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
}

// weightBlend in 16-bit lanes (the products and the sum wrap as its fields
// do), then clamped. A sum of 0..32767 rounds as (sum + 5) / 10 by the
// unsigned multiply-high, a tie going back to the even neighbour; otherwise
// the quotient is truncated and the rest rounded half to even.
__m512i blendWords(__m512i pattern, __m512i source, __m512i patternWeight, __m512i sourceWeight) {
    const __m512i one = _mm512_set1_epi16(1);
    const __m512i ten = _mm512_set1_epi16(10);
    const __m512i sum = _mm512_add_epi16(_mm512_mullo_epi16(patternWeight, pattern),
                                         _mm512_mullo_epi16(sourceWeight, source));
    __m512i q;
    if (_mm512_movepi16_mask(sum) == 0) {
        const __m512i y = _mm512_add_epi16(sum, _mm512_set1_epi16(5));
        q = _mm512_srli_epi16(_mm512_mulhi_epu16(y, _mm512_set1_epi16(-13107)), 3); // 52429
        const __mmask32 tie = _mm512_cmpeq_epi16_mask(_mm512_mullo_epi16(q, ten), y);
        q = _mm512_mask_sub_epi16(q, tie & _mm512_test_epi16_mask(q, one), q, one);
        return _mm512_min_epi16(q, _mm512_set1_epi16(255));
    }
    q = _mm512_sub_epi16(_mm512_srai_epi16(_mm512_mulhi_epi16(sum, _mm512_set1_epi16(26215)), 2),
                         _mm512_srai_epi16(sum, 15));
    const __m512i rest = _mm512_sub_epi16(sum, _mm512_mullo_epi16(q, ten));
    const __mmask32 odd = _mm512_test_epi16_mask(q, one);
    const __mmask32 up = _mm512_cmpgt_epi16_mask(rest, _mm512_set1_epi16(5)) |
                         (_mm512_cmpeq_epi16_mask(rest, _mm512_set1_epi16(5)) & odd);
    const __mmask32 down = _mm512_cmplt_epi16_mask(rest, _mm512_set1_epi16(-5)) |
                           (_mm512_cmpeq_epi16_mask(rest, _mm512_set1_epi16(-5)) & odd);
    q = _mm512_mask_add_epi16(q, up, q, one);
    q = _mm512_mask_sub_epi16(q, down, q, one);
    return _mm512_min_epi16(_mm512_max_epi16(q, _mm512_setzero_si512()), _mm512_set1_epi16(255));
}

// Words 0..15 or 16..31 of a channel as 32-bit lanes, shifted into place.
__m512i placed(__m512i words, int half, int shift) {
    const __m256i part =
        half == 0 ? _mm512_castsi512_si256(words) : _mm512_extracti64x4_epi64(words, 1);
    return _mm512_slli_epi32(_mm512_cvtepu16_epi32(part), shift);
}

#endif

} // namespace

void blendRowClamped(Pixel* row, const std::int16_t* p, int count, int weight) {
    int i = 0;
#ifdef LUMIRAN_BLEND_WORDS
    const __m512i patternWeight = _mm512_set1_epi16(static_cast<std::int16_t>(10 - weight));
    const __m512i sourceWeight = _mm512_set1_epi16(static_cast<std::int16_t>(weight));
    const __m512i spare = _mm512_set1_epi32(static_cast<int>(0xFF000000u));
    for (; i + 32 <= count; i += 32) {
        const __m512i first = _mm512_loadu_si512(row + i);
        const __m512i second = _mm512_loadu_si512(row + i + 16);
        const __m512i red = blendWords(_mm512_loadu_si512(p + i), channelWords(first, second, 16),
                                       patternWeight, sourceWeight);
        const __m512i green =
            blendWords(_mm512_loadu_si512(p + count + i), channelWords(first, second, 8),
                       patternWeight, sourceWeight);
        const __m512i blue =
            blendWords(_mm512_loadu_si512(p + 2 * count + i), channelWords(first, second, 0),
                       patternWeight, sourceWeight);
        for (int half = 0; half < 2; ++half) {
            const __m512i source = half == 0 ? first : second;
            const __m512i colour =
                _mm512_or_si512(_mm512_or_si512(placed(red, half, 16), placed(green, half, 8)),
                                placed(blue, half, 0));
            _mm512_storeu_si512(row + i + 16 * half,
                                _mm512_or_si512(_mm512_and_si512(source, spare), colour));
        }
    }
#endif
    blendScalar(row, p, count, i, weight);
}

} // namespace lumiran::pattern
