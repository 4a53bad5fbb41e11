#include "cli/cli_commands.h"
#include "platform/qt_picture_decoder.h"

#include <QGuiApplication>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace {

// The platform's decoder with the graphics application it may need, made
// only when a file needs them: plain bitmaps, the program's own formats,
// `list` and `--help` start no part of Qt.
class LazyPlatformDecoder : public lumiran::PlatformDecoder {
  public:
    explicit LazyPlatformDecoder(char* program) : arguments_{program, nullptr} {}

    [[nodiscard]] lumiran::Surface LoadPicture(const std::filesystem::path& path,
                                               const std::string& extension) override {
        if (!application_) {
            // The tool never shows a window; the offscreen platform works
            // with or without a display.
            qputenv("QT_QPA_PLATFORM", "offscreen");
            // Qt's own notes (a missing runtime folder, a decoder's
            // complaints) are not the tool's messages: its stderr carries one
            // line per problem.
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
            application_.emplace(argumentCount_, arguments_.data());
        }
        return decoder_.LoadPicture(path, extension);
    }

  private:
    int argumentCount_ = 1;
    std::vector<char*> arguments_;
    std::optional<QGuiApplication> application_;
    lumiran::QtPictureDecoder decoder_;
};

} // namespace

int main(int argc, char** argv) {
    LazyPlatformDecoder decoder(argv[0]);
    const std::vector<std::string> args(argv + 1, argv + argc);
    return lumiran::cli::runCli(args, std::cout, std::cerr, decoder);
}
