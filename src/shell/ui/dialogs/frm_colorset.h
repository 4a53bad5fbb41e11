#pragma once

#include "shell/settings.h"

#include <QDialog>

namespace lumiran {

class ColourChooser;

// The background and drawing colours, background first.
class frm_ColorSet : public QDialog {
    Q_OBJECT
  public:
    explicit frm_ColorSet(const Settings& settings, QWidget* parent = nullptr);

    void storeInto(Settings& settings) const;

  private:
    ColourChooser* BackColor;
    ColourChooser* DrawingColor;
};

} // namespace lumiran
