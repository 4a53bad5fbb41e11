#include "imagefiles/load_dispatch.h"

#include "engine/ascii_case.h"
#include "imagefiles/file_head.h"
#include "imagefiles/file_io.h"
#include "imagefiles/image_file_error.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/plain_bitmap.h"
#include "shell/string_table.h"

#include <algorithm>
#include <array>
#include <utility>

namespace lumiran {
namespace {

struct RouteEntry {
    std::string_view extension;
    LoadRoute route;
};

constexpr std::array routes{
    RouteEntry{"bmp", LoadRoute::Platform},
    RouteEntry{"ico", LoadRoute::Platform},
    RouteEntry{"rle", LoadRoute::Platform},
    RouteEntry{"wmf", LoadRoute::Platform},
    RouteEntry{"emf", LoadRoute::Platform},
    RouteEntry{"jpg", LoadRoute::Platform},
    RouteEntry{"gif", LoadRoute::Platform},
    RouteEntry{"cur", LoadRoute::Platform},
    RouteEntry{"pcx", LoadRoute::Pcx},
    RouteEntry{"ppm", LoadRoute::Ppm},
    RouteEntry{"pgm", LoadRoute::Ppm},
    RouteEntry{"pbm", LoadRoute::Ppm},
    RouteEntry{"tga", LoadRoute::Tga},
    RouteEntry{"pcd", LoadRoute::Pcd},
    // Today's formats and spellings, all through the platform's decoder.
    RouteEntry{"jpeg", LoadRoute::Platform},
    RouteEntry{"jpe", LoadRoute::Platform},
    RouteEntry{"png", LoadRoute::Platform},
    RouteEntry{"tif", LoadRoute::Platform},
    RouteEntry{"tiff", LoadRoute::Platform},
    RouteEntry{"webp", LoadRoute::Platform},
};

// Enough for every reader's header; smaller files are read in one go.
constexpr std::size_t HeadBytes = std::size_t{1} << 16;

void refuseFromHead(LoadRoute route, const FileHead& head, const LoadLimits& limits) {
    switch (route) {
    case LoadRoute::Pcx:
        return Class_PCXImageOp::refuseFromHead(head.bytes, head.fileSize, limits);
    case LoadRoute::Ppm:
        return Class_PPMImageOp::refuseFromHead(head.bytes, head.fileSize, limits);
    case LoadRoute::Tga:
        return Class_TGAImageOp::refuseFromHead(head.bytes, head.fileSize, limits);
    case LoadRoute::Pcd:
        return Class_PCDImageOp::refuseFromHead(head.bytes, head.fileSize, limits);
    default:
        return;
    }
}

// The header and the file's length are looked at before the file is read,
// so a file that is refused for its size or its header is never read whole.
// File-system failures carry the runtime's numbers for them.
std::vector<std::uint8_t> readForReader(const std::filesystem::path& path, LoadRoute route,
                                        const LoadLimits& limits) {
    std::error_code ec;
    if (!std::filesystem::exists(path, ec)) {
        throw ImageLoadError(53, "ファイルが見つかりません。", path.string() + ": no such file");
    }
    try {
        FileHead head = readFileHead(path, HeadBytes);
        if (head.whole()) return std::move(head.bytes);
        if (head.fileSize > limits.maxBytes)
            throw ImageFileError(path.string() + ": file too large");
        refuseFromHead(route, head, limits);
        return readWholeFile(path, limits.maxBytes);
    } catch (const ImageFileError& e) {
        throw ImageLoadError(75, "パス名が無効です。", e.what());
    }
}

} // namespace

std::string FileExtension(std::string_view path) {
    for (std::size_t i = path.size(); i-- > 0;) {
        const char c = path[i];
        if (c == '.') return std::string(path.substr(i + 1));
        if (c == '/' || c == '\\') return {};
    }
    return {};
}

LoadRoute routeForExtension(std::string_view lowerCaseExtension) {
    const auto it = std::ranges::find(routes, lowerCaseExtension, &RouteEntry::extension);
    return it == routes.end() ? LoadRoute::Blank : it->route;
}

std::optional<Surface> LoadImageFile(const std::filesystem::path& path, PlatformDecoder* platform,
                                     ProgressSink* progress, const LoadLimits& limits) {
    const std::string extension = asciiLower(FileExtension(path.string()));
    const LoadRoute route = routeForExtension(extension);
    switch (route) {
    case LoadRoute::Blank:
        return std::nullopt;
    case LoadRoute::Platform:
        // Plain bitmaps, by far the most common files here, are read
        // straight into the picture; the platform's decoder gives the same
        // pixels, and gets every other file.
        if (auto plain = readPlainBitmap(path, limits, progress)) return plain;
        if (platform == nullptr) {
            throw ImageLoadError::refused(path.string() + ": no decoder for ." + extension +
                                          " files in this program");
        }
        return platform->LoadPicture(path, extension, progress, limits);
    default:
        break;
    }
    const std::vector<std::uint8_t> file = readForReader(path, route, limits);
    switch (route) {
    case LoadRoute::Pcx:
        return Class_PCXImageOp().PCXImageGet(file, progress, limits);
    case LoadRoute::Ppm:
        return Class_PPMImageOp().PPMImageGet(file, progress, limits);
    case LoadRoute::Tga:
        return Class_TGAImageOp().TGAImageGet(file, progress, limits);
    case LoadRoute::Pcd:
        return Class_PCDImageOp().PCDImageGet(file, progress, limits);
    default:
        return std::nullopt;
    }
}

std::string loadProgressCaption(int percent) {
    return std::string(LoadResString(3431)) + "  " + std::to_string(percent) + "%";
}

} // namespace lumiran
