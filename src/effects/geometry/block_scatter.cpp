// The block scatters: blocks of kept picture 0 blitted onto kept picture 1
// at places drawn from the one random generator, in a fixed order of draws.
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumiran {

Class_Geometry::Pictures Class_Geometry::blitPictures(std::int16_t backgroundKind) {
    const Pictures pictures{context().kept0, context().kept1};
    if (pictures && backgroundKind == 0 && pictures.source != pictures.target) {
        BitBlt(*pictures.target, 0, 0, pictures.target->width(), pictures.target->height(),
               *pictures.source, 0, 0, SRCCOPY);
    }
    return pictures;
}

namespace {

// BitBlt's source copy between two pictures, for the many small blocks of
// these effects: the same clipping to both pictures, without the raster
// code's table per call.
void copyBlock(Surface& target, int x, int y, int width, int height, const Surface& source,
               int xSrc, int ySrc) {
    if (&target == &source) {
        BitBlt(target, x, y, width, height, source, xSrc, ySrc, SRCCOPY);
        return;
    }
    const int dx = xSrc - x, dy = ySrc - y;
    const int left = std::max({x, 0, -dx}), top = std::max({y, 0, -dy});
    const int right = static_cast<int>(std::min<std::int64_t>(
        {std::int64_t{x} + width, target.width(), std::int64_t{source.width()} - dx}));
    const int bottom = static_cast<int>(std::min<std::int64_t>(
        {std::int64_t{y} + height, target.height(), std::int64_t{source.height()} - dy}));
    if (left >= right || top >= bottom) return;
    for (int row = top; row < bottom; ++row) {
        const Pixel* from = source.row(row + dy).data() + (left + dx);
        std::copy(from, from + (right - left), &target.at(left, row));
    }
}

int sign(int v) {
    return v < 0 ? -1 : 1;
}

} // namespace

void Class_Geometry::BlockScatter_Type1(std::int16_t size, std::int16_t passes, std::uint8_t kind,
                                        std::int16_t left, std::int16_t top, std::int16_t right,
                                        std::int16_t bottom) {
    guarded([&] {
        const Pictures p = blitPictures(1);
        if (!p || size < 1 || kind > 3 || right <= left || bottom <= top) return;
        const int width = right - left, height = bottom - top;
        const int nx = roundTo<std::int32_t>(static_cast<double>(width) / size);
        const int ny = roundTo<std::int32_t>(static_cast<double>(height) / size);
        // The spread of the offsets is two blocks; the drawn offsets are
        // turned by the kind and scaled by the pass.
        const int spread = 2 * size;
        struct Offset {
            int x = 0;
            int y = 0;
        };
        std::vector<Offset> offsets(static_cast<std::size_t>(nx + 1) * (ny + 1));
        for (Offset& o : offsets) {
            o.x = roundTo<std::int32_t>(context().random.next() * spread);
            o.y = roundTo<std::int32_t>(context().random.next() * spread);
        }
        const double cx = left + width / 2.0, cy = top + height / 2.0;
        const double half = std::max(width, height) / 2.0;
        const int lastPass = std::max<int>(passes, 0);
        SetProgressRange(0, lastPass + 1);
        for (int n = 0; n <= lastPass; ++n) {
            const double share = lastPass == 0 ? 0.0 : static_cast<double>(n) / lastPass;
            for (int j = 0; j <= ny; ++j) {
                const int by = top + j * size;
                const int bh = std::min<int>(size, bottom - by);
                for (int i = 0; i <= nx; ++i) {
                    const int bx = left + i * size;
                    const int bw = std::min<int>(size, right - bx);
                    if (bw <= 0 || bh <= 0) continue;
                    const Offset o = offsets[static_cast<std::size_t>(j) * (nx + 1) + i];
                    const double ux = bx + bw / 2.0 - cx, uy = by + bh / 2.0 - cy;
                    double dx = 0, dy = 0;
                    switch (kind) {
                    case 0:
                        dx = sign(static_cast<int>(std::floor(ux))) * o.x;
                        dy = sign(static_cast<int>(std::floor(uy))) * o.y;
                        break;
                    case 1:
                        dx = -sign(static_cast<int>(std::floor(ux))) * o.x;
                        dy = -sign(static_cast<int>(std::floor(uy))) * o.y;
                        break;
                    case 2:
                        dx = o.x - spread / 2.0;
                        dy = o.y - spread / 2.0;
                        break;
                    default:
                        dx = ux / half * o.x * 2;
                        dy = uy / half * o.y * 2;
                        break;
                    }
                    copyBlock(*p.target, bx + roundTo<std::int32_t>(dx * share),
                              by + roundTo<std::int32_t>(dy * share), bw, bh, *p.source, bx, by);
                }
            }
            if (!finishRow()) return;
        }
    });
}

void Class_Geometry::BlockScatter_Type2(std::uint8_t direction, std::int16_t spread,
                                        std::int16_t size, std::int16_t backgroundKind,
                                        std::uint8_t kind, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Pictures p = blitPictures(backgroundKind);
        if (!p || size < 1 || direction > 2 || kind > 3 || right <= left || bottom <= top) return;
        const bool alongX = direction != 1, alongY = direction != 0;
        SetProgressRange(0, (bottom - top + size - 1) / size);
        for (int by = top; by < bottom; by += size) {
            const int bh = std::min<int>(size, bottom - by);
            for (int bx = left; bx < right; bx += size) {
                const int bw = std::min<int>(size, right - bx);
                int d[4];
                for (int& v : d)
                    v = roundTo<std::int32_t>(spread * context().random.next() - spread / 2.0);
                // Source corner (d0, d1), target corner (d2, d3).
                const bool sourceX = kind == 1 || kind == 2 || kind == 3;
                const bool sourceY = kind == 1 || kind == 2;
                const bool targetX = kind == 0 || kind == 2;
                const bool targetY = kind == 0 || kind == 2 || kind == 3;
                const int sx = sourceX && alongX ? d[0] : 0, sy = sourceY && alongY ? d[1] : 0;
                const int tx = targetX && alongX ? d[2] : 0, ty = targetY && alongY ? d[3] : 0;
                copyBlock(*p.target, bx + tx, by + ty, bw, bh, *p.source, bx + sx, by + sy);
            }
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
