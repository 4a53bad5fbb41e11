#pragma once

#include "engine/surface.h"
#include "shell/settings.h"
#include "shell/ui/dialogs/dialogs.h"

#include <QDialog>
#include <cstddef>

namespace lumiran {

// What is known of a document's picture: file, size and number of colours.
class frm_PictureInfo : public QDialog {
    Q_OBJECT
  public:
    frm_PictureInfo(const PictureInfo& info, const Surface& picture, const Settings& settings,
                    QWidget* parent = nullptr);
};

// The number of distinct colours of a picture; the spare byte is no part of
// a colour.
[[nodiscard]] std::size_t countDistinctColours(const Surface& picture);

} // namespace lumiran
