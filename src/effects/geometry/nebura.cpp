// Nebura: a swirl mapped forward in 2 x 2 blocks from kept picture 0 onto
// kept picture 1.
#include "effects/geometry/vector_trig.h"
#include "effects/geometry/warp_rows.h"
#include "engine/drawing/drawing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

namespace lumiran {
namespace {

// Where a block goes: the rounded place, clamped to the rectangle, so it
// fits 16 bits.
struct Place {
    std::int16_t x = 0;
    std::int16_t y = 0;
};

constexpr std::size_t NoFailure = std::numeric_limits<std::size_t>::max();

// The places of the blocks of one column of blocks, in drawing order; the
// index (from 0) of the first place that is not a number, or NoFailure.
struct ColumnPlaces {
    double cx = 0;
    double cy = 0;
    double radius = 0;
    double shift = 0;
    int left = 0;
    int top = 0;
    double lastColumn = 0;
    double lastRow = 0;

    std::size_t operator()(int x, std::span<Place> places, std::span<double> t, std::span<double> s,
                           std::span<double> c) const {
        const std::size_t n = places.size();
        const double dx = x - cx;
        for (std::size_t k = 0; k < n; ++k) {
            const double dy = top + 2 * static_cast<double>(k) - cy;
            t[k] = std::sqrt(dx * dx + dy * dy) / (radius / 4) / GeometryPi;
        }
        trig::sinCos(t, s, c);
        std::size_t failure = NoFailure;
        for (std::size_t k = 0; k < n; ++k) {
            const double dy = top + 2 * static_cast<double>(k) - cy;
            double mx = dx * s[k] + cx - dy * c[k] + shift;
            double my = dx * c[k] + cy + dy * s[k] + shift * 0.5;
            mx = mx > lastColumn ? lastColumn : mx < left ? left : mx;
            my = my > lastRow ? lastRow : my < top ? top : my;
            // Clamped to the rectangle, only a NaN fails to convert.
            if (mx != mx || my != my) {
                failure = std::min(failure, k);
                mx = my = 0;
            }
            places[k] = {roundInRange<std::int16_t>(mx), roundInRange<std::int16_t>(my)};
        }
        return failure;
    }
};

// The blocks of a run of columns, drawn by one worker into the rows of the
// target it owns ([firstRow, endRow), inside the target), in drawing order.
// What BitBlt does for each 2 x 2 block: pixels outside either picture are
// skipped, and the block is read before it is written.
struct BlockRows {
    Surface& target;
    const Surface& source;
    int firstRow = 0;
    int endRow = 0;

    void draw(int x, int top, std::span<const Place> places) const {
        const int targetWidth = target.width();
        const int sourceWidth = source.width(), sourceHeight = source.height();
        const Pixel* from = source.pixels().data();
        Pixel* to = target.pixels().data();
        const auto tw = static_cast<std::size_t>(targetWidth);
        const auto sw = static_cast<std::size_t>(sourceWidth);
        const bool columnsFit = x >= 0 && x + 2 <= sourceWidth;
        constexpr std::size_t Ahead = 8;
        for (std::size_t k = 0; k < places.size(); ++k) {
            if (k + Ahead < places.size()) {
                const Place next = places[k + Ahead];
                if (next.y >= firstRow && next.y < endRow && next.x >= 0) {
                    const std::size_t at = static_cast<std::size_t>(next.y) * tw + next.x;
                    __builtin_prefetch(to + at, 1);
                    __builtin_prefetch(to + at + tw, 1);
                }
            }
            const int y = top + 2 * static_cast<int>(k);
            const Place place = places[k];
            if (place.y + 2 <= firstRow || place.y >= endRow) continue;
            if (columnsFit && y >= 0 && y + 2 <= sourceHeight && place.x >= 0 &&
                place.x + 2 <= targetWidth && place.y >= firstRow && place.y + 2 <= endRow) {
                const Pixel* in = from + static_cast<std::size_t>(y) * sw + x;
                Pixel* out = to + static_cast<std::size_t>(place.y) * tw + place.x;
                const Pixel a = in[0], b = in[1], c = in[sw], d = in[sw + 1];
                out[0] = a;
                out[1] = b;
                out[tw] = c;
                out[tw + 1] = d;
                continue;
            }
            clipped(x, y, place);
        }
    }

    void clipped(int x, int y, Place place) const {
        std::array<Pixel, 4> block{};
        std::array<bool, 4> reached{};
        for (int j = 0; j < 2; ++j) {
            for (int i = 0; i < 2; ++i) {
                const int tx = place.x + i, ty = place.y + j, sx = x + i, sy = y + j;
                const bool inside = tx >= 0 && tx < target.width() && ty >= firstRow &&
                                    ty < endRow && sx >= 0 && sx < source.width() && sy >= 0 &&
                                    sy < source.height();
                reached[2 * j + i] = inside;
                if (inside) block[2 * j + i] = source.at(sx, sy);
            }
        }
        for (int j = 0; j < 2; ++j)
            for (int i = 0; i < 2; ++i)
                if (reached[2 * j + i]) target.at(place.x + i, place.y + j) = block[2 * j + i];
    }
};

} // namespace

void Class_Geometry::Nebura(double radius, std::int16_t shift, std::int16_t left, std::int16_t top,
                            std::int16_t right, std::int16_t bottom) {
    guarded([&] {
        const Surface* source = context().kept0;
        Surface* target = context().kept1;
        if (source == nullptr || target == nullptr) return;
        Cls(*target, RGB(0, 0, 0));
        const ColumnPlaces placesOf{wrap16(right - left) / 2.0 + left,
                                    wrap16(bottom - top) / 2.0 + top,
                                    radius,
                                    static_cast<double>(shift),
                                    left,
                                    top,
                                    static_cast<double>(right - 1),
                                    static_cast<double>(bottom - 1)};
        SetProgressRange(0, std::max((wrap16(right - left) + 1) / 2, 0));
        const int blockColumns = right > left ? (right - left + 1) / 2 : 0;
        const auto blocksDown = static_cast<std::size_t>(bottom > top ? (bottom - top + 1) / 2 : 0);
        // The blocks overlap and the last one drawn wins, so they are drawn
        // in order; but two blocks meet only where they land in the same
        // rows. Each worker draws every block in order into the rows of the
        // target it owns, which halves the scattered writes that are the
        // effect's time; the places are worked out once, a run of columns
        // at a time, the columns shared out. A picture drawn onto itself
        // reads what earlier blocks wrote: one worker.
        constexpr int ChunkColumns = 32;
        const bool small = static_cast<long long>(target->width()) * target->height() <
                           2LL * context().threading.bandPixels;
        const int workers = source == target || small ? 1 : context().workers().threads();
        std::vector<Place> places(static_cast<std::size_t>(ChunkColumns) * blocksDown);
        struct Scratch {
            std::vector<double> t, s, c;
        };
        std::vector<Scratch> scratch(static_cast<std::size_t>(workers),
                                     {std::vector<double>(blocksDown),
                                      std::vector<double>(blocksDown),
                                      std::vector<double>(blocksDown)});
        std::vector<std::size_t> failures(static_cast<std::size_t>(workers));
        const int height = target->height();
        for (int chunk = 0; chunk < blockColumns; chunk += ChunkColumns) {
            const int count = std::min(ChunkColumns, blockColumns - chunk);
            const auto columnOf = [&](int j) { return left + 2 * (chunk + j); };
            const auto columnPlaces = [&](int j) {
                return std::span(places).subspan(static_cast<std::size_t>(j) * blocksDown,
                                                 blocksDown);
            };
            context().workers().run(workers, [&](int worker) {
                Scratch& own = scratch[static_cast<std::size_t>(worker)];
                std::size_t& failure = failures[static_cast<std::size_t>(worker)];
                failure = NoFailure;
                for (int j = worker; j < count; j += workers) {
                    const std::size_t at =
                        placesOf(columnOf(j), columnPlaces(j), own.t, own.s, own.c);
                    if (at != NoFailure && failure == NoFailure)
                        failure = static_cast<std::size_t>(j) * blocksDown + at;
                }
            });
            // The blocks before the first one that failed are drawn, as
            // they would be one at a time.
            const std::size_t failure = *std::ranges::min_element(failures);
            context().workers().run(workers, [&](int worker) {
                const BlockRows rows{*target, *source, height * worker / workers,
                                     height * (worker + 1) / workers};
                for (int j = 0; j < count; ++j) {
                    const std::size_t first = static_cast<std::size_t>(j) * blocksDown;
                    if (first >= failure) break;
                    const std::size_t n = std::min(blocksDown, failure - first);
                    rows.draw(columnOf(j), top, columnPlaces(j).first(n));
                }
            });
            const int done = failure == NoFailure
                                 ? count
                                 : static_cast<int>(failure / std::max<std::size_t>(blocksDown, 1));
            for (int j = 0; j < done; ++j)
                if (!finishRow()) return;
            if (failure != NoFailure) throw EffectError::overflow();
        }
    });
}

} // namespace lumiran
