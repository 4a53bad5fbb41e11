#pragma once

#include "shell/settings.h"

#include <QDialog>

namespace lumiran {

// The version form: shown at the first start of a version and by the
// about command.
class frm_Vasion : public QDialog {
    Q_OBJECT
  public:
    explicit frm_Vasion(const Settings& settings, QWidget* parent = nullptr);
};

} // namespace lumiran
