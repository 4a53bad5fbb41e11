#include "shell/ui/dialogs/colour_chooser.h"

#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/ui_text.h"

#include <QColor>
#include <QColorDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>

namespace lumiran {

ColourChooser::ColourChooser(const QString& caption, Rgb8 colour, QWidget* parent)
    : QWidget(parent), caption_(caption), Sample(new QLabel),
      ChangeButton(new QPushButton(res(dialog_ids::ChangeColor))) {
    Sample->setObjectName("Sample");
    ChangeButton->setObjectName("ChangeButton");
    Sample->setFrameShape(QFrame::Box);
    Sample->setMinimumSize(48, 24);
    Sample->setAutoFillBackground(true);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(Sample, 1);
    layout->addWidget(ChangeButton);
    connect(ChangeButton, &QPushButton::clicked, this, &ColourChooser::choose);
    setColour(colour);
}

void ColourChooser::setColour(Rgb8 colour) {
    colour_ = colour;
    QPalette palette = Sample->palette();
    palette.setColor(QPalette::Window, QColor(colour.red, colour.green, colour.blue));
    Sample->setPalette(palette);
}

void ColourChooser::choose() {
    const QColor picked =
        QColorDialog::getColor(QColor(colour_.red, colour_.green, colour_.blue), this, caption_);
    if (!picked.isValid()) return; // cancelled
    setColour({static_cast<std::uint8_t>(picked.red()), static_cast<std::uint8_t>(picked.green()),
               static_cast<std::uint8_t>(picked.blue())});
}

} // namespace lumiran
