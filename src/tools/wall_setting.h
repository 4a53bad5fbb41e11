#pragma once

#include "shell/key_value_store.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumiran {

// The desktops whose wallpaper the editor can set, by `XDG_CURRENT_DESKTOP`.
enum class Desktop { Gnome, Kde, Xfce, Unsupported };

[[nodiscard]] Desktop desktopFrom(std::string_view xdgCurrentDesktop);

using CommandLine = std::vector<std::string>;

// Runs a desktop tool; the output is what it printed, nothing when it could
// not run or failed. Failures pass in silence, as the registry's did.
class CommandRunner {
  public:
    virtual ~CommandRunner() = default;
    virtual std::optional<std::string> run(const CommandLine& command) = 0;
};

// Where the registry's "Control Panel\Desktop" values are kept.
inline constexpr const char* WallSection = "Desktop";
inline constexpr const char* TileKey = "TileWallpaper";
inline constexpr const char* StyleKey = "wallpaperstyle";

// The wallpaper: "TileWallpaper" and "wallpaperstyle" are kept in the
// settings store, then the picture and the placement they mean go to the
// running desktop's own tool.
class Class_WallSetting {
  public:
    Class_WallSetting(KeyValueStore& store, CommandRunner& runner, Desktop desktop)
        : store_(store), runner_(runner), desktop_(desktop) {}

    // false when the desktop is not one the editor can talk to.
    bool SetWall(const std::string& path, const std::string& tile);
    void SetWallStyle(const std::string& style);

    // The command lines that show `path` with the stored tile and style.
    [[nodiscard]] std::vector<CommandLine> desktopCommands(const std::string& path);

  private:
    void writeValue(const char* key, const std::string& value);

    KeyValueStore& store_;
    CommandRunner& runner_;
    Desktop desktop_;
};

// Placement of the stored values: 0 centred, 1 tiled, 2 stretched.
enum class WallPlacement { Centre, Tile, Stretch };
[[nodiscard]] WallPlacement placementOf(const std::string& tile, const std::string& style);

// A "file://" address for a local path, with the bytes outside the
// unreserved set percent-encoded.
[[nodiscard]] std::string fileUri(std::string_view path);

struct WallMessage {
    int text = 0;
    int title = 0;
};

// Rows of the wallpaper menu: 0 "To Wallpaper Center", 1 "To Wallpaper All",
// 2 "To Wallpaper Screen".
inline constexpr int WallCentre = 0;
inline constexpr int WallAll = 1;
inline constexpr int WallScreen = 2;

// The checks in order (no folder, unreadable, not "BM"), then the row. The
// message to show, if any; an unsupported desktop gives its own.
[[nodiscard]] std::optional<WallMessage>
WallPaperNo(int index, const std::string& folder, const std::string& name, Class_WallSetting& wall);

} // namespace lumiran
