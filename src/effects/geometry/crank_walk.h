#pragma once

namespace lumiran::geometry {

// The triangle walk 0, 1, .., step, .., 1, 0, 1, .. at index i.
[[nodiscard]] inline int triangle(int i, int step) {
    if (step <= 0) return 0;
    const int k = i % (2 * step);
    return k <= step ? k : 2 * step - k;
}

} // namespace lumiran::geometry
