#include "effects/texture/pattern/tile_masks.h"

#include "engine/drawing/drawing.h"

#include <array>

namespace lumiran::pattern {
namespace {

constexpr ColourRef White = RGB(255, 255, 255);

Surface workPicture(int size) {
    Surface picture(size, size);
    Cls(picture, RGB(0, 0, 0));
    return picture;
}

CellMask readMask(const Surface& picture) {
    CellMask mask{picture.width(), picture.height(),
                  std::vector<std::uint8_t>(picture.pixelCount())};
    for (int i = 0; i < picture.height(); ++i) {
        for (int j = 0; j < picture.width(); ++j)
            mask.cells[static_cast<std::size_t>(i) * mask.width + j] =
                GetPixel(picture, j, i) != RGB(0, 0, 0) ? 1 : 0;
    }
    return mask;
}

void circles(Canvas& canvas, std::initializer_list<CanvasPoint> centres, int radius) {
    for (const CanvasPoint& c : centres)
        canvas.Circle(c.x, c.y, radius, White);
}

} // namespace

CellMask arcTile(int size, ArcTile tile) {
    Surface picture = workPicture(size);
    Canvas canvas(picture);
    const int r = size / 2;
    if (tile == ArcTile::Turn0 || tile == ArcTile::BothTurns)
        circles(canvas, {{0, 0}, {size, size}}, r);
    if (tile == ArcTile::Turn1 || tile == ArcTile::BothTurns)
        circles(canvas, {{size, 0}, {0, size}}, r);
    if (tile == ArcTile::Ring) circles(canvas, {{r, r}}, r);
    return readMask(picture);
}

CellMask lozengeTile(int size, std::uint8_t type) {
    Surface picture = workPicture(size);
    Canvas canvas(picture);
    const int s = size;
    const int c = s / 2;
    const int q = s / 4;
    switch (type) {
    case 0: { // lozenges joined at their corners
        const std::array<CanvasPoint, 4> corners{{{c, 0}, {s, c}, {c, s}, {0, c}}};
        canvas.Polygon(corners, White);
        break;
    }
    case 1: // triangles: two sides and a diagonal
        canvas.Line(0, 0, s, 0, White);
        canvas.Line(0, 0, 0, s, White);
        canvas.Line(s, 0, 0, s, White);
        break;
    case 2: // a lattice: the sides and both diagonals
        canvas.Line(0, 0, s, 0, White);
        canvas.Line(0, 0, 0, s, White);
        canvas.Line(0, 0, s, s, White);
        canvas.Line(s, 0, 0, s, White);
        break;
    case 3: // a frame inside each tile
        canvas.Line(q, q, s - 1 - q, s - 1 - q, White, LineKind::B);
        break;
    case 4: // an asterisk of eight rays
        canvas.Line(c - q, c, c + q + 1, c, White);
        canvas.Line(c, c - q, c, c + q + 1, White);
        canvas.Line(c - q, c - q, c + q + 1, c + q + 1, White);
        canvas.Line(c + q, c - q, c - q - 1, c + q + 1, White);
        break;
    case 5: // polka dots, every second one between the rows
        circles(canvas, {{c, c}, {0, 0}, {s, 0}, {0, s}, {s, s}}, q);
        break;
    default:
        break;
    }
    return readMask(picture);
}

CellMask shippouTile(int size, std::uint8_t type) {
    Surface picture = workPicture(size);
    Canvas canvas(picture);
    const int s = size;
    const int r = s / 2;
    if (type <= 3) circles(canvas, {{0, 0}, {s, 0}, {0, s}, {s, s}}, r);
    if (type != 1 && type <= 3) circles(canvas, {{r, r}}, r);
    if (type == 2) {
        canvas.Line(0, 0, s, 0, White);
        canvas.Line(0, 0, 0, s, White);
    }
    if (type == 3) circles(canvas, {{r, 0}, {s, r}, {r, s}, {0, r}}, r);
    return readMask(picture);
}

} // namespace lumiran::pattern
