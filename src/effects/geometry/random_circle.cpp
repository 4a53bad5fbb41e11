// Random Circle: circles of kept picture 0 laid onto kept picture 1 at
// places drawn from the one random generator.
#include "effects/geometry/class_geometry.h"
#include "engine/drawing/drawing.h"
#include "engine/picture_memory.h"
#include "engine/shape_bands.h"

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
        // The circles by band of target rows, in drawing order.
        const ShapeBands bands(stamps.size(), 0, target->height(), [&](std::size_t i) {
            return std::pair{stamps[i].y - stamps[i].radius, stamps[i].y + stamps[i].radius};
        });
        const int bandCount = bands.count();
        const long long pixels = static_cast<long long>(target->pixelCount());
        const long long bandPixels = std::max(context().threading.bandPixels, 1);
        const int workers = static_cast<int>(
            std::max<long long>(1, std::min<long long>({context().threading.threads, bandCount,
                                                        (pixels + bandPixels - 1) / bandPixels})));
        layBands(context().workers(), workers, bandCount, [&](int, int b) {
            const int rowBegin = bands.rowBegin(b);
            const int rowEnd = bands.rowEnd(b);
            if (laysBackground) {
                for (int y = rowBegin; y < rowEnd; ++y)
                    std::ranges::fill(target->row(y), background);
            }
            for (const std::uint32_t k : bands.shapes(b)) {
                const Stamp& s = stamps[k];
                stampRows(*target, *source, s, std::max(-s.radius, rowBegin - s.y),
                          std::min(s.radius, rowEnd - 1 - s.y));
            }
        });
    });
}

} // namespace lumiran
