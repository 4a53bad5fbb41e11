// A ".bmp" file as the load path takes it: the plain-bitmap fast path, and
// for every other bitmap the platform's decoder with its layout checks.
// Both read from a file, so each input is written to one first.
#include "decoder_fuzzer.h"
#include "imagefiles/load_dispatch.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace {

class InputFile {
  public:
    InputFile()
        : path_(std::filesystem::temp_directory_path() /
                ("lumiran-bmp-fuzz-" + std::to_string(getpid()) + ".bmp")) {}
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;
    ~InputFile() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    const std::filesystem::path& write(const std::uint8_t* data, std::size_t size) {
        std::ofstream out(path_, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
        return path_;
    }

  private:
    std::filesystem::path path_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static InputFile input;
    static lumiran::QtPictureDecoder decoder;
    const std::filesystem::path& path = input.write(data, size);
    try {
        lumiran::fuzz::DiscardingProgress progress;
        const auto picture =
            lumiran::LoadImageFile(path, &decoder, &progress, lumiran::fuzz::Limits);
        volatile lumiran::Pixel sink = 0;
        if (picture) {
            for (const lumiran::Pixel p : picture->pixels())
                sink = sink ^ p;
        }
    } catch (const lumiran::ImageLoadError&) {
    } catch (const std::bad_alloc&) {
        // Qt refuses an image above its allocation limit this way.
    }
    return 0;
}
