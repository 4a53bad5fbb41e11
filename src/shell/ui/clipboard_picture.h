#pragma once

#include "engine/surface.h"
#include "imagefiles/load_limits.h"

#include <QString>
#include <optional>

class QMimeData;

namespace lumiran {

// ClipboardImageFormat of what a clipboard (or drop) offers; 0 for none.
[[nodiscard]] int clipboardImageFormat(const QMimeData* data);

// The picture of the clipboard's first form, decoded; a message instead when
// the form's data cannot be read or is larger than the load limits allow.
struct ClipboardPicture {
    int format = 0;
    std::optional<Surface> picture;
    QString problem; // why there is no picture although a form was offered
};
[[nodiscard]] ClipboardPicture readClipboardPicture(const QMimeData* data,
                                                    const LoadLimits& limits = {});

// Puts a picture on the system clipboard as a bitmap.
void putPictureOnClipboard(const Surface& picture);

} // namespace lumiran
