// The platform's picture decoder of the command line, in a module of its
// own: the tool loads it, and with it Qt, only when a file needs it.
#include "cli/decoder_module/decoder_module.h"

#include "platform/qt_picture_decoder.h"

#include <QGuiApplication>
#include <fcntl.h>
#include <unistd.h>

namespace {

// Decoder libraries (libpng's default error handler among them) print to
// the process's stderr directly, past Qt's message handler: while one
// decodes, stderr goes nowhere, so the tool's own line stays the only one.
class StderrSilenced {
  public:
    StderrSilenced() : saved_(::dup(2)) {
        const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (saved_ >= 0 && null >= 0) ::dup2(null, 2);
        if (null >= 0) ::close(null);
    }
    ~StderrSilenced() {
        if (saved_ < 0) return;
        ::dup2(saved_, 2);
        ::close(saved_);
    }
    StderrSilenced(const StderrSilenced&) = delete;
    StderrSilenced& operator=(const StderrSilenced&) = delete;

  private:
    int saved_;
};

class ModuleDecoder : public lumiran::PlatformDecoder {
  public:
    explicit ModuleDecoder(char* program) : arguments_{program, nullptr} {}

    [[nodiscard]] lumiran::Surface LoadPicture(const std::filesystem::path& path,
                                               const std::string& extension,
                                               lumiran::ProgressSink* progress,
                                               const lumiran::LoadLimits& limits) override {
        const StderrSilenced quiet;
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
