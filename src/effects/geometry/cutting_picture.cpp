// Cutting Picture: patches of kept picture 0 laid onto kept picture 1 at
// the places the one random generator draws, each at its own place.
#include "effects/geometry/class_geometry.h"
#include "effects/geometry/cover_mask.h"
#include "engine/numeric.h"
#include "engine/row_bands.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <vector>

namespace lumiran {
namespace {

struct Box {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
};

// Each placing thread marks a mask of its own; the masks are merged at
// the end.
constexpr int MaxMasks = 4;

// The scratch of one placing thread: a band's draws, then its marks.
struct BandScratch {
    explicit BandScratch(std::size_t count) : draws(count), word(count / 2), bit(count / 2) {}
    std::vector<double> draws;
    std::vector<std::uint32_t> word;
    std::vector<std::uint64_t> bit;
};

// One band's patches into a mask: the draws come in pairs (x, y), and a
// place is left + rnd * (right - left + 1), rounded, likewise down.
struct BandMarks {
    int left = 0;
    int top = 0;
    double spanX = 0;
    double spanY = 0;
    Box box;

    void operator()(BandScratch& s, CoverMask& mask) const {
        const double* d = s.draws.data();
        const std::size_t n = s.word.size();
        // Places stay within 17 bits, so the rounding needs no guard; the
        // loop has no branch and vectorises.
        for (std::size_t k = 0; k < n; ++k) {
            const int x = roundInRange<std::int32_t>(left + d[2 * k] * spanX) - box.left;
            const int y = roundInRange<std::int32_t>(top + d[2 * k + 1] * spanY) - box.top;
            const CoverMask::Mark m = mask.markOf(x, y);
            s.word[k] = m.word;
            s.bit[k] = m.bit;
        }
        // The marks land at random in a mask of megabytes: the lines of the
        // marks a little further on are fetched meanwhile.
        constexpr std::size_t Ahead = 16;
        for (std::size_t k = 0; k < n; ++k) {
            if (k + Ahead < n) mask.prefetch(s.word[k + Ahead]);
            mask.mark({s.word[k], s.bit[k]});
        }
    }
};

} // namespace

void Class_Geometry::CuttingPicture(std::int16_t width, std::int16_t height, std::int16_t left,
                                    std::int16_t top, std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Pictures p = blitPictures(1);
        if (!p || width < 1 || height < 1 || right <= left || bottom <= top) return;
        // One patch per column of every height-th row, the places across,
        // then down.
        const int bands = (bottom - top + height - 1) / height;
        const int across = right - left;
        const auto bandDraws = static_cast<std::uint64_t>(across) * 2;
        SetProgressRange(0, bands);

        // A patch keeps its own place, so a pixel that any patch covers
        // ends as the source's pixel whatever order the patches come in:
        // only the draws keep their order. The bands are placed on
        // every core, each band entering the generator's sequence where it
        // starts, and each patch marks its corner; at the end the marks grow
        // into their patches and each row takes its covered pixels at once.
        // Places lie in [left, right + 1] x [top, bottom + 1], and patches
        // are clipped to both pictures.
        const int areaWidth = std::min(p.source->width(), p.target->width());
        const int areaHeight = std::min(p.source->height(), p.target->height());
        const auto clampTo = [](long long v, int high) {
            return static_cast<int>(std::clamp<long long>(v, 0, high));
        };
        const int boxLeft = clampTo(left, areaWidth), boxTop = clampTo(top, areaHeight);
        const Box box{boxLeft, boxTop, clampTo(right + 1LL + width, areaWidth) - boxLeft,
                      clampTo(bottom + 1LL + height, areaHeight) - boxTop};
        // A picture laid on itself does not change.
        const bool marks = p.source != p.target && !box.empty();
        const bool small =
            static_cast<long long>(box.width) * box.height < 2LL * context().threading.bandPixels;
        const int workers = small ? 1 : std::clamp(context().workers().threads(), 1, MaxMasks);

        RandomGenerator& random = context().random;
        if (!marks) {
            for (int band = 0; band < bands; ++band) {
                random.skip(bandDraws);
                if (!finishRow()) return;
            }
            return;
        }
        std::vector<CoverMask> masks;
        std::vector<BandScratch> scratch;
        for (int w = 0; w < workers; ++w) {
            masks.emplace_back(box.width, box.height, width, height, left - box.left,
                               top - box.top);
            scratch.emplace_back(bandDraws);
        }
        const BandMarks mark{left, top, static_cast<double>(across) + 1,
                             static_cast<double>(bottom - top) + 1, box};
        // Bands are claimed in turn and counted for progress as they end; a
        // cancel stops every thread after its band, and the generator then
        // stands after as many bands as ended.
        const RandomGenerator first = random;
        RowBands claims(0, bands, 1);
        int ended = 0;
        context().workers().run(workers, [&](int worker) {
            BandScratch& own = scratch[static_cast<std::size_t>(worker)];
            for (RowBands::Band b = claims.claim(); !b.empty(); b = claims.claim()) {
                if (!claims.mayStart(b.begin)) return;
                first.ahead(bandDraws * static_cast<std::uint64_t>(b.begin)).take(own.draws);
                mark(own, masks[static_cast<std::size_t>(worker)]);
                const std::scoped_lock lock(claims.rowEnd());
                ++ended;
                if (!finishRow()) {
                    claims.cancel();
                    return;
                }
            }
        });
        random.skip(bandDraws * static_cast<std::uint64_t>(ended));
        // A cancel leaves the target as it was: the run's result is thrown
        // away then.
        if (!claims.finish()) return;

        CoverMask& mask = masks.front();
        for (std::size_t w = 1; w < masks.size(); ++w)
            mask.merge(masks[w]);
        mask.spread();

        const Surface& source = *p.source;
        Surface& target = *p.target;
        forEachRowShared(context(), 0, box.height, box.width, [&](int y) {
            mask.copyRow(y, source.row(box.top + y).data() + box.left,
                         target.row(box.top + y).data() + box.left);
        });
    });
}

} // namespace lumiran
