// X (Cross): the two halves of every column or row slide past each other.
#include "effects/geometry/transform/class_transform.h"
#include "effects/geometry/transform/column_copies.h"
#include "engine/drawing/drawing.h"
#include "engine/row_bands.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <mutex>
#include <vector>

namespace lumiran {

void Class_Transform::Transform_Cross(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom,
                                      std::int16_t backgroundKind) {
    guarded([&] {
        if (context().kept0 == nullptr || context().kept1 == nullptr) return;
        const Surface& source = *context().kept0;
        Surface& target = *context().kept1;
        const Rgb8 background = context().flags.backColor;
        const bool byColumns = kind >= 2;
        // A run that leaves kept picture 1 to the body hands it over unmade.
        // The row kinds over the background then make each row whole (the
        // background and the row's two halves) on every core, where a fill
        // of the picture and a second one over it came first; otherwise it
        // is filled as the run fills it.
        const bool ownRows = !target.sameSize(source) && kind <= 3 && !byColumns &&
                             backgroundKind != 0 && !source.empty();
        if (!target.sameSize(source) && !ownRows)
            target = Surface(source.width(), source.height(), toPixel(background));
        if (kind > 3) return;
        if (!ownRows) prepareTarget(backgroundKind, background);
        // Kinds 2 and 3 walk the columns and split each into its upper and
        // lower half; kinds 0 and 1 the same with rows and columns exchanged.
        const bool crossing = kind == 0 || kind == 2;
        const int width = std::abs(wrap16(right - left)), height = std::abs(wrap16(bottom - top));
        const int strips = byColumns ? width : height;
        const int length = byColumns ? height : width;
        const int half = roundTo<std::int32_t>(length / 2.0);
        // An empty half makes this division by zero fail as overflow.
        const int perGroup = std::max(roundTo<std::int32_t>(strips / static_cast<double>(half)), 1);
        double step = half / static_cast<double>(strips);
        if (step < 0.6) step = 0.6;
        const int groups = (strips + perGroup - 1) / perGroup;
        // Unmade until the sizes above have passed their checks.
        if (ownRows) target = Surface::uninitialised(source.width(), source.height());
        SetProgressRange(0, groups);
        // The offset of each strip: it grows by the step after each group.
        std::vector<int> offsets(static_cast<std::size_t>(std::max(strips, 0)));
        for (int j = 0, offset = 0; j < strips; ++j) {
            offsets[static_cast<std::size_t>(j)] = offset;
            if ((j + 1) % perGroup == 0 || j + 1 == strips)
                offset = roundTo<std::int32_t>(offset + step);
        }
        // The first half goes by +offset and the second by -offset when
        // they cross, the other way when they part.
        const auto firstShift = [&](int j) {
            const int offset = offsets[static_cast<std::size_t>(j)];
            return crossing ? offset : -offset;
        };
        const auto secondShift = [&](int j) {
            const int offset = offsets[static_cast<std::size_t>(j)];
            return crossing ? half - offset : half + offset;
        };
        if (!byColumns) {
            // Row y of the target: the background where ownRows makes it,
            // then strip y - top's two halves, each a one-row copy that
            // writes that row alone, so rows run on every core.
            const Pixel fill = (toPixel(background) & 0xFF000000u) |
                               colourBitsOf(RGB(background.red, background.green, background.blue));
            const auto makeRow = [&](int y) {
                if (ownRows) std::ranges::fill(target.row(y), fill);
                const int j = y - top;
                if (j < 0 || j >= strips) return;
                BitBlt(target, left + firstShift(j), y, half, 1, source, left, y, SRCCOPY);
                BitBlt(target, left + secondShift(j), y, length - half, 1, source, left + half, y,
                       SRCCOPY);
            };
            // Every row of the target in one pass, bands of rows claimed by
            // every core in turn; a group counts for progress when that many
            // strips are done, whichever they are, and the groups whose
            // strips lie off the target when the pass is over.
            const int rows = target.height();
            const int workers = static_cast<long long>(rows) * target.width() >=
                                        2LL * std::max(context().threading.bandPixels, 1)
                                    ? std::max(context().threading.threads, 1)
                                    : 1;
            RowBands bands(0, rows, std::max(1, rows / (8 * workers)));
            int stripsDone = 0, stepped = 0;
            context().workers().run(workers, [&](int) {
                for (auto band = bands.claim(); !band.empty(); band = bands.claim()) {
                    for (int y = band.begin; y < band.end; ++y) {
                        if (!bands.mayStart(y)) return;
                        try {
                            makeRow(y);
                            if (y - top < 0 || y - top >= strips) continue;
                            const std::scoped_lock lock(bands.rowEnd());
                            if (++stripsDone % perGroup != 0 && stripsDone != strips) continue;
                            ++stepped;
                            if (!finishRow()) {
                                bands.cancel();
                                return;
                            }
                        } catch (...) {
                            bands.fail(y, std::current_exception());
                            return;
                        }
                    }
                }
            });
            if (!bands.finish()) return;
            for (; stepped < groups; ++stepped)
                if (!finishRow()) return;
            return;
        }
        // Columns are drawn a block at a time (see drawColumnCopies); the
        // groups a block completes step the progress after it is drawn.
        constexpr int BlockColumns = 64;
        std::vector<ColumnCopy> block;
        int groupsDone = 0;
        for (int j = 0; j < strips; ++j) {
            const int x = left + j;
            block.push_back({x, top + firstShift(j), half, top, half});
            block.push_back({x, top + secondShift(j), length - half, top + half, length - half});
            if ((j + 1) % perGroup == 0 || j + 1 == strips) ++groupsDone;
            if (block.size() < 2 * BlockColumns && j + 1 < strips) continue;
            drawColumnCopies(target, source, block);
            block.clear();
            for (; groupsDone > 0; --groupsDone)
                if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
