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

// Shifts and conversions name every lane rather than leave the unmasked
// forms' undefined source, which GCC takes for an uninitialised read.
constexpr __mmask16 Every32 = 0xFFFF;
constexpr __mmask32 Every16 = 0xFFFFFFFF;

// Word indices of a permute: lane i takes word i * halfSteps / 2 + offset.
__m512i wordIndices(int halfSteps, int offset) {
    alignas(64) std::int16_t index[32];
    for (int i = 0; i < 32; ++i)
        index[i] = static_cast<std::int16_t>(i * halfSteps / 2 + offset);
    return _mm512_load_si512(index);
}

// One channel of 32 pixels as 16-bit lanes: the low words of both vectors'
// elements, in order.
__m512i channelWords(__m512i first, __m512i second, int shift, __m512i lowWords) {
    const __m512i byte = _mm512_set1_epi32(0xFF);
    return _mm512_permutex2var_epi16(
        _mm512_and_si512(_mm512_maskz_srli_epi32(Every32, first, shift), byte), lowWords,
        _mm512_and_si512(_mm512_maskz_srli_epi32(Every32, second, shift), byte));
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
        q = _mm512_maskz_srli_epi16(Every16, _mm512_mulhi_epu16(y, _mm512_set1_epi16(-13107)),
                                    3); // 52429
        const __mmask32 tie = _mm512_cmpeq_epi16_mask(_mm512_mullo_epi16(q, ten), y);
        q = _mm512_mask_sub_epi16(q, tie & _mm512_test_epi16_mask(q, one), q, one);
        return _mm512_min_epi16(q, _mm512_set1_epi16(255));
    }
    q = _mm512_sub_epi16(
        _mm512_maskz_srai_epi16(Every16, _mm512_mulhi_epi16(sum, _mm512_set1_epi16(26215)), 2),
        _mm512_maskz_srai_epi16(Every16, sum, 15));
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

// Words 0..15 or 16..31 of a channel as 32-bit lanes, shifted into place:
// spread picks word k + 16 half for element k, the high words stay 0.
__m512i placed(__m512i words, __m512i spread, int shift) {
    constexpr __mmask32 lowWords = 0x55555555;
    return _mm512_maskz_slli_epi32(Every32, _mm512_maskz_permutexvar_epi16(lowWords, spread, words),
                                   shift);
}

#endif

} // namespace

void blendRowClamped(Pixel* row, const std::int16_t* p, int count, int weight) {
    int i = 0;
#ifdef LUMIRAN_BLEND_WORDS
    const __m512i patternWeight = _mm512_set1_epi16(static_cast<std::int16_t>(10 - weight));
    const __m512i sourceWeight = _mm512_set1_epi16(static_cast<std::int16_t>(weight));
    const __m512i spare = _mm512_set1_epi32(static_cast<int>(0xFF000000u));
    const __m512i lowWords = wordIndices(4, 0);
    // Element k takes word k (or k + 16) into its low half.
    const __m512i spreads[2] = {wordIndices(1, 0), wordIndices(1, 16)};
    for (; i + 32 <= count; i += 32) {
        const __m512i first = _mm512_loadu_si512(row + i);
        const __m512i second = _mm512_loadu_si512(row + i + 16);
        const __m512i red =
            blendWords(_mm512_loadu_si512(p + i), channelWords(first, second, 16, lowWords),
                       patternWeight, sourceWeight);
        const __m512i green =
            blendWords(_mm512_loadu_si512(p + count + i), channelWords(first, second, 8, lowWords),
                       patternWeight, sourceWeight);
        const __m512i blue =
            blendWords(_mm512_loadu_si512(p + 2 * count + i),
                       channelWords(first, second, 0, lowWords), patternWeight, sourceWeight);
        for (int half = 0; half < 2; ++half) {
            const __m512i source = half == 0 ? first : second;
            const __m512i colour = _mm512_or_si512(
                _mm512_or_si512(placed(red, spreads[half], 16), placed(green, spreads[half], 8)),
                placed(blue, spreads[half], 0));
            _mm512_storeu_si512(row + i + 16 * half,
                                _mm512_or_si512(_mm512_and_si512(source, spare), colour));
        }
    }
#endif
    blendScalar(row, p, count, i, weight);
}

} // namespace lumiran::pattern
