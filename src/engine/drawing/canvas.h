#pragma once

#include "engine/drawing/colour_ref.h"
#include "engine/drawing/raster_code.h"
#include "engine/drawing/row_runs.h"
#include "engine/surface.h"

#include <cstdint>
#include <span>
#include <vector>

namespace lumiran {

// DrawStyle: solid or dotted (every second pixel of the thin line, counted
// from the start of each Line call). A dotted style applies to width 1
// only; wider pens draw solid, as the picture control's do.
enum class PenStyle : std::uint8_t { Solid = 0, Dot = 2 };

// FillStyle: whether closed shapes get their inside painted in FillColor.
enum class BrushStyle : std::uint8_t { Solid = 0, Transparent = 1 };

// The three forms of the Line method: a segment, "B" a box outline and
// "BF" a box filled in the line's colour.
enum class LineKind : std::uint8_t { Segment, B, BF };

struct CanvasPoint {
    int x = 0;
    int y = 0;
};

// The drawing of a picture control over a surface: its drawing properties
// and its shape calls. Colours are RGB longs (ColourRef, red in the low
// byte), as the effects hand them to the platform; coordinates are pixels.
// Every call paints each pixel of its shape once, combined with the
// picture by DrawMode, keeps the spare byte, and drops what falls outside
// the clip rectangle (the whole picture unless set). Where a shape has an
// inside and FillStyle is Solid, the inside is painted first in FillColor
// and the outline over it, as the platform paints brush then pen.
//
// The canvas refers to the surface; it must not outlive it.
class Canvas {
  public:
    explicit Canvas(Surface& surface) : surface_(surface) {}

    // Pen width in pixels; below 1 draws as 1 (as a pen of width 0 does),
    // above 32767 as 32767.
    int DrawWidth = 1;
    PenMode DrawMode = PenMode::CopyPen;
    PenStyle DrawStyle = PenStyle::Solid;
    BrushStyle FillStyle = BrushStyle::Transparent;
    ColourRef FillColor = 0;

    // Drawing is limited to these columns and rows (right and bottom
    // exclusive) within the picture.
    void setClip(int left, int top, int right, int bottom);
    void resetClip();

    // Line from (x1, y1) to (x2, y2) with the end point excluded; B and BF
    // take the two points as opposite corners of a box that includes both.
    void Line(int x1, int y1, int x2, int y2, ColourRef colour, LineKind kind = LineKind::Segment);

    // Circle of radius r around (x, y): Ellipse with both semi-axes r.
    void Circle(int x, int y, int radius, ColourRef colour);

    // The ellipse around (x, y) with the given semi-axes: the pixels (dx, dy)
    // with (dx / (rx + 1/2))^2 + (dy / (ry + 1/2))^2 < 1. The outline is the
    // ellipse's pixels that have a horizontal or vertical neighbour outside
    // it, so it is closed under 4-connectivity of the outside and a border
    // fill inside it cannot leak. A negative semi-axis draws nothing; semi-
    // axes above 2^30 count as 2^30.
    void Ellipse(int x, int y, int radiusX, int radiusY, ColourRef colour);

    // Closed polygon through the points: the outline is the thin lines from
    // each point to the next and from the last back to the first, each pixel
    // painted once; the inside (even-odd rule, pixel centres on the integer
    // coordinates) is filled when FillStyle is Solid. Fewer than two points
    // draw nothing.
    void Polygon(std::span<const CanvasPoint> points, ColourRef colour);

  private:
    // Where an edge crosses a row: floor + rem / den, 0 <= rem < den.
    struct Crossing {
        std::int64_t floor;
        std::int64_t rem;
        std::int64_t den;
    };
    // A polygon side over the rows from its upper end up to but not
    // including its lower one, with its crossing of the current row and
    // the step from row to row.
    struct Edge {
        std::int64_t top;
        std::int64_t bottom; // exclusive
        Crossing at;
        std::int64_t floorStep;
        std::int64_t remStep;
    };

    [[nodiscard]] const drawing::Pen& pen();
    Surface& surface_;
    int clipLeft_ = 0;
    int clipTop_ = 0;
    int clipRight_ = Surface::MaxDimension;
    int clipBottom_ = Surface::MaxDimension;

    // Reused from call to call: effects draw thousands of small shapes.
    drawing::Pen thinPen_{1};
    drawing::Pen pen_{1};
    drawing::RowRuns runs_{drawing::Window{}};
    std::vector<Edge> edges_;
    std::vector<Crossing> crossings_;
};

} // namespace lumiran
