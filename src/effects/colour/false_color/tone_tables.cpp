#include "effects/colour/false_color/tone_tables.h"

#include "engine/colour_models.h"
#include "engine/numeric.h"

#include <algorithm>

#if defined(__AVX512VBMI__) && defined(__AVX512BW__)
#include <immintrin.h>
#define LUMIRAN_TONE_PERMUTE 1
#endif

namespace lumiran {

int pseudoGrey(int r, int g, int b) {
    return roundInRange<int>(0.587 * g + 0.299 * r + 0.114 * b);
}

int toneKeyOf(ToneKey key, Pixel p) {
    const int r = redOf(p), g = greenOf(p), b = blueOf(p);
    switch (key) {
    case ToneKey::Luma:
        return luminanceY(r, g, b);
    case ToneKey::ComplementLuma:
        return luminanceY(255 - r, 255 - g, 255 - b);
    case ToneKey::PseudoGrey:
        return pseudoGrey(r, g, b);
    case ToneKey::GreenBlueDeficit:
        break;
    }
    return 510 - b - g;
}

void ToneTables::set(std::size_t channel, int key, int value) {
    raise[channel][static_cast<std::size_t>(key)] =
        static_cast<std::uint8_t>(std::clamp(value, 0, 255));
}

void ToneTables::shift(std::size_t channel, int key, int shift) {
    keepsSource[channel] = true;
    raise[channel][static_cast<std::size_t>(key)] =
        static_cast<std::uint8_t>(std::clamp(shift, 0, 255));
    lower[channel][static_cast<std::size_t>(key)] =
        static_cast<std::uint8_t>(std::clamp(-shift, 0, 255));
    lowers = lowers || shift < 0;
}

namespace {

void applyScalar(std::span<Pixel> pixels, ToneKey key, const ToneTables& t) {
    for (Pixel& p : pixels) {
        const auto k = static_cast<std::size_t>(toneKeyOf(key, p));
        const int source[3] = {redOf(p), greenOf(p), blueOf(p)};
        int out[3];
        for (std::size_t c = 0; c < 3; ++c) {
            const int base = t.keepsSource[c] ? source[c] : 0;
            out[c] = std::max(std::min(255, base + t.raise[c][k]) - t.lower[c][k], 0);
        }
        p = withColour(p, out[0], out[1], out[2]);
    }
}

#ifdef LUMIRAN_TONE_PERMUTE

// 256 bytes of a table in four registers: two-source byte permutes look up
// the low and the high half, the index's top bit picks between them (gathers
// are far slower where gather data sampling is mitigated).
class ByteTable {
  public:
    ByteTable() = default;
    explicit ByteTable(const std::uint8_t* entries)
        : q0_(_mm512_loadu_si512(entries)), q1_(_mm512_loadu_si512(entries + 64)),
          q2_(_mm512_loadu_si512(entries + 128)), q3_(_mm512_loadu_si512(entries + 192)) {}

    [[nodiscard]] __m512i operator()(__m512i index) const {
        const __m512i low = _mm512_permutex2var_epi8(q0_, index, q1_);
        const __m512i high = _mm512_permutex2var_epi8(q2_, index, q3_);
        return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
    }

  private:
    __m512i q0_{}, q1_{}, q2_{}, q3_{};
};

// One channel's table of 256 or 512 keys.
template <bool Wide>
class ChannelTable {
  public:
    explicit ChannelTable(const std::array<std::uint8_t, ToneTables::Keys>& entries)
        : low_(entries.data()) {
        if constexpr (Wide) high_ = ByteTable(entries.data() + 256);
    }
    // index holds the key's low byte, aboveByte the lanes of keys >= 256.
    [[nodiscard]] __m512i operator()(__m512i index, __mmask64 aboveByte) const {
        if constexpr (Wide) {
            return _mm512_mask_blend_epi8(aboveByte, low_(index), high_(index));
        } else {
            return low_(index);
        }
    }

  private:
    ByteTable low_;
    ByteTable high_;
};

// Shifts name every lane rather than leave the unmasked form's undefined
// source, which GCC takes for a read of an uninitialised value.
constexpr __mmask16 Every32 = 0xFFFF;

// Byte lanes of the elements: blue, green, red, spare.
constexpr __mmask64 BlueLanes = 0x1111111111111111ull;
constexpr __mmask64 GreenLanes = BlueLanes << 1;
constexpr __mmask64 RedLanes = BlueLanes << 2;
constexpr __mmask64 SpareLanes = BlueLanes << 3;

// round(V / divisor) of V = wr r + wg g + wb b in integers; a key whose V
// lies exactly halfway is left to the floating-point formula, whose own
// rounding errors decide it. Elsewhere the formula's error, far below
// 1 / divisor, cannot move the result.
template <int Red, int Green, int Blue, int Divisor>
__m512i weightedKeys(__m512i pixels, __mmask16& halfway) {
    const __m512i bytePairs = _mm512_set1_epi32(0x00FF00FF);
    const __m512i blueRed = _mm512_and_si512(pixels, bytePairs);
    const __m512i green = _mm512_and_si512(_mm512_maskz_srli_epi32(Every32, pixels, 8), bytePairs);
    const __m512i v =
        _mm512_add_epi32(_mm512_madd_epi16(blueRed, _mm512_set1_epi32((Red << 16) | Blue)),
                         _mm512_madd_epi16(green, _mm512_set1_epi32(Green)));
    const __m512i x = _mm512_add_epi32(v, _mm512_set1_epi32(Divisor / 2));
    __m512i q;
    if constexpr (Divisor == 100) {
        // x / 100 for x below 43690.
        q = _mm512_maskz_srli_epi32(Every32, _mm512_mullo_epi32(x, _mm512_set1_epi32(5243)), 19);
    } else {
        static_assert(Divisor == 1000);
        // (x / 8) / 125 for x / 8 below 59074.
        q = _mm512_maskz_srli_epi32(
            Every32,
            _mm512_mullo_epi32(_mm512_maskz_srli_epi32(Every32, x, 3), _mm512_set1_epi32(33555)),
            22);
    }
    halfway = _mm512_cmpeq_epi32_mask(_mm512_mullo_epi32(q, _mm512_set1_epi32(Divisor)), x);
    return q;
}

template <ToneKey Key>
__m512i keysOf(__m512i pixels, const Pixel* at) {
    __mmask16 halfway = 0;
    __m512i keys;
    if constexpr (Key == ToneKey::GreenBlueDeficit) {
        const __m512i byteMask = _mm512_set1_epi32(0xFF);
        const __m512i sum = _mm512_add_epi32(
            _mm512_and_si512(pixels, byteMask),
            _mm512_and_si512(_mm512_maskz_srli_epi32(Every32, pixels, 8), byteMask));
        return _mm512_sub_epi32(_mm512_set1_epi32(510), sum);
    } else if constexpr (Key == ToneKey::PseudoGrey) {
        keys = weightedKeys<299, 587, 114, 1000>(pixels, halfway);
    } else if constexpr (Key == ToneKey::ComplementLuma) {
        keys = weightedKeys<30, 59, 11, 100>(
            _mm512_xor_si512(pixels, _mm512_set1_epi32(0x00FFFFFF)), halfway);
    } else {
        keys = weightedKeys<30, 59, 11, 100>(pixels, halfway);
    }
    if (halfway != 0) {
        alignas(64) std::int32_t k[16];
        _mm512_store_si512(k, keys);
        for (unsigned bits = halfway; bits != 0; bits &= bits - 1) {
            const int lane = __builtin_ctz(bits);
            k[lane] = toneKeyOf(Key, at[lane]);
        }
        keys = _mm512_load_si512(k);
    }
    return keys;
}

template <ToneKey Key, bool Lowers>
void applyVector(std::span<Pixel> pixels, const ToneTables& t) {
    constexpr bool Wide = Key == ToneKey::GreenBlueDeficit;
    const ChannelTable<Wide> raiseRed(t.raise[0]), raiseGreen(t.raise[1]), raiseBlue(t.raise[2]);
    const ChannelTable<Wide> lowerRed(t.lower[0]), lowerGreen(t.lower[1]), lowerBlue(t.lower[2]);
    const __mmask64 kept = (t.keepsSource[0] ? RedLanes : 0) | (t.keepsSource[1] ? GreenLanes : 0) |
                           (t.keepsSource[2] ? BlueLanes : 0);
    // Each element's low byte into its four byte lanes.
    const __m512i spread = _mm512_set4_epi32(0x0C0C0C0C, 0x08080808, 0x04040404, 0x00000000);
    auto perChannel = [](__m512i red, __m512i green, __m512i blue) {
        return _mm512_mask_blend_epi8(RedLanes, _mm512_mask_blend_epi8(GreenLanes, blue, green),
                                      red);
    };
    constexpr std::size_t perVector = 16;
    std::size_t i = 0;
    for (; i + perVector <= pixels.size(); i += perVector) {
        Pixel* at = pixels.data() + i;
        const __m512i source = _mm512_loadu_si512(at);
        const __m512i keys = keysOf<Key>(source, at);
        const __m512i index = _mm512_shuffle_epi8(keys, spread);
        __mmask64 above = 0;
        if constexpr (Wide) {
            above = _mm512_movepi8_mask(
                _mm512_shuffle_epi8(_mm512_maskz_srli_epi32(Every32, keys, 1), spread));
        }
        const __m512i raised =
            perChannel(raiseRed(index, above), raiseGreen(index, above), raiseBlue(index, above));
        __m512i out = _mm512_adds_epu8(_mm512_maskz_mov_epi8(kept, source), raised);
        if constexpr (Lowers) {
            out = _mm512_subs_epu8(out, perChannel(lowerRed(index, above), lowerGreen(index, above),
                                                   lowerBlue(index, above)));
        }
        _mm512_storeu_si512(at, _mm512_mask_blend_epi8(SpareLanes, out, source));
    }
    applyScalar(pixels.subspan(i), Key, t);
}

template <ToneKey Key>
void applyVector(std::span<Pixel> pixels, const ToneTables& t) {
    if (t.lowers) {
        applyVector<Key, true>(pixels, t);
    } else {
        applyVector<Key, false>(pixels, t);
    }
}

#endif

} // namespace

void applyToneTables(std::span<Pixel> pixels, ToneKey key, const ToneTables& tables) {
#ifdef LUMIRAN_TONE_PERMUTE
    switch (key) {
    case ToneKey::Luma:
        return applyVector<ToneKey::Luma>(pixels, tables);
    case ToneKey::ComplementLuma:
        return applyVector<ToneKey::ComplementLuma>(pixels, tables);
    case ToneKey::PseudoGrey:
        return applyVector<ToneKey::PseudoGrey>(pixels, tables);
    case ToneKey::GreenBlueDeficit:
        return applyVector<ToneKey::GreenBlueDeficit>(pixels, tables);
    }
#else
    applyScalar(pixels, key, tables);
#endif
}

} // namespace lumiran
