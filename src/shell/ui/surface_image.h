#pragma once

#include "engine/surface.h"

#include <QImage>

namespace lumiran {

// The pixel layout of a Surface is that of QImage::Format_RGB32 but for the
// spare byte, which Qt expects to be 0xFF.
[[nodiscard]] QImage toQImage(const Surface& surface);
[[nodiscard]] Surface toSurface(const QImage& image);

} // namespace lumiran
