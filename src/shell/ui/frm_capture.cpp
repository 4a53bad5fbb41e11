#include "shell/ui/frm_capture.h"

#include "shell/ui/desktop_tools.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QVBoxLayout>

namespace lumiran {

namespace {
// Hidden windows take this long to leave the screen.
constexpr int SettleMs = 500;
} // namespace

frm_Capture::frm_Capture(QWidget* frame) : QDialog(frame), frame_(frame) {
    setObjectName("frm_Capture");
    setWindowTitle(res(ids::FileCapture).remove("(&S)"));
    auto* frame1 = new QGroupBox("Capturing Type");
    Option1 = new QRadioButton("Desktop");
    Option1->setObjectName("Option1");
    Option2 = new QRadioButton("ActiveWindow");
    Option2->setObjectName("Option2");
    Option1->setChecked(true);
    auto* types = new QVBoxLayout(frame1);
    types->addWidget(Option1);
    types->addWidget(Option2);

    auto* frame2 = new QGroupBox("Hide Form");
    Check1 = new QCheckBox("Capture");
    Check1->setObjectName("Check1");
    Check1->setChecked(true);
    Check2 = new QCheckBox("MDIForm");
    Check2->setObjectName("Check2");
    auto* hides = new QVBoxLayout(frame2);
    hides->addWidget(Check1);
    hides->addWidget(Check2);

    Check3 = new QCheckBox("Send to Clipbord");
    Check3->setObjectName("Check3");
    Command1 = new QPushButton(res(ids::CaptureRun));
    Command1->setObjectName("Command1");
    Command1->setDefault(true);
    Command3 = new QPushButton("Return");
    Command3->setObjectName("Command3");

    auto* groups = new QHBoxLayout;
    groups->addWidget(frame1);
    groups->addWidget(frame2);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(Command1);
    buttons->addWidget(Command3);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(groups);
    layout->addWidget(Check3);
    layout->addLayout(buttons);

    connect(Command1, &QPushButton::clicked, this, &frm_Capture::Command1_Click);
    connect(Command3, &QPushButton::clicked, this, &QDialog::reject);
}

void frm_Capture::Command1_Click() {
    const bool activeWindow = Option2->isChecked();
    const bool hideSelf = Check1->isChecked();
    const bool hideFrame = Check2->isChecked() && frame_ != nullptr && frame_->isVisible();
    const bool toClipboard = Check3->isChecked();
    Command1->setEnabled(false);
    if (hideSelf) hide();
    if (hideFrame) {
        frame_->hide();
        frameHidden_ = true;
    }
    // The event loop goes on meanwhile, so the windows below repaint; the
    // wait is the same when nothing was hidden, so the pressed button has
    // come up again before the screen is taken.
    QTimer::singleShot(SettleMs, this, [this, activeWindow, toClipboard] {
        finishCapture(activeWindow, toClipboard);
    });
}

void frm_Capture::finishCapture(bool activeWindow, bool toClipboard) {
    std::optional<QImage> picture = captureScreen(activeWindow);
    if (frameHidden_) {
        frame_->show();
        frameHidden_ = false;
    }
    if (picture) {
        emit captured(std::move(*picture), toClipboard);
    } else {
        emit refused();
    }
    done(QDialog::Accepted);
}

} // namespace lumiran
