#pragma once

#include "engine/run_context.h"
#include "engine/surface.h"
#include "imagefiles/load_limits.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace lumiran {

// What stands behind the last "." of a path; a "/" or "\" met first, or no
// dot at all, means no extension.
[[nodiscard]] std::string FileExtension(std::string_view path);

// The platform's picture decoder for the formats the program does not read
// itself (BMP, ICO, RLE, WMF, EMF, JPEG, GIF, cursors, PNG, TIFF, WebP). Kept behind an
// interface so the core needs no GUI library.
class PlatformDecoder {
  public:
    virtual ~PlatformDecoder() = default;
    // The file's pixels at the file's size (a metafile's within the limits);
    // throws ImageLoadError. Percentages and notes go to progress (may be
    // null), which may stop the load by throwing LoadCancelled.
    [[nodiscard]] virtual Surface LoadPicture(const std::filesystem::path& path,
                                              const std::string& extension, ProgressSink* progress,
                                              const LoadLimits& limits) = 0;
};

// How the load path treats an extension.
enum class LoadRoute { Platform, Pcx, Ppm, Tga, Pcd, Blank };

[[nodiscard]] LoadRoute routeForExtension(std::string_view lowerCaseExtension);

// Reads a picture by the lower-case extension of its path. An unknown
// extension (and "dib") gives no picture and success: the caller keeps its
// blank picture. Throws ImageLoadError on failure; a platform format with
// no decoder given is a failure too.
[[nodiscard]] std::optional<Surface> LoadImageFile(const std::filesystem::path& path,
                                                   PlatformDecoder* platform,
                                                   ProgressSink* progress,
                                                   const LoadLimits& limits = {});

// The caption of the document's progress entry during a load.
[[nodiscard]] std::string loadProgressCaption(int percent);

} // namespace lumiran
