#include "shell/ui/dialogs/frm_colorset.h"

#include "shell/ui/dialogs/colour_chooser.h"
#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumiran {

frm_ColorSet::frm_ColorSet(const Settings& settings, QWidget* parent)
    : QDialog(parent), BackColor(new ColourChooser(res(ids::StatusBackColor), settings.backColor)),
      DrawingColor(new ColourChooser(res(ids::StatusDrawingColor), settings.drawingColor)),
      PickBack(new QPushButton(res(ids::PickColour))),
      PickDrawing(new QPushButton(res(ids::PickColour))), PickState(new QLabel) {
    setObjectName("frm_ColorSet");
    setWindowTitle(res(dialog_ids::ColorSetTitle));
    BackColor->setObjectName("BackColor");
    DrawingColor->setObjectName("DrawingColor");
    PickBack->setObjectName("PickBack");
    PickDrawing->setObjectName("PickDrawing");
    PickState->setObjectName("PickState");
    auto* form = new QFormLayout;
    const auto row = [](ColourChooser* chooser, QPushButton* pick) {
        pick->setCheckable(true);
        auto* line = new QHBoxLayout;
        line->addWidget(chooser, 1);
        line->addWidget(pick);
        return line;
    };
    form->addRow(res(ids::StatusBackColor), row(BackColor, PickBack));
    form->addRow(res(ids::StatusDrawingColor), row(DrawingColor, PickDrawing));
    connect(PickBack, &QPushButton::clicked, this, [this] { togglePick(PickBack); });
    connect(PickDrawing, &QPushButton::clicked, this, [this] { togglePick(PickDrawing); });
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(PickState);
    layout->addWidget(makeOkCancelButtons(*this));
    ApplyFontSize(*this, settings.FontSize);
}

void frm_ColorSet::togglePick(QPushButton* pressed) {
    // The click has already turned the pressed button; one button at most is down.
    QPushButton* other = pressed == PickBack ? PickDrawing : PickBack;
    const bool wasPicking = other->isChecked() || !pressed->isChecked();
    other->setChecked(false);
    if (pressed->isChecked() != wasPicking) emit pickingChanged(pressed->isChecked());
}

void frm_ColorSet::showPicked(Rgb8 colour) {
    if (PickBack->isChecked()) BackColor->setColour(colour);
    if (PickDrawing->isChecked()) DrawingColor->setColour(colour);
}

void frm_ColorSet::setPickState(std::uint8_t mode) {
    if (mode == 2) {
        PickState->setText(res(ids::PickRunning));
    } else if (mode == 3) {
        PickState->setText(res(ids::PickStopped));
    } else {
        PickState->clear();
    }
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
