#include "effects/halftone/binarization/bilevel_map.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "engine/drawing/drawing.h"

#include <array>
#include <utility>
#include <vector>

namespace lumiran {
namespace {

// The eight neighbours in a circle, starting to the right and running up
// and round.
constexpr std::array<std::pair<int, int>, 8> Ring{
    {{1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}, {0, 1}, {1, 1}}};

// The connection number: background-to-foreground changes round the ring.
int connection(const BilevelMap& map, int x, int y) {
    int count = 0;
    for (std::size_t i = 0; i < Ring.size(); ++i) {
        const auto [ax, ay] = Ring[i];
        const auto [bx, by] = Ring[(i + 1) % Ring.size()];
        if (map.at(x + ax, y + ay) == 0 && map.at(x + bx, y + by) == 1) ++count;
    }
    return count;
}

} // namespace

void Class_Binarization::extractFeatures(int measure, std::int16_t radius, std::int16_t threshold,
                                         std::int16_t kind, const ProcessRect& rect,
                                         std::int16_t polarity, bool overPicture) {
    if (!arraysReady()) return;
    const Span s = spanOf(rect);
    if (s.empty()) return;
    const BilevelMap map = foregroundMap(context(), ImageBits, s.firstColumn, s.firstRow,
                                         s.endColumn, s.endRow, measure, polarity, threshold);
    if (!reachStage(33)) return;

    // Kinds 0..3 keep end points, line points, branches and crossings:
    // connection numbers 1..4. A pixel inside a solid area has 0.
    const int wanted = kind + 1;
    std::vector<std::pair<int, int>> points;
    for (int y = s.firstRow + 1; y <= s.endRow - 2; ++y) {
        for (int x = s.firstColumn + 1; x <= s.endColumn - 2; ++x) {
            if (map.at(x, y) == 1 && connection(map, x, y) == wanted) points.emplace_back(x, y);
        }
    }
    reachStage(66);

    const ColourRef ink = markColour(overPicture);
    if (!overPicture) clearMarks(s);
    Canvas canvas(TransBits);
    canvas.setClip(s.firstColumn, s.firstRow, s.endColumn, s.endRow);
    for (const auto& [x, y] : points)
        canvas.Circle(x, y, radius, ink);
    reachStage(100);
}

void Class_Binarization::FeaturePointExtract_Mono(std::int16_t measure, std::int16_t radius,
                                                  std::int16_t threshold, std::int16_t kind,
                                                  std::int16_t left, std::int16_t top,
                                                  std::int16_t right, std::int16_t bottom,
                                                  std::int16_t polarity) {
    guarded([&] {
        extractFeatures(measure, radius, threshold, kind, {left, top, right, bottom}, polarity,
                        false);
    });
}

void Class_Binarization::FeaturePointExtract_Color(std::int16_t channel, std::int16_t radius,
                                                   std::int16_t threshold, std::int16_t kind,
                                                   std::int16_t left, std::int16_t top,
                                                   std::int16_t right, std::int16_t bottom,
                                                   std::int16_t polarity) {
    // Channels 0..2 are the measures r, g, b.
    guarded([&] {
        if (channel < 0 || channel > 2) return;
        extractFeatures(channel + 2, radius, threshold, kind, {left, top, right, bottom}, polarity,
                        true);
    });
}

} // namespace lumiran
