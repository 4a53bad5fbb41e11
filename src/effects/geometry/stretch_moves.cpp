// Scroll, Gradually Enlarge, Squeeze and the pulls of Bring: parts of kept
// picture 0 stretched onto kept picture 1.
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

namespace lumiran {
namespace {

// One axis of the rectangle: stretch source span (from, size) onto target
// span (to, toSize) along it, the whole way across.
struct Axis {
    ProcessRect rect;
    bool alongX;

    [[nodiscard]] int extent() const {
        return alongX ? rect.right - rect.left : rect.bottom - rect.top;
    }
    [[nodiscard]] int origin() const { return alongX ? rect.left : rect.top; }
    void stretch(Surface& target, int to, int toSize, const Surface& source, int from,
                 int size) const {
        if (toSize <= 0 || size <= 0) return;
        const int w = rect.right - rect.left, h = rect.bottom - rect.top;
        if (toSize == size) {
            // The same size: the stretch is a copy, and a copy is cheaper.
            if (alongX) {
                BitBlt(target, origin() + to, rect.top, size, h, source, origin() + from, rect.top,
                       SRCCOPY);
            } else {
                BitBlt(target, rect.left, origin() + to, w, size, source, rect.left,
                       origin() + from, SRCCOPY);
            }
            return;
        }
        if (alongX) {
            StretchBlt(target, origin() + to, rect.top, toSize, h, source, origin() + from,
                       rect.top, size, h, SRCCOPY);
        } else {
            StretchBlt(target, rect.left, origin() + to, w, toSize, source, rect.left,
                       origin() + from, w, size, SRCCOPY);
        }
    }
    // Line i across the axis: one column (alongX) or row, stretched
    // from (from, size) onto (to, toSize) of itself.
    void stretchLine(Surface& target, int i, int to, int toSize, const Surface& source, int from,
                     int size) const {
        if (toSize <= 0 || size <= 0) return;
        if (alongX) {
            StretchBlt(target, rect.left + i, rect.top + to, 1, toSize, source, rect.left + i,
                       rect.top + from, 1, size, SRCCOPY);
        } else {
            StretchBlt(target, rect.left + to, rect.top + i, toSize, 1, source, rect.left + from,
                       rect.top + i, size, 1, SRCCOPY);
        }
    }
};

bool validRect(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom) {
    return right > left && bottom > top;
}

// Where the stretch of source span (from, size) onto target span (to,
// toSize) of one axis sends each line of the picture: lines[t] becomes the
// source line of target line t, as StretchBlt maps and clips it.
void mapStretch(std::vector<int>& lines, int origin, int to, int toSize, int from, int size) {
    if (toSize <= 0 || size <= 0) return;
    const auto extent = static_cast<std::int64_t>(lines.size());
    for (int k = 0; k < toSize; ++k) {
        const std::int64_t t = std::int64_t{origin} + to + k;
        const std::int64_t s = std::int64_t{origin} + from +
                               (toSize == size ? k : stretchSourceOffset(k, toSize, size));
        if (t >= 0 && t < extent && s >= 0 && s < extent)
            lines[static_cast<std::size_t>(t)] = static_cast<int>(s);
    }
}

// The source column of each of `toSize` target columns stretched from
// `size`: floor((2 k + 1) size / (2 toSize)), stepped without a division.
void stretchOffsets(std::span<int> offsets, int size) {
    const auto toSize = static_cast<std::int64_t>(offsets.size());
    if (toSize == 0) return;
    const std::int64_t denominator = 2 * toSize, step = 2 * std::int64_t{size};
    const std::int64_t stepQuotient = step / denominator, stepRest = step % denominator;
    std::int64_t quotient = size / denominator, rest = size % denominator;
    for (int& offset : offsets) {
        offset = static_cast<int>(quotient);
        quotient += stepQuotient;
        rest += stepRest;
        if (rest >= denominator) {
            rest -= denominator;
            ++quotient;
        }
    }
}

// The scroll of one axis by d (0 <= d <= extent) by the wrap kind.
void scrollAxis(const Axis& axis, Surface& target, const Surface& source, int d, int wrapKind) {
    const int w = axis.extent();
    switch (wrapKind) {
    case 0: // around: the part pushed out comes back at the start
        axis.stretch(target, d, w - d, source, 0, w - d);
        axis.stretch(target, 0, d, source, w - d, d);
        break;
    case 1: // the uncovered start keeps the target
        axis.stretch(target, d, w - d, source, 0, w - d);
        break;
    case 2: // the whole picture squeezed after the start, and into it
        axis.stretch(target, d, w - d, source, 0, w);
        axis.stretch(target, 0, d, source, 0, w);
        break;
    default: // the first line stretched over the uncovered start
        axis.stretch(target, d, w - d, source, 0, w - d);
        axis.stretch(target, 0, d, source, 0, 1);
        break;
    }
}

} // namespace

void Class_Geometry::Transform_Scroll(std::uint8_t kind, std::int16_t percent, std::int16_t left,
                                      std::int16_t top, std::int16_t right, std::int16_t bottom,
                                      std::uint8_t wrapKind) {
    guarded([&] {
        const Pictures p = blitPictures(1);
        if (!p || kind > 2 || wrapKind > 3 || !validRect(left, top, right, bottom)) return;
        const ProcessRect rect{left, top, right, bottom};
        const auto by = [&](int extent) {
            const int d = roundTo<std::int32_t>(extent * static_cast<double>(percent) / 100);
            // Around, any amount wraps; otherwise past the whole is the whole.
            if (wrapKind == 0) return ((d % extent) + extent) % extent;
            return std::clamp(d, 0, extent);
        };
        SetProgressRange(0, kind == 2 ? 2 : 1);
        const Axis across{rect, true}, down{rect, false};
        if (kind == 2 && wrapKind == 0) {
            // Around on both axes: four quadrants straight from the source.
            const int w = across.extent(), h = down.extent();
            const int dx = by(w), dy = by(h);
            for (const auto& [to, from, width] :
                 {std::tuple{dx, 0, w - dx}, std::tuple{0, w - dx, dx}}) {
                for (const auto& [toY, fromY, height] :
                     {std::tuple{dy, 0, h - dy}, std::tuple{0, h - dy, dy}}) {
                    BitBlt(*p.target, left + to, top + toY, width, height, *p.source, left + from,
                           top + fromY, SRCCOPY);
                }
            }
        } else if (kind == 2) {
            Surface work = *p.target;
            scrollAxis(across, work, *p.source, by(across.extent()), wrapKind);
            if (!finishRow()) return;
            scrollAxis(down, *p.target, work, by(down.extent()), wrapKind);
        } else {
            const Axis& axis = kind == 0 ? across : down;
            scrollAxis(axis, *p.target, *p.source, by(axis.extent()), wrapKind);
        }
        finishRow();
    });
}

void Class_Geometry::GraduallyEnlarge(std::int16_t left, std::int16_t top, std::int16_t right,
                                      std::int16_t bottom, std::int16_t level) {
    guarded([&] {
        const Pictures p = blitPictures(1);
        if (!p || level < 0 || !validRect(left, top, right, bottom)) return;
        const ProcessRect rect{left, top, right, bottom};
        // level + 1 equal bands of the source stretched to widths growing
        // as 1, 2, ..: small at the upper left, large at the lower right.
        const int n = level + 1;
        const double total = n * (n + 1) / 2.0;
        // Band i of an axis of extent w: its source lines and where they go.
        const auto forEachBand = [&](int w, auto&& stretch) {
            for (int i = 0; i < n; ++i) {
                const int from = roundTo<std::int32_t>(w * static_cast<double>(i) / n);
                const int fromEnd = roundTo<std::int32_t>(w * static_cast<double>(i + 1) / n);
                const int to = roundTo<std::int32_t>(w * (i * (i + 1) / 2.0) / total);
                const int toEnd = roundTo<std::int32_t>(w * ((i + 1) * (i + 2) / 2.0) / total);
                stretch(to, toEnd - to, from, fromEnd - from);
            }
        };
        const auto bands = [&](const Axis& axis, const Surface& source, Surface& target) {
            forEachBand(axis.extent(), [&](int to, int toCount, int from, int fromCount) {
                axis.stretch(target, to, toCount, source, from, fromCount);
            });
            return finishRow();
        };
        SetProgressRange(0, 2);
        // The bands of both ways are maps of columns and of rows: where they
        // reach every line of the rectangle in the picture, pixel (x, y)
        // ends as the source's (columns[x], rows[y]), drawn in one pass.
        const auto linesOf = [&](const Axis& axis, int pictureExtent) {
            std::vector<int> lines(static_cast<std::size_t>(pictureExtent), -1);
            forEachBand(axis.extent(), [&](int to, int toCount, int from, int fromCount) {
                mapStretch(lines, axis.origin(), to, toCount, from, fromCount);
            });
            return lines;
        };
        const Surface& source = *p.source;
        Surface& target = *p.target;
        if (&source != &target && source.sameSize(target)) {
            const std::vector<int> columns = linesOf(Axis{rect, true}, source.width());
            const std::vector<int> rows = linesOf(Axis{rect, false}, source.height());
            const int x0 = std::max<int>(left, 0), x1 = std::min<int>(right, source.width());
            const int y0 = std::max<int>(top, 0), y1 = std::min<int>(bottom, source.height());
            const auto reached = [](const std::vector<int>& lines, int first, int end) {
                return std::all_of(lines.begin() + std::min(first, end), lines.begin() + end,
                                   [](int line) { return line >= 0; });
            };
            if (reached(columns, x0, x1) && reached(rows, y0, y1)) {
                forEachRowShared(context(), y0, y1, x1 - x0, [&](int y) {
                    const Pixel* from = source.row(rows[static_cast<std::size_t>(y)]).data();
                    Pixel* out = target.row(y).data();
                    const int* map = columns.data();
                    for (int x = x0; x < x1; ++x)
                        out[x] = from[map[x]];
                });
                if (finishRow()) finishRow();
                return;
            }
        }
        Surface work = *p.target;
        if (!bands(Axis{rect, true}, *p.source, work)) return;
        bands(Axis{rect, false}, work, *p.target);
    });
}

void Class_Geometry::Squeeze(std::int16_t backgroundKind, std::int16_t level, std::int16_t left,
                             std::int16_t top, std::int16_t right, std::int16_t bottom,
                             std::uint8_t direction) {
    guarded([&] {
        const Pictures p = blitPictures(backgroundKind);
        if (!p || direction > 1 || !validRect(left, top, right, bottom)) return;
        const ProcessRect rect{left, top, right, bottom};
        // Each row (direction 0) narrowed about its middle to between half
        // and all of its width: `level` waists down the rectangle.
        const Axis lines{rect, direction == 1};
        const int count = direction == 0 ? bottom - top : right - left;
        const int w = direction == 0 ? right - left : bottom - top;
        SetProgressRange(0, count);
        const auto sizeOf = [&](int i) {
            const double t = (i + 0.5) / count;
            return roundTo<std::int32_t>(w *
                                         (1 - 0.5 * std::abs(std::sin(GeometryPi * level * t))));
        };
        const Surface& source = *p.source;
        Surface& target = *p.target;
        if (direction == 0 && &source != &target && source.sameSize(target)) {
            // Rows draw only their own row: a chunk of them at a time on
            // every core, each row's columns stepped without a division;
            // progress and the cancel test after each chunk.
            std::vector<int> sizes(static_cast<std::size_t>(count));
            for (int i = 0; i < count; ++i)
                sizes[static_cast<std::size_t>(i)] = sizeOf(i);
            const int width = source.width();
            constexpr int ChunkRows = 64;
            for (int chunk = 0; chunk < count; chunk += ChunkRows) {
                const int end = std::min(count, chunk + ChunkRows);
                const int y0 = std::clamp(top + chunk, 0, source.height());
                const int y1 = std::clamp(top + end, 0, source.height());
                forEachRowShared(context(), y0, y1, w, [&](int y) {
                    const int size = sizes[static_cast<std::size_t>(y - top)];
                    std::vector<int> own(static_cast<std::size_t>(size));
                    stretchOffsets(own, w);
                    const Pixel* from = source.row(y).data();
                    Pixel* out = target.row(y).data();
                    const int first = left + (w - size) / 2;
                    for (int k = std::max(0, -first); k < size && first + k < width; ++k) {
                        const int column = left + own[static_cast<std::size_t>(k)];
                        if (column >= 0 && column < width) out[first + k] = from[column];
                    }
                });
                for (int i = chunk; i < end; ++i)
                    if (!finishRow()) return;
            }
            return;
        }
        for (int i = 0; i < count; ++i) {
            const int size = sizeOf(i);
            lines.stretchLine(*p.target, i, (w - size) / 2, size, *p.source, 0, w);
            if (!finishRow()) return;
        }
    });
}

void Class_Geometry::Transform_Bling(std::int16_t amount, std::int16_t parts, std::uint8_t kind,
                                     std::int16_t left, std::int16_t top, std::int16_t right,
                                     std::int16_t bottom, std::int16_t reverse) {
    guarded([&] {
        const Pictures p = blitPictures(0);
        if (!p || kind > 3 || !validRect(left, top, right, bottom)) return;
        const ProcessRect rect{left, top, right, bottom};
        const int way = reverse != 0 ? -1 : 1;
        if (kind <= 1) {
            // The inner borders of `parts` equal parts pulled by amount
            // percent of the size: right (down), or back with reverse.
            const Axis axis{rect, kind == 0};
            const int w = axis.extent();
            const int pieces = std::max<int>(parts, 1);
            const int d = way * roundTo<std::int32_t>(w * std::clamp<int>(amount, 0, 100) / 100.0);
            SetProgressRange(0, pieces);
            for (int i = 0; i < pieces; ++i) {
                const int from = w * i / pieces, fromEnd = w * (i + 1) / pieces;
                const int to = i == 0 ? 0 : std::clamp(from + d, 0, w);
                const int toEnd = i == pieces - 1 ? w : std::clamp(fromEnd + d, 0, w);
                axis.stretch(*p.target, to, toEnd - to, *p.source, from, fromEnd - from);
                if (!finishRow()) return;
            }
            return;
        }
        // The depressions: the middle of each column (kind 2) or row sinks
        // by up to amount percent of its length, most in the middle.
        const Axis lines{rect, kind == 2};
        const int count = kind == 2 ? right - left : bottom - top;
        const int h = kind == 2 ? bottom - top : right - left;
        const int middle = h / 2;
        SetProgressRange(0, count);
        for (int i = 0; i < count; ++i) {
            const double t = (i + 0.5) / count;
            const int sag = way * roundTo<std::int32_t>(h * std::clamp<int>(amount, 0, 100) /
                                                        100.0 * std::sin(GeometryPi * t));
            const int split = std::clamp(middle + sag, 0, h);
            lines.stretchLine(*p.target, i, 0, split, *p.source, 0, middle);
            lines.stretchLine(*p.target, i, split, h - split, *p.source, middle, h - middle);
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
