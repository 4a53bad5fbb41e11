#pragma once

// What the editor's window tests share: answering the message boxes a step
// raises, and finding the effect dialog that is up.
#include "catalogue/ui/effect_dialog.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>
#include <QWidget>

namespace lumiran::ui_testing {

// Answers every message box with its first button and keeps title and text.
class MessageBoxAnswerer : public QObject {
  public:
    MessageBoxAnswerer() {
        timer_.setInterval(20);
        connect(&timer_, &QTimer::timeout, this, [this] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                titles.append(box->windowTitle());
                texts.append(box->text());
                box->buttons().value(0)->click();
            }
        });
        timer_.start();
    }
    QStringList titles;
    QStringList texts;

  private:
    QTimer timer_;
};

// The effect dialog on screen, or null.
inline EffectDialog* currentDialog() {
    for (QWidget* w : QApplication::topLevelWidgets()) {
        if (auto* d = qobject_cast<EffectDialog*>(w); d != nullptr && d->isVisible()) return d;
    }
    return nullptr;
}

} // namespace lumiran::ui_testing
