// Soften_Circle, "特殊平滑化": a mean of level samples on a short line
// through the pixel, the line following the shape of the type.
#include "effects/smoothing/soften_window.h"

#include <cmath>

namespace lumiran {
namespace {

struct Direction {
    double x = 0;
    double y = 0;
};

// Half away from zero, as std::lround, without the library call.
int nearest(double v) {
    return static_cast<int>(std::copysign(std::floor(std::fabs(v) + 0.5), v));
}

Direction unit(double x, double y) {
    const double length = std::sqrt(x * x + y * y);
    if (length == 0) return {};
    return {x / length, y / length};
}

// The types: 0 "円" around the centre, 1 "跳ねかける" away from it,
// 2 "水平", 3 "垂直", 4 "渦巻き" (half around, half away), 5..12 the lines
// from the corners top left, bottom left, top right, bottom right and from
// the middles of the top, bottom, left and right edges.
class Shape {
  public:
    Shape(int type, const ProcessRect& rect) : type_(type) {
        const double left = rect.left;
        const double top = rect.top;
        const double right = rect.right - 1;
        const double bottom = rect.bottom - 1;
        const double cx = (left + right) / 2;
        const double cy = (top + bottom) / 2;
        const std::array<Direction, 13> origins{{{cx, cy},
                                                 {cx, cy},
                                                 {},
                                                 {},
                                                 {cx, cy},
                                                 {left, top},
                                                 {left, bottom},
                                                 {right, top},
                                                 {right, bottom},
                                                 {cx, top},
                                                 {cx, bottom},
                                                 {left, cy},
                                                 {right, cy}}};
        origin_ = origins[static_cast<std::size_t>(type)];
    }

    [[nodiscard]] Direction at(int x, int y) const {
        const double dx = x - origin_.x;
        const double dy = y - origin_.y;
        switch (type_) {
        case 0:
            return unit(-dy, dx);
        case 2:
            return {1, 0};
        case 3:
            return {0, 1};
        case 4:
            return unit(dx - dy, dx + dy);
        default:
            return unit(dx, dy);
        }
    }

  private:
    int type_;
    Direction origin_;
};

} // namespace

void Class_Soften::Soften_Circle(std::uint8_t, std::int16_t level, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t type) {
    guardedTrans([&] {
        if (type > 12 || level < 1) return;
        const ProcessRect rect =
            soften::cutToPicture({left, top, right, bottom}, ImageBits.width(), ImageBits.height());
        const Shape shape(type, rect);
        // Samples at -(level - 1) / 2 .. level / 2 along the line; one that
        // leaves the rectangle falls back to the pixel's own row or column.
        const int first = -((level - 1) / 2);
        SetProgressRange(rect.top, rect.bottom);
        forEachRow(rect, [&](int y, int firstColumn, int endColumn) {
            Pixel* out = TransBits.row(y).data();
            for (int x = firstColumn; x < endColumn; ++x) {
                const Direction d = shape.at(x, y);
                IntRgb sum;
                for (int i = 0; i < level; ++i) {
                    const double t = first + i;
                    int sx = x + nearest(t * d.x);
                    int sy = y + nearest(t * d.y);
                    if (sx < rect.left || sx >= rect.right) sx = x;
                    if (sy < rect.top || sy >= rect.bottom) sy = y;
                    const IntRgb e = channelsOf(ImageBits.at(sx, sy));
                    sum.r += e.r;
                    sum.g += e.g;
                    sum.b += e.b;
                }
                const IntRgb c = channelsOf(ImageBits.at(x, y));
                const Rgb16 v{wrap16(sum.r / level), wrap16(sum.g / level), wrap16(sum.b / level)};
                const Rgb16 e = finishPixel<ResultTail::Clamp>(c.r, c.g, c.b, v);
                out[x] = withColour(out[x], e.red, e.green, e.blue);
            }
        });
    });
}

} // namespace lumiran
