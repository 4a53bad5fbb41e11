#include "effects/halftone/binarization/bilevel_map.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "engine/drawing/drawing.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

namespace lumiran {
namespace {

struct Step {
    int dx;
    int dy;
};

// Direction 0 is down, and the numbers run round through right, up and
// left: (0,+1) (+1,+1) (+1,0) (+1,-1) (0,-1) (-1,-1) (-1,0) (-1,+1).
constexpr std::array<Step, 8> Directions{
    {{0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}}};

// The neighbours whose background starts a trace, in the order tested,
// each with the direction the trace begins in: one past the neighbour's
// own direction.
struct StartTest {
    Step neighbour;
    int firstDirection;
};
constexpr std::array<StartTest, 5> StartTests{{
    {{-1, 0}, 7}, // left
    {{1, 0}, 3},  // right
    {{-1, 1}, 0}, // below left
    {{0, 1}, 1},  // below
    {{1, 1}, 2},  // below right
}};

// Twelve steps at most, whether they find foreground or not; a step that
// comes back to the start ends the trace at once.
constexpr int StepLimit = 12;

// Where traces leave their marks: straight in the result, since a trace
// reads nothing but the map. Traces started on different rows may mark
// the same pixel with the same value, so the writes are atomic.
void mark(Pixel& target, Pixel ink) {
    const std::atomic_ref<Pixel> p(target);
    p.store((p.load(std::memory_order_relaxed) & 0xFF000000u) | ink, std::memory_order_relaxed);
}

// The map and the result walked together: a step is one offset in each.
struct TraceGrid {
    const std::uint8_t* cells; // the map's row top, column left
    Pixel* pixels;             // the result at the same place
    std::ptrdiff_t cellStride;
    std::ptrdiff_t pixelStride;
    int left;
    int top;
    Pixel ink;
};

// A trace that starts far enough from the top and left edges never
// reaches them, so it needs no clamp.
void traceInside(const TraceGrid& g, int startX, int startY, int direction) {
    const std::ptrdiff_t startCell = (startY - g.top) * g.cellStride + (startX - g.left);
    const std::ptrdiff_t startPixel = (startY - g.top) * g.pixelStride + (startX - g.left);
    std::ptrdiff_t cell = startCell;
    std::ptrdiff_t pixel = startPixel;
    for (int steps = 0; steps != StepLimit; ++steps) {
        const Step d = Directions[static_cast<std::size_t>(direction)];
        const std::ptrdiff_t nextCell = cell + d.dy * g.cellStride + d.dx;
        if (g.cells[nextCell] == 1) {
            direction = (direction + 7) & 7;
            cell = nextCell;
            pixel += d.dy * g.pixelStride + d.dx;
            mark(g.pixels[pixel], g.ink);
            if (cell == startCell) return;
        } else {
            direction = (direction + 1) & 7;
        }
    }
}

void traceNearEdge(const TraceGrid& g, int startX, int startY, int direction) {
    int x = startX;
    int y = startY;
    for (int steps = 0; steps != StepLimit; ++steps) {
        const Step d = Directions[static_cast<std::size_t>(direction)];
        // Only the top and left edges hold the step back; the map's extra
        // column and row are background.
        const int qx = std::max(x + d.dx, g.left);
        const int qy = std::max(y + d.dy, g.top);
        if (g.cells[(qy - g.top) * g.cellStride + (qx - g.left)] == 1) {
            direction = (direction + 7) & 7;
            mark(g.pixels[(qy - g.top) * g.pixelStride + (qx - g.left)], g.ink);
            x = qx;
            y = qy;
            if (x == startX && y == startY) return;
        } else {
            direction = (direction + 1) & 7;
        }
    }
}

} // namespace

void Class_Binarization::followBorders(int measure, std::int16_t polarity, std::int16_t threshold,
                                       std::int16_t startKind, const ProcessRect& rect,
                                       bool overPicture) {
    if (!arraysReady()) return;
    const Span s = spanOf(rect);
    if (s.empty()) return;
    const BilevelMap map = foregroundMap(context(), ImageBits, s.firstColumn, s.firstRow,
                                         s.endColumn, s.endRow, measure, polarity, threshold);
    if (!reachStage(33)) return;

    // From here on a cancel no longer stops the run, so the marks go to
    // the result as the traces find them; the plain result is cleared
    // first.
    const ColourRef ink = markColour(overPicture);
    if (!overPicture) clearMarks(s);
    const TraceGrid grid{map.row(s.firstRow), TransBits.row(s.firstRow).data() + s.firstColumn,
                         map.width(),         TransBits.width(),
                         s.firstColumn,       s.firstRow,
                         colourBitsOf(ink)};
    if (startKind == 1) {
        const int firstX = s.firstColumn + 1;
        const int endX = s.endColumn - 1;
        forEachRowShared(context(), s.firstRow + 1, s.endRow - 1, endX - firstX, [&](int y) {
            const std::uint8_t* here = map.row(y);
            const std::uint8_t* below = map.row(y + 1);
            const bool rowInside = y - s.firstRow > StepLimit;
            for (int x = firstX; x < endX; ++x) {
                const auto i = static_cast<std::size_t>(x - s.firstColumn);
                if (here[i] != 1) continue;
                // Inside a solid area no test starts a trace.
                if ((here[i - 1] & here[i + 1] & below[i - 1] & below[i] & below[i + 1]) == 1)
                    continue;
                const bool inside = rowInside && x - s.firstColumn > StepLimit;
                for (const StartTest& t : StartTests) {
                    if (map.at(x + t.neighbour.dx, y + t.neighbour.dy) != 0) continue;
                    if (inside) {
                        traceInside(grid, x, y, t.firstDirection);
                    } else {
                        traceNearEdge(grid, x, y, t.firstDirection);
                    }
                }
            }
        });
    }
    reachStage(66);
    reachStage(100);
}

void Class_Binarization::BorderFollowing_Mono(std::int16_t measure, std::int16_t polarity,
                                              std::int16_t threshold, std::int16_t startKind,
                                              std::int16_t left, std::int16_t top,
                                              std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        followBorders(measure, polarity, threshold, startKind, {left, top, right, bottom}, false);
    });
}

void Class_Binarization::BorderFollowing_Color(std::int16_t channel, std::int16_t polarity,
                                               std::int16_t threshold, std::int16_t startKind,
                                               std::int16_t left, std::int16_t top,
                                               std::int16_t right, std::int16_t bottom) {
    // Channels 0..2 are the measures r, g, b.
    guarded([&] {
        copyToTransIfUnfetched();
        if (channel < 0 || channel > 2) return;
        followBorders(channel + 2, polarity, threshold, startKind, {left, top, right, bottom},
                      true);
    });
}

} // namespace lumiran
