#include "effects/halftone/binarization/border_trace.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstring>

namespace lumiran {
namespace {

struct Step {
    int dx;
    int dy;
};

constexpr std::array<Step, 8> Directions{
    {{0, 1}, {1, 1}, {1, 0}, {1, -1}, {0, -1}, {-1, -1}, {-1, 0}, {-1, 1}}};

// The direction of each (dx + 1, dy + 1); the middle is no direction.
constexpr std::array<std::array<int, 3>, 3> DirectionOf{{{5, 6, 7}, {4, -1, 0}, {3, 2, 1}}};

// Twelve steps at most, whether they find foreground or not; a step that
// comes back to the start ends the trace at once.
constexpr int StepLimit = 12;

// Where a trace standing on a pixel goes next, by the pixel's neighbour
// byte and the direction it faces: the failed steps it turns through and
// the move itself cost cost steps (1..8) and it moves in direction
// `moved`; cost 0 when no neighbour is foreground.
struct Turn {
    std::uint8_t cost;
    std::uint8_t moved;
};
constexpr auto Turns = [] {
    std::array<Turn, 256 * 8> table{};
    for (int n = 1; n < 256; ++n) {
        for (int d = 0; d < 8; ++d) {
            int k = 0;
            while (((n >> ((d + k) & 7)) & 1) == 0)
                ++k;
            table[static_cast<std::size_t>(n * 8 + d)] = {static_cast<std::uint8_t>(k + 1),
                                                          static_cast<std::uint8_t>((d + k) & 7)};
        }
    }
    return table;
}();

// The start tests of kind 1 in their order: the neighbour whose background
// starts a trace, and the direction the trace begins in, one past the
// neighbour's own.
struct StartTest {
    int neighbour;
    int firstDirection;
};
constexpr std::array<StartTest, 5> StartTests{{
    {6, 7}, // left
    {2, 3}, // right
    {7, 0}, // below left
    {0, 1}, // below
    {1, 2}, // below right
}};
// The walks a start pixel begins, by its neighbour byte. Traces whose
// first move goes the same way walk the same path from there on, and the
// one that turned least on the way keeps going longest: it alone makes
// all their marks. So one walk per way out, with the fewest steps any of
// the start tests spends on it.
struct FirstMoves {
    int count = 0;
    std::array<std::uint8_t, 5> moved{};
    std::array<std::uint8_t, 5> steps{};
};
constexpr auto FirstMovesOf = [] {
    std::array<FirstMoves, 256> table{};
    for (int n = 1; n < 256; ++n) {
        std::array<int, 8> fewest{};
        fewest.fill(StepLimit + 1);
        for (const StartTest& t : StartTests) {
            if (((n >> t.neighbour) & 1) != 0) continue;
            const Turn turn = Turns[static_cast<std::size_t>(n * 8 + t.firstDirection)];
            fewest[turn.moved] = std::min<int>(fewest[turn.moved], turn.cost);
        }
        FirstMoves& f = table[static_cast<std::size_t>(n)];
        for (int m = 0; m < 8; ++m) {
            if (fewest[static_cast<std::size_t>(m)] > StepLimit) continue;
            f.moved[static_cast<std::size_t>(f.count)] = static_cast<std::uint8_t>(m);
            f.steps[static_cast<std::size_t>(f.count)] =
                static_cast<std::uint8_t>(fewest[static_cast<std::size_t>(m)]);
            ++f.count;
        }
    }
    return table;
}();

constexpr std::uint8_t StartBits = (1u << 6) | (1u << 2) | (1u << 7) | (1u << 0) | (1u << 1);

static_assert(std::endian::native == std::endian::little, "a word's first byte is its lowest");

constexpr std::uint64_t Bytes(std::uint8_t b) {
    return 0x0101010101010101ull * b;
}

// The top bit of each byte of w that is a start: a foreground pixel with
// some neighbour of the start tests background. A pixel with no
// foreground neighbour at all starts only traces that never move, so it
// counts as none.
std::uint64_t startsIn(std::uint64_t w) {
    constexpr std::uint64_t Low7 = Bytes(0x7F);
    constexpr std::uint64_t High = Bytes(0x80);
    const auto nonZero = [](std::uint64_t v) { return (((v & Low7) + Low7) | v) & High; };
    return nonZero(w) & nonZero((w & Bytes(StartBits)) ^ Bytes(StartBits));
}

} // namespace

BorderTraceGrid::BorderTraceGrid(RunContext& context, int width, int height)
    : width_(width), height_(height),
      neighbours_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)),
      marks_(neighbours_.size()) {
    for (std::size_t d = 0; d < 8; ++d)
        offsets_[d] = static_cast<std::ptrdiff_t>(Directions[d].dy) * width + Directions[d].dx;
    for (std::size_t i = 0; i < Turns.size(); ++i) {
        const Turn turn = Turns[i];
        const Step d = Directions[turn.moved];
        moves_[i] = {static_cast<std::int32_t>(d.dy * width + d.dx), turn.cost,
                     static_cast<std::uint8_t>((turn.moved + 7) & 7)};
    }
    forEachRowShared(context, 0, height_, width_, [&](int y) {
        std::fill_n(marks_.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width_),
                    width_, std::uint8_t{0});
    });
}

void BorderTraceGrid::neighbourRow(const std::uint8_t* __restrict up,
                                   const std::uint8_t* __restrict here,
                                   const std::uint8_t* __restrict down,
                                   std::uint8_t* __restrict out) const {
    // Foreground bytes are 0xFF, so each neighbour gives its bit by a
    // mask: byte-wide, in vector registers.
    for (int x = 0; x < width_; ++x) {
        const auto bits = static_cast<std::uint8_t>(
            (down[x] & 0x01) | (down[x + 1] & 0x02) | (here[x + 1] & 0x04) | (up[x + 1] & 0x08) |
            (up[x] & 0x10) | (up[x - 1] & 0x20) | (here[x - 1] & 0x40) | (down[x - 1] & 0x80));
        out[x] = static_cast<std::uint8_t>(bits & here[x]);
    }
}

// Traces started on different rows may mark the same pixel, all with 1.
void BorderTraceGrid::mark(std::ptrdiff_t at) {
    std::atomic_ref<std::uint8_t>(marks_[static_cast<std::size_t>(at)])
        .store(1, std::memory_order_relaxed);
}

// Traces that start far enough from the top and left edges never reach
// them, so every step is one look-up in the grid's move table. A trace is
// a chain of dependent loads, so several run side by side, each step
// without a branch: a lane that has stopped marks a spare byte.
void BorderTraceGrid::walk(std::span<const Walk> walks) {
    constexpr std::size_t Lanes = 4;
    const std::uint8_t* neighbours = neighbours_.data();
    std::uint8_t* marks = marks_.data();
    std::uint8_t spare = 0;
    std::array<Walk, Lanes> lane{};
    std::array<bool, Lanes> alive{};
    std::size_t next = 0;
    auto refill = [&](std::size_t k) {
        if (next == walks.size()) return;
        lane[k] = walks[next++];
        alive[k] = true;
    };
    auto step = [&](std::size_t k) {
        Walk& w = lane[k];
        const Move move = moves_[static_cast<std::size_t>(neighbours[w.at]) * 8 +
                                 static_cast<std::size_t>(w.direction)];
        w.steps += move.cost;
        const bool moves = alive[k] & (move.cost != 0) & (w.steps <= StepLimit);
        const std::ptrdiff_t to = w.at + move.offset;
        std::atomic_ref<std::uint8_t>(moves ? marks[to] : spare)
            .store(1, std::memory_order_relaxed);
        w.at = moves ? to : w.at;
        w.direction = moves ? move.next : w.direction;
        alive[k] = moves & (to != w.start);
    };
    for (std::size_t k = 0; k < Lanes; ++k)
        refill(k);
    auto anyAlive = [&] {
        bool any = false;
        for (const bool a : alive)
            any |= a;
        return any;
    };
    while (anyAlive()) {
        for (std::size_t k = 0; k < Lanes; ++k)
            step(k);
        for (std::size_t k = 0; k < Lanes; ++k) {
            if (!alive[k]) refill(k);
        }
    }
}

// Near the top and left edges a step beyond them is put back on the edge,
// which may leave the trace where it stands: on foreground.
void BorderTraceGrid::traceNearEdge(int startX, int startY, int direction) {
    int x = startX;
    int y = startY;
    for (int steps = 0; steps != StepLimit; ++steps) {
        const Step d = Directions[static_cast<std::size_t>(direction)];
        const int qx = std::max(x + d.dx, 0);
        const int qy = std::max(y + d.dy, 0);
        const int towards =
            DirectionOf[static_cast<std::size_t>(qx - x + 1)][static_cast<std::size_t>(qy - y + 1)];
        const std::ptrdiff_t at = static_cast<std::ptrdiff_t>(y) * width_ + x;
        const bool foreground =
            towards < 0 || ((neighbours_[static_cast<std::size_t>(at)] >> towards) & 1) != 0;
        if (foreground) {
            direction = (direction + 7) & 7;
            x = qx;
            y = qy;
            mark(static_cast<std::ptrdiff_t>(y) * width_ + x);
            if (x == startX && y == startY) return;
        } else {
            direction = (direction + 1) & 7;
        }
    }
}

void BorderTraceGrid::traceRow(int y, WalkQueue& queue) {
    const std::uint8_t* row = neighbours(y);
    const bool rowInside = y > StepLimit;
    auto startAt = [&](int x) {
        const std::uint8_t n = row[x];
        if (!rowInside || x <= StepLimit) {
            for (const StartTest& t : StartTests) {
                if (((n >> t.neighbour) & 1) == 0) traceNearEdge(x, y, t.firstDirection);
            }
            return;
        }
        const FirstMoves& first = FirstMovesOf[n];
        if (queue.count + first.moved.size() > queue.walks.size()) {
            walk({queue.walks.data(), queue.count});
            queue.count = 0;
        }
        const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(y) * width_ + x;
        for (int i = 0; i < first.count; ++i) {
            const int m = first.moved[static_cast<std::size_t>(i)];
            const std::ptrdiff_t at = start + offsets_[static_cast<std::size_t>(m)];
            mark(at);
            queue.walks[queue.count++] = {start, at, (m + 7) & 7,
                                          first.steps[static_cast<std::size_t>(i)]};
        }
    };
    // Columns 1 .. width - 2, eight at a time while they last.
    const int end = width_ - 1;
    int x = 1;
    for (; x + 8 <= end; x += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, row + x, sizeof word);
        for (std::uint64_t starts = startsIn(word); starts != 0; starts &= starts - 1)
            startAt(x + std::countr_zero(starts) / 8);
    }
    for (; x < end; ++x) {
        if ((startsIn(row[x]) & 0x80u) != 0) startAt(x);
    }
}

void BorderTraceGrid::trace(RunContext& context) {
    forEachBandShared(context, 1, height_ - 1, width_, [&](int first, int end) {
        WalkQueue queue;
        for (int y = first; y < end; ++y)
            traceRow(y, queue);
        walk({queue.walks.data(), queue.count});
    });
}

} // namespace lumiran
