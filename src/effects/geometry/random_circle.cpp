// Random Circle: circles of kept picture 0 laid onto kept picture 1 at
// places drawn from the one random generator.
#include "effects/geometry/class_geometry.h"
#include "effects/texture/hide_effect/band_lists.h"
#include "engine/drawing/drawing.h"
#include "engine/picture_memory.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace lumiran {
namespace {

// The largest dx of row dy inside the circle of radius r, the circle of
// Canvas::Ellipse (dx^2 + dy^2 < (r + 1/2)^2); -1 when the row misses it.
int halfRun(int radius, int dy) {
    const double q = (radius + 0.5) * (radius + 0.5) - static_cast<double>(dy) * dy;
    if (q <= 0) return -1;
    int half = static_cast<int>(std::floor(std::sqrt(q)));
    while (static_cast<double>(half) * half >= q)
        --half;
    return half;
}

// One row of BitBlt's source copy, clipped to both pictures.
void copyRow(Surface& target, int x, int y, int count, const Surface& source, int xSrc, int ySrc) {
    if (&target == &source) {
        BitBlt(target, x, y, count, 1, source, xSrc, ySrc, SRCCOPY);
        return;
    }
    if (y < 0 || y >= target.height() || ySrc < 0 || ySrc >= source.height()) return;
    const int dx = xSrc - x;
    const int left = std::max({x, 0, -dx});
    const int right = static_cast<int>(std::min<std::int64_t>(
        {std::int64_t{x} + count, target.width(), std::int64_t{source.width()} - dx}));
    if (left >= right) return;
    const Pixel* from = source.row(ySrc).data() + (left + dx);
    std::copy(from, from + (right - left), target.row(y).data() + left);
}

// A circle as drawn: where it lands, where its picture comes from, its
// radius and, for a ring, the ring's width (0 for a disc).
struct Stamp {
    int x = 0;
    int y = 0;
    int fromX = 0;
    int fromY = 0;
    int radius = 0;
    int ring = 0;
};

// The rows firstDy to lastDy (offsets from the centre) of a disc or ring of
// the source laid onto the target.
void stampRows(Surface& target, const Surface& source, const Stamp& s, int firstDy, int lastDy) {
    const int inner = s.ring > 0 ? s.radius - s.ring : -1;
    for (int dy = firstDy; dy <= lastDy; ++dy) {
        const int outer = halfRun(s.radius, dy);
        if (outer < 0) continue;
        const int hole = inner >= 0 ? halfRun(inner, dy) : -1;
        if (hole < 0) {
            copyRow(target, s.x - outer, s.y + dy, 2 * outer + 1, source, s.fromX - outer,
                    s.fromY + dy);
        } else {
            copyRow(target, s.x - outer, s.y + dy, outer - hole, source, s.fromX - outer,
                    s.fromY + dy);
            copyRow(target, s.x + hole + 1, s.y + dy, outer - hole, source, s.fromX + hole + 1,
                    s.fromY + dy);
        }
    }
}

} // namespace

void Class_Geometry::Random_Circle(std::int16_t size, std::int16_t left, std::int16_t top,
                                   std::int16_t right, std::int16_t bottom, std::uint8_t kind) {
    guarded([&] {
        const Surface* const source = context().kept0;
        Surface* const target = context().kept1;
        if (source == nullptr || target == nullptr) return;
        // An empty target is left to this call: the background goes under
        // the circles band by band, on the threads that lay them.
        const bool laysBackground = target->empty() && !source->empty();
        const Pixel background = toPixel(context().flags.backColor);
        if (laysBackground) *target = Surface::uninitialised(source->width(), source->height());
        if (size < 1 || kind > 14 || right <= left || bottom <= top) {
            if (laysBackground) std::ranges::fill(target->pixels(), background);
            return;
        }
        const int width = right - left, height = bottom - top;
        const int form = kind % 5, from = kind / 5;
        const int blockRows = (height + size - 1) / size;
        const int blockColumns = (width + size - 1) / size;
        SetProgressRange(0, blockRows);
        // Every circle is drawn first, in the generator's order and a row of
        // blocks a progress step; the circles are then laid in bands of
        // target rows, each band taking them in drawing order. A circle
        // reads only the source, which none writes, so the last circle over
        // a pixel wins there as it would one circle at a time.
        // Picture memory: a few huge pages rather than a thousand fresh
        // small ones at 4K.
        std::vector<Stamp, PictureAllocator<Stamp>> stamps;
        stamps.reserve(static_cast<std::size_t>(blockRows) *
                       static_cast<std::size_t>(blockColumns));
        for (int by = top; by < bottom; by += size) {
            for (int bx = left; bx < right; bx += size) {
                // The centre across then down, then the radius where it is
                // drawn, then the place the picture comes from where drawn.
                Stamp s;
                s.x = roundTo<std::int32_t>(left + context().random.next() * width);
                s.y = roundTo<std::int32_t>(top + context().random.next() * height);
                s.radius = size / 2;
                switch (form) {
                case 1:
                    s.radius = roundTo<std::int32_t>(context().random.next() * size / 2.0);
                    break;
                case 2:
                    s.radius = roundTo<std::int32_t>((s.y - top + 1) * (size / 2.0) / height);
                    break;
                case 3:
                    s.radius = size;
                    break;
                case 4:
                    s.ring = std::max(1, size / 6);
                    break;
                default:
                    break;
                }
                s.fromX = s.x;
                s.fromY = s.y;
                if (from == 1) {
                    s.fromX = bx + size / 2;
                    s.fromY = by + size / 2;
                } else if (from == 2) {
                    s.fromX = roundTo<std::int32_t>(left + context().random.next() * width);
                    s.fromY = roundTo<std::int32_t>(top + context().random.next() * height);
                }
                stamps.push_back(s);
            }
            if (!finishRow()) return;
        }
        if (target->empty()) return;
        if (source == target) {
            // Circles that read what earlier ones wrote: whole, in order.
            for (const Stamp& s : stamps)
                stampRows(*target, *source, s, -s.radius, s.radius);
            return;
        }
        // The circles by band of target rows, in drawing order: counted,
        // then laid into one array (a list a band would grow in many small
        // pieces of fresh memory).
        constexpr int BandRows = hide::BandRows;
        const int bandCount = (target->height() + BandRows - 1) / BandRows;
        const auto bandSpan = [&](const Stamp& s) {
            const int first = std::max(s.y - s.radius, 0) / BandRows;
            const int last = std::min(s.y + s.radius, target->height() - 1) / BandRows;
            return std::pair{first, s.y - s.radius > target->height() - 1 || s.y + s.radius < 0
                                        ? first - 1
                                        : last};
        };
        std::vector<std::size_t> bandStart(static_cast<std::size_t>(bandCount) + 1, 0);
        for (const Stamp& s : stamps) {
            const auto [first, last] = bandSpan(s);
            for (int b = first; b <= last; ++b)
                ++bandStart[static_cast<std::size_t>(b) + 1];
        }
        for (std::size_t b = 0; b < static_cast<std::size_t>(bandCount); ++b)
            bandStart[b + 1] += bandStart[b];
        // An array of a megabyte or so starts at a huge page: one fault
        // rather than hundreds of small ones.
        const std::size_t entries = bandStart[static_cast<std::size_t>(bandCount)];
        const std::size_t huge = HugePageBytes / sizeof(std::uint32_t);
        std::vector<std::uint32_t, PictureAllocator<std::uint32_t>> inBand;
        inBand.reserve(entries >= huge / 4 ? std::max(entries, huge) : entries);
        inBand.resize(entries);
        {
            std::vector<std::size_t> next(bandStart.begin(), bandStart.end() - 1);
            for (std::size_t i = 0; i < stamps.size(); ++i) {
                const auto [first, last] = bandSpan(stamps[i]);
                for (int b = first; b <= last; ++b)
                    inBand[next[static_cast<std::size_t>(b)]++] = static_cast<std::uint32_t>(i);
            }
        }
        const long long pixels = static_cast<long long>(target->pixelCount());
        const long long bandPixels = std::max(context().threading.bandPixels, 1);
        const int workers = static_cast<int>(
            std::max<long long>(1, std::min<long long>({context().threading.threads, bandCount,
                                                        (pixels + bandPixels - 1) / bandPixels})));
        hide::layBands(context().workers(), workers, bandCount, [&](int, int b) {
            const int rowBegin = b * BandRows;
            const int rowEnd = std::min(rowBegin + BandRows, target->height());
            if (laysBackground) {
                for (int y = rowBegin; y < rowEnd; ++y)
                    std::ranges::fill(target->row(y), background);
            }
            const auto band = static_cast<std::size_t>(b);
            for (std::size_t k = bandStart[band]; k < bandStart[band + 1]; ++k) {
                const Stamp& s = stamps[inBand[k]];
                stampRows(*target, *source, s, std::max(-s.radius, rowBegin - s.y),
                          std::min(s.radius, rowEnd - 1 - s.y));
            }
        });
    });
}

} // namespace lumiran
