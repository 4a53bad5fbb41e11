#include "cli/cli_commands.h"
#include "platform/qt_picture_decoder.h"

#include <QGuiApplication>
#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    // The tool never shows a window; the offscreen platform works with or
    // without a display.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // Qt's own notes (a missing runtime folder, a decoder's complaints) are
    // not the tool's messages: its stderr carries one line per problem.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    int qtArgc = 1;
    QGuiApplication application(qtArgc, argv);
    lumiran::QtPictureDecoder decoder;
    const std::vector<std::string> args(argv + 1, argv + argc);
    return lumiran::cli::runCli(args, std::cout, std::cerr, decoder);
}
