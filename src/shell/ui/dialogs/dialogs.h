#pragma once

#include "engine/surface.h"
#include "shell/settings.h"

#include <QString>
#include <QWidget>
#include <optional>

namespace lumiran {

// The further dialogs of the editor. Each is modal, takes its texts from the
// string table, applies the "Font Size" of the settings to itself, and
// changes nothing unless its OK is pressed.

// frm_Option: the settings on the tabs "Undo", "Calculation",
// " Raster Operation", "Window", "Loading Amount", "Interface" and
// "Color Settings". OK stores into settings and returns true.
bool showOptionDialog(Settings& settings, QWidget* parent);

struct NewImageRequest {
    int width = 320;
    int height = 240;
    QString name; // the document's caption
};
// frm_Create: size and name of a new picture (filled with the background colour).
std::optional<NewImageRequest> showCreateDialog(const Settings& settings, QWidget* parent);

// frm_ColorSet: the background and drawing colours. OK stores and returns true.
bool showColorSetDialog(Settings& settings, QWidget* parent);

struct PictureInfo {
    QString path; // empty for a picture that has no file
    int width = 0;
    int height = 0;
    qint64 fileSize = -1; // -1 when unknown
};
// frm_PictureInfo: what is known of the active document's picture.
void showPictureInfo(const PictureInfo& info, const Surface& picture, const Settings& settings,
                     QWidget* parent);

// Frm_Splash: the start form, shown while the frame loads. It closes itself
// after a moment and is deleted when closed: hold it in a QPointer.
QWidget* showSplash(const Settings& settings);

// frm_Vasion: the version form of a first start (and Help > About).
void showVersionDialog(const Settings& settings, QWidget* parent);

// Applies the font size to a form and all its children.
void ApplyFontSize(QWidget& form, int pointSize);
// The stored size as the forms take it: within the range the options offer.
[[nodiscard]] int UsableFontSize(int pointSize);

} // namespace lumiran
