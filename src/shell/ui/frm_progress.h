#pragma once

#include "engine/run_context.h"

#include <QDialog>

class QLabel;
class QProgressBar;
class QPushButton;

namespace lumiran {

// The small window of a run: caption, a label, the bar and the cancel
// button, which (by click or by its key Z) sets the cancel flag. The user
// cannot close it: closing it asks to cancel, and the run that opened it
// closes it with end() once it is over, however it ended.
class frm_Progress : public QDialog {
    Q_OBJECT
  public:
    // `smooth`: ProcessBarType, a smooth bar instead of the standard blocks.
    frm_Progress(CancelFlag& cancel, bool smooth, int fontSize, QWidget* parent = nullptr);

    void setPercent(int percent);
    void setLabel(const QString& text);
    [[nodiscard]] int percent() const;
    // Closes the window for good; only the run that opened it calls this.
    void end();

  signals:
    void cancelRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override; // Escape does not close it

  private:
    void requestCancel();

    CancelFlag& cancel_;
    QLabel* Label3;
    QProgressBar* ProgressBar1;
    QPushButton* Command1;
    bool ended_ = false;
};

} // namespace lumiran
