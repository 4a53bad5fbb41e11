#include "effects/halftone/binarization/circle_stamp.h"
#include "effects/halftone/binarization/class_binarization.h"
#include "effects/halftone/binarization/connection_row.h"
#include "effects/halftone/binarization/foreground_rows.h"
#include "engine/drawing/bit_ops.h"
#include "engine/drawing/drawing.h"
#include "engine/shape_bands.h"

#include <algorithm>
#include <cstring>
#include <exception>
#include <mutex>
#include <vector>

namespace lumiran {
namespace {

struct Point {
    int x;
    int y;
};

// Rows are found and marked in bands of this many rows; a band measures
// two rows of its neighbours again.
constexpr int BandRows = 64;

// work(band) for bands 0 .. count - 1, claimed in turn by the run's
// threads when share is set, else on this thread. The first failure seen
// is rethrown once every band has ended.
template <typename Work>
void eachBand(RunContext& context, int count, bool share, Work&& work) {
    const int threads = share ? std::min(std::max(1, context.threading.threads), count) : 1;
    std::mutex failure;
    std::exception_ptr error;
    layBands(context.workers(), threads, count, [&](int, int b) {
        try {
            work(b);
        } catch (...) {
            const std::scoped_lock lock(failure);
            if (!error) error = std::current_exception();
        }
    });
    if (error) std::rethrow_exception(error);
}

// Appends (left + i, y) for every i in 1 .. n - 2 with keep[i] set.
void collect(const std::uint8_t* keep, int n, int left, int y, std::vector<Point>& out) {
    int i = 1;
    const int end = n - 1;
    for (; i + 8 <= end; i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, keep + i, sizeof word);
        if (word == 0) continue;
        for (int k = 0; k < 8; ++k) {
            if (keep[i + k] != 0) out.push_back({left + i + k, y});
        }
    }
    for (; i < end; ++i) {
        if (keep[i] != 0) out.push_back({left + i, y});
    }
}

// The colour bytes of the white the marks are laid on.
constexpr Pixel White = drawing::ColourBytes;

void whiten(Pixel* row, int first, int end) {
    for (int x = first; x < end; ++x)
        row[x] = (row[x] & drawing::SpareByte) | White;
}

} // namespace

void Class_Binarization::extractFeatures(int measure, std::int16_t radius, std::int16_t threshold,
                                         std::int16_t kind, const ProcessRect& rect,
                                         std::int16_t polarity, bool overPicture) {
    // With no TransBits fetched the result is made here: a copy of the
    // source, or white inside the rectangle for the black marks.
    if (ImageBits.empty()) return;
    const Span s = spanOf(rect);
    if (s.empty()) {
        copyToTransIfUnfetched();
        return;
    }
    const bool ownTrans = TransBits.empty();
    if (ownTrans) TransBits = Surface::uninitialised(ImageBits.width(), ImageBits.height());
    if (!arraysReady()) return;
    const int width = ImageBits.width();
    const int columns = s.endColumn - s.firstColumn;
    const bool whiteInPhaseOne = ownTrans && !overPicture;
    RunContext& run = context();

    // Each row of the result is prepared, and each interior row scanned for
    // the pixels of connection number kind + 1 (end points, line points,
    // branches, crossings; a pixel inside a solid area has 0), band by band.
    const int firstRow = ownTrans ? 0 : s.firstRow + 1;
    const int endRow = ownTrans ? ImageBits.height() : s.endRow - 1;
    const int scanBegin = s.firstRow + 1;
    const int scanEnd = columns >= 3 ? s.endRow - 1 : scanBegin;
    const ForegroundRule rule(measure, polarity, threshold);
    const int bandCount = std::max(0, (endRow - firstRow + BandRows - 1) / BandRows);
    const bool share = static_cast<long long>(std::max(0, endRow - firstRow)) * width >=
                       2LL * std::max(run.threading.bandPixels, 1);
    std::vector<std::vector<Point>> found(static_cast<std::size_t>(bandCount));
    eachBand(run, bandCount, share, [&](int band) {
        const int begin = firstRow + band * BandRows;
        const int end = std::min(begin + BandRows, endRow);
        std::vector<std::uint8_t> levels(3 * static_cast<std::size_t>(columns));
        std::vector<std::uint8_t> keep(static_cast<std::size_t>(columns));
        const auto level = [&](int y) {
            return levels.data() + static_cast<std::size_t>((y - s.firstRow) % 3) * columns;
        };
        int measuredTo = -1; // the last row measured into levels
        std::vector<Point>& points = found[static_cast<std::size_t>(band)];
        for (int y = begin; y < end; ++y) {
            if (ownTrans) {
                const Pixel* in = ImageBits.row(y).data();
                Pixel* out = TransBits.row(y).data();
                if (whiteInPhaseOne && y >= s.firstRow && y < s.endRow) {
                    std::copy(in, in + s.firstColumn, out);
                    for (int x = s.firstColumn; x < s.endColumn; ++x)
                        out[x] = (in[x] & drawing::SpareByte) | White;
                    std::copy(in + s.endColumn, in + width, out + s.endColumn);
                } else {
                    std::copy(in, in + width, out);
                }
            }
            if (y < scanBegin || y >= scanEnd) continue;
            for (int r = std::max(measuredTo + 1, y - 1); r <= y + 1; ++r)
                rule.classify(ImageBits.row(r).data() + s.firstColumn, columns, level(r));
            measuredTo = y + 1;
            markConnection(level(y - 1), level(y), level(y + 1), columns, kind + 1, keep.data());
            collect(keep.data(), columns, s.firstColumn, y, points);
        }
    });
    if (!reachStage(33)) {
        // A run cancelled here leaves the result a copy of the source.
        if (whiteInPhaseOne) {
            for (int y = s.firstRow; y < s.endRow; ++y)
                std::ranges::copy(ImageBits.row(y), TransBits.row(y).begin());
        }
        return;
    }
    reachStage(66);

    std::vector<Point> points;
    for (const auto& band : found)
        points.insert(points.end(), band.begin(), band.end());
    found = {};
    const ColourRef ink = markColour(overPicture);
    const bool whiteHere = !overPicture && !ownTrans;
    const auto stamp = CircleStamp::of(radius);
    if (!stamp) {
        if (whiteHere) clearMarks(s);
        Canvas canvas(TransBits);
        canvas.setClip(s.firstColumn, s.firstRow, s.endColumn, s.endRow);
        for (const auto& [x, y] : points)
            canvas.Circle(x, y, radius, ink);
        reachStage(100);
        return;
    }
    // The marks are all of one colour and painted over, so each band of
    // rows lays its own part of every mark that reaches it.
    const Pixel bits = colourBitsOf(ink);
    const int markBands = (s.endRow - s.firstRow + BandRows - 1) / BandRows;
    const bool shareMarks = static_cast<long long>(s.endRow - s.firstRow) * columns >=
                            2LL * std::max(run.threading.bandPixels, 1);
    eachBand(run, markBands, shareMarks, [&](int band) {
        const int top = s.firstRow + band * BandRows;
        const int bottom = std::min(top + BandRows, s.endRow);
        if (whiteHere) {
            for (int y = top; y < bottom; ++y)
                whiten(TransBits.row(y).data(), s.firstColumn, s.endColumn);
        }
        auto p = std::ranges::lower_bound(points, top - stamp->reach(), {}, &Point::y);
        for (; p != points.end() && p->y < bottom + stamp->reach(); ++p)
            stamp->paint(TransBits, p->x, p->y, bits, s.firstColumn, top, s.endColumn, bottom);
    });
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
        if (channel < 0 || channel > 2) {
            copyToTransIfUnfetched();
            return;
        }
        extractFeatures(channel + 2, radius, threshold, kind, {left, top, right, bottom}, polarity,
                        true);
    });
}

} // namespace lumiran
