#include "effects/geometry/cover_mask.h"

#include <algorithm>
#include <cstring>

#if defined(__AVX512F__)
#include <immintrin.h>
#define LUMIRAN_MASKED_STORE 1
#endif

namespace lumiran {

CoverMask::CoverMask(int width, int height)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      columnWords_(static_cast<std::size_t>((height_ + LineWords - 1) / LineWords * LineWords)),
      columns_((width_ + 63) / 64 + 1), bits_(columnWords_ * static_cast<std::size_t>(columns_)) {
    // Picture memory is not cleared when it is handed out.
    std::ranges::fill(bits_, std::uint64_t{0});
}

void CoverMask::coverWide(int x0, int x1, int y0, int y1) {
    const int first = x0 >> 6, last = (x1 - 1) >> 6;
    const std::uint64_t head = ~std::uint64_t{0} << (x0 & 63);
    const std::uint64_t tail = onesBelow(x1 - last * 64);
    for (int y = y0; y < y1; ++y) {
        if (first == last) {
            bits_[indexOf(y, first)] |= head & tail;
            continue;
        }
        bits_[indexOf(y, first)] |= head;
        for (int column = first + 1; column < last; ++column)
            bits_[indexOf(y, column)] = ~std::uint64_t{0};
        bits_[indexOf(y, last)] |= tail;
    }
}

void CoverMask::copyRow(int y, const Pixel* source, Pixel* target) const {
    const int words = (width_ + 63) / 64;
    for (int column = 0; column < words; ++column) {
        std::uint64_t covered = word(y, column);
        if (covered == 0) continue;
        const Pixel* from = source + column * 64;
        Pixel* to = target + column * 64;
        // Bits past the box's width are never set, so a whole word lies
        // inside the row.
        if (covered == ~std::uint64_t{0}) {
            std::memcpy(to, from, 64 * sizeof(Pixel));
            continue;
        }
#ifdef LUMIRAN_MASKED_STORE
        // Lanes outside the mask are neither read nor written: safe at the
        // end of the row.
        for (int lane = 0; lane < 4; ++lane) {
            const auto k = static_cast<__mmask16>(covered >> (16 * lane));
            if (k == 0) continue;
            const __m512i pixels = _mm512_maskz_loadu_epi32(k, from + 16 * lane);
            _mm512_mask_storeu_epi32(to + 16 * lane, k, pixels);
        }
#else
        for (; covered != 0; covered &= covered - 1) {
            const int i = __builtin_ctzll(covered);
            to[i] = from[i];
        }
#endif
    }
}

} // namespace lumiran
