#pragma once

#include "engine/pixel.h"
#include "shell/settings.h"

#include <QDialog>

class QLabel;
class QPushButton;

namespace lumiran {

class ColourChooser;

// The background and drawing colours, background first. Either colour may
// be picked from a picture: while a pick button is down the colour under
// the pointer on any document comes in (showPicked), and a click on the
// picture holds it or lets it follow again (setPickState).
class frm_ColorSet : public QDialog {
    Q_OBJECT
  public:
    explicit frm_ColorSet(const Settings& settings, QWidget* parent = nullptr);

    void storeInto(Settings& settings) const;

    // A colour picked from a picture, for the colour whose pick button is down.
    void showPicked(Rgb8 colour);
    // ColorPickMode as the form shows it: 2 "実行中", 3 "停止中", else nothing.
    void setPickState(std::uint8_t mode);

  signals:
    // A pick button went down (true) or up (false).
    void pickingChanged(bool on);

  private:
    void togglePick(QPushButton* pressed);

    ColourChooser* BackColor;
    ColourChooser* DrawingColor;
    QPushButton* PickBack;
    QPushButton* PickDrawing;
    QLabel* PickState;
};

} // namespace lumiran
