#pragma once

#include "shell/settings.h"

#include <QWidget>

namespace lumiran {

// The start form: a small frameless window with the program's name and
// version, shown while the frame loads.
class Frm_Splash : public QWidget {
    Q_OBJECT
  public:
    explicit Frm_Splash(const Settings& settings, QWidget* parent = nullptr);
};

// How long the start form stays unless closed earlier.
inline constexpr int SplashMilliseconds = 1500;

} // namespace lumiran
