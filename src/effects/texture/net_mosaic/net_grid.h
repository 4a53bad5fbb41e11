#pragma once

// The net of Class_NetMosaic: vertices on a grid, moved at random or onto
// the picture's edges, and the sides between them as polylines.
#include "engine/drawing/canvas.h"
#include "engine/random_generator.h"
#include "engine/surface.h"

#include <vector>

namespace lumiran::net {

// The part of the picture the net covers; right and bottom exclusive.
struct Area {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};

using Polyline = std::vector<CanvasPoint>;

class Net {
  public:
    // Vertices every size pixels from the area's top left, the last row and
    // column on the area's far sides. Border vertices move only along their
    // border.
    Net(const Area& area, int size);

    // Type 0: each vertex moved by round((Rnd - 0.5) noise) across, then
    // down, and each side displaced at its midpoints, recursively.
    void scatter(int noise, RandomGenerator& random);
    // Type 1: each vertex moved to the pixel of the strongest change of
    // colour within reach.
    void snapToEdges(const Surface& source, int noise);

    [[nodiscard]] int cellColumns() const { return columns_ - 1; }
    [[nodiscard]] int cellRows() const { return rows_ - 1; }
    // The closed outline of cell (a, b), clockwise from its upper left.
    [[nodiscard]] Polyline cellOutline(int a, int b) const;
    // Every side once: the horizontal ones of vertex row b and the vertical
    // ones below it.
    [[nodiscard]] std::vector<const Polyline*> sidesOfRow(int b) const;

  private:
    [[nodiscard]] int reach(int noise) const;
    [[nodiscard]] CanvasPoint& vertex(int a, int b) { return vertices_[b * columns_ + a]; }
    [[nodiscard]] const CanvasPoint& vertex(int a, int b) const {
        return vertices_[b * columns_ + a];
    }
    [[nodiscard]] bool onBorderColumn(int a) const { return a == 0 || a == columns_ - 1; }
    [[nodiscard]] bool onBorderRow(int b) const { return b == 0 || b == rows_ - 1; }
    void straightSides();

    Area area_;
    int size_ = 1;
    int columns_ = 0; // vertices across
    int rows_ = 0;    // vertices down
    std::vector<CanvasPoint> vertices_;
    std::vector<Polyline> across_; // from (a, b) to (a + 1, b), row-major
    std::vector<Polyline> down_;   // from (a, b) to (a, b + 1), row-major
};

} // namespace lumiran::net
