#pragma once

#include "engine/run_context.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

namespace lumiran {

// The small window of a run: caption, a label, the bar and the cancel
// button, which (by click or by its key Z) only sets the cancel flag.
class frm_Progress : public QDialog {
    Q_OBJECT
  public:
    frm_Progress(CancelFlag& cancel, bool marquee, int fontSize, QWidget* parent = nullptr);

    void setPercent(int percent);
    void setLabel(const QString& text);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void reject() override; // Escape does not close it: only the button cancels

  private:
    CancelFlag& cancel_;
    QLabel* Label3;
    QProgressBar* ProgressBar1;
    QPushButton* Command1;
};

} // namespace lumiran
