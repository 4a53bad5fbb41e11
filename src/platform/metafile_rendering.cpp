#include "platform/metafile_rendering.h"

#include "imagefiles/byte_io.h"
#include "platform/metafile_budget.h"
#include "platform/picture_refusal.h"
#include "platform/qimage_surface.h"
#include "platform/wmf_conversion.h"

#include <QByteArray>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QSizeF>
#include <algorithm>
#include <cstdlib>
#include <emf2svg.h>
#include <memory>
#include <string>
#include <vector>

namespace lumiran {
namespace {

constexpr std::uint32_t EMR_HEADER = 1;
constexpr std::uint32_t EMR_EOF = 14;
constexpr std::uint32_t emfSignature = 0x464D4520; // " EMF"
constexpr std::uint32_t minimumHeaderSize = 88;
constexpr std::uint32_t minimumRecordSize = 8;

struct FreeDeleter {
    void operator()(char* p) const { std::free(p); }
};

// The device rectangle the drawing covers, inclusive on all sides.
struct Bounds {
    std::int32_t left, top, right, bottom;
};

// Walks the records so that the converter is only handed whole records
// ending in EMR_EOF; returns the length up to and including that record.
std::size_t checkedRecordsLength(ByteReader& reader, std::uint32_t declaredBytes) {
    std::size_t offset = 0;
    for (std::size_t index = 0; offset + minimumRecordSize <= declaredBytes; ++index) {
        const std::uint32_t type = reader.u32(offset);
        const std::uint32_t size = reader.u32(offset + 4);
        if (size < minimumRecordSize || size % 4 != 0 || size > declaredBytes - offset) {
            throw PictureRefusal("EMF: record " + std::to_string(index) + " at offset " +
                                 std::to_string(offset) + " has an impossible size " +
                                 std::to_string(size));
        }
        offset += size;
        if (type == EMR_EOF) return offset;
        if (index >= metafileMaxRecords) {
            throw PictureRefusal("EMF: more than " + std::to_string(metafileMaxRecords) +
                                 " records, more than this program draws");
        }
    }
    throw PictureRefusal("EMF: the records end without an EMR_EOF record");
}

} // namespace

bool looksLikeEnhancedMetafile(std::span<const std::uint8_t> bytes) {
    ByteReader reader(bytes);
    const bool header = reader.u32(0) == EMR_HEADER && reader.u32(40) == emfSignature;
    return header && !reader.wasShort();
}

Surface renderEnhancedMetafile(std::span<const std::uint8_t> bytes, const LoadLimits& limits,
                               ProgressSink* progress) {
    requireGraphicsApplication();
    if (!looksLikeEnhancedMetafile(bytes)) {
        throw PictureRefusal("EMF: the file does not start with an EMR_HEADER record");
    }
    ByteReader reader(bytes);
    const std::uint32_t headerSize = reader.u32(4);
    const std::uint32_t declaredBytes = reader.u32(48);
    if (headerSize < minimumHeaderSize || headerSize % 4 != 0 || headerSize > bytes.size()) {
        throw PictureRefusal("EMF: the header record has an impossible size " +
                             std::to_string(headerSize));
    }
    if (declaredBytes < headerSize || declaredBytes > bytes.size()) {
        throw PictureRefusal("EMF: the header declares " + std::to_string(declaredBytes) +
                             " bytes but the file has " + std::to_string(bytes.size()));
    }
    const Bounds bounds{reader.i32(8), reader.i32(12), reader.i32(16), reader.i32(20)};
    const std::int64_t width = std::int64_t{bounds.right} - bounds.left + 1;
    const std::int64_t height = std::int64_t{bounds.bottom} - bounds.top + 1;
    if (width <= 0 || height <= 0) {
        throw PictureRefusal("EMF: the header's bounds (" + std::to_string(bounds.left) + "," +
                             std::to_string(bounds.top) + ")-(" + std::to_string(bounds.right) +
                             "," + std::to_string(bounds.bottom) + ") are empty");
    }
    const FittedSize page = metafilePage(limits, width, height);
    const std::size_t length = checkedRecordsLength(reader, declaredBytes);
    if (page.scaledDown && progress != nullptr)
        progress->showNote("EMF: " + scaledDownNote(width, height, page, limits));

    // The converter scales the bounds' span (right - left) to imgWidth keeping
    // the aspect; equal values keep one device unit to one SVG unit, and the
    // drawing box below undoes whatever scale it chose.
    const double spanX = std::max<double>(1.0, static_cast<double>(width - 1));
    const double spanY = std::max<double>(1.0, static_cast<double>(height - 1));
    std::vector<char> contents(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(length));
    // The header's description is text nobody sees, and the converter reads
    // it wherever its offset points, past the file if need be: the copy it
    // gets has none.
    std::fill(contents.begin() + 60, contents.begin() + 68, char{0});
    char noNamespace[] = "";
    generatorOptions options{};
    options.nameSpace = noNamespace;
    options.verbose = false;
    // GDI draws the records of a dual EMF+ file and skips the EMF+ comments.
    options.emfplus = false;
    options.svgDelimiter = true;
    options.imgWidth = spanX;
    options.imgHeight = spanY;
    char* output = nullptr;
    std::size_t outputLength = 0;
    const int converted =
        emf2svg(contents.data(), contents.size(), &output, &outputLength, &options);
    const std::unique_ptr<char, FreeDeleter> owned(output);
    if (converted != 1 || output == nullptr || outputLength == 0) {
        throw PictureRefusal("EMF: the records could not be converted for drawing");
    }
    QSvgRenderer drawing{QByteArray(output, static_cast<qsizetype>(outputLength))};
    checkDrawable(drawing);
    const QRectF box = drawing.viewBoxF();
    const double drawnHeight = box.width() > 0 ? box.height() * spanX / box.width() : spanY;
    // A page scaled down to the limits scales the drawing with it.
    const double scale = static_cast<double>(page.width) / static_cast<double>(width);
    return rasterizeOnWhite(drawing,
                            QSize(static_cast<int>(page.width), static_cast<int>(page.height)),
                            QRectF(0, 0, spanX * scale, drawnHeight * scale));
}

Surface renderWindowsMetafile(std::span<const std::uint8_t> bytes, const LoadLimits& limits,
                              ProgressSink* progress) {
    requireGraphicsApplication();
    const WmfDrawing converted = convertWindowsMetafile(bytes, limits, progress);
    if (!converted.note.empty() && progress != nullptr) progress->showNote(converted.note);
    QSvgRenderer drawing{QByteArray::fromStdString(converted.svg)};
    checkDrawable(drawing);
    const QSize size(converted.width, converted.height);
    return rasterizeOnWhite(drawing, size, QRectF(QPointF(0, 0), QSizeF(size)));
}

} // namespace lumiran
