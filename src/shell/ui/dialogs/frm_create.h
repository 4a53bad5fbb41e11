#pragma once

#include "shell/settings.h"
#include "shell/ui/dialogs/dialogs.h"

#include <QDialog>

class QLineEdit;
class QSpinBox;

namespace lumiran {

// Size and name of a new picture.
class frm_Create : public QDialog {
    Q_OBJECT
  public:
    explicit frm_Create(const Settings& settings, QWidget* parent = nullptr);

    // What the controls show; a blank name gives the default name.
    [[nodiscard]] NewImageRequest request() const;

  private:
    QSpinBox* WidthBox;
    QSpinBox* HeightBox;
    QLineEdit* NameBox;
};

} // namespace lumiran
