#include "platform/qt_picture_decoder.h"

#include "imagefiles/byte_io.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/reader_guard.h"
#include "platform/bitmap_layout.h"
#include "platform/metafile_rendering.h"
#include "platform/picture_refusal.h"
#include "platform/qimage_surface.h"
#include "platform/wmf_conversion.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <system_error>
#include <vector>

namespace lumiran {
namespace {

namespace fs = std::filesystem;

constexpr int invalidPictureNumber = 481;
constexpr const char* invalidPictureDescription = "ピクチャが不正です。";
constexpr int fileNotFoundNumber = 53;
constexpr const char* fileNotFoundDescription = "ファイルが見つかりません。";

// Qt's names of the raster kinds the platform's decoder reads; anything
// else Qt could read (SVG, PPM...) is refused as the platform would.
constexpr std::array<std::string_view, 6> acceptedRasterFormats{"bmp",  "ico", "cur",
                                                                "jpeg", "jpg", "gif"};

// Today's kinds, read only from files named as one of them, so a PNG named
// ".bmp" is still refused as the platform always did. Their transparency is
// laid over white, as a picture viewer shows it.
constexpr std::array<std::string_view, 3> todaysRasterFormats{"png", "tiff", "webp"};
constexpr std::array<std::string_view, 4> todaysExtensions{"png", "tif", "tiff", "webp"};

ImageLoadError invalidPicture(const fs::path& path, const std::string& reason) {
    return {invalidPictureNumber, invalidPictureDescription, path.string() + ": " + reason};
}

std::vector<std::uint8_t> readPictureFile(const fs::path& path, const LoadLimits& limits) {
    std::error_code ec;
    if (!fs::exists(fs::status(path, ec))) {
        throw ImageLoadError(fileNotFoundNumber, fileNotFoundDescription,
                             path.string() + ": no such file");
    }
    try {
        std::vector<std::uint8_t> bytes = readWholeFile(path, limits.maxBytes);
        if (bytes.empty()) throw invalidPicture(path, "the file is empty");
        return bytes;
    } catch (const ImageFileError& e) {
        throw ImageLoadError(invalidPictureNumber, invalidPictureDescription, e.what());
    }
}

bool todaysRaster(const QByteArray& format) {
    const std::string_view name(format.constData(), static_cast<std::size_t>(format.size()));
    return std::ranges::find(todaysRasterFormats, name) != todaysRasterFormats.end();
}

bool acceptedRaster(const QByteArray& format, std::string_view extension) {
    const std::string_view name(format.constData(), static_cast<std::size_t>(format.size()));
    if (std::ranges::find(acceptedRasterFormats, name) != acceptedRasterFormats.end()) return true;
    return todaysRaster(format) &&
           std::ranges::find(todaysExtensions, extension) != todaysExtensions.end();
}

// Qt's own allocation guard, set to the share of the limits that the
// decoded image takes (4 of the 8 bytes a pixel).
int allocationLimitMiB(const LoadLimits& limits) {
    const std::uint64_t imageBytes =
        std::min(limits.maxBytes / 2, static_cast<std::uint64_t>(limits.maxPixels) * 4);
    const std::uint64_t mebibytes = imageBytes / (1u << 20);
    return static_cast<int>(std::clamp<std::uint64_t>(mebibytes, 1, INT_MAX));
}

// The file's bytes as Qt's readers take them, telling how far they have read.
// A sink that stops the load makes the rest of the file unreadable: nothing
// may be thrown through the decoders' C code.
class ProgressBuffer : public QBuffer {
  public:
    ProgressBuffer(QByteArray* data, ProgressSink* progress) : QBuffer(data), progress_(progress) {}

    void rethrow() const {
        if (failure_) std::rethrow_exception(failure_);
    }

  protected:
    qint64 readData(char* data, qint64 maxSize) override {
        if (failure_) return -1;
        const qint64 read = QBuffer::readData(data, maxSize);
        if (progress_ != nullptr && size() > 0) {
            const int percent =
                static_cast<int>((pos() + std::max<qint64>(read, 0)) * 100 / size());
            if (percent != shown_) {
                shown_ = percent;
                try {
                    progress_->showPercent(percent);
                } catch (...) {
                    failure_ = std::current_exception();
                    return -1;
                }
            }
        }
        return read;
    }

  private:
    ProgressSink* progress_;
    int shown_ = -1;
    std::exception_ptr failure_;
};

Surface decodeRaster(std::span<const std::uint8_t> bytes, const std::string& extension,
                     const LoadLimits& limits, ProgressSink* progress) {
    QByteArray data = QByteArray::fromRawData(reinterpret_cast<const char*>(bytes.data()),
                                              static_cast<qsizetype>(bytes.size()));
    ProgressBuffer buffer(&data, progress);
    buffer.open(QIODevice::ReadOnly);
    // No format is named: the kind is taken from the content, so a run-length
    // bitmap saved as ".rle" reads as the BMP it is.
    QImageReader reader(&buffer);
    reader.setAllocationLimit(allocationLimitMiB(limits));
    const QByteArray format = reader.format();
    if (format.isEmpty()) {
        throw PictureRefusal(
            "not a BMP, icon, cursor, JPEG, GIF, PNG, TIFF, WebP or metafile picture");
    }
    if (!acceptedRaster(format, extension)) {
        throw PictureRefusal("a " + format.toUpper().toStdString() +
                             " picture, which is not read here");
    }
    const std::string kind = format.toUpper().toStdString();
    const QSize declared = reader.size();
    if (declared.isValid()) checkPictureSize(limits, declared.width(), declared.height());
    if (format == "gif") {
        // Qt sizes a GIF by its first frame but draws it on the whole logical
        // screen, which is the picture.
        ByteReader header(bytes);
        checkPictureSize(limits, header.u16(6), header.u16(8));
    }
    QImage image; // an animated GIF gives its first frame, an icon its first image
    if (format == "bmp") {
        // Qt gives no size for a header it finds implausible; the limits
        // should still be what refuses a huge one.
        const BitmapLayout layout = readBitmapLayout(bytes);
        checkPictureSize(limits, layout.width, std::abs(layout.height));
        checkBitmapComplete(layout, bytes);
        // Run-length data may skip pixels, which Qt leaves unwritten. Handed
        // an image of the size and format it decodes into, it keeps it, so the
        // skipped pixels take colour 0 instead of whatever memory held.
        if (layout.runLength() && declared.isValid()) {
            image = QImage(declared, QImage::Format_Indexed8);
            if (image.isNull()) throw std::bad_alloc();
            image.fill(0);
        }
    }
    const bool read = reader.read(&image);
    buffer.rethrow();
    if (!read) {
        throw PictureRefusal(kind + ": " + reader.errorString().toStdString());
    }
    checkPictureSize(limits, image.width(), image.height());
    return todaysRaster(format) ? surfaceOverWhite(image) : surfaceFromImage(image);
}

} // namespace

Surface decodePicture(std::span<const std::uint8_t> bytes, const std::string& extension,
                      const LoadLimits& limits, ProgressSink* progress) {
    if (looksLikeEnhancedMetafile(bytes)) return renderEnhancedMetafile(bytes, limits, progress);
    if (looksLikePlaceableMetafile(bytes)) return renderWindowsMetafile(bytes, limits, progress);
    // A metafile without a placeable header has no signature; by its name it
    // goes to the metafile readers, which can say what is wrong with it.
    if (extension == "wmf") return renderWindowsMetafile(bytes, limits, progress);
    if (extension == "emf") return renderEnhancedMetafile(bytes, limits, progress);
    return decodeRaster(bytes, extension, limits, progress);
}

Surface QtPictureDecoder::LoadPicture(const fs::path& path, const std::string& extension,
                                      ProgressSink* progress, const LoadLimits& limits) {
    const std::vector<std::uint8_t> bytes = readPictureFile(path, limits);
    try {
        return guardedRead("Picture",
                           [&] { return decodePicture(bytes, extension, limits, progress); });
    } catch (const PictureRefusal& e) {
        throw invalidPicture(path, e.what());
    } catch (const LoadCancelled&) {
        throw;
    } catch (const ImageLoadError& e) {
        throw ImageLoadError(e.number(), e.description(), path.string() + ": " + e.detail());
    }
}

} // namespace lumiran
