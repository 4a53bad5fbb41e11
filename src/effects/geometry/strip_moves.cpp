// Block Replace, Notches, Slope, Jagged, Slide and the copying kinds of
// Crank: strips of kept picture 0 blitted onto kept picture 1 shifted or
// exchanged. What no strip covers keeps the target's content.
#include "effects/geometry/crank_walk.h"
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace lumiran {
namespace {

// Kind 0 moves along the rows, 1 along the columns, 2 both: the rows into a
// work copy, then its columns. A pass returns false when the run ends.
template <typename Pass>
void alongKind(int kind, const Surface& source, Surface& target, const Pass& pass) {
    if (kind != 2) {
        pass(kind == 0, source, target);
        return;
    }
    Surface work = target;
    if (pass(true, source, work)) pass(false, work, target);
}

// A strip of the rectangle, along x (columns from..from+extent) or along y.
struct Strips {
    const ProcessRect& rect;
    bool alongX;

    [[nodiscard]] int extent() const {
        return alongX ? rect.right - rect.left : rect.bottom - rect.top;
    }
    [[nodiscard]] int across() const {
        return alongX ? rect.bottom - rect.top : rect.right - rect.left;
    }
    [[nodiscard]] int origin() const { return alongX ? rect.left : rect.top; }
    // Source strip (from, size) stretched onto target strip (to, toSize).
    void stretch(Surface& target, int to, int toSize, const Surface& source, int from,
                 int size) const {
        if (toSize == size) {
            // The same size: the stretch is a copy, and a copy is cheaper.
            if (alongX) {
                BitBlt(target, to, rect.top, size, across(), source, from, rect.top, SRCCOPY);
            } else {
                BitBlt(target, rect.left, to, across(), size, source, rect.left, from, SRCCOPY);
            }
            return;
        }
        if (alongX) {
            StretchBlt(target, to, rect.top, toSize, across(), source, from, rect.top, size,
                       across(), SRCCOPY);
        } else {
            StretchBlt(target, rect.left, to, across(), toSize, source, rect.left, from, across(),
                       size, SRCCOPY);
        }
    }
    // Strip (from, size), the whole way across, moved by shift across it.
    void shifted(Surface& target, int from, int size, const Surface& source, int shift) const {
        if (alongX) {
            BitBlt(target, from, rect.top + shift, size, across(), source, from, rect.top, SRCCOPY);
        } else {
            BitBlt(target, rect.left + shift, from, across(), size, source, rect.left, from,
                   SRCCOPY);
        }
    }
};

using geometry::triangle;

// The bands of one tooth of Notches.
constexpr int NotchBands = 8;

bool validRect(std::int16_t left, std::int16_t top, std::int16_t right, std::int16_t bottom) {
    return right > left && bottom > top;
}

} // namespace

void Class_Geometry::BlockReplace(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                  std::int16_t right, std::int16_t bottom, std::int16_t size,
                                  std::uint8_t group) {
    guarded([&] {
        if (size < 1 || kind > 2 || group > 1 || !validRect(left, top, right, bottom)) return;
        const BlockReplaceStep step{kind, group};
        if (BlockReplaceInOne({&step, 1}, left, top, right, bottom, size)) return;
        const Pictures p = blitPictures(0);
        if (!p) return;
        const ProcessRect rect{left, top, right, bottom};
        const int members = group == 0 ? 2 : 3;
        // One axis from `source` onto `target`: each strip takes the next of
        // its group (the last the first), stretched where the last strip of
        // the rectangle is a partial one.
        const auto exchange = [&](bool alongX, const Surface& source, Surface& target) {
            const Strips strips{rect, alongX};
            const int extent = strips.extent(), origin = strips.origin();
            const int count = (extent + size - 1) / size;
            ProgressCount = 0; // each way counts afresh
            if (alongX && extent % size == 0) {
                // Columns of equal strips: copied row by row, which walks
                // memory in order where a strip at a time strides.
                const int pictureWidth = std::min(source.width(), target.width());
                SetProgressRange(top, bottom);
                for (int y = top; y < bottom; ++y) {
                    if (y >= 0 && y < target.height() && y < source.height()) {
                        const Pixel* from = source.row(y).data();
                        Pixel* to = target.row(y).data();
                        for (int first = 0; first < count; first += members) {
                            const int inGroup = std::min(members, count - first);
                            for (int k = 0; k < inGroup; ++k) {
                                const int toStart = origin + (first + k) * size;
                                const int fromStart = origin + (first + (k + 1) % inGroup) * size;
                                // Only what lies in the picture on both sides.
                                const int lo = std::max({0, -toStart, -fromStart});
                                const int hi =
                                    std::min({static_cast<int>(size), pictureWidth - toStart,
                                              pictureWidth - fromStart});
                                if (lo < hi) {
                                    std::copy(from + fromStart + lo, from + fromStart + hi,
                                              to + toStart + lo);
                                }
                            }
                        }
                    }
                    if (!finishRow()) return false;
                }
                return true;
            }
            SetProgressRange(0, (count + members - 1) / members);
            for (int first = 0; first < count; first += members) {
                const int inGroup = std::min(members, count - first);
                for (int k = 0; k < inGroup; ++k) {
                    const int to = first + k, from = first + (k + 1) % inGroup;
                    const int toStart = origin + to * size, fromStart = origin + from * size;
                    strips.stretch(target, toStart, std::min<int>(size, origin + extent - toStart),
                                   source, fromStart,
                                   std::min<int>(size, origin + extent - fromStart));
                }
                if (!finishRow()) return false;
            }
            return true;
        };
        // Both ways: blocks change places across the diagonal.
        alongKind(kind, *p.source, *p.target, exchange);
    });
}

void Class_Geometry::Notches(std::int16_t left, std::int16_t top, std::int16_t right,
                             std::int16_t bottom, std::int16_t step) {
    guarded([&] {
        const Pictures p = blitPictures(1);
        if (!p || !validRect(left, top, right, bottom)) return;
        const int width = right - left, height = bottom - top;
        const int h2 = height / 2;
        const int h = std::max(1, width / 2 > 0 ? height / (width / 2) : height);
        const int bands = (std::max(h2, height - h2) + h - 1) / h;
        SetProgressRange(0, bands);
        // Band k from the middle line outward: the upper half to the left,
        // the lower half to the right, step more each band and back to one
        // step every eighth band, so that the sides are cut into teeth.
        for (int k = 0; k < bands; ++k) {
            const int shift = step * (k % NotchBands + 1);
            const int upperEnd = top + h2 - k * h, upperStart = std::max<int>(top, upperEnd - h);
            if (upperEnd > upperStart) {
                BitBlt(*p.target, left - shift, upperStart, width, upperEnd - upperStart, *p.source,
                       left, upperStart, SRCCOPY);
            }
            const int lowerStart = top + h2 + k * h,
                      lowerEnd = std::min<int>(bottom, lowerStart + h);
            if (lowerEnd > lowerStart) {
                BitBlt(*p.target, left + shift, lowerStart, width, lowerEnd - lowerStart, *p.source,
                       left, lowerStart, SRCCOPY);
            }
            if (!finishRow()) return;
        }
    });
}

namespace {

// The shear of Slope: bands of rows (rows false: bands of columns), each
// (band * factor + across) / across further than the one before it from
// one edge, in integer steps; setRange gets the number of bands.
void shear(Surface& target, const Surface& source, const ProcessRect& rect, bool rows, int factor,
           bool fromFarEdge, const std::function<void(int)>& setRange,
           const std::function<bool()>& finishBand) {
    const int width = rect.right - rect.left, height = rect.bottom - rect.top;
    const int extent = rows ? height : width, across = std::max(rows ? width : height, 1);
    const int band = extent / across + 1;
    const int bands = (extent + band - 1) / band;
    const std::int64_t advance = (static_cast<std::int64_t>(band) * factor + across) / across;
    setRange(bands);
    for (int k = 0, t = 0; t < extent; ++k, t += band) {
        const int size = std::min(band, extent - t);
        const auto shift = static_cast<int>(
            std::clamp<std::int64_t>((fromFarEdge ? bands - 1 - k : k) * advance, -65536, 65536));
        if (rows) {
            BitBlt(target, rect.left + shift, rect.top + t, width, size, source, rect.left,
                   rect.top + t, SRCCOPY);
        } else {
            BitBlt(target, rect.left + t, rect.top + shift, size, height, source, rect.left + t,
                   rect.top, SRCCOPY);
        }
        if (!finishBand()) return;
    }
}

} // namespace

void Class_Geometry::slopeMove(bool horizontal, std::int16_t factor, const ProcessRect& rect,
                               std::int16_t slope, std::int16_t backgroundKind) {
    guarded([&] {
        const Pictures p = blitPictures(backgroundKind);
        if (!p || !validRect(rect.left, rect.top, rect.right, rect.bottom)) return;
        shear(
            *p.target, *p.source, rect, horizontal, factor, slope != 0,
            [this](int bands) { SetProgressRange(0, bands); }, [this] { return finishRow(); });
    });
}

void Class_Geometry::Slope_Horizontal(std::int16_t factor, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom, std::int16_t slope,
                                      std::int16_t backgroundKind) {
    slopeMove(true, factor, {left, top, right, bottom}, slope, backgroundKind);
}

void Class_Geometry::Slope_Vertical(std::int16_t factor, std::int16_t left, std::int16_t top,
                                    std::int16_t right, std::int16_t bottom, std::int16_t slope,
                                    std::int16_t backgroundKind) {
    slopeMove(false, factor, {left, top, right, bottom}, slope, backgroundKind);
}

void Class_Geometry::Transform_Jagged(std::int16_t value, std::int16_t step, std::int16_t direction,
                                      std::int16_t left, std::int16_t top, std::int16_t right,
                                      std::int16_t bottom, std::int16_t backgroundKind) {
    guarded([&] {
        const Pictures p = blitPictures(backgroundKind);
        if (!p || !validRect(left, top, right, bottom)) return;
        const ProcessRect rect{left, top, right, bottom};
        // Bands of rows (direction 0) pushed alternately right and left by
        // half their height; columns down and up otherwise.
        const Strips strips{rect, direction != 0};
        const int band = std::max(1, value / std::max(step + 1, 1));
        const int extent = strips.extent();
        SetProgressRange(0, (extent + band - 1) / band);
        for (int k = 0, t = 0; t < extent; ++k, t += band) {
            const int shift = (k % 2 == 0 ? 1 : -1) * (band / 2);
            strips.shifted(*p.target, strips.origin() + t, std::min(band, extent - t), *p.source,
                           shift);
            if (!finishRow()) return;
        }
    });
}

void Class_Geometry::Warp_Slide(std::int16_t interval, std::int16_t slide, std::uint8_t direction,
                                std::int16_t left, std::int16_t top, std::int16_t right,
                                std::int16_t bottom, std::int16_t backgroundKind) {
    guarded([&] {
        const Pictures p = blitPictures(backgroundKind);
        if (!p || interval < 1 || direction > 1 || !validRect(left, top, right, bottom)) return;
        const ProcessRect rect{left, top, right, bottom};
        // Bands of rows slide across (direction 0), bands of columns down:
        // each band `slide` further than the one before, like a fanned deck.
        const Strips strips{rect, direction == 1};
        const int extent = strips.extent();
        SetProgressRange(0, (extent + interval - 1) / interval);
        for (int k = 0, t = 0; t < extent; ++k, t += interval) {
            int shift = k * slide;
            // A place beyond what a blit argument can carry: the band is
            // copied where it stands.
            if (std::abs(shift) + (direction == 1 ? top : left) > 65534) shift = 0;
            strips.shifted(*p.target, strips.origin() + t, std::min<int>(interval, extent - t),
                           *p.source, shift);
            if (!finishRow()) return;
        }
    });
}

void Class_Geometry::Transform_Crank(std::uint8_t kind, std::int16_t step, std::int16_t left,
                                     std::int16_t top, std::int16_t right, std::int16_t bottom,
                                     std::int16_t backgroundKind) {
    guarded([&] {
        if (kind > 5 || !validRect(left, top, right, bottom)) return;
        const int s = step == 1 ? 2 : std::max<int>(step, 0);
        const ProcessRect rect{left, top, right, bottom};
        if (kind >= 3) {
            crankBlend(kind, s, rect);
            return;
        }
        const Pictures p = blitPictures(backgroundKind);
        if (!p) return;
        const auto crank = [&](bool rows, const Surface& source, Surface& target) {
            // Rows move across by the walk of their index, columns down.
            const Strips strips{rect, !rows};
            ProgressCount = 0;
            SetProgressRange(0, strips.extent());
            for (int t = 0; t < strips.extent(); ++t) {
                strips.shifted(target, strips.origin() + t, 1, source, triangle(t, s));
                if (!finishRow()) return false;
            }
            return true;
        };
        alongKind(kind, *p.source, *p.target, crank);
    });
}

} // namespace lumiran
