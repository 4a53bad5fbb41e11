// Diffusion-limited aggregation on a lattice of cells, each stuck walker
// drawn as a line to the cell it touched.
#include "effects/texture/dla/class_dla.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace lumiran {
namespace {

// A walker that has not touched the aggregate after this many steps is
// given up, so that no run can hang on an unlucky walk.
constexpr int MaxSteps = 100000;

class Lattice {
  public:
    explicit Lattice(int side) : side_(side), cells_(static_cast<std::size_t>(side) * side, 0) {}
    [[nodiscard]] int side() const { return side_; }
    [[nodiscard]] bool occupied(int x, int y) const {
        if (x < 0 || y < 0 || x >= side_ || y >= side_) return false;
        return cells_[static_cast<std::size_t>(y) * side_ + x] != 0;
    }
    void occupy(int x, int y) { cells_[static_cast<std::size_t>(y) * side_ + x] = 1; }

  private:
    int side_;
    std::vector<std::int16_t> cells_;
};

} // namespace

void Class_DLA::Draw_DLA(Surface& picture, std::int16_t left, std::int16_t top, std::int16_t right,
                         std::int16_t bottom, std::int16_t count, std::int16_t red,
                         std::int16_t green, std::int16_t blue, std::int16_t range,
                         std::int16_t thickness) {
    guarded([&] {
        const int s = std::min(right - left, bottom - top);
        if (s < 2) return;
        // One cell a pixel: at half the resolution the default count fills
        // the disc the walkers start on instead of branching.
        const int side = s;
        const int half = roundTo<std::int32_t>(side / 2.0);
        const double k = static_cast<double>(s) / side;
        // The lattice's square, centred in the rectangle; its rows count up
        // from the bottom.
        const int cxp = roundTo<std::int32_t>((right - s - left) / 2.0 + left);
        const int cyp = roundTo<std::int32_t>((bottom - s - top) / 2.0 + top) + s - 1;
        auto px = [&](int x) { return roundTo<std::int32_t>(cxp + x * k); };
        auto py = [&](int y) { return roundTo<std::int32_t>(cyp - y * k); };

        const ColourRef colour = RGB(red, green, blue);
        Canvas canvas(picture);
        canvas.DrawWidth = thickness;
        canvas.setClip(left, top, right, bottom);
        Lattice lattice(side);
        lattice.occupy(half, half);
        if (px(half) >= left && px(half) < right && py(half) >= top && py(half) < bottom) {
            SetPixelV(picture, px(half), py(half), colour);
        }

        SetProgressRange(0, count);
        const double start = std::max(half - 5, 1);
        const double t = range;
        RandomGenerator& random = context().random;
        for (int n = 1; n <= count; ++n) {
            const double a = random.next() / 1.0 * 6.28;
            double ox = start * std::cos(a);
            double oy = start * std::sin(a);
            for (int steps = 0; steps < MaxSteps; ++steps) {
                // Jitter of the range around no drift, and a pull of one
                // hundredth of the offset toward the seed.
                const double dx = (random.next() - 0.5) * t + ox - ox * 0.01;
                const double dy = (random.next() - 0.5) * t + oy - oy * 0.01;
                const int x = std::clamp(roundTo<std::int32_t>(half + dx), 0, side - 1);
                const int y = std::clamp(roundTo<std::int32_t>(half + dy), 0, side - 1);
                bool stuck = false;
                for (int i = -1; i <= 1 && !stuck; ++i) {
                    for (int j = -1; j <= 1 && !stuck; ++j) {
                        if (!lattice.occupied(x + i, y + j)) continue;
                        lattice.occupy(x, y);
                        canvas.Line(px(x), py(y), px(x + i), py(y + j), colour);
                        stuck = true;
                    }
                }
                if (stuck) break;
                ox = dx;
                oy = dy;
            }
            if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
