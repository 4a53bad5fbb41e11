#include "effects/halftone/binarization/border_trace.h"

#include <array>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace lumiran::testing {
namespace {

// The traces step by step as the rules state them, on a plain map: the
// grid's table walk, shared first moves, side-by-side lanes and edge
// clamps must mark exactly the same pixels.
std::vector<std::uint8_t> plainTraces(const std::vector<std::uint8_t>& map, int width, int height) {
    constexpr std::array<std::array<int, 2>, 8> Directions{
        {{0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}}};
    auto at = [&](int x, int y) -> int {
        if (x >= width || y >= height) return 0;
        return map[static_cast<std::size_t>(y * width + x)];
    };
    std::vector<std::uint8_t> marks(map.size(), 0);
    auto trace = [&](int sx, int sy, int direction) {
        int x = sx, y = sy;
        for (int f = 0; f != 12; ++f) {
            const auto& d = Directions[static_cast<std::size_t>(direction)];
            const int qx = std::max(x + d[0], 0), qy = std::max(y + d[1], 0);
            if (at(qx, qy) == 1) {
                direction = (direction + 7) % 8;
                marks[static_cast<std::size_t>(qy * width + qx)] = 1;
                x = qx;
                y = qy;
                if (x == sx && y == sy) return;
            } else {
                direction = (direction + 1) % 8;
            }
        }
    };
    constexpr std::array<std::array<int, 3>, 5> Starts{
        {{-1, 0, 7}, {1, 0, 3}, {-1, 1, 0}, {0, 1, 1}, {1, 1, 2}}};
    for (int y = 1; y < height - 1; ++y) {
        for (int x = 1; x < width - 1; ++x) {
            if (at(x, y) != 1) continue;
            for (const auto& s : Starts) {
                if (at(x + s[0], y + s[1]) == 0) trace(x, y, s[2]);
            }
        }
    }
    return marks;
}

struct TraceCase {
    int width;
    int height;
    double density; // share of foreground pixels
    int threads;
};

class BorderTraces : public ::testing::TestWithParam<TraceCase> {};

TEST_P(BorderTraces, MarkWhatTheStepByStepTracesMark) {
    const TraceCase c = GetParam();
    std::mt19937 random(static_cast<unsigned>(c.width * 131 + c.height));
    std::bernoulli_distribution foreground(c.density);
    std::vector<std::uint8_t> map(static_cast<std::size_t>(c.width * c.height));
    for (auto& cell : map)
        cell = foreground(random) ? 1 : 0;

    CancelFlag cancel{0};
    RandomGenerator generator;
    RunContext context{cancel, generator};
    context.threading.threads = c.threads;
    context.threading.bandPixels = 16;
    BorderTraceGrid grid(context, c.width, c.height);
    grid.measure(context, [&](int y, std::uint8_t* out) {
        for (int x = 0; x < c.width; ++x)
            out[x] = map[static_cast<std::size_t>(y * c.width + x)] != 0 ? 0xFF : 0;
    });
    grid.trace(context);

    const std::vector<std::uint8_t> expected = plainTraces(map, c.width, c.height);
    for (int y = 0; y < c.height; ++y) {
        for (int x = 0; x < c.width; ++x) {
            ASSERT_EQ(grid.marks(y)[x], expected[static_cast<std::size_t>(y * c.width + x)])
                << "at " << x << "," << y;
        }
    }
}

// Small pictures are all edge; large ones mostly inside, where the table
// walk runs. Sparse maps give short spurs and lone pixels, dense ones long
// borders and holes.
INSTANTIATE_TEST_SUITE_P(Maps, BorderTraces,
                         ::testing::Values(TraceCase{1, 1, 0.5, 1}, TraceCase{3, 2, 0.7, 1},
                                           TraceCase{5, 5, 0.6, 1}, TraceCase{14, 40, 0.5, 2},
                                           TraceCase{64, 64, 0.15, 1}, TraceCase{64, 64, 0.5, 2},
                                           TraceCase{70, 33, 0.85, 2},
                                           TraceCase{101, 57, 0.35, 2}));

} // namespace
} // namespace lumiran::testing
