// Ellipse, triangles and trapezoids: rows or columns stretched to the size
// of a shape at their place.
#include "effects/geometry/transform/class_transform.h"
#include "effects/geometry/transform/column_copies.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumiran {
namespace {

// Rows or columns of the rectangle, each stretched onto the part of itself
// that runs from `start` for `size` pixels along it. Columns are collected
// and drawn a block at a time (see drawColumnCopies); add returns false
// when the run is cancelled.
class Strips {
  public:
    Strips(Surface& target, const Surface& source, const ProcessRect& rect, bool byColumns)
        : target_(target), source_(source), rect_(rect), byColumns_(byColumns) {}

    template <typename FinishRow>
    bool add(int index, int start, int size, FinishRow finishRow) {
        const int width = wrap16(rect_.right - rect_.left);
        const int height = wrap16(rect_.bottom - rect_.top);
        if (!byColumns_) {
            StretchBlt(target_, rect_.left + start, rect_.top + index, size, 1, source_, rect_.left,
                       rect_.top + index, width, 1, SRCCOPY);
            return finishRow();
        }
        columns_.push_back({rect_.left + index, rect_.top + start, size, rect_.top, height});
        if (columns_.size() < BlockColumns) return true;
        return flush(finishRow);
    }

    // Draws the columns still collected.
    template <typename FinishRow>
    bool flush(FinishRow finishRow) {
        drawColumnCopies(target_, source_, columns_);
        const std::size_t drawn = columns_.size();
        columns_.clear();
        for (std::size_t k = 0; k < drawn; ++k)
            if (!finishRow()) return false;
        return true;
    }

  private:
    static constexpr std::size_t BlockColumns = 64;
    Surface& target_;
    const Surface& source_;
    ProcessRect rect_;
    bool byColumns_;
    std::vector<ColumnCopy> columns_;
};

// Half the extent of a shape along a strip, as a fraction of half the
// strip, at v (-1 .. 1) across the strips.
double shapeFraction(std::uint8_t shape, double v) {
    switch (shape) {
    case ShapeEllipse:
        return std::sqrt(std::max(0.0, 1 - v * v));
    case ShapeLozenge:
        return 1 - std::abs(v);
    case ShapeHexagon:
        // The top and bottom edges span the middle half of the width.
        return 1 - std::abs(v) / 2;
    case ShapeTriangleApexFirst:
        return (v + 1) / 2;
    case ShapeTriangleApexLast:
        return (1 - v) / 2;
    default:
        return 0;
    }
}

} // namespace

bool Class_Transform::prepareTarget(std::int16_t backgroundKind, Rgb8 background) {
    const Surface* source = context().kept0;
    Surface* target = context().kept1;
    if (source == nullptr || target == nullptr) return false;
    if (backgroundKind == 0) {
        BitBlt(*target, 0, 0, target->width(), target->height(), *source, 0, 0, SRCCOPY);
    } else {
        Cls(*target, RGB(background.red, background.green, background.blue));
    }
    return true;
}

void Class_Transform::Transform_Ellipse(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                        std::int16_t right, std::int16_t bottom,
                                        std::int16_t backgroundKind) {
    guarded([&] {
        const std::uint8_t shape = kind & 7;
        if (shape > ShapeTriangleApexLast ||
            !prepareTarget(backgroundKind, context().flags.backColor)) {
            return;
        }
        const ProcessRect rect{left, top, right, bottom};
        const bool byColumns = (kind & ByColumns) != 0;
        const double width = std::abs(wrap16(right - left)),
                     height = std::abs(wrap16(bottom - top));
        const double along = byColumns ? height : width, across = byColumns ? width : height;
        // The mask of the shape, held as the run of each strip: the corners
        // of the rounded rectangle have a radius of a quarter of the shorter
        // side, the other shapes scale with both half sides.
        const double corner = std::min(width, height) / 4;
        const int count = static_cast<int>(across);
        SetProgressRange(0, count);
        Strips strips(*context().kept1, *context().kept0, rect, byColumns);
        const auto next = [this] { return finishRow(); };
        for (int j = 0; j < count; ++j) {
            double half = along / 2;
            if (shape == ShapeRoundRect) {
                const double edge = std::min(j + 0.5, across - j - 0.5);
                if (edge < corner) {
                    const double rise = corner - edge;
                    half -= corner - std::sqrt(corner * corner - rise * rise);
                }
            } else {
                half *= shapeFraction(shape, (j + 0.5 - across / 2) / (across / 2));
            }
            const int start = static_cast<int>(roundHalfEven(along / 2 - half));
            const int end = static_cast<int>(roundHalfEven(along / 2 + half));
            if (!strips.add(j, start, end - start, next)) return;
        }
        strips.flush(next);
    });
}

void Class_Transform::trapezoid(bool byColumns, std::uint8_t kind, const ProcessRect& rect,
                                std::int16_t backgroundKind, Rgb8 background) {
    guarded([&] {
        if (kind > 1 || !prepareTarget(backgroundKind, background)) return;
        const double width = std::abs(wrap16(rect.right - rect.left));
        const double height = std::abs(wrap16(rect.bottom - rect.top));
        const double along = byColumns ? height : width, across = byColumns ? width : height;
        const int count = static_cast<int>(across);
        SetProgressRange(0, count);
        Strips strips(*context().kept1, *context().kept0, rect, byColumns);
        const auto next = [this] { return finishRow(); };
        for (int j = 0; j < count; ++j) {
            // From half the size at the narrow edge to the whole at the other,
            // measured at the middle of each strip.
            const double place = kind == 0 ? j + 0.5 : across - j - 0.5;
            const double size = roundHalfEven(along / 2 + along / 2 * place / across);
            const int start = static_cast<int>(roundHalfEven((along - size) / 2));
            if (!strips.add(j, start, static_cast<int>(size), next)) return;
        }
        strips.flush(next);
    });
}

void Class_Transform::Transform_TrapzoidHorizontal(std::uint8_t kind, std::int16_t left,
                                                   std::int16_t top, std::int16_t right,
                                                   std::int16_t bottom, std::int16_t backgroundKind,
                                                   std::uint8_t red, std::uint8_t green,
                                                   std::uint8_t blue) {
    trapezoid(false, kind, {left, top, right, bottom}, backgroundKind, {red, green, blue});
}

void Class_Transform::Transform_TrapzoidVertical(std::uint8_t kind, std::int16_t left,
                                                 std::int16_t top, std::int16_t right,
                                                 std::int16_t bottom, std::int16_t backgroundKind,
                                                 std::uint8_t red, std::uint8_t green,
                                                 std::uint8_t blue) {
    trapezoid(true, kind, {left, top, right, bottom}, backgroundKind, {red, green, blue});
}

} // namespace lumiran
