#include "engine/process_rect.h"

#include "engine/numeric.h"

#include <utility>

namespace lumiran {

ProcessRect ProcessRect::wholePicture(int width, int height) {
    return {0, 0, wrap16(width), wrap16(height)};
}

ProcessRectDecision fixProcessRectangle(std::uint8_t toolsFlag, const AreaRect& area, int width,
                                        int height) {
    ProcessRectDecision decision;
    if (toolsFlag < 2) {
        decision.rect = ProcessRect::wholePicture(width, height);
        decision.resetAreas = true;
        return decision;
    }
    decision.endRunningTool = toolsFlag == 4 || toolsFlag == 2;

    // The rectangle fields are 16-bit: only the low bits of the area survive.
    ProcessRect r{wrap16(area.left), wrap16(area.top), wrap16(area.right), wrap16(area.bottom)};
    if (r.left > r.right) std::swap(r.left, r.right);
    if (r.top > r.bottom) std::swap(r.top, r.bottom);
    if (r.left == r.right || r.top == r.bottom) {
        r = ProcessRect::wholePicture(width, height);
        decision.endTool = true;
    }
    // Clipping comes after the emptiness test, so an area wholly outside the
    // picture ends up with left above right and changes nothing.
    if (r.left < 0) r.left = 0;
    if (r.top < 0) r.top = 0;
    if (r.right > width) r.right = wrap16(width);
    if (r.bottom > height) r.bottom = wrap16(height);
    decision.rect = r;
    return decision;
}

} // namespace lumiran
