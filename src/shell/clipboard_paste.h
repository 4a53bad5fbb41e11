#pragma once

#include "engine/effect_error.h"
#include "engine/process_rect.h"
#include "engine/surface.h"
#include "shell/document.h"
#include "shell/program_state.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lumiran {

// The clipboard's picture forms, in the order they are tried.
namespace clipboard_format {
inline constexpr int None = 0;
inline constexpr int Bitmap = 2;       // CF_BITMAP
inline constexpr int Metafile = 3;     // CF_METAFILEPICT
inline constexpr int Dib = 8;          // CF_DIB
inline constexpr int EnhMetafile = 14; // CF_ENHMETAFILE
} // namespace clipboard_format

// True when a clipboard type (a MIME type, any case) offers the form.
[[nodiscard]] bool offersFormat(int format, std::string_view mimeType);

// The first of the four forms, in their order, that one of the types
// offers; 0 when none does. Any raster picture counts as a bitmap, as the
// platform offers a bitmap beside every device-independent one.
[[nodiscard]] int ClipboardImageFormat(std::span<const std::string> mimeTypes);

// The place of a paste: the area when the document has one that lies in the
// picture, otherwise the pasted picture's size at the top left.
[[nodiscard]] AreaRect pastePlace(const Document& document, int pastedWidth, int pastedHeight);

// PasteWithRaster: a snapshot, then the pasted picture, cut to a block of
// |left - right| x |top - bottom| pixels (16-bit), laid at (left, top) by the
// raster code of index (0..10; any other index blackens). A block of no width
// or height leaves the picture as it is.
std::optional<EffectError> PasteWithRaster(ProgramState& state, Document& document,
                                           const Surface& pasted, int index, const AreaRect& place);

} // namespace lumiran
