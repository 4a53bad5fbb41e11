#pragma once

#include "engine/run_context.h"
#include "imagefiles/load_dispatch.h"
#include "imagefiles/load_limits.h"

namespace lumiran {

// The platform's decoder on Qt Gui's image readers, with libwmf and
// libemf2svg for the metafiles. Like the decoder it stands in for, it goes
// by a file's content: the extension only tells a metafile without a
// signature apart. Raster pictures need no application object; metafiles
// need a QGuiApplication in the process.
class QtPictureDecoder : public PlatformDecoder {
  public:
    explicit QtPictureDecoder(LoadLimits limits = {}) : limits_(limits) {}

    // Refusals carry the runtime's invalid-picture error (481), a missing
    // file its file-not-found error (53).
    [[nodiscard]] Surface LoadPicture(const std::filesystem::path& path,
                                      const std::string& extension) override;

    // Where raster pictures report how much of the file has been decoded,
    // in percent; null (the default) for no report. The editor shows it in
    // the document's progress entry, as its own readers do.
    void setProgress(ProgressSink* progress) { progress_ = progress; }

  private:
    LoadLimits limits_;
    ProgressSink* progress_ = nullptr;
};

} // namespace lumiran
