#include "shell/ui/clipboard_picture.h"

#include "platform/metafile_rendering.h"
#include "platform/picture_refusal.h"
#include "platform/qimage_surface.h"
#include "shell/clipboard_paste.h"
#include "shell/ui/surface_image.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QImageReader>
#include <QMimeData>
#include <QSvgRenderer>
#include <span>
#include <string>
#include <vector>

namespace lumiran {
namespace {

std::vector<std::string> typesOf(const QMimeData* data) {
    std::vector<std::string> types;
    if (data == nullptr) return types;
    for (const QString& type : data->formats())
        types.push_back(type.toStdString());
    return types;
}

// The first type the data offers for the form, in the data's own order.
QString typeFor(const QMimeData* data, int format) {
    for (const QString& type : data->formats()) {
        if (offersFormat(format, type.toStdString())) return type;
    }
    return {};
}

std::span<const std::uint8_t> bytesOf(const QByteArray& bytes) {
    return {reinterpret_cast<const std::uint8_t*>(bytes.constData()),
            static_cast<std::size_t>(bytes.size())};
}

Surface decodeRaster(const QMimeData* data, const QString& type, const LoadLimits& limits) {
    if (type == QLatin1String("application/x-qt-image")) {
        const QImage image = qvariant_cast<QImage>(data->imageData());
        if (image.isNull()) throw PictureRefusal("the clipboard's picture cannot be read");
        checkPictureSize(limits, image.width(), image.height());
        return surfaceFromImage(image);
    }
    QByteArray bytes = data->data(type);
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    // The size from the header, before a single pixel is decoded.
    const QSize size = reader.size();
    if (size.isValid()) checkPictureSize(limits, size.width(), size.height());
    QImage image;
    if (!reader.read(&image)) {
        throw PictureRefusal("the clipboard's " + type.toStdString() +
                             " data cannot be read: " + reader.errorString().toStdString());
    }
    checkPictureSize(limits, image.width(), image.height());
    return surfaceFromImage(image);
}

Surface decodeVector(const QMimeData* data, const QString& type, const LoadLimits& limits) {
    const QByteArray bytes = data->data(type);
    if (type.contains(QLatin1String("svg"))) {
        requireGraphicsApplication();
        QSvgRenderer drawing(bytes);
        checkDrawable(drawing);
        const QSize size = drawing.defaultSize();
        if (size.isEmpty()) throw PictureRefusal("the clipboard's drawing has no size");
        checkPictureSize(limits, size.width(), size.height());
        return rasterizeOnWhite(drawing, size, QRectF(QPointF(0, 0), QSizeF(size)));
    }
    if (looksLikeEnhancedMetafile(bytesOf(bytes))) {
        return renderEnhancedMetafile(bytesOf(bytes), limits);
    }
    return renderWindowsMetafile(bytesOf(bytes), limits);
}

} // namespace

int clipboardImageFormat(const QMimeData* data) {
    const std::vector<std::string> types = typesOf(data);
    return ClipboardImageFormat(types);
}

ClipboardPicture readClipboardPicture(const QMimeData* data, const LoadLimits& limits) {
    ClipboardPicture result;
    result.format = clipboardImageFormat(data);
    if (result.format == clipboard_format::None) return result;
    const QString type = typeFor(data, result.format);
    try {
        const bool raster =
            result.format == clipboard_format::Bitmap || result.format == clipboard_format::Dib;
        result.picture =
            raster ? decodeRaster(data, type, limits) : decodeVector(data, type, limits);
    } catch (const PictureRefusal& refusal) {
        result.problem = QString::fromStdString(refusal.what());
    } catch (const ImageLoadError& error) {
        result.problem = QString::fromStdString(error.detail());
    } catch (const std::bad_alloc&) {
        result.problem = QStringLiteral("out of memory");
    } catch (const std::invalid_argument& error) {
        result.problem = QString::fromStdString(error.what());
    }
    return result;
}

void putPictureOnClipboard(const Surface& picture) {
    QGuiApplication::clipboard()->setImage(toQImage(picture));
}

} // namespace lumiran
