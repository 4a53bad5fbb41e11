#pragma once

// The grey maps of the two-pass warps (Ripploid, Eddying Current, Ripple):
// rings of grey drawn about a centre, one ring a step of the grey level,
// which walks up and down between two turning points. The map is held as
// the level of each ring, and a pixel takes the level of the ring through
// it: the ring of radius R covers the pixels whose distance rounds to R, as
// the outline of a circle of radius R does. So the map needs no work
// picture, reaches every pixel, and its rows can be read in any order.
#include "engine/numeric.h"
#include "engine/run_context.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace lumiran {

// The levels of rings 0 .. count - 1. The walk starts at `start` and steps
// by one a ring; reaching `high` it turns down, reaching `low` up; the
// level is held within floor..ceiling.
[[nodiscard]] inline std::vector<std::uint8_t> greyWalk(std::size_t count, double start, double low,
                                                        double high, int floor, int ceiling) {
    std::vector<std::uint8_t> levels(count);
    double level = start;
    int step = 1;
    for (std::uint8_t& ring : levels) {
        ring = static_cast<std::uint8_t>(std::clamp(static_cast<int>(level), floor, ceiling));
        level += step;
        if (level >= high) step = -1;
        if (level <= low) step = 1;
        level = std::clamp(level, static_cast<double>(floor), static_cast<double>(ceiling));
    }
    return levels;
}

// The two passes name themselves in the progress window: the map
// ("しばらくお待ちください。1/2"), then the warp ("しばらくお待ちください。2/2").
// The map costs no rows of its own, so the bar belongs to the warp.
enum class GreyMapPass { Map = 3435, Warp = 3437 };

inline void showPass(RunContext& context, GreyMapPass pass) {
    if (context.progress != nullptr) context.progress->showCaption(static_cast<int>(pass));
}

// The ring through a point at the given distance, held within the map's
// rings 0 .. rings - 1 (a distance that is not a number takes ring 0).
[[nodiscard]] inline std::size_t ringAt(double distance, std::size_t rings) {
    const double ring = roundHalfEven(distance);
    if (!(ring > 0)) return 0;
    return ring < static_cast<double>(rings) ? static_cast<std::size_t>(ring) : rings - 1;
}

} // namespace lumiran
