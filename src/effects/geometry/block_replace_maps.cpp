// BlockReplace as a gather: every call moves whole columns (along the rows)
// and whole rows (along the columns) of the rectangle, so a run of calls is
// one map of columns and one of rows, and the target is drawn in one pass
// of rows on every core instead of a copy, a work picture and two passes a
// call.
#include "effects/geometry/class_geometry.h"
#include "engine/drawing/drawing.h"
#include "engine/shared_rows.h"

#include <algorithm>
#include <numeric>

namespace lumiran {
namespace {

// The source line of each line of the picture that one way of a call
// draws: strip k takes the next of its group (the last the first), a
// partial last strip stretched as StretchBlt maps it, clipped to the
// picture on both sides; a line no strip draws keeps its own.
std::vector<int> stripSources(int pictureExtent, int origin, int extent, int size, int members) {
    std::vector<int> sources(static_cast<std::size_t>(pictureExtent));
    std::iota(sources.begin(), sources.end(), 0);
    const int count = (extent + size - 1) / size;
    for (int first = 0; first < count; first += members) {
        const int inGroup = std::min(members, count - first);
        for (int k = 0; k < inGroup; ++k) {
            const int toStart = origin + (first + k) * size;
            const int fromStart = origin + (first + (k + 1) % inGroup) * size;
            const int toSize = std::min(size, origin + extent - toStart);
            const int fromSize = std::min(size, origin + extent - fromStart);
            const int lo = std::max(0, -toStart), hi = std::min(toSize, pictureExtent - toStart);
            for (int i = lo; i < hi; ++i) {
                const auto j = toSize == fromSize
                                   ? i
                                   : static_cast<int>(stretchSourceOffset(i, toSize, fromSize));
                const int from = fromStart + j;
                if (from >= 0 && from < pictureExtent)
                    sources[static_cast<std::size_t>(toStart + i)] = from;
            }
        }
    }
    return sources;
}

// map[i] = step[map[i]]: the earlier call's map applied after the later's.
void compose(std::vector<int>& map, const std::vector<int>& step) {
    for (int& i : map)
        i = step[static_cast<std::size_t>(i)];
}

} // namespace

bool Class_Geometry::BlockReplaceInOne(std::span<const BlockReplaceStep> steps, std::int16_t left,
                                       std::int16_t top, std::int16_t right, std::int16_t bottom,
                                       std::int16_t size) {
    const Surface* source = context().kept0;
    Surface* target = context().kept1;
    if (source == nullptr || target == nullptr || source == target || !source->sameSize(*target) ||
        size < 1 || right <= left || bottom <= top)
        return false;
    if (std::ranges::any_of(steps, [](BlockReplaceStep s) { return s.kind > 2 || s.group > 1; }))
        return false;
    const int width = source->width(), height = source->height();
    std::vector<int> columns(static_cast<std::size_t>(width));
    std::vector<int> rows(static_cast<std::size_t>(height));
    std::iota(columns.begin(), columns.end(), 0);
    std::iota(rows.begin(), rows.end(), 0);
    // Pixel (x, y) of the rectangle ends as the source's (columns[x],
    // rows[y]) after the last call: each call's lines looked up in turn,
    // from the last call back to the first. Outside the rectangle every
    // call draws the source where it stands.
    for (auto step = steps.rbegin(); step != steps.rend(); ++step) {
        const int members = step->group == 0 ? 2 : 3;
        if (step->kind != 1)
            compose(columns, stripSources(width, left, right - left, size, members));
        if (step->kind != 0) compose(rows, stripSources(height, top, bottom - top, size, members));
    }
    const int firstColumn = std::max<int>(left, 0), endColumn = std::min<int>(right, width);
    const int firstRow = std::max<int>(top, 0), endRow = std::min<int>(bottom, height);
    // One pass of whole rows, no row waiting on another: the work of a
    // call's strips is gone, so progress is one step at the end.
    SetProgressRange(0, 1);
    forEachRowShared(context(), 0, height, width, [&](int y) {
        const Pixel* own = source->row(y).data();
        Pixel* out = target->row(y).data();
        if (y < firstRow || y >= endRow || firstColumn >= endColumn) {
            std::copy(own, own + width, out);
            return;
        }
        const Pixel* from = source->row(rows[static_cast<std::size_t>(y)]).data();
        std::copy(own, own + firstColumn, out);
        const int* map = columns.data();
        for (int x = firstColumn; x < endColumn; ++x)
            out[x] = from[map[x]];
        std::copy(own + endColumn, own + width, out + endColumn);
    });
    finishRow();
    return true;
}

} // namespace lumiran
