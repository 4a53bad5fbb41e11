// The blurs whose length follows a grey map: the map of Draw_BlurMap, then
// Blur_Circle (one pass, mean of three) or Blur_CircleSoften (the passes of
// Blur_Gaussian with offsets scaled by the map).
#include "effects/geometry/blur_passes.h"
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <cmath>

namespace lumiran {
namespace {

constexpr int FirstPassCaption = 3435;  // "しばらくお待ちください。1/2"
constexpr int SecondPassCaption = 3437; // "しばらくお待ちください。2/2"

// The share (0..1) of the longest blur at offset (dx, dy) from the middle
// of a rectangle of half sizes w2, h2, by map kind: 0 rings growing
// outward, 1 sine ripples, 2 a two-arm spiral, 3..6 lines from the upper
// left, lower left, upper right, lower right corner, 7..10 from the top,
// bottom, left, right edge, 11 the border.
double mapShare(int kind, double dx, double dy, double w2, double h2, double size) {
    const double r = std::sqrt(dx * dx + dy * dy);
    const double diagonal = 2 * std::sqrt(w2 * w2 + h2 * h2);
    const auto corner = [&](double sx, double sy) {
        const double ex = dx - sx * w2, ey = dy - sy * h2;
        return std::sqrt(ex * ex + ey * ey) / diagonal;
    };
    switch (kind) {
    case 0:
        return r / (diagonal / 2);
    case 1:
        return std::abs(std::sin(r / (size / 4) / GeometryPi));
    case 2:
        return (1 + std::sin(2 * std::atan2(dy, dx) + r / size)) / 2;
    case 3:
        return corner(-1, -1);
    case 4:
        return corner(-1, 1);
    case 5:
        return corner(1, -1);
    case 6:
        return corner(1, 1);
    case 7:
        return (dy + h2) / (2 * h2);
    case 8:
        return (h2 - dy) / (2 * h2);
    case 9:
        return (dx + w2) / (2 * w2);
    case 10:
        return (w2 - dx) / (2 * w2);
    default:
        return std::max(std::abs(dx) / w2, std::abs(dy) / h2);
    }
}

} // namespace

void Class_Geometry::Draw_BlurMap(std::uint8_t kind, std::int16_t size, std::int16_t left,
                                  std::int16_t top, std::int16_t right, std::int16_t bottom,
                                  std::vector<std::uint8_t>& map) {
    if (context().progress != nullptr) context().progress->showCaption(FirstPassCaption);
    map.assign(ImageBits.pixelCount(), 0);
    const Span span = spanOf(ProcessRect{left, top, right, bottom});
    if (span.empty() || size < 1) return;
    const double w2 = std::max(wrap16(right - left) / 2.0, 0.5);
    const double h2 = std::max(wrap16(bottom - top) / 2.0, 0.5);
    const double cx = left + w2, cy = top + h2;
    const double longest = std::min<int>(size, 255);
    // The map is the first of the two passes and counts its rows.
    SetProgressRange(top, bottom);
    forEachRow(ProcessRect{left, top, right, bottom}, [&](int y, int first, int end) {
        std::uint8_t* row = map.data() + static_cast<std::size_t>(y) * ImageBits.width();
        for (int x = first; x < end; ++x) {
            const double share =
                std::clamp(mapShare(kind, x + 0.5 - cx, y + 0.5 - cy, w2, h2, size), 0.0, 1.0);
            const int level = roundTo<std::int32_t>(share * longest);
            row[x] = static_cast<std::uint8_t>(level);
        }
    });
    ProgressCount = 0;
}

std::vector<std::uint8_t> Class_Geometry::blurMapFirst(std::uint8_t mapKind, std::int16_t size,
                                                       const ProcessRect& rect) {
    std::vector<std::uint8_t> map;
    Draw_BlurMap(mapKind, size, rect.left, rect.top, rect.right, rect.bottom, map);
    if (context().progress != nullptr) context().progress->showCaption(SecondPassCaption);
    return map;
}

void Class_Geometry::Blur_Circle(std::uint8_t direction, std::int16_t size, std::int16_t left,
                                 std::int16_t top, std::int16_t right, std::int16_t bottom,
                                 std::uint8_t mapKind) {
    guarded([&] {
        if (direction > 3 || mapKind > 11) return;
        const ProcessRect rect{left, top, right, bottom};
        const std::vector<std::uint8_t> map = blurMapFirst(mapKind, size, rect);
        SetProgressRange(top, bottom);
        // The steps of Blur_Normal's direction, at the map's length.
        static constexpr std::array<std::array<blur::Tap, 2>, 4> steps{{
            {{{1, 0}, {-1, 0}}},
            {{{0, 1}, {0, -1}}},
            {{{1, 1}, {-1, -1}}},
            {{{-1, 1}, {1, -1}}},
        }};
        const auto& step = steps[direction];
        sampleMeanPass(rect, 3, [&](int x, int y, blur::Taps& taps) {
            const int m = map[static_cast<std::size_t>(y) * ImageBits.width() + x];
            taps[0] = {step[0].dx * m, step[0].dy * m};
            taps[1] = {step[1].dx * m, step[1].dy * m};
        });
    });
}

void Class_Geometry::Blur_CircleSoften(std::uint8_t kind, std::int16_t size, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::uint8_t mapKind) {
    guarded([&] {
        if (kind > 11 || mapKind > 11) return;
        const ProcessRect rect{left, top, right, bottom};
        const std::vector<std::uint8_t> map = blurMapFirst(mapKind, size, rect);
        // Blur_Gaussian's offsets as unit steps; kind 8 along the row at d
        // and d / 2, 9..11 mirrored pairs.
        static constexpr std::array<std::array<blur::Tap, 4>, 12> steps{{
            {{{0, -1}}},
            {{{0, 1}}},
            {{{1, 0}}},
            {{{-1, 0}}},
            {{{1, 1}}},
            {{{-1, 1}}},
            {{{1, -1}}},
            {{{-1, -1}}},
            {{{2, 0}, {-2, 0}, {1, 0}, {-1, 0}}},
            {{{0, 1}, {0, -1}}},
            {{{-1, 1}, {1, -1}}},
            {{{1, 1}, {-1, -1}}},
        }};
        const int count = kind < 8 ? 2 : kind == 8 ? 5 : 3;
        const int longest = std::min<int>(size, 255);
        for (int d = size; d >= 1; --d) {
            if (d != size) nextPass();
            ProgressCount = 0;
            SetProgressRange(top, bottom);
            sampleMeanPass(rect, count, [&](int x, int y, blur::Taps& taps) {
                // The pass's offset in the share the map gives this pixel.
                const int reach =
                    d * map[static_cast<std::size_t>(y) * ImageBits.width() + x] / longest;
                for (int k = 0; k < count - 1; ++k) {
                    const blur::Tap s = steps[kind][static_cast<std::size_t>(k)];
                    // Kind 8's steps are in halves of the reach.
                    const int unit = kind == 8 ? reach : reach * 2;
                    taps[static_cast<std::size_t>(k)] = {s.dx * unit / 2, s.dy * unit / 2};
                }
            });
            if (context().cancelled()) return;
        }
    });
}

} // namespace lumiran
