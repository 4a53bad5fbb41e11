// The platform's picture decoder of the command line, in a module of its
// own: the tool loads it, and with it Qt, only when a file needs it.
#include "cli/decoder_module/decoder_module.h"

#include "platform/qt_picture_decoder.h"
#include "platform/stderr_capture.h"

#include <QGuiApplication>

namespace {

class ModuleDecoder : public lumiran::PlatformDecoder {
  public:
    explicit ModuleDecoder(char* program) : arguments_{program, nullptr} {}

    [[nodiscard]] lumiran::Surface LoadPicture(const std::filesystem::path& path,
                                               const std::string& extension,
                                               lumiran::ProgressSink* progress,
                                               const lumiran::LoadLimits& limits) override {
        // The decoders' own chatter stays off the tool's stderr: its own
        // line is the only one.
        const lumiran::StderrCapture quiet;
        return decoder_.LoadPicture(path, extension, progress, limits);
    }

  private:
    static int prepared() {
        // The tool never shows a window; the offscreen platform works with
        // or without a display. Qt's own notes (a missing runtime folder, a
        // decoder's complaints) are not the tool's messages: its stderr
        // carries one line per problem.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        return 1;
    }

    int argumentCount_ = prepared();
    char* arguments_[2];
    // Metafiles are drawn with Qt's painter and fonts, which need it.
    QGuiApplication application_{argumentCount_, arguments_};
    lumiran::QtPictureDecoder decoder_;
};

} // namespace

extern "C" lumiran::PlatformDecoder* LUMIRAN_DECODER_FACTORY(char* program) {
    return new ModuleDecoder(program);
}
