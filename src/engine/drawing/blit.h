#pragma once

#include "engine/drawing/raster_code.h"
#include "engine/surface.h"

#include <cstdint>

namespace lumiran {

// The platform's block calls over pixel arrays. Coordinates and extents
// are pixels as the callers pass them (int; 16-bit values widen exactly).
// Each target pixel's colour bytes are combined with its source pixel's by
// the raster code; the spare byte comes with the source pixel, so a source
// copy copies whole elements. Pixels outside either picture are
// skipped: a target pixel whose source lies outside the source picture is
// left as it is. Source and target may be the same surface with
// overlapping rectangles: the copy behaves as if through a temporary.

// BitBlt: width x height from (xSrc, ySrc) of the source to (x, y) of the
// target. A width or height of 0 or less copies nothing.
void BitBlt(Surface& target, int x, int y, int width, int height, const Surface& source, int xSrc,
            int ySrc, RasterCode code);

// StretchBlt in stretch mode 3 (delete scans: the nearest source pixel,
// never a blend), the only mode the effects set. An extent counts from its
// origin in the direction of its sign: a negative width covers the columns
// x + width .. x - 1, walked from x - 1 leftward. Opposite signs of the
// target and source extents mirror the picture on that axis. A zero extent
// copies nothing. The mapping is stretchSourceOffset on each axis.
void StretchBlt(Surface& target, int x, int y, int width, int height, const Surface& source,
                int xSrc, int ySrc, int widthSrc, int heightSrc, RasterCode code);

// The one mapping of every stretch: the target pixel that lies i steps from
// its origin (0 <= i < |targetExtent|) takes the source pixel that lies
// floor((2 i + 1) |sourceExtent| / (2 |targetExtent|)) steps from the source
// origin: the source pixel under the target pixel's centre. A target
// extent of 0 gives 0.
[[nodiscard]] std::int64_t stretchSourceOffset(std::int64_t i, std::int64_t targetExtent,
                                               std::int64_t sourceExtent);

// PaintPicture: the whole picture stretched onto (x, y, width, height) of
// the target, by StretchBlt's rule; a negative width or height mirrors.
void PaintPicture(Surface& target, const Surface& picture, int x, int y, int width, int height,
                  RasterCode code = SRCCOPY);

} // namespace lumiran
