#include "shell/ui/frm_progress.h"

#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace lumiran {

frm_Progress::frm_Progress(CancelFlag& cancel, bool smooth, int fontSize, QWidget* parent)
    : QDialog(parent), cancel_(cancel), Label3(new QLabel(res(ids::PleaseWait))),
      ProgressBar1(new QProgressBar), Command1(new QPushButton(res(ids::CancelZ))) {
    setObjectName("frm_Progress");
    setWindowTitle(res(ids::ProgressCaption));
    setModal(false);
    Command1->setObjectName("Command1");
    ProgressBar1->setObjectName("ProgressBar1");
    ProgressBar1->setRange(0, 100);
    ProgressBar1->setValue(0);
    // ProcessBarType picks the bar's look, standard blocks or a smooth fill;
    // either shows how far the run has come.
    if (!smooth) {
        ProgressBar1->setStyleSheet(QStringLiteral(
            "QProgressBar { border: 1px solid gray; background: white; text-align: center; }"
            "QProgressBar::chunk { background-color: palette(highlight); width: 8px;"
            " margin: 1px; }"));
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Label3);
    layout->addWidget(ProgressBar1);
    layout->addWidget(Command1, 0, Qt::AlignRight);
    connect(Command1, &QPushButton::clicked, this, &frm_Progress::requestCancel);
    Command1->installEventFilter(this);
    QFont f = font();
    f.setPointSize(fontSize);
    setFont(f);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->geometry();
        move(area.width() / 4, area.height() / 4);
    }
}

void frm_Progress::setPercent(int percent) {
    // A run whose total covers one pass of two reports beyond 100.
    ProgressBar1->setValue(std::clamp(percent, 0, 100));
}

int frm_Progress::percent() const {
    return ProgressBar1->value();
}

void frm_Progress::setLabel(const QString& text) {
    Label3->setText(text);
}

void frm_Progress::end() {
    ended_ = true;
    close();
}

void frm_Progress::requestCancel() {
    cancel_ = 1;
    emit cancelRequested();
}

bool frm_Progress::eventFilter(QObject* watched, QEvent* event) {
    if (watched == Command1 && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Z) {
        requestCancel();
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

void frm_Progress::closeEvent(QCloseEvent* event) {
    if (ended_) {
        event->accept();
        return;
    }
    // The window's close button stops the run; the window goes when the run has ended.
    requestCancel();
    event->ignore();
}

void frm_Progress::reject() {}

} // namespace lumiran
