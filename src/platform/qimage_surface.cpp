#include "platform/qimage_surface.h"

#include "engine/pixel.h"
#include "platform/picture_refusal.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QPainter>
#include <new>

namespace lumiran {

Surface surfaceFromImage(const QImage& image) {
    // Premultiplying is compositing over black; an opaque image is unchanged.
    const QImage opaque = image.convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
    if (opaque.isNull()) throw std::bad_alloc();
    Surface picture(opaque.width(), opaque.height());
    for (int y = 0; y < opaque.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(opaque.constScanLine(y));
        auto row = picture.row(y);
        for (int x = 0; x < opaque.width(); ++x) {
            row[x] = makePixel(qRed(line[x]), qGreen(line[x]), qBlue(line[x]));
        }
    }
    return picture;
}

Surface surfaceOverWhite(const QImage& image) {
    if (!image.hasAlphaChannel()) return surfaceFromImage(image);
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    if (straight.isNull()) throw std::bad_alloc();
    const auto over = [](int colour, int alpha) {
        return (colour * alpha + 255 * (255 - alpha) + 127) / 255;
    };
    Surface picture(straight.width(), straight.height());
    for (int y = 0; y < straight.height(); ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(straight.constScanLine(y));
        auto row = picture.row(y);
        for (int x = 0; x < straight.width(); ++x) {
            const int alpha = qAlpha(line[x]);
            row[x] = makePixel(over(qRed(line[x]), alpha), over(qGreen(line[x]), alpha),
                               over(qBlue(line[x]), alpha));
        }
    }
    return picture;
}

void requireGraphicsApplication() {
    // Text needs the fonts of a running graphics application; without one Qt
    // would abort the process.
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr) {
        throw PictureRefusal("metafiles can only be drawn inside the graphical application");
    }
}

void checkDrawable(const QSvgRenderer& drawing) {
    if (!drawing.isValid()) throw PictureRefusal("the drawing made from the metafile is not valid");
}

Surface rasterizeOnWhite(QSvgRenderer& drawing, QSize pageSize, const QRectF& target) {
    QImage page(pageSize, QImage::Format_RGB32);
    if (page.isNull()) throw std::bad_alloc();
    page.fill(Qt::white);
    {
        QPainter painter(&page);
        drawing.render(&painter, target);
    }
    return surfaceFromImage(page);
}

} // namespace lumiran
