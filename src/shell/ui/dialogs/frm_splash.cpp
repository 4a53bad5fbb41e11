#include "shell/ui/dialogs/frm_splash.h"

#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/ui_text.h"

#include <QGuiApplication>
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QVBoxLayout>

namespace lumiran {

Frm_Splash::Frm_Splash(const Settings& settings, QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
    setObjectName("Frm_Splash");
    auto* name = new QLabel(QString::fromLatin1(ProgramName));
    name->setObjectName("ProgramName");
    auto* version = new QLabel(versionText());
    version->setObjectName("VersionLabel");
    auto* starting = new QLabel(res(dialog_ids::Starting));
    starting->setObjectName("StartingLabel");
    for (QLabel* label : {name, version, starting})
        label->setAlignment(Qt::AlignCenter);

    auto* frame = new QFrame;
    frame->setFrameShape(QFrame::Panel);
    frame->setFrameShadow(QFrame::Raised);
    auto* inner = new QVBoxLayout(frame);
    inner->setContentsMargins(32, 16, 32, 16);
    inner->addWidget(name);
    inner->addWidget(version);
    inner->addWidget(starting);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame);

    ApplyFontSize(*this, settings.FontSize);
    QFont title = name->font(); // the name stands out above the small print
    title.setPointSize(title.pointSize() * 2);
    title.setBold(true);
    name->setFont(title);
    adjustSize();
}

QWidget* showSplash(const Settings& settings) {
    auto* splash = new Frm_Splash(settings);
    splash->setAttribute(Qt::WA_DeleteOnClose);
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        QRect frame = splash->frameGeometry();
        frame.moveCenter(screen->availableGeometry().center());
        splash->move(frame.topLeft());
    }
    splash->show();
    QTimer::singleShot(SplashMilliseconds, splash, &QWidget::close);
    return splash;
}

} // namespace lumiran
