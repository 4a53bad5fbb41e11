// Cutting Picture: patches of kept picture 0 laid onto kept picture 1 at
// the places the one random generator draws, each at its own place.
#include "effects/geometry/class_geometry.h"
#include "effects/geometry/cover_mask.h"
#include "engine/numeric.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <new>
#include <vector>

namespace lumiran {
namespace {

// Patches placed between two looks at the cancel flag.
constexpr long long ChunkPatches = 1 << 19;

struct Box {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    [[nodiscard]] bool empty() const { return width <= 0 || height <= 0; }
};

// A patch clipped to the box, in the box's coordinates: never empty.
struct Patch {
    std::int16_t x0, x1, y0, y1;
};

// The patches of a chunk sorted by the rows they start in, so that the
// marks of a bucket land in a few kilobytes of the mask. A bucket is a
// power of two of rows, at least as tall as a patch, so that a patch
// reaches at most into the next bucket, and at least 16, whole lines of a
// mask column: each bucket's rows are marked by one thread.
class Buckets {
  public:
    Buckets(int patchHeight, int boxHeight, int workers)
        : shift_(std::bit_width(static_cast<unsigned>(std::max(patchHeight, 16)) - 1)),
          count_((boxHeight + rows() - 1) / rows()),
          lists_(static_cast<std::size_t>(count_) * static_cast<std::size_t>(workers)) {}

    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] int rows() const { return 1 << shift_; }
    [[nodiscard]] std::vector<Patch>& of(int worker, int bucket) {
        return lists_[static_cast<std::size_t>(worker) * count_ + bucket];
    }
    void add(int worker, Patch p) { of(worker, p.y0 >> shift_).push_back(p); }
    void clear() {
        for (std::vector<Patch>& list : lists_)
            list.clear();
    }

  private:
    int shift_;
    int count_;
    std::vector<std::vector<Patch>> lists_;
};

// The scratch of one placing thread: a band's draws, then its places.
struct BandScratch {
    explicit BandScratch(std::size_t draws) : draws(draws), x(draws / 2), y(draws / 2) {}
    std::vector<double> draws;
    std::vector<std::int32_t> x, y;
};

// One band's patches into the worker's buckets: the draws come in pairs
// (x, y), and a place is left + rnd * (right - left + 1), rounded, likewise
// down.
struct BandPlaces {
    int left = 0;
    int top = 0;
    double spanX = 0;
    double spanY = 0;
    int patchWidth = 0;
    int patchHeight = 0;
    Box box;

    void operator()(BandScratch& s, Buckets& buckets, int worker) const {
        const double* d = s.draws.data();
        const std::size_t n = s.x.size();
        // Places stay within 17 bits, so the rounding needs no guard; the
        // loop has no branch and vectorises.
        for (std::size_t k = 0; k < n; ++k) {
            s.x[k] = roundInRange<std::int32_t>(left + d[2 * k] * spanX) - box.left;
            s.y[k] = roundInRange<std::int32_t>(top + d[2 * k + 1] * spanY) - box.top;
        }
        for (std::size_t k = 0; k < n; ++k) {
            const int x0 = std::max(s.x[k], 0), x1 = std::min(s.x[k] + patchWidth, box.width);
            const int y0 = std::max(s.y[k], 0), y1 = std::min(s.y[k] + patchHeight, box.height);
            if (x0 < x1 && y0 < y1) {
                buckets.add(worker, {static_cast<std::int16_t>(x0), static_cast<std::int16_t>(x1),
                                     static_cast<std::int16_t>(y0), static_cast<std::int16_t>(y1)});
            }
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
        // only the draws keep their order. A chunk of bands is placed on
        // every core, each band entering the generator's sequence where it
        // starts; its patches are marked in a mask bucket by bucket of rows,
        // each bucket's rows by one thread, and at the end each row takes
        // its covered pixels at once. Places lie in [left, right + 1] x
        // [top, bottom + 1], and patches are clipped to both pictures.
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
        const int workers = !marks || small ? 1 : context().workers().threads();

        CoverMask mask(marks ? box.width : 0, marks ? box.height : 0);
        Buckets buckets(height, marks ? box.height : 0, workers);
        std::vector<BandScratch> scratch;
        if (marks) {
            for (int w = 0; w < workers; ++w)
                scratch.emplace_back(bandDraws);
        }
        const BandPlaces place{left,
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
                std::atomic<int> nextBand{0};
                std::atomic<bool> outOfMemory{false};
                context().workers().run(workers, [&](int worker) {
                    BandScratch& own = scratch[static_cast<std::size_t>(worker)];
                    try {
                        for (int band = nextBand++; band < count; band = nextBand++) {
                            first.ahead(bandDraws * static_cast<std::uint64_t>(band))
                                .take(own.draws);
                            place(own, buckets, worker);
                        }
                    } catch (const std::bad_alloc&) {
                        // A bucket that cannot grow: the other threads
                        // finish their bands, then the run ends.
                        outOfMemory = true;
                        nextBand = count;
                    }
                });
                if (outOfMemory) throw std::bad_alloc();
                const int rows = buckets.rows();
                std::atomic<int> nextBucket{0};
                context().workers().run(workers, [&](int) {
                    for (int b = nextBucket++; b < buckets.count(); b = nextBucket++) {
                        const int end = (b + 1) * rows;
                        for (int w = 0; w < workers; ++w) {
                            if (b > 0) {
                                for (const Patch& q : buckets.of(w, b - 1))
                                    if (q.y1 > b * rows) mask.cover(q.x0, q.x1, b * rows, q.y1);
                            }
                            for (const Patch& q : buckets.of(w, b))
                                mask.cover(q.x0, q.x1, q.y0, std::min<int>(q.y1, end));
                        }
                    }
                });
                buckets.clear();
            }
            // A cancel leaves the target as it was: the run's result is
            // thrown away then.
            for (int band = 0; band < count; ++band)
                if (!finishRow()) return;
        }
        if (!marks) return;

        const Surface& source = *p.source;
        Surface& target = *p.target;
        constexpr int RowsAClaim = 16;
        std::atomic<int> nextRow{0};
        context().workers().run(workers, [&](int) {
            for (int first = nextRow.fetch_add(RowsAClaim); first < box.height;
                 first = nextRow.fetch_add(RowsAClaim)) {
                const int last = std::min(first + RowsAClaim, box.height);
                for (int y = first; y < last; ++y) {
                    mask.copyRow(y, source.row(box.top + y).data() + box.left,
                                 target.row(box.top + y).data() + box.left);
                }
            }
        });
    });
}

} // namespace lumiran
