#include "shell/ui/surface_image.h"

#include "engine/picture_memory.h"

#include <algorithm>
#include <memory>
#include <thread>

namespace lumiran {

namespace {

// The buffer of a large screen picture, in picture memory: a fresh
// 6000 x 6000 picture on 4 KiB pages costs tens of thousands of faults.
struct ImageMemory {
    void* memory = nullptr;
    std::size_t bytes = 0;
};

void releaseImageMemory(void* info) {
    const std::unique_ptr<ImageMemory> owned(static_cast<ImageMemory*>(info));
    releasePictureMemory(owned->memory, owned->bytes);
}

QImage imageInPictureMemory(int width, int height) {
    const std::size_t bytes =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4;
    if (width <= 0 || height <= 0 || bytes < HugePageBytes)
        return QImage(width, height, QImage::Format_RGB32);
    void* memory = allocatePictureMemory(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    auto owner = std::make_unique<ImageMemory>(ImageMemory{memory, bytes});
    QImage image(static_cast<uchar*>(memory), width, height, width * 4, QImage::Format_RGB32,
                 releaseImageMemory, owner.get());
    owner.release(); // the image frees it with its last copy
    return image;
}

} // namespace

QImage toQImage(const Surface& surface) {
    QImage image = imageInPictureMemory(surface.width(), surface.height());
    const int height = surface.height();
    uchar* const bits = image.bits();
    const qsizetype stride = image.bytesPerLine();
    auto convertRows = [&surface, bits, stride](int first, int end) {
        for (int y = first; y < end; ++y) {
            auto* target = reinterpret_cast<QRgb*>(bits + y * stride);
            std::ranges::transform(surface.row(y), target, [](Pixel p) { return p | 0xFF000000u; });
        }
    };
    // A large picture's rows are shared with a second thread: the copy
    // waits on fresh memory, and the editor waits on the copy.
    if (image.sizeInBytes() < static_cast<qsizetype>(HugePageBytes)) {
        convertRows(0, height);
        return image;
    }
    const int half = height / 2;
    std::thread lower(convertRows, half, height);
    convertRows(0, half);
    lower.join();
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
