#include "shell/ui/desktop_tools.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QScreen>
#include <QUrl>
#include <QWindow>

#ifdef LUMIRAN_HAVE_XCB
#include <QtGui/qguiapplication_platform.h>
#include <xcb/xcb.h>
#endif

#include <cstdlib>
#include <memory>

namespace lumiran {

namespace {

// A desktop tool answers at once; one that does not is given up on.
constexpr int ToolWaitMs = 5000;

#ifdef LUMIRAN_HAVE_XCB
// The window `_NET_ACTIVE_WINDOW` of the root window names; 0 without one.
WId activeX11Window() {
    auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) return 0;
    xcb_connection_t* c = x11->connection();
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(c)).data;
    if (screen == nullptr) return 0;
    const char name[] = "_NET_ACTIVE_WINDOW";
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 1, sizeof name - 1, name), nullptr),
        &std::free);
    if (!atom || atom->atom == XCB_ATOM_NONE) return 0;
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> property(
        xcb_get_property_reply(
            c, xcb_get_property(c, 0, screen->root, atom->atom, XCB_ATOM_WINDOW, 0, 1), nullptr),
        &std::free);
    if (!property || xcb_get_property_value_length(property.get()) < 4) return 0;
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(property.get()));
}
#endif

QString unquoted(QString text) {
    text = text.trimmed();
    if (text.size() >= 2 && (text.startsWith('\'') || text.startsWith('"'))) {
        text = text.mid(1, text.size() - 2);
    }
    return text;
}

} // namespace

std::optional<std::string> ProcessRunner::run(const CommandLine& command) {
    if (command.empty()) return std::nullopt;
    QProcess process;
    QStringList arguments;
    for (std::size_t i = 1; i < command.size(); ++i)
        arguments << QString::fromStdString(command[i]);
    process.start(QString::fromStdString(command[0]), arguments);
    if (!process.waitForStarted(ToolWaitMs)) return std::nullopt;
    if (!process.waitForFinished(ToolWaitMs)) {
        process.kill();
        process.waitForFinished();
        return std::nullopt;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    return process.readAllStandardOutput().toStdString();
}

Desktop runningDesktop() {
    return desktopFrom(qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString());
}

std::optional<QImage> captureScreen(bool activeWindow) {
    QScreen* screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return std::nullopt;
    WId window = 0;
#ifdef LUMIRAN_HAVE_XCB
    if (activeWindow) window = activeX11Window();
#endif
    // Without a window manager that names one, the active window is the screen.
    QImage picture = screen->grabWindow(window).toImage();
    if (picture.isNull() || picture.width() == 0 || picture.height() == 0) return std::nullopt;
    return picture;
}

QString currentWallpaperFile(CommandRunner& runner, Desktop desktop) {
    QString found;
    switch (desktop) {
    case Desktop::Gnome:
        if (const auto uri =
                runner.run({"gsettings", "get", "org.gnome.desktop.background", "picture-uri"})) {
            found = QUrl(unquoted(QString::fromStdString(*uri))).toLocalFile();
        }
        break;
    case Desktop::Xfce:
        if (const auto path = runner.run({"xfconf-query", "-c", "xfce4-desktop", "-p",
                                          "/backdrop/screen0/monitor0/workspace0/last-image"})) {
            found = unquoted(QString::fromStdString(*path));
        }
        break;
    case Desktop::Kde: {
        // Plasma keeps the image of each desktop as "Image=" in its applet file.
        QFile file(QDir::homePath() + "/.config/plasma-org.kde.plasma.desktop-appletsrc");
        if (file.open(QIODevice::ReadOnly | QIODevice::Text)) {
            while (!file.atEnd()) {
                const QString line = QString::fromUtf8(file.readLine()).trimmed();
                if (line.startsWith("Image=")) {
                    const QString value = line.mid(6);
                    found = value.startsWith("file:") ? QUrl(value).toLocalFile() : value;
                    break;
                }
            }
        }
        break;
    }
    case Desktop::Unsupported:
        break;
    }
    return QFile::exists(found) ? found : QString();
}

} // namespace lumiran
