#include "tools/wall_setting.h"

#include "engine/ascii_case.h"
#include "shell/ui_string_ids.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>

namespace lumiran {

namespace {

bool containsToken(std::string_view list, std::string_view token) {
    // A colon-separated list such as "ubuntu:GNOME"; names compare without case.
    std::size_t start = 0;
    while (start <= list.size()) {
        const std::size_t end = std::min(list.find(':', start), list.size());
        const std::string_view item = list.substr(start, end - start);
        if (equalIgnoringAsciiCase(item, token)) return true;
        start = end + 1;
    }
    return false;
}

std::string joinPath(const std::string& folder, const std::string& name) {
    if (folder.empty() || folder.back() == '/') return folder + name;
    return folder + "/" + name;
}

} // namespace

Desktop desktopFrom(std::string_view xdg) {
    for (const char* gnome : {"GNOME", "Unity", "Budgie", "Pantheon", "GNOME-Flashback"}) {
        if (containsToken(xdg, gnome)) return Desktop::Gnome;
    }
    if (containsToken(xdg, "KDE")) return Desktop::Kde;
    if (containsToken(xdg, "XFCE")) return Desktop::Xfce;
    return Desktop::Unsupported;
}

WallPlacement placementOf(const std::string& tile, const std::string& style) {
    if (tile == "1") return WallPlacement::Tile;
    if (style == "2") return WallPlacement::Stretch;
    return WallPlacement::Centre;
}

std::string fileUri(std::string_view path) {
    constexpr char hex[] = "0123456789ABCDEF";
    std::string uri = "file://";
    for (const char c : path) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                           (byte >= '0' && byte <= '9') || byte == '-' || byte == '.' ||
                           byte == '_' || byte == '~' || byte == '/';
        if (plain) {
            uri += c;
        } else {
            uri += '%';
            uri += hex[byte >> 4];
            uri += hex[byte & 15];
        }
    }
    return uri;
}

void Class_WallSetting::writeValue(const char* key, const std::string& value) {
    store_.set(WallSection, key, value);
}

void Class_WallSetting::SetWallStyle(const std::string& style) {
    writeValue(StyleKey, style);
}

bool Class_WallSetting::SetWall(const std::string& path, const std::string& tile) {
    writeValue(TileKey, tile);
    if (desktop_ == Desktop::Unsupported) return false;
    for (const CommandLine& command : desktopCommands(path))
        runner_.run(command);
    return true;
}

std::vector<CommandLine> Class_WallSetting::desktopCommands(const std::string& path) {
    const WallPlacement placement = placementOf(store_.get(WallSection, TileKey).value_or("0"),
                                                store_.get(WallSection, StyleKey).value_or("0"));
    const auto pick = [placement](const char* centre, const char* tile, const char* stretch) {
        switch (placement) {
        case WallPlacement::Tile:
            return std::string(tile);
        case WallPlacement::Stretch:
            return std::string(stretch);
        case WallPlacement::Centre:
            break;
        }
        return std::string(centre);
    };
    switch (desktop_) {
    case Desktop::Gnome: {
        const std::string schema = "org.gnome.desktop.background";
        const std::string uri = fileUri(path);
        return {{"gsettings", "set", schema, "picture-uri", uri},
                {"gsettings", "set", schema, "picture-uri-dark", uri},
                {"gsettings", "set", schema, "picture-options",
                 pick("centered", "wallpaper", "stretched")}};
    }
    case Desktop::Kde:
        return {
            {"plasma-apply-wallpaperimage", "--fill-mode", pick("pad", "tile", "stretch"), path}};
    case Desktop::Xfce: {
        // Every monitor and workspace has its own image; the listed
        // properties name them. Without a list, the first screen's.
        std::vector<std::string> images;
        if (const auto listed = runner_.run({"xfconf-query", "-c", "xfce4-desktop", "-l"})) {
            std::size_t start = 0;
            while (start < listed->size()) {
                const std::size_t end = std::min(listed->find('\n', start), listed->size());
                const std::string line = listed->substr(start, end - start);
                const std::string tail = "/last-image";
                if (line.size() > tail.size() &&
                    line.compare(line.size() - tail.size(), tail.size(), tail) == 0) {
                    images.push_back(line.substr(0, line.size() - tail.size()));
                }
                start = end + 1;
            }
        }
        if (images.empty()) images.push_back("/backdrop/screen0/monitor0/workspace0");
        // image-style: 1 centred, 2 tiled, 3 stretched.
        const std::string style = pick("1", "2", "3");
        std::vector<CommandLine> commands;
        for (const std::string& base : images) {
            commands.push_back({"xfconf-query", "-c", "xfce4-desktop", "-p", base + "/last-image",
                                "-n", "-t", "string", "-s", path});
            commands.push_back({"xfconf-query", "-c", "xfce4-desktop", "-p", base + "/image-style",
                                "-n", "-t", "int", "-s", style});
        }
        return commands;
    }
    case Desktop::Unsupported:
        break;
    }
    return {};
}

std::optional<WallMessage> WallPaperNo(int index, const std::string& folder,
                                       const std::string& name, Class_WallSetting& wall) {
    // The folder label is empty for a picture that never came from a file
    // ("New", the clipboard, a capture), whatever name the window has.
    if (folder.empty()) return WallMessage{ids::WallNoPicture, ids::WallTitle};
    const std::string path = joinPath(folder, name);
    std::uint16_t magic = 0;
    {
        std::error_code error;
        if (std::filesystem::is_directory(path, error))
            return WallMessage{ids::WallCannotOpen, ids::WallTitle};
        std::ifstream file(path, std::ios::binary);
        if (!file) return WallMessage{ids::WallCannotOpen, ids::WallTitle};
        std::array<unsigned char, 2> bytes{};
        file.read(reinterpret_cast<char*>(bytes.data()), 2);
        if (file.gcount() == 2) magic = static_cast<std::uint16_t>(bytes[0] | (bytes[1] << 8));
    }
    if (magic != 19778) return WallMessage{ids::WallNotBitmap, ids::WallTitle};
    bool supported = true;
    switch (index) {
    case WallCentre:
        wall.SetWallStyle("0");
        supported = wall.SetWall(path, "0");
        break;
    case WallAll:
        supported = wall.SetWall(path, "1");
        break;
    case WallScreen:
        wall.SetWallStyle("2");
        supported = wall.SetWall(path, "0");
        break;
    default:
        return std::nullopt;
    }
    if (!supported) return WallMessage{ids::WallDesktopUnsupported, ids::WallTitle};
    return std::nullopt;
}

} // namespace lumiran
