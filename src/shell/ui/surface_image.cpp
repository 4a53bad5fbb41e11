#include "shell/ui/surface_image.h"

#include <algorithm>

namespace lumiran {

QImage toQImage(const Surface& surface) {
    QImage image(surface.width(), surface.height(), QImage::Format_RGB32);
    for (int y = 0; y < surface.height(); ++y) {
        const auto source = surface.row(y);
        auto* target = reinterpret_cast<QRgb*>(image.scanLine(y));
        std::ranges::transform(source, target, [](Pixel p) { return p | 0xFF000000u; });
    }
    return image;
}

Surface toSurface(const QImage& image) {
    const QImage rgb = image.convertToFormat(QImage::Format_RGB32);
    Surface surface(rgb.width(), rgb.height());
    for (int y = 0; y < rgb.height(); ++y) {
        const auto* source = reinterpret_cast<const QRgb*>(rgb.constScanLine(y));
        std::ranges::transform(source, source + rgb.width(), surface.row(y).begin(),
                               [](QRgb p) { return static_cast<Pixel>(p & 0x00FFFFFFu); });
    }
    return surface;
}

} // namespace lumiran
