#pragma once

#include "engine/run_context.h"
#include "imagefiles/load_dispatch.h"
#include "imagefiles/load_limits.h"

#include <cstdint>
#include <span>
#include <string>

namespace lumiran {

// The platform's decoder on Qt Gui's image readers, with libwmf and
// libemf2svg for the metafiles. Like the decoder it stands in for, it goes
// by a file's content: the extension only tells a metafile without a
// signature apart. Raster pictures need no application object; metafiles
// need a QGuiApplication in the process.
// The decoder's work on a file's bytes, without the file: throws
// PictureRefusal for a file it will not show, ImageLoadError for a
// cancelled load, and may run out of memory.
[[nodiscard]] Surface decodePicture(std::span<const std::uint8_t> bytes,
                                    const std::string& extension, const LoadLimits& limits,
                                    ProgressSink* progress);

class QtPictureDecoder : public PlatformDecoder {
  public:
    explicit QtPictureDecoder(LoadLimits limits = {}) : limits_(limits) {}

    // Refusals carry the runtime's invalid-picture error (481), a missing
    // file its file-not-found error (53).
    [[nodiscard]] Surface LoadPicture(const std::filesystem::path& path,
                                      const std::string& extension, ProgressSink* progress,
                                      const LoadLimits& limits) override;
    // With the decoder's own progress sink and limits.
    [[nodiscard]] Surface LoadPicture(const std::filesystem::path& path,
                                      const std::string& extension) {
        return LoadPicture(path, extension, progress_, limits_);
    }

    // Where raster pictures report how much of the file has been decoded,
    // in percent; null (the default) for no report. The editor shows it in
    // the document's progress entry, as its own readers do.
    void setProgress(ProgressSink* progress) { progress_ = progress; }

  private:
    LoadLimits limits_;
    ProgressSink* progress_ = nullptr;
};

} // namespace lumiran
