#include "effects/halftone/binarization/bilevel_map.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <array>

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

void trace(const BilevelMap& map, BilevelMap& marks, int left, int top, int startX, int startY,
           int direction) {
    int x = startX;
    int y = startY;
    for (int steps = 0; steps != StepLimit;) {
        const Step d = Directions[static_cast<std::size_t>(direction)];
        // Only the top and left edges hold the step back; the map's extra
        // column and row are background.
        const int qx = std::max(x + d.dx, left);
        const int qy = std::max(y + d.dy, top);
        if (map.at(qx, qy) == 1) {
            direction = (direction + 7) % 8;
            marks.set(qx, qy, 1);
            x = qx;
            y = qy;
            if (x == startX && y == startY) return;
        } else {
            direction = (direction + 1) % 8;
        }
        ++steps;
    }
}

} // namespace

void Class_Binarization::followBorders(int measure, std::int16_t polarity, std::int16_t threshold,
                                       std::int16_t startKind, const ProcessRect& rect,
                                       bool overPicture) {
    if (!arraysReady()) return;
    const Span s = spanOf(rect);
    if (s.empty()) return;
    const BilevelMap map = foregroundMap(ImageBits, s.firstColumn, s.firstRow, s.endColumn,
                                         s.endRow, measure, polarity, threshold);
    if (!reachStage(33)) return;

    BilevelMap marks(s.firstColumn, s.firstRow, s.endColumn, s.endRow);
    if (startKind == 1) {
        for (int y = s.firstRow + 1; y <= s.endRow - 2; ++y) {
            for (int x = s.firstColumn + 1; x <= s.endColumn - 2; ++x) {
                if (map.at(x, y) != 1) continue;
                for (const StartTest& t : StartTests) {
                    if (map.at(x + t.neighbour.dx, y + t.neighbour.dy) == 0) {
                        trace(map, marks, s.firstColumn, s.firstRow, x, y, t.firstDirection);
                    }
                }
            }
        }
    }
    // A cancel from here on still draws the marks made so far.
    reachStage(66);

    const ColourRef ink = markColour(overPicture);
    if (!overPicture) clearMarks(s);
    for (int y = s.firstRow; y < s.endRow; ++y) {
        for (int x = s.firstColumn; x < s.endColumn; ++x) {
            if (marks.at(x, y) == 1) SetPixelV(TransBits, x, y, ink);
        }
    }
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
        if (channel < 0 || channel > 2) return;
        followBorders(channel + 2, polarity, threshold, startKind, {left, top, right, bottom},
                      true);
    });
}

} // namespace lumiran
