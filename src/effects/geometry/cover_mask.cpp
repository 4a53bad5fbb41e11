#include "effects/geometry/cover_mask.h"

#include <algorithm>
#include <cstring>

#if defined(__AVX512F__)
#include <immintrin.h>
#define LUMIRAN_MASKED_STORE 1
#endif

namespace lumiran {

CoverMask::CoverMask(int width, int height, int patchWidth, int patchHeight, int firstX, int firstY)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      patchWidth_(std::max(patchWidth, 1)), patchHeight_(std::max(patchHeight, 1)),
      marginX_((std::min(patchWidth_ - 1, std::max(-firstX, 0)) + 63) / 64 * 64),
      marginY_(std::min(patchHeight_ - 1, std::max(-firstY, 0))), markWidth_(marginX_ + width_),
      markHeight_(marginY_ + height_), columns_((markWidth_ + 63) / 64),
      columnWords_(static_cast<std::uint32_t>(markHeight_)),
      bits_(static_cast<std::size_t>(columns_) * columnWords_) {
    // Picture memory is not cleared when it is handed out.
    std::ranges::fill(bits_, std::uint64_t{0});
}

void CoverMask::merge(const CoverMask& other) {
    std::uint64_t* to = bits_.data();
    const std::uint64_t* from = other.bits_.data();
    for (std::size_t i = 0; i < bits_.size(); ++i)
        to[i] |= from[i];
}

void CoverMask::spread() {
    // Doubling: after each pass a mark covers the first `covered` columns
    // (rows) of its patch.
    for (int covered = 1; covered < patchWidth_;) {
        const int shift = std::min(covered, patchWidth_ - covered);
        spreadAcross(shift);
        covered += shift;
    }
    for (int covered = 1; covered < patchHeight_;) {
        const int shift = std::min(covered, patchHeight_ - covered);
        spreadDown(shift);
        covered += shift;
    }
}

// Each bit also sets the bit `shift` further right; columns from the right,
// so that every read sees the pass's input.
void CoverMask::spreadAcross(int shift) {
    const int words = shift / 64, bits = shift % 64;
    for (int column = columns_ - 1; column >= words; --column) {
        std::uint64_t* to = &at(column, 0);
        const std::uint64_t* near = &at(column - words, 0);
        if (bits == 0) {
            for (int row = 0; row < markHeight_; ++row)
                to[row] |= near[row];
            continue;
        }
        const std::uint64_t* far = column - words >= 1 ? &at(column - words - 1, 0) : nullptr;
        for (int row = 0; row < markHeight_; ++row) {
            const std::uint64_t carried = far != nullptr ? far[row] >> (64 - bits) : 0;
            to[row] |= near[row] << bits | carried;
        }
    }
}

// Each bit also sets the bit `shift` rows further down; rows from the
// bottom, so that every read sees the pass's input.
void CoverMask::spreadDown(int shift) {
    for (int column = 0; column < columns_; ++column) {
        std::uint64_t* words = &at(column, 0);
        for (int row = markHeight_ - 1; row >= shift; --row)
            words[row] |= words[row - shift];
    }
}

void CoverMask::copyRow(int y, const Pixel* source, Pixel* target) const {
    const int words = (width_ + 63) / 64;
    const int first = marginX_ / 64;
    for (int column = 0; column < words; ++column) {
        std::uint64_t covered = at(first + column, y + marginY_);
        // A patch near the right edge spreads past the box.
        const int inside = width_ - column * 64;
        if (inside < 64) covered &= (std::uint64_t{1} << inside) - 1;
        if (covered == 0) continue;
        const Pixel* from = source + column * 64;
        Pixel* to = target + column * 64;
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
