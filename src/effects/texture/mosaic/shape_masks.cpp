#include "effects/texture/mosaic/shape_masks.h"

#include "engine/drawing/drawing.h"
#include "engine/numeric.h"

#include <array>
#include <vector>

namespace lumiran::mosaic {
namespace {

constexpr ColourRef White = RGB(255, 255, 255);
constexpr ColourRef Black = RGB(0, 0, 0);

// The work picture of one cell, cleared to black.
Surface workPicture(int size) {
    Surface picture(size, size);
    Cls(picture, Black);
    return picture;
}

CellMask readMask(const Surface& picture) {
    CellMask mask{picture.width(), picture.height(),
                  std::vector<std::uint8_t>(picture.pixelCount())};
    for (int i = 0; i < picture.height(); ++i) {
        for (int j = 0; j < picture.width(); ++j)
            mask.cells[static_cast<std::size_t>(i) * mask.width + j] =
                GetPixel(picture, j, i) != Black ? 1 : 0;
    }
    return mask;
}

// A canvas whose closed shapes are filled in the given colour.
Canvas filling(Surface& picture, ColourRef colour) {
    Canvas canvas(picture);
    canvas.FillStyle = BrushStyle::Solid;
    canvas.FillColor = colour;
    return canvas;
}

void fillPolygon(Surface& picture, std::initializer_list<CanvasPoint> points, ColourRef colour) {
    Canvas canvas = filling(picture, colour);
    const std::vector<CanvasPoint> corners(points);
    canvas.Polygon(corners, colour);
}

// The circle of the circle mosaic: the outline around the middle with two
// pixels to spare, then a border fill from the centre. Halves of an odd
// size round to even, as the conversions of the drawing calls do.
struct Disc {
    int centre;
    int radius;
};

Disc discOf(int size) {
    return {roundTo<int>(size / 2.0), roundTo<int>(size / 2.0 - 2)};
}

void drawDisc(Surface& picture, int size) {
    const Disc disc = discOf(size);
    Canvas canvas(picture);
    canvas.Circle(disc.centre, disc.centre, disc.radius, White);
    FloodFill(picture, disc.centre, disc.centre, White, White);
}

// A square with both diagonals left black: a pyramid seen from above.
void drawPyramid(Surface& picture, int size) {
    const Disc disc = discOf(size);
    const int low = disc.centre - disc.radius;
    const int high = disc.centre + disc.radius;
    Canvas canvas(picture);
    canvas.Line(low, low, high, high, White, LineKind::BF);
    canvas.Line(low, low, high + 1, high + 1, Black);
    canvas.Line(high, low, low - 1, high + 1, Black);
}

// Triangles 2..7: the four halves on a diagonal, then pointing up and down.
void drawTriangle(Surface& picture, int size, int index) {
    const int e = size - 1;
    const int c = e / 2;
    switch (index) {
    case 0:
        fillPolygon(picture, {{0, 0}, {0, e}, {e, e}}, White);
        break;
    case 1:
        fillPolygon(picture, {{0, 0}, {e, 0}, {e, e}}, White);
        break;
    case 2:
        fillPolygon(picture, {{0, 0}, {e, 0}, {0, e}}, White);
        break;
    case 3:
        fillPolygon(picture, {{e, 0}, {e, e}, {0, e}}, White);
        break;
    case 4:
        fillPolygon(picture, {{c, 0}, {e, e}, {0, e}}, White);
        break;
    default:
        fillPolygon(picture, {{0, 0}, {e, 0}, {c, e}}, White);
        break;
    }
}

// A lozenge around (x, y) with half-diagonals a across and b down.
void fillLozenge(Surface& picture, int x, int y, int a, int b, ColourRef colour) {
    fillPolygon(picture, {{x, y - b}, {x + a, y}, {x, y + b}, {x - a, y}}, colour);
}

// Lozenges 8..15. The first touches the middles of the cell's sides, so
// that copies on a lattice of half blocks tile the plane.
void drawLozenge(Surface& picture, int size, int index) {
    const int h = size / 2;
    const int q = size / 4;
    switch (index) {
    case 0: // touching the sides
        fillLozenge(picture, h, h, h, h, White);
        break;
    case 1: // half as large
        fillLozenge(picture, h, h, q, q, White);
        break;
    case 2: // tall
        fillLozenge(picture, h, h, q, h, White);
        break;
    case 3: // wide
        fillLozenge(picture, h, h, h, q, White);
        break;
    case 4: // a ring
        fillLozenge(picture, h, h, h, h, White);
        fillLozenge(picture, h, h, q, q, Black);
        break;
    case 5: // the four corners around a lozenge
        Cls(picture, White);
        fillLozenge(picture, h, h, h, h, Black);
        break;
    case 6: // two tall ones side by side
        fillLozenge(picture, q, h, q, h, White);
        fillLozenge(picture, h + q, h, q, h, White);
        break;
    default: // four small ones
        for (const int y : {q, h + q}) {
            for (const int x : {q, h + q})
                fillLozenge(picture, x, y, q, q, White);
        }
        break;
    }
}

// The disc of the circle mosaic with two eyes and a smiling mouth left
// black.
void drawSmile(Surface& picture, int size) {
    drawDisc(picture, size);
    const Disc disc = discOf(size);
    const int c = disc.centre;
    const int eye = std::max(1, size / 12);
    Canvas eyes = filling(picture, Black);
    eyes.Circle(c - size / 5, c - size / 7, eye, Black);
    eyes.Circle(c + size / 5, c - size / 7, eye, Black);
    Canvas mouth(picture);
    mouth.DrawWidth = std::max(1, size / 16);
    mouth.setClip(0, c + size / 10, size, size);
    mouth.Circle(c, c, size / 4 + 1, Black);
}

} // namespace

CellMask shapeMask(int size, int shape) {
    Surface picture = workPicture(size);
    if (shape == static_cast<int>(Shape::Circle)) {
        drawDisc(picture, size);
    } else if (shape == static_cast<int>(Shape::Pyramid)) {
        drawPyramid(picture, size);
    } else if (shape >= static_cast<int>(Shape::FirstTriangle) &&
               shape < static_cast<int>(Shape::FirstLozenge)) {
        drawTriangle(picture, size, shape - static_cast<int>(Shape::FirstTriangle));
    } else if (shape >= static_cast<int>(Shape::FirstLozenge) &&
               shape < static_cast<int>(Shape::Smile)) {
        drawLozenge(picture, size, shape - static_cast<int>(Shape::FirstLozenge));
    } else if (shape == static_cast<int>(Shape::Smile)) {
        drawSmile(picture, size);
    }
    return readMask(picture);
}

CellMask dotMask(int size) {
    Surface picture = workPicture(size);
    const int centre = roundTo<int>(size / 2.0);
    Canvas canvas = filling(picture, White);
    canvas.Circle(centre, centre, roundTo<int>(size / 2.0 - 1), White);
    return readMask(picture);
}

CellMask starMask(int size, bool outlined) {
    Surface picture = workPicture(size);
    const int radius = size / 2;
    filling(picture, White).Circle(radius, radius, radius, White);
    Canvas corners = filling(picture, Black);
    for (const CanvasPoint c : {CanvasPoint{0, 0}, {size, 0}, {0, size}, {size, size}})
        corners.Circle(c.x, c.y, radius, Black);
    if (outlined) Canvas(picture).Circle(radius, radius, radius, Black);
    return readMask(picture);
}

CellMask petalMask(int size, int slant, bool outlined) {
    const int half = std::max(1, size / 2);
    const int radius = size / 2;
    const CanvasPoint ends[2][2] = {{{0, 0}, {half, half}}, {{half, 0}, {0, half}}};
    const auto& [a, b] = ends[slant & 1];
    // The lens is where the two discs, drawn apart, overlap.
    Surface picture = workPicture(half);
    Surface other = workPicture(half);
    filling(picture, White).Circle(a.x, a.y, radius, White);
    filling(other, White).Circle(b.x, b.y, radius, White);
    BitBlt(picture, 0, 0, half, half, other, 0, 0, SRCAND);
    if (outlined) {
        Canvas arcs(picture);
        arcs.Circle(a.x, a.y, radius, Black);
        arcs.Circle(b.x, b.y, radius, Black);
    }
    return readMask(picture);
}

} // namespace lumiran::mosaic
