#pragma once

#include "engine/pixel.h"

#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;

namespace lumiran {

// A colour sample with a button that picks a new colour in the platform's
// colour dialog. Used by the colour tab of the options and by frm_ColorSet.
class ColourChooser : public QWidget {
    Q_OBJECT
  public:
    // The caption titles the colour dialog.
    ColourChooser(const QString& caption, Rgb8 colour, QWidget* parent = nullptr);

    [[nodiscard]] Rgb8 colour() const { return colour_; }
    void setColour(Rgb8 colour);

  private:
    void choose();

    QString caption_;
    Rgb8 colour_;
    QLabel* Sample;
    QPushButton* ChangeButton;
};

} // namespace lumiran
