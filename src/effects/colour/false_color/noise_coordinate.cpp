#include "effects/colour/false_color/class_false_color.h"
#include "effects/colour/false_color/noise_walk.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <span>
#include <vector>

namespace lumiran {
namespace {

constexpr int FirstPassCaption = 3435;  // "しばらくお待ちください。1/2"
constexpr int SecondPassCaption = 3437; // "しばらくお待ちください。2/2"

// The walk places one disc per 4 x 4 cell on average, so discs of radius 4
// leave few holes in the field.
constexpr int DiscRadius = NoiseField::DiscRadius;
constexpr int FieldStart = 128;

// The half widths of a disc's rows: the pixels with
// (2 dx)^2 + (2 dy)^2 < (2 r + 1)^2, the canvas's ellipse rule.
constexpr std::array<int, 2 * DiscRadius + 1> discHalfWidths() {
    std::array<int, 2 * DiscRadius + 1> half{};
    constexpr int limit = (2 * DiscRadius + 1) * (2 * DiscRadius + 1);
    for (int dy = -DiscRadius; dy <= DiscRadius; ++dy) {
        int h = 0;
        while (h < DiscRadius && 4 * (h + 1) * (h + 1) + 4 * dy * dy < limit)
            ++h;
        half[static_cast<std::size_t>(dy + DiscRadius)] = h;
    }
    return half;
}

struct Offset {
    int dx = 0;
    int dy = 0;
};

Offset offsetOf(std::uint8_t function, double angle, int amplitude) {
    const double s = std::sin(angle), c = std::cos(angle);
    double x = s, y = s;
    switch (function) {
    case 1:
        x = y = c;
        break;
    case 2:
        x = y = std::clamp(std::tan(angle), -1.0, 1.0);
        break;
    case 3:
        y = c;
        break;
    case 4:
        x = c;
        break;
    default:
        break;
    }
    return {roundInRange<int>(amplitude * x), roundInRange<int>(amplitude * y)};
}

// A disc's row run, at most 2 DiscRadius + 1 bytes: two overlapping stores
// of a word rather than a call of memset for a few bytes.
void paintRun(std::uint8_t* at, std::uint8_t grey, std::size_t n) {
    static_assert(2 * DiscRadius + 1 <= 16);
    const std::uint64_t eight = 0x0101010101010101ull * grey;
    if (n >= 8) {
        std::memcpy(at, &eight, 8);
        std::memcpy(at + n - 8, &eight, 8);
    } else if (n >= 4) {
        const auto four = static_cast<std::uint32_t>(eight);
        std::memcpy(at, &four, 4);
        std::memcpy(at + n - 4, &four, 4);
    } else if (n > 0) {
        // 1 to 3 bytes: the first, the middle and the last.
        at[0] = grey;
        at[n / 2] = grey;
        at[n - 1] = grey;
    }
}

} // namespace

int noiseWalkRows(const ProcessRect& rect) {
    return (rect.bottom - rect.top) / 4 + 1;
}

NoiseField::NoiseField(int width, int height)
    : width_(std::max(width, 0)), height_(std::max(height, 0)),
      greys_(std::make_unique_for_overwrite<std::uint8_t[]>(static_cast<std::size_t>(width_) *
                                                            static_cast<std::size_t>(height_))) {}

NoiseField::NoiseField(int width, int height, std::uint8_t grey) : NoiseField(width, height) {
    std::fill_n(greys_.get(), static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_),
                grey);
}

void NoiseField::disc(int x, int y, std::uint8_t grey) {
    disc(x, y, grey, 0, height_);
}

void NoiseField::disc(int x, int y, std::uint8_t grey, int firstRow, int endRow) {
    static constexpr auto half = discHalfWidths();
    const int from = std::max({y - DiscRadius, firstRow, 0});
    const int to = std::min({y + DiscRadius + 1, endRow, height_});
    for (int row = from; row < to; ++row) {
        const int h = half[static_cast<std::size_t>(row - y + DiscRadius)];
        const int first = std::max(x - h, 0), end = std::min(x + h + 1, width_);
        if (first < end)
            paintRun(greys_.get() +
                         static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                         static_cast<std::size_t>(first),
                     grey, static_cast<std::size_t>(end - first));
    }
}

void drawNoisePlaces(const ProcessRect& rect, RandomGenerator& random, int rows, int& grey,
                     std::vector<NoisePlace>& places) {
    const int across = rect.right - rect.left, down = rect.bottom - rect.top;
    const auto count = static_cast<std::size_t>(std::max(rows, 0)) *
                       static_cast<std::size_t>(std::max(across / 4 + 1, 0));
    // Three draws a place: x, y and the grey's step.
    std::vector<double> draws(3 * count);
    random.take(draws);
    const std::size_t start = places.size();
    places.resize(start + count);
    for (std::size_t i = 0; i < count; ++i) {
        // A place becomes a pixel by rounding, as every conversion does.
        const int x = roundTo<std::int32_t>(across * draws[3 * i] + rect.left);
        const int y = roundTo<std::int32_t>(down * draws[3 * i + 1] + rect.top);
        grey = std::clamp(grey + (draws[3 * i + 2] < 0.5 ? -1 : 1), 1, 255);
        // Between left and right, and top and bottom: 16-bit values.
        places[start + i] = {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                             static_cast<std::uint8_t>(grey)};
    }
}

void noiseWalk(NoiseField& field, const ProcessRect& rect, RandomGenerator& random,
               const std::function<bool()>& rowDone) {
    int grey = FieldStart;
    std::vector<NoisePlace> places;
    for (int j = 0, rows = noiseWalkRows(rect); j < rows; ++j) {
        places.clear();
        drawNoisePlaces(rect, random, 1, grey, places);
        for (const NoisePlace& p : places)
            field.disc(p.x, p.y, p.grey);
        if (!rowDone()) break;
    }
}

NoiseField noiseWalkField(int width, int height, const ProcessRect& rect, RandomGenerator& random,
                          const std::function<bool()>& rowDone) {
    NoiseField field(width, height, static_cast<std::uint8_t>(FieldStart));
    noiseWalk(field, rect, random, rowDone);
    return field;
}

void Class_FalseColor::NoiserizeWater(std::int16_t wavelength, std::int16_t amplitude,
                                      std::uint8_t function, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom) {
    // ImageBits is the lent source; TransBits starts unwritten and its rows
    // are made here: in the second pass alongside the rows that move (so
    // its fresh pages are first touched on every core), otherwise as a copy.
    std::vector<std::uint8_t> rowDone;
    guarded([&] {
        const ProcessRect rect{left, top, right, bottom};
        const Span span = spanOf(rect);
        if (context().progress != nullptr) context().progress->showCaption(FirstPassCaption);

        // Pass 1: a random walk of greys dropped as discs at random places.
        SetProgressRange(0, noiseWalkRows(rect));
        // The draws and the grey's walk are one sequence, made on this
        // thread a row of places at a time, as the progress counts them.
        const int rows = noiseWalkRows(rect);
        std::vector<NoisePlace> places;
        places.reserve(static_cast<std::size_t>(std::max(rows, 0)) *
                       static_cast<std::size_t>(std::max((rect.right - rect.left) / 4 + 1, 0)));
        int grey = FieldStart;
        for (int j = 0; j < rows; ++j) {
            drawNoisePlaces(rect, context().random, 1, grey, places);
            if (!finishRow()) return;
        }

        // Pass 2: each pixel takes the one its field grey points to; one
        // pointing out of the rectangle keeps its own colour, so edges do not
        // smear. The bar starts again with the caption.
        if (context().progress != nullptr) context().progress->showCaption(SecondPassCaption);
        ProgressCount = 0;
        if (span.empty()) return;
        const double toAngle = 2 * std::numbers::pi / std::max<int>(wavelength, 1);
        std::array<Offset, 256> offsets;
        for (int level = 0; level < 256; ++level)
            offsets[static_cast<std::size_t>(level)] =
                offsetOf(function, level * toAngle, amplitude);
        // The field is never stored whole. A pixel's grey is that of the
        // last disc in the walk over it, 128 under none: the largest place
        // number among the discs over it, which any thread can find for its
        // own row in any order. The places are listed by their row (stable,
        // so in the walk's order), and a row looks at the discs centred up
        // to DiscRadius rows from it.
        const int height = ImageBits.height();
        const int keys = height + 2 * DiscRadius; // centre rows -R .. height + R - 1
        std::vector<std::uint32_t> firstOfKey(static_cast<std::size_t>(keys) + 1, 0);
        const auto keyOf = [](const NoisePlace& p) { return p.y + DiscRadius; };
        for (const NoisePlace& p : places) {
            const int key = keyOf(p);
            if (key >= 0 && key < keys) ++firstOfKey[static_cast<std::size_t>(key) + 1];
        }
        for (std::size_t k = 1; k < firstOfKey.size(); ++k)
            firstOfKey[k] += firstOfKey[k - 1];
        // Each disc as a row needs it, next to the others of its row.
        // A disc as one word: place number + 1, grey, x from the top bits
        // down, so the larger of two is the later disc.
        std::vector<std::uint64_t> byRow(firstOfKey.back());
        {
            std::vector<std::uint32_t> next(firstOfKey.begin(), firstOfKey.end() - 1);
            for (std::size_t i = 0; i < places.size(); ++i) {
                const NoisePlace& p = places[i];
                const int key = keyOf(p);
                if (key >= 0 && key < keys)
                    byRow[next[static_cast<std::size_t>(key)]++] = (i + 1) << 24 |
                                                                   std::uint64_t{p.grey} << 16 |
                                                                   static_cast<std::uint16_t>(p.x);
            }
        }
        static constexpr auto half = discHalfWidths();

        TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
        rowDone.assign(static_cast<std::size_t>(ImageBits.height()), 0);
        const Surface& source = ImageBits;
        const BandPlan plan = bandPlan(rect);
        // By worker: the word of the last disc over each column, 0 for none.
        std::vector<std::vector<std::uint64_t>> lastDiscs(
            static_cast<std::size_t>(std::max(plan.workers, 1)),
            std::vector<std::uint64_t>(static_cast<std::size_t>(ImageBits.width())));
        auto moveRow = [&]<bool Blend>(std::vector<std::uint64_t>& last, int y) {
            std::fill(last.begin() + span.firstColumn, last.begin() + span.endColumn,
                      std::uint64_t{0});
            for (int key = y; key <= y + 2 * DiscRadius && key < keys; ++key) {
                // Centre row key - DiscRadius: the disc's row y - that.
                const int h = half[static_cast<std::size_t>(2 * DiscRadius - (key - y))];
                for (std::uint32_t k = firstOfKey[static_cast<std::size_t>(key)];
                     k < firstOfKey[static_cast<std::size_t>(key) + 1]; ++k) {
                    const std::uint64_t disc = byRow[k];
                    const int centre = static_cast<std::int16_t>(disc & 0xFFFF);
                    const int from = std::max(centre - h, span.firstColumn);
                    const int to = std::min(centre + h + 1, span.endColumn);
                    for (int x = from; x < to; ++x)
                        last[static_cast<std::size_t>(x)] =
                            std::max(last[static_cast<std::size_t>(x)], disc);
                }
            }
            const std::span<const Pixel> in = source.row(y);
            const std::span<Pixel> out = TransBits.row(y);
            std::copy(in.begin(), in.begin() + span.firstColumn, out.begin());
            std::copy(in.begin() + span.endColumn, in.end(), out.begin() + span.endColumn);
            for (int x = span.firstColumn; x < span.endColumn; ++x) {
                const std::uint64_t mark = last[static_cast<std::size_t>(x)];
                const auto level =
                    static_cast<std::uint8_t>(mark == 0 ? FieldStart : (mark >> 16) & 0xFF);
                const Offset o = offsets[level];
                const int sx = x + o.dx, sy = y + o.dy;
                const bool inside = sx >= span.firstColumn && sx < span.endColumn &&
                                    sy >= span.firstRow && sy < span.endRow;
                const Pixel own = in[static_cast<std::size_t>(x)];
                const Pixel p = inside ? source.at(sx, sy) : own;
                const int r = redOf(own), g = greenOf(own), b = blueOf(own);
                const Rgb16 v =
                    endPixel<ResultTail::Clamp, Blend>(r, g, b,
                                                       Rgb16{static_cast<std::int16_t>(redOf(p)),
                                                             static_cast<std::int16_t>(greenOf(p)),
                                                             static_cast<std::int16_t>(blueOf(p))});
                out[static_cast<std::size_t>(x)] = withColour(own, v.red, v.green, v.blue);
            }
            rowDone[static_cast<std::size_t>(y)] = 1;
        };
        const bool blend = calculationFlag() > 0;
        SetProgressRange(rect.top, rect.bottom);
        rowsInBands(rect, plan, [&](int worker, int y, int, int) {
            std::vector<std::uint64_t>& last = lastDiscs[static_cast<std::size_t>(worker)];
            if (blend) {
                moveRow.template operator()<true>(last, y);
            } else {
                moveRow.template operator()<false>(last, y);
            }
        });
    });
    // Rows the second pass did not reach (outside the rectangle, or after a
    // cancel or an error) keep the source.
    if (rowDone.empty() || rowDone.size() != static_cast<std::size_t>(ImageBits.height()) ||
        !TransBits.sameSize(ImageBits)) {
        TransBits = ImageBits;
        return;
    }
    TransBits.elements().back() = ImageBits.elements().back();
    forEachRowShared(context(), 0, ImageBits.height(), ImageBits.width(), [&](int y) {
        if (rowDone[static_cast<std::size_t>(y)] == 0)
            std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
    });
}

} // namespace lumiran
