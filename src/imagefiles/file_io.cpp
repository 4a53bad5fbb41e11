#include "imagefiles/file_io.h"

#include "imagefiles/image_file_error.h"

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

namespace lumiran {

namespace fs = std::filesystem;

std::vector<std::uint8_t> readWholeFile(const fs::path& path, std::uintmax_t maxBytes) {
    std::error_code ec;
    const auto status = fs::status(path, ec);
    if (ec || !fs::exists(status)) throw ImageFileError(path.string() + ": no such file");
    if (fs::is_directory(status)) throw ImageFileError(path.string() + ": is a directory");
    const auto size = fs::file_size(path, ec);
    if (ec) throw ImageFileError(path.string() + ": cannot read the file size");
    if (size > maxBytes) throw ImageFileError(path.string() + ": file too large");
    std::ifstream in(path, std::ios::binary);
    if (!in) throw ImageFileError(path.string() + ": cannot open for reading");
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
    in.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (in.gcount() != static_cast<std::streamsize>(bytes.size())) {
        throw ImageFileError(path.string() + ": read error");
    }
    return bytes;
}

void writeFileAtomically(const fs::path& path, std::span<const std::uint8_t> bytes) {
    const fs::path directory = path.has_parent_path() ? path.parent_path() : fs::path(".");
    std::error_code ec;
    if (fs::is_directory(path, ec)) throw ImageFileError(path.string() + ": is a directory");
    if (!fs::is_directory(directory, ec)) {
        throw ImageFileError(path.string() + ": the folder does not exist");
    }
    std::random_device entropy;
    const fs::path temporary =
        directory / ("." + path.filename().string() + ".tmp" + std::to_string(entropy() % 1000000));
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!out) throw ImageFileError(path.string() + ": cannot open for writing");
        out.write(reinterpret_cast<const char*>(bytes.data()),
                  static_cast<std::streamsize>(bytes.size()));
        out.close();
        if (!out) {
            fs::remove(temporary, ec);
            throw ImageFileError(path.string() + ": write error");
        }
    }
    fs::rename(temporary, path, ec);
    if (ec) {
        std::error_code ignored;
        fs::remove(temporary, ignored);
        throw ImageFileError(path.string() + ": cannot replace the file: " + ec.message());
    }
}

} // namespace lumiran
