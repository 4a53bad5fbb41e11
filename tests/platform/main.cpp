#include <QGuiApplication>
#include <cstdio>
#include <gtest/gtest.h>

namespace {

// Broken files are the point of many tests; the decoders' warnings about
// them would bury the results.
void keepSerious(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) {
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, message)));
    }
}

} // namespace

// The decoders draw metafiles with Qt's painter and fonts, which need a
// graphics application; the offscreen platform needs no display.
int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    qInstallMessageHandler(keepSerious);
    return RUN_ALL_TESTS();
}
