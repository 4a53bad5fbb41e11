#include "shell/ui/dialogs/frm_colorset.h"

#include "shell/ui/dialogs/colour_chooser.h"
#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace lumiran {

frm_ColorSet::frm_ColorSet(const Settings& settings, QWidget* parent)
    : QDialog(parent), BackColor(new ColourChooser(res(ids::StatusBackColor), settings.backColor)),
      DrawingColor(new ColourChooser(res(ids::StatusDrawingColor), settings.drawingColor)) {
    setObjectName("frm_ColorSet");
    setWindowTitle(res(dialog_ids::ColorSetTitle));
    BackColor->setObjectName("BackColor");
    DrawingColor->setObjectName("DrawingColor");
    auto* form = new QFormLayout;
    form->addRow(res(ids::StatusBackColor), BackColor);
    form->addRow(res(ids::StatusDrawingColor), DrawingColor);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(makeOkCancelButtons(*this));
    ApplyFontSize(*this, settings.FontSize);
}

void frm_ColorSet::storeInto(Settings& settings) const {
    settings.backColor = BackColor->colour();
    settings.drawingColor = DrawingColor->colour();
}

bool showColorSetDialog(Settings& settings, QWidget* parent) {
    frm_ColorSet dialog(settings, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    dialog.storeInto(settings);
    return true;
}

} // namespace lumiran
