#pragma once

#include "tools/wall_setting.h"

#include <QImage>
#include <QString>
#include <optional>

namespace lumiran {

// Runs the desktop's tools as child processes found on PATH; one that is
// missing, fails or hangs gives nothing.
class ProcessRunner : public CommandRunner {
  public:
    std::optional<std::string> run(const CommandLine& command) override;
};

// The desktop named by XDG_CURRENT_DESKTOP.
[[nodiscard]] Desktop runningDesktop();

// The screen, or the window the window manager calls active; nothing when
// the platform refuses (a Wayland session without a portal, for one).
[[nodiscard]] std::optional<QImage> captureScreen(bool activeWindow);

// The file the desktop shows as its wallpaper, where the desktop tells it.
[[nodiscard]] QString currentWallpaperFile(CommandRunner& runner, Desktop desktop);

} // namespace lumiran
