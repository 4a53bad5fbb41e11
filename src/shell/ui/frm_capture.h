#pragma once

#include <QDialog>
#include <QImage>

class QCheckBox;
class QRadioButton;
class QPushButton;

namespace lumiran {

// The capture dialog: the screen or the active window, with the chosen
// forms hidden first, into a new document or onto the clipboard.
class frm_Capture : public QDialog {
    Q_OBJECT
  public:
    // `frame` is the main window the "MDIForm" check hides.
    explicit frm_Capture(QWidget* frame);

    QRadioButton* Option1 = nullptr;
    QRadioButton* Option2 = nullptr;
    QCheckBox* Check1 = nullptr;
    QCheckBox* Check2 = nullptr;
    QCheckBox* Check3 = nullptr;
    QPushButton* Command1 = nullptr;
    QPushButton* Command3 = nullptr;

  signals:
    // The picture taken and whether it goes to the clipboard.
    void captured(QImage picture, bool toClipboard);
    // The platform gave no picture.
    void refused();

  private:
    void Command1_Click();
    void finishCapture(bool activeWindow, bool toClipboard);

    QWidget* frame_;
    bool frameHidden_ = false;
};

} // namespace lumiran
