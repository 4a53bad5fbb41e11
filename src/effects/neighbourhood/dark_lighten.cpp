// DarkLighten: each channel folded about a level that the grey of the pixel
// or of its window sets.
#include "effects/neighbourhood/class_neighborhood_op.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace lumiran {
namespace {

using neighbourhood::Area;

// The channel sums r + g + b of the window around each centre of row y,
// from first to end: the sums by column over the window's rows, then a sum
// sliding along them. Exact integers, so the same as adding the window.
void windowSums(const Surface& picture, int y, int reach, int first, int end,
                std::vector<int>& columns, std::vector<int>& sums) {
    const int left = first - reach;
    const int span = end - first + 2 * reach;
    columns.assign(static_cast<std::size_t>(span), 0);
    for (int dy = -reach; dy <= reach; ++dy) {
        const Pixel* row = picture.row(y + dy).data() + left;
        for (int i = 0; i < span; ++i) {
            const Pixel p = row[i];
            columns[static_cast<std::size_t>(i)] += redOf(p) + greenOf(p) + blueOf(p);
        }
    }
    sums.resize(static_cast<std::size_t>(end - first));
    int sum = 0;
    for (int i = 0; i < 2 * reach + 1; ++i)
        sum += columns[static_cast<std::size_t>(i)];
    for (int i = 0; i < end - first; ++i) {
        sums[static_cast<std::size_t>(i)] = sum;
        if (i + 1 < end - first)
            sum += columns[static_cast<std::size_t>(i + 2 * reach + 1)] -
                   columns[static_cast<std::size_t>(i)];
    }
}

} // namespace

void Class_NeighborhoodOp::DarkLighten(std::uint8_t kind, std::uint8_t form, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::int16_t upper, std::int16_t lower) {
    guarded([&] {
        fetchTransOnCores();
        if (kind > 3) return;
        const ProcessRect rect{left, top, right, bottom};
        const int reach = kind; // kind 0 is the pixel alone, 1..3 windows 3x3..7x7
        const Area inner = areaOf(rect).inner(reach);
        // The truncated mean grey of a window sum, and the fold's level of
        // a grey, as tables: no division per pixel.
        const int samples = 3 * neighbourhood::windowLength(reach);
        std::vector<std::uint8_t> meanOfSum(static_cast<std::size_t>(255 * samples + 1));
        for (std::size_t sum = 0; sum < meanOfSum.size(); ++sum)
            meanOfSum[sum] = static_cast<std::uint8_t>(static_cast<int>(sum) / samples);
        // The fold: v = 255 - a for a grey a of 128 and above, else 0; the
        // level a2 = |a - (v - a)| up to 255; each channel |255 - |c - a2||.
        std::array<int, 256> levelOfGrey{};
        for (int a = 0; a < 256; ++a) {
            const int v = a >= 128 ? 255 - a : 0;
            levelOfGrey[static_cast<std::size_t>(a)] = std::min(std::abs(a - (v - a)), 255);
        }
        // One row of steps into out: the fold where the grey lies within
        // lower..upper.
        auto stepRow = [&](const Surface& picture, int y, auto&& store) {
            std::vector<int> columns;
            std::vector<int> sums;
            windowSums(picture, y, reach, inner.firstColumn, inner.endColumn, columns, sums);
            const Pixel* row = picture.row(y).data();
            for (int x = inner.firstColumn; x < inner.endColumn; ++x) {
                const Pixel p = row[x];
                const int a = meanOfSum[static_cast<std::size_t>(
                    sums[static_cast<std::size_t>(x - inner.firstColumn)])];
                if (a < lower || a > upper) {
                    store(x, p);
                    continue;
                }
                const int level = levelOfGrey[static_cast<std::size_t>(a)];
                auto channel = [level](int c) { return 255 - std::abs(c - level); };
                store(x, withColour(p, channel(redOf(p)), channel(greenOf(p)), channel(blueOf(p))));
            }
        };
        const int rows = bottom - top;
        // Form 1 folds the result once more: the first pass goes to a copy,
        // the second reads its windows from there. Progress counts both.
        Surface once;
        if (form == 1) {
            once = ImageBits;
            SetProgressRange(0, 2 * rows);
            const bool done = forEachRow(rect, [&](int y, int, int) {
                if (!inner.containsRow(y) || inner.firstColumn >= inner.endColumn) return;
                Pixel* out = once.row(y).data();
                stepRow(ImageBits, y, [out](int x, Pixel p) { out[x] = p; });
            });
            if (!done) return;
        } else {
            SetProgressRange(top, bottom);
        }
        const Surface& input = form == 1 ? once : ImageBits;
        const bool blend = blending();
        forEachRow(rect, [&](int y, int, int) {
            if (!inner.containsRow(y) || inner.firstColumn >= inner.endColumn) return;
            const Pixel* source = ImageBits.row(y).data();
            Pixel* out = TransBits.row(y).data();
            stepRow(input, y, [&](int x, Pixel p) {
                if (blend) {
                    storeTrans(x, y, source[x],
                               {wrap16(redOf(p)), wrap16(greenOf(p)), wrap16(blueOf(p))});
                } else {
                    out[x] = withColour(out[x], redOf(p), greenOf(p), blueOf(p));
                }
            });
        });
    });
}

} // namespace lumiran
