#pragma once

// The thin line of the pen. Internal to the drawing folder.
#include "engine/drawing/row_runs.h"
#include "engine/drawing/wide_int.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace lumiran::drawing {

// Calls emit(x, y, i) for the pixels of the line from (x1, y1) toward
// (x2, y2) whose major coordinate lies in the window; i counts the steps
// from the start. The line has one pixel per step along its major axis
// (x when |dx| >= |dy|), the end point excluded, so a line of length 0 has
// none. Step i sits at minor coordinate m1 + floor((2 i dm + n) / (2 n)),
// n the number of steps: the ideal line rounded, halves toward the larger
// coordinate, so the line from the other end covers the same pixels.
template <typename Emit>
void traceLine(std::int64_t x1, std::int64_t y1, std::int64_t x2, std::int64_t y2,
               const Window& window, Emit emit) {
    const std::int64_t dx = x2 - x1;
    const std::int64_t dy = y2 - y1;
    const std::int64_t n = std::max(std::abs(dx), std::abs(dy));
    if (n == 0) return;
    const bool xMajor = std::abs(dx) >= std::abs(dy);
    const std::int64_t major1 = xMajor ? x1 : y1;
    const std::int64_t minor1 = xMajor ? y1 : x1;
    const std::int64_t majorDelta = xMajor ? dx : dy;
    const std::int64_t minorDelta = xMajor ? dy : dx;
    const std::int64_t step = majorDelta > 0 ? 1 : -1;
    const std::int64_t low = xMajor ? window.left : window.top;
    const std::int64_t high = xMajor ? window.right : window.bottom;

    // Only the steps inside the window's major range are walked.
    std::int64_t first = step > 0 ? low - major1 : major1 - high;
    std::int64_t last = step > 0 ? high - major1 : major1 - low;
    first = std::max<std::int64_t>(first, 0);
    last = std::min<std::int64_t>(last, n - 1);
    if (first > last) return;

    // The minor offset as quotient q and remainder r of (2 i dm + n) / (2 n).
    const std::int64_t den = 2 * n;
    const auto floorDiv64 = [den](std::int64_t num) -> std::int64_t {
        // The step's numerator lies within one den of 0 (the minor delta is
        // at most the major one), as does the start of an unclipped line:
        // no division for the short lines of nets and outlines.
        if (num >= 0 && num < den) return 0;
        if (num < 0 && num >= -den) return -1;
        if (num == den) return 1;
        const std::int64_t quotient = num / den;
        return num % den != 0 && num < 0 ? quotient - 1 : quotient;
    };
    std::int64_t q = 0;
    std::int64_t r = 0;
    constexpr std::int64_t Small = std::int64_t{1} << 30;
    if (n < Small && minorDelta < Small && minorDelta > -Small) {
        // Within 62 bits: the common case, without the 128-bit division.
        const std::int64_t start = 2 * first * minorDelta + n;
        q = floorDiv64(start);
        r = start - q * den;
    } else {
        const Wide start = Wide{2} * first * minorDelta + n;
        q = static_cast<std::int64_t>(floorDiv(start, den));
        r = static_cast<std::int64_t>(start - Wide{q} * den);
    }
    const std::int64_t qStep = floorDiv64(2 * minorDelta);
    const std::int64_t rStep = 2 * minorDelta - qStep * den;
    for (std::int64_t i = first; i <= last; ++i) {
        const std::int64_t major = major1 + step * i;
        const std::int64_t minor = minor1 + q;
        if (xMajor) {
            emit(major, minor, i);
        } else {
            emit(minor, major, i);
        }
        q += qStep;
        r += rStep;
        if (r >= den) {
            r -= den;
            ++q;
        }
    }
}

} // namespace lumiran::drawing
