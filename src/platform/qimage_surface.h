#pragma once

#include "engine/surface.h"

#include <QImage>
#include <QRectF>
#include <QSize>
#include <QSvgRenderer>

namespace lumiran {

// Copies a decoded image into a picture. Transparent and translucent pixels
// are composited over black, the program's default background colour.
[[nodiscard]] Surface surfaceFromImage(const QImage& image);
// The same with transparency laid over white, as a picture viewer shows it.
[[nodiscard]] Surface surfaceOverWhite(const QImage& image);

// Throws PictureRefusal unless a QGuiApplication runs, which drawing (and
// even reading) SVG text needs.
void requireGraphicsApplication();

// Throws PictureRefusal when a converted drawing is not valid SVG.
void checkDrawable(const QSvgRenderer& drawing);

// Draws an SVG document on a white page of the given size, its view box
// filling target.
[[nodiscard]] Surface rasterizeOnWhite(QSvgRenderer& drawing, QSize pageSize, const QRectF& target);

} // namespace lumiran
