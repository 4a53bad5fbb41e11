// X (Cross): the two halves of every column or row slide past each other.
#include "effects/geometry/transform/class_transform.h"
#include "effects/geometry/transform/column_copies.h"
#include "engine/drawing/drawing.h"

#include <cmath>
#include <cstdlib>
#include <vector>

namespace lumiran {

void Class_Transform::Transform_Cross(std::uint8_t kind, std::int16_t left, std::int16_t top,
                                      std::int16_t right, std::int16_t bottom,
                                      std::int16_t backgroundKind) {
    guarded([&] {
        if (kind > 3 || !prepareTarget(backgroundKind, context().flags.backColor)) return;
        const Surface& source = *context().kept0;
        Surface& target = *context().kept1;
        // Kinds 2 and 3 walk the columns and split each into its upper and
        // lower half; kinds 0 and 1 the same with rows and columns exchanged.
        const bool byColumns = kind >= 2;
        const bool crossing = kind == 0 || kind == 2;
        const int width = std::abs(wrap16(right - left)), height = std::abs(wrap16(bottom - top));
        const int strips = byColumns ? width : height;
        const int length = byColumns ? height : width;
        const int half = roundTo<std::int32_t>(length / 2.0);
        // An empty half makes this division by zero fail as overflow.
        const int perGroup = std::max(roundTo<std::int32_t>(strips / static_cast<double>(half)), 1);
        double step = half / static_cast<double>(strips);
        if (step < 0.6) step = 0.6;
        SetProgressRange(0, (strips + perGroup - 1) / perGroup);
        // Columns are drawn a block at a time (see drawColumnCopies); the
        // groups a block completes step the progress after it is drawn.
        constexpr int BlockColumns = 64;
        std::vector<ColumnCopy> block;
        int groupsDone = 0;
        int offset = 0;
        for (int j = 0; j < strips; ++j) {
            // The first half goes by +offset and the second by -offset when
            // they cross, the other way when they part.
            const int firstShift = crossing ? offset : -offset;
            const int secondShift = crossing ? half - offset : half + offset;
            if (byColumns) {
                const int x = left + j;
                block.push_back({x, top + firstShift, half, top, half});
                block.push_back({x, top + secondShift, length - half, top + half, length - half});
            } else {
                const int y = top + j;
                StretchBlt(target, left + firstShift, y, half, 1, source, left, y, half, 1,
                           SRCCOPY);
                StretchBlt(target, left + secondShift, y, length - half, 1, source, left + half, y,
                           length - half, 1, SRCCOPY);
            }
            if ((j + 1) % perGroup == 0 || j + 1 == strips) {
                offset = roundTo<std::int32_t>(offset + step);
                ++groupsDone;
            }
            if (byColumns && block.size() < 2 * BlockColumns && j + 1 < strips) continue;
            drawColumnCopies(target, source, block);
            block.clear();
            for (; groupsDone > 0; --groupsDone)
                if (!finishRow()) return;
        }
    });
}

} // namespace lumiran
