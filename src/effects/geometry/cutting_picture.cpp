// Cutting Picture: patches of kept picture 0 laid onto kept picture 1 at
// the places the one random generator draws, each at its own place.
#include "effects/geometry/class_geometry.h"
#include "effects/geometry/cover_mask.h"
#include "engine/numeric.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {
namespace {

// Bands of patches marked between two looks at the cancel flag.
constexpr long long ChunkPatches = 1 << 18;
// Each marking thread fills a mask of its own, which every row then reads.
constexpr int MaxMasks = 4;

struct Box {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
};

// The scratch of one marking thread: a band's draws, then its places.
struct BandScratch {
    std::vector<double> draws;
    std::vector<std::int32_t> places;
};

// One band's patches into the mask: the draws come in pairs (x, y), and a
// place is left + rnd * (right - left + 1), rounded, likewise down.
struct BandMarks {
    int left = 0;
    int top = 0;
    double spanX = 0;
    double spanY = 0;
    int patchWidth = 0;
    int patchHeight = 0;
    Box box;

    void operator()(BandScratch& scratch, CoverMask& mask) const {
        const double* d = scratch.draws.data();
        std::int32_t* places = scratch.places.data();
        const std::size_t n = scratch.draws.size();
        // Places stay within 17 bits, so the rounding needs no guard; the
        // loop has no branch and vectorises.
        for (std::size_t k = 0; k < n; k += 2) {
            places[k] = roundInRange<std::int32_t>(left + d[k] * spanX) - box.left;
            places[k + 1] = roundInRange<std::int32_t>(top + d[k + 1] * spanY) - box.top;
        }
        // The marks land at random in a mask of megabytes: the lines of the
        // patches a little further on are fetched meanwhile.
        constexpr std::size_t Ahead = 2 * 16;
        for (std::size_t k = 0; k < n; k += 2) {
            if (k + Ahead < n) mask.prefetch(places[k + Ahead], places[k + Ahead + 1]);
            const int x = places[k], y = places[k + 1];
            const int x0 = std::max(x, 0), x1 = std::min(x + patchWidth, box.width);
            const int y0 = std::max(y, 0), y1 = std::min(y + patchHeight, box.height);
            if (x0 < x1 && y0 < y1) mask.cover(x0, x1, y0, y1);
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
        // only the draws keep their order. The bands are shared out, each
        // entering the generator's sequence where it starts, and mark the
        // pixels they cover; each row then takes its covered pixels at once.
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
        const int workers =
            !marks || small ? 1 : std::clamp(context().workers().threads(), 1, MaxMasks);

        std::vector<CoverMask> masks;
        std::vector<BandScratch> scratch;
        if (marks) {
            for (int w = 0; w < workers; ++w) {
                masks.emplace_back(box.width, box.height);
                scratch.push_back(
                    {std::vector<double>(bandDraws), std::vector<std::int32_t>(bandDraws)});
            }
        }
        const BandMarks mark{left,
                             top,
                             static_cast<double>(across) + 1,
                             static_cast<double>(bottom - top) + 1,
                             width,
                             height,
                             box};
        const int chunkBands =
            static_cast<int>(std::clamp<long long>(ChunkPatches / across, 1, bands));
        RandomGenerator& random = context().random;
        for (int chunk = 0; chunk < bands; chunk += chunkBands) {
            const int count = std::min(chunkBands, bands - chunk);
            const RandomGenerator first = random;
            random.skip(bandDraws * static_cast<std::uint64_t>(count));
            if (marks) {
                std::atomic<int> next{0};
                context().workers().run(workers, [&](int worker) {
                    BandScratch& own = scratch[static_cast<std::size_t>(worker)];
                    for (int band = next++; band < count; band = next++) {
                        first.ahead(bandDraws * static_cast<std::uint64_t>(band)).take(own.draws);
                        mark(own, masks[static_cast<std::size_t>(worker)]);
                    }
                });
            }
            // A cancel leaves the target as it was: the run's result is
            // thrown away then.
            for (int band = 0; band < count; ++band)
                if (!finishRow()) return;
        }
        if (!marks) return;

        const Surface& source = *p.source;
        Surface& target = *p.target;
        const int copiers = small ? 1 : context().workers().threads();
        constexpr int RowsAClaim = 16;
        std::atomic<int> nextRow{0};
        context().workers().run(copiers, [&](int) {
            for (int first = nextRow.fetch_add(RowsAClaim); first < box.height;
                 first = nextRow.fetch_add(RowsAClaim)) {
                const int last = std::min(first + RowsAClaim, box.height);
                for (int y = first; y < last; ++y) {
                    CoverMask::copyRow(masks, y, source.row(box.top + y).data() + box.left,
                                       target.row(box.top + y).data() + box.left);
                }
            }
        });
    });
}

} // namespace lumiran
