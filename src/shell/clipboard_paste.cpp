#include "shell/clipboard_paste.h"

#include "engine/ascii_case.h"
#include "engine/drawing/blit.h"
#include "engine/numeric.h"
#include "shell/area_tool.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <new>

namespace lumiran {
namespace {

// The raster picture types the platform's decoder reads.
constexpr std::array<std::string_view, 15> RasterTypes{
    "application/x-qt-image",
    "image/png",
    "image/bmp",
    "image/x-bmp",
    "image/x-ms-bmp",
    "image/jpeg",
    "image/gif",
    "image/x-portable-pixmap",
    "image/x-portable-anymap",
    "image/x-portable-graymap",
    "image/x-portable-bitmap",
    "image/x-xpixmap",
    "image/x-xbitmap",
    "image/vnd.microsoft.icon",
    "image/x-icon",
};
constexpr std::array<std::string_view, 4> DibTypes{"image/bmp", "image/x-bmp", "image/x-ms-bmp",
                                                   "image/x-win-bitmap"};
constexpr std::array<std::string_view, 3> MetafileTypes{"image/wmf", "image/x-wmf",
                                                        "application/x-msmetafile"};
constexpr std::array<std::string_view, 3> EnhMetafileTypes{"image/emf", "image/x-emf",
                                                           "image/svg+xml"};

template <std::size_t N>
bool listed(const std::array<std::string_view, N>& types, std::string_view mimeType) {
    return std::ranges::any_of(
        types, [&](std::string_view t) { return equalIgnoringAsciiCase(t, mimeType); });
}

} // namespace

bool offersFormat(int format, std::string_view mimeType) {
    switch (format) {
    case clipboard_format::Bitmap:
        return listed(RasterTypes, mimeType);
    case clipboard_format::Metafile:
        return listed(MetafileTypes, mimeType);
    case clipboard_format::Dib:
        return listed(DibTypes, mimeType);
    case clipboard_format::EnhMetafile:
        return listed(EnhMetafileTypes, mimeType);
    default:
        return false;
    }
}

int ClipboardImageFormat(std::span<const std::string> mimeTypes) {
    for (const int format : {clipboard_format::Bitmap, clipboard_format::Metafile,
                             clipboard_format::Dib, clipboard_format::EnhMetafile}) {
        for (const std::string& type : mimeTypes) {
            if (offersFormat(format, type)) return format;
        }
    }
    return clipboard_format::None;
}

AreaRect pastePlace(const Document& document, int pastedWidth, int pastedHeight) {
    if (document.ToolsFlag >= tools::AreaDrawn && document.ToolsFlag <= tools::Moving) {
        const AreaRect r =
            normalisedInPicture(document.area, document.picture.width(), document.picture.height());
        if (r.left < r.right && r.top < r.bottom) return r;
    }
    return {0, 0, pastedWidth, pastedHeight};
}

std::optional<EffectError> PasteWithRaster(ProgramState& state, Document& document,
                                           const Surface& pasted, int index,
                                           const AreaRect& place) {
    try {
        state.undo.PushUndo(document);
        // 16-bit extents; |-32768| is one more than a picture may have.
        const int width = std::min(std::abs(static_cast<int>(wrap16(place.left - place.right))),
                                   Surface::MaxDimension);
        const int height = std::min(std::abs(static_cast<int>(wrap16(place.top - place.bottom))),
                                    Surface::MaxDimension);
        if (width == 0 || height == 0) return std::nullopt;
        // The block is cleared to the background colour and the picture laid
        // at its top left, uncut and unstretched, as a picture box shows it.
        Surface block(width, height, toPixel(state.flags.backColor));
        BitBlt(block, 0, 0, width, height, pasted, 0, 0, SRCCOPY);
        BitBlt(document.picture, place.left, place.top, width, height, block, 0, 0,
               rasterCodeForFlag(index));
    } catch (const EffectError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return EffectError::outOfMemory();
    }
    return std::nullopt;
}

} // namespace lumiran
