// The editor: Frm_Splash, then the frame, its settings and the command line.
#include "platform/qt_picture_decoder.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/qt_settings_store.h"

#include <QApplication>
#include <QPointer>
#include <QTimer>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("Lumiran");
    QApplication::setOrganizationName("Lumiran");

    lumiran::QtSettingsStore store;
    lumiran::QtPictureDecoder decoder;
    lumiran::FrmMain frame(store, decoder);
    // The confirmed exit ends the program, whatever other window is still up.
    QObject::connect(&frame, &lumiran::FrmMain::exited, &application, &QApplication::quit,
                     Qt::QueuedConnection);
    // The splash closes and deletes itself after a moment.
    const QPointer<QWidget> splash = lumiran::showSplash(frame.settings());
    frame.show();
    if (splash) splash->raise();

    // A store that could not be read is kept before the exit could write over it.
    if (store.unreadable() || !frame.settingsProblems().empty()) {
        frame.reportSettingsProblems(frame.settingsProblems(), store.keepOriginal());
    }
    // The command line is one blank-separated string, as the program was given it.
    const QStringList arguments = QApplication::arguments().mid(1);
    frame.openCommandLine(arguments.join(' '));
    if (frame.settings().firstStart()) {
        QTimer::singleShot(0, &frame,
                           [&frame] { lumiran::showVersionDialog(frame.settings(), &frame); });
    }
    return QApplication::exec();
}
