#include "cli/cli_commands.h"
#include "cli/decoder_module/decoder_module.h"
#include "imagefiles/image_load_error.h"

#include <dlfcn.h>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// The platform's decoder, loaded from its module beside the tool when a
// file first needs it. Plain bitmaps, the program's own formats, `list`
// and `--help` never load it, and so never load Qt: its libraries alone
// take longer to load than a small picture takes to process.
class DecoderOnDemand : public lumiran::PlatformDecoder {
  public:
    explicit DecoderOnDemand(char* program) : program_(program) {}

    [[nodiscard]] lumiran::Surface LoadPicture(const std::filesystem::path& path,
                                               const std::string& extension) override {
        if (!decoder_) decoder_ = load(path);
        return decoder_->LoadPicture(path, extension);
    }

  private:
    std::unique_ptr<lumiran::PlatformDecoder> load(const std::filesystem::path& path) {
        std::error_code ec;
        const std::filesystem::path module =
            std::filesystem::read_symlink("/proc/self/exe", ec).parent_path() /
            LUMIRAN_DECODER_MODULE;
        // Kept loaded until the process ends: the decoder's code lives in it.
        void* handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
        void* factory = handle == nullptr ? nullptr : dlsym(handle, LUMIRAN_DECODER_FACTORY_NAME);
        if (factory == nullptr) {
            const char* reason = dlerror();
            throw lumiran::ImageLoadError::refused(
                path.string() + ": the platform's picture decoder cannot be loaded (" +
                (reason != nullptr ? reason : module.string()) + ")");
        }
        auto* create = reinterpret_cast<decltype(&LUMIRAN_DECODER_FACTORY)>(factory);
        return std::unique_ptr<lumiran::PlatformDecoder>(create(program_));
    }

    char* program_;
    std::unique_ptr<lumiran::PlatformDecoder> decoder_;
};

} // namespace

int main(int argc, char** argv) {
    DecoderOnDemand decoder(argv[0]);
    const std::vector<std::string> args(argv + 1, argv + argc);
    return lumiran::cli::runCli(args, std::cout, std::cerr, decoder, ::isatty(2) == 1);
}
