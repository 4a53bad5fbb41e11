#pragma once

// The net of Class_NetMosaic: vertices on a grid, moved at random or onto
// the picture's edges, and the sides between them as polylines.
#include "engine/drawing/canvas.h"
#include "engine/effect_error.h"
#include "engine/picture_memory.h"
#include "engine/random_generator.h"
#include "engine/surface.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <utility>
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

// The rows of the picture something reaches, both inclusive.
struct RowReach {
    int first = 0;
    int last = -1;
};

// The generator's values drawn ahead in blocks; the generator moves on by
// as many as were handed out when this goes, so it ends where as many
// next() calls leave it.
class DrawnAhead {
  public:
    explicit DrawnAhead(RandomGenerator& random) : random_(random), ahead_(random) {}
    DrawnAhead(const DrawnAhead&) = delete;
    DrawnAhead& operator=(const DrawnAhead&) = delete;
    ~DrawnAhead() { random_.skip(ahead_.drawn()); }

    [[nodiscard]] double next() { return ahead_.next(); }

  private:
    RandomGenerator& random_;
    RandomBlocks ahead_;
};

// Polylines end to end in one array: side i is points [starts[i], starts[i + 1]).
// A 4096 x 4096 net holds some 20 MiB of points: picture memory, whose huge
// pages fault once a 2 MiB rather than once a 4 KiB. The arrays never move
// once reserved, so that another thread may draw the sides laid so far;
// the reserve must hold every point the sides can have.
class Sides {
  public:
    void clear() {
        points_.clear();
        starts_.assign(1, 0);
    }
    void reserve(std::pair<std::size_t, std::size_t> sidesAndPoints) {
        // Out of memory long before, but never a wrapped index.
        if (sidesAndPoints.second > std::numeric_limits<std::uint32_t>::max())
            throw std::bad_alloc();
        starts_.reserve(sidesAndPoints.first + 1);
        points_.reserve(sidesAndPoints.second);
    }
    // Opens a new side at the point; the following add()s extend it.
    void open(CanvasPoint from) {
        if (starts_.empty()) starts_.push_back(0);
        push(from);
        if (starts_.size() == starts_.capacity())
            throw EffectError::subscriptOutOfRange(); // more sides than reserved
        starts_.push_back(static_cast<std::uint32_t>(points_.size()));
    }
    void add(CanvasPoint p) {
        push(p);
        ++starts_.back();
    }
    [[nodiscard]] std::size_t pointCount() const { return points_.size(); }
    // The memory reserved for the points, as much as pointsPerSide a side
    // would take, and for the starts.
    [[nodiscard]] std::array<std::span<const std::byte>, 2> reserved(double pointsPerSide) const {
        const auto expected = static_cast<std::size_t>(
            pointsPerSide * static_cast<double>(starts_.capacity() - 1) + 1);
        return {std::as_bytes(std::span(points_.data(), std::min(expected, points_.capacity()))),
                std::as_bytes(std::span(starts_.data(), starts_.capacity()))};
    }
    // The rows points [from, end) reach, joined to reach.
    [[nodiscard]] RowReach rowsOf(std::size_t from, RowReach reach) const {
        for (std::size_t i = from; i < points_.size(); ++i) {
            reach.first = std::min(reach.first, points_[i].y);
            reach.last = std::max(reach.last, points_[i].y);
        }
        return reach;
    }
    // Reads no size: another thread may be adding sides meanwhile.
    [[nodiscard]] std::span<const CanvasPoint> operator[](std::size_t i) const {
        return {points_.data() + starts_[i], starts_[i + 1] - starts_[i]};
    }

  private:
    void push(CanvasPoint p) {
        if (points_.size() == points_.capacity())
            throw EffectError::subscriptOutOfRange(); // more points than reserved
        points_.push_back(p);
    }
    std::vector<CanvasPoint, PictureAllocator<CanvasPoint>> points_;
    std::vector<std::uint32_t, PictureAllocator<std::uint32_t>> starts_;
};

class Net {
  public:
    // Vertices every size pixels from the area's top left, the last row and
    // column on the area's far sides. Border vertices move only along their
    // border. The sides are laid by scatter() or snapToEdges().
    Net(const Area& area, int size);

    // Reserves the memory the sides can take, bent (scatter) or straight
    // (snapToEdges), so that its pages can be faulted in beside the laying.
    void reserveSidesFor(bool bent, int noise) {
        reserveSides(bent ? mostPointsPerSide(noise) : 2);
    }
    // How far above its row's place on the grid any point of the sides of
    // a row of vertices can lie, or below it for the sides up to it: the
    // vertex's move and the bends' shifts, each rounded.
    [[nodiscard]] int sideSpread(bool bent, int noise) const;
    // Whether no side of the net laid lies further above its row of
    // vertices than spread.
    [[nodiscard]] bool withinSpread(int spread) const;
    // The row of the picture vertex row b stands on before it moves.
    [[nodiscard]] int gridRow(int b) const {
        return std::min(area_.top + b * size_, area_.bottom - 1);
    }
    // From here on each finished row of vertices, its sides and its reaches
    // is announced by storing the count of rows finished (with release).
    void announceRowsTo(std::atomic<int>& finished) { finished_ = &finished; }
    // The part of that memory the sides are expected to fill: faulting in
    // the rest would clear pages for nothing.
    [[nodiscard]] std::array<std::span<const std::byte>, 4> sideMemory(bool bent, int noise) const {
        const double perSide = bent ? expectedPointsPerSide(noise) : 2;
        const auto across = across_.reserved(perSide);
        const auto down = down_.reserved(perSide);
        return {across[0], across[1], down[0], down[1]};
    }

    // Type 0: each vertex moved by round((Rnd - 0.5) noise) across, then
    // down, and each side displaced at its midpoints, recursively.
    void scatter(int noise, RandomGenerator& random);
    // Type 1: each vertex moved to the pixel of the strongest change of
    // colour within reach.
    void snapToEdges(const Surface& source, int noise);

    [[nodiscard]] int cellColumns() const { return columns_ - 1; }
    [[nodiscard]] int cellRows() const { return rows_ - 1; }
    // The closed outline of cell (a, b), clockwise from its upper left,
    // into outline (its memory reused).
    void cellOutline(int a, int b, Polyline& outline) const;
    // The side from vertex (a, b) to (a + 1, b), and from (a, b) to (a, b + 1).
    [[nodiscard]] std::span<const CanvasPoint> across(int a, int b) const {
        return across_[static_cast<std::size_t>(b) * (columns_ - 1) + a];
    }
    [[nodiscard]] std::span<const CanvasPoint> down(int a, int b) const {
        return down_[static_cast<std::size_t>(b) * columns_ + a];
    }
    [[nodiscard]] int vertexColumns() const { return columns_; }
    [[nodiscard]] int vertexRows() const { return rows_; }
    // The rows that the level sides of row b of vertices reach, and those
    // that the upright sides from it to row b + 1 reach (the last row's
    // first vertex alone on the last row).
    [[nodiscard]] RowReach levelReach(int b) const {
        return reaches_[static_cast<std::size_t>(b)].level;
    }
    [[nodiscard]] RowReach uprightReach(int b) const {
        return reaches_[static_cast<std::size_t>(b)].upright;
    }

  private:
    [[nodiscard]] int reach(int noise) const;
    [[nodiscard]] CanvasPoint& vertex(int a, int b) { return vertices_[b * columns_ + a]; }
    [[nodiscard]] const CanvasPoint& vertex(int a, int b) const {
        return vertices_[b * columns_ + a];
    }
    [[nodiscard]] bool onBorderColumn(int a) const { return a == 0 || a == columns_ - 1; }
    [[nodiscard]] bool onBorderRow(int b) const { return b == 0 || b == rows_ - 1; }
    void reserveSides(int pointsPerSide);
    // The first point and a piece for each split at every amplitude.
    [[nodiscard]] int mostPointsPerSide(int noise) const;
    // A little over the mean that scatter gives: the first point and a
    // piece for each split amplitude, at most one every two pixels.
    [[nodiscard]] double expectedPointsPerSide(int noise) const;
    void straightSides();
    // Notes the rows reached by the sides of row b of vertices, laid since
    // the point counts were these; while they are still at hand.
    void noteReaches(int b, std::size_t acrossFrom, std::size_t downFrom);

    Area area_;
    int size_ = 1;
    int columns_ = 0; // vertices across
    int rows_ = 0;    // vertices down
    std::vector<CanvasPoint, PictureAllocator<CanvasPoint>> vertices_;
    Sides across_; // from (a, b) to (a + 1, b), row-major
    Sides down_;   // from (a, b) to (a, b + 1), row-major
    struct Reaches {
        RowReach level;
        RowReach upright;
    };
    std::vector<Reaches> reaches_; // by row of vertices
    std::atomic<int>* finished_ = nullptr;
};

} // namespace lumiran::net
