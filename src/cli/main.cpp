#include "cli/cli_commands.h"
#include "cli/decoder_module/decoder_module.h"
#include "imagefiles/image_load_error.h"

#include <atomic>
#include <csignal>
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
                                               const std::string& extension,
                                               lumiran::ProgressSink* progress,
                                               const lumiran::LoadLimits& limits) override {
        if (!decoder_) decoder_ = load(path);
        return decoder_->LoadPicture(path, extension, progress, limits);
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

// Set by Ctrl+C. A signal handler can reach nothing else; a lock-free
// atomic is safe to store to from one.
std::atomic<int> interruptRequested{0};
static_assert(std::atomic<int>::is_always_lock_free);

// The first Ctrl+C asks the run to stop at the load's next step, so that no
// half-written picture is left; a second one ends the process at once.
void installInterruptHandler() {
    struct sigaction action {};
    action.sa_handler = [](int) { interruptRequested.store(1); };
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESETHAND;
    sigaction(SIGINT, &action, nullptr);
}

} // namespace

int main(int argc, char** argv) {
    installInterruptHandler();
    DecoderOnDemand decoder(argv[0]);
    const std::vector<std::string> args(argv + 1, argv + argc);
    return lumiran::cli::runCli(args, std::cout, std::cerr, decoder, &interruptRequested,
                                ::isatty(2) == 1);
}
