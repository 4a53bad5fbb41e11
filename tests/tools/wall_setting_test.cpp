#include "shell/ui_string_ids.h"
#include "test_support.h"
#include "tools/wall_setting.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace lumiran {
namespace {

class RecordingRunner : public CommandRunner {
  public:
    std::optional<std::string> run(const CommandLine& command) override {
        commands.push_back(command);
        if (command.size() > 3 && command[0] == "xfconf-query" && command[3] == "-l")
            return listing;
        return std::string();
    }
    std::vector<CommandLine> commands;
    std::optional<std::string> listing;
};

class WallPaperTest : public ::testing::Test {
  protected:
    void SetUp() override {
        folder_ = testing::testFolder("lumiran_wall_");
        std::filesystem::create_directories(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }
    std::string write(const std::string& name, const std::string& bytes) {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
        return name;
    }
    std::string folder() const { return folder_.string(); }

    std::filesystem::path folder_;
    MemoryStore store_;
    RecordingRunner runner_;
};

TEST_F(WallPaperTest, ChecksComeInOrderAndLeaveTheDesktopAlone) {
    Class_WallSetting wall(store_, runner_, Desktop::Gnome);
    const std::string notBitmap = write("a.jpg", "\xFF\xD8\xFF");
    const std::string oneByte = write("b.bmp", "B");
    struct Case {
        std::string folder;
        std::string name;
        int message;
    };
    // A document without a folder (made by "New", or from the clipboard) has
    // no picture on disk, whatever its name; a folder is no file.
    const Case cases[] = {{"", "", ids::WallNoPicture},
                          {"", oneByte, ids::WallNoPicture},
                          {folder(), "", ids::WallCannotOpen},
                          {folder(), "missing.bmp", ids::WallCannotOpen},
                          {folder(), notBitmap, ids::WallNotBitmap},
                          {folder(), oneByte, ids::WallNotBitmap}};
    for (const Case& c : cases) {
        const auto message = WallPaperNo(WallCentre, c.folder, c.name, wall);
        ASSERT_TRUE(message) << c.name;
        EXPECT_EQ(message->text, c.message) << c.name;
        EXPECT_EQ(message->title, ids::WallTitle);
    }
    EXPECT_TRUE(runner_.commands.empty());
    EXPECT_TRUE(store_.writeOrder().empty());
}

TEST_F(WallPaperTest, RowsKeepTheirValuesAndAllLeavesTheStyle) {
    Class_WallSetting wall(store_, runner_, Desktop::Gnome);
    const std::string name = write("my picture.bmp", "BM rest");
    EXPECT_FALSE(WallPaperNo(WallScreen, folder(), name, wall));
    EXPECT_FALSE(WallPaperNo(WallAll, folder(), name, wall));
    EXPECT_EQ(store_.get(WallSection, StyleKey), "2");
    EXPECT_EQ(store_.get(WallSection, TileKey), "1");
    EXPECT_EQ(store_.writeOrder(), (std::vector<std::string>{StyleKey, TileKey, TileKey}));
    EXPECT_FALSE(WallPaperNo(WallCentre, folder(), name, wall));
    EXPECT_EQ(store_.get(WallSection, StyleKey), "0");
    EXPECT_EQ(store_.get(WallSection, TileKey), "0");
}

TEST_F(WallPaperTest, EachDesktopGetsItsToolsCommandLines) {
    const std::string name = write("w.bmp", "BM");
    const std::string path = folder() + "/w.bmp";
    const std::string uri = fileUri(path);
    const std::string schema = "org.gnome.desktop.background";
    struct Case {
        Desktop desktop;
        int row;
        std::vector<CommandLine> expected;
    };
    const Case cases[] = {
        {Desktop::Gnome,
         WallCentre,
         {{"gsettings", "set", schema, "picture-uri", uri},
          {"gsettings", "set", schema, "picture-uri-dark", uri},
          {"gsettings", "set", schema, "picture-options", "centered"}}},
        {Desktop::Gnome,
         WallAll,
         {{"gsettings", "set", schema, "picture-uri", uri},
          {"gsettings", "set", schema, "picture-uri-dark", uri},
          {"gsettings", "set", schema, "picture-options", "wallpaper"}}},
        {Desktop::Kde,
         WallScreen,
         {{"plasma-apply-wallpaperimage", "--fill-mode", "stretch", path}}},
        {Desktop::Xfce,
         WallAll,
         {{"xfconf-query", "-c", "xfce4-desktop", "-l"},
          {"xfconf-query", "-c", "xfce4-desktop", "-p",
           "/backdrop/screen0/monitorVirtual1/workspace0/last-image", "-n", "-t", "string", "-s",
           path},
          {"xfconf-query", "-c", "xfce4-desktop", "-p",
           "/backdrop/screen0/monitorVirtual1/workspace0/image-style", "-n", "-t", "int", "-s",
           "2"}}},
    };
    for (const Case& c : cases) {
        MemoryStore store;
        RecordingRunner runner;
        runner.listing = "/backdrop/screen0/monitorVirtual1/workspace0/color-style\n"
                         "/backdrop/screen0/monitorVirtual1/workspace0/last-image\n";
        Class_WallSetting wall(store, runner, c.desktop);
        EXPECT_FALSE(WallPaperNo(c.row, folder(), name, wall));
        EXPECT_EQ(runner.commands, c.expected) << static_cast<int>(c.desktop);
    }
}

TEST_F(WallPaperTest, AnUnknownDesktopSaysSoAfterKeepingTheValues) {
    Class_WallSetting wall(store_, runner_, desktopFrom("sway"));
    const auto message = WallPaperNo(WallCentre, folder(), write("w.bmp", "BM"), wall);
    ASSERT_TRUE(message);
    EXPECT_EQ(message->text, ids::WallDesktopUnsupported);
    EXPECT_EQ(store_.get(WallSection, TileKey), "0");
    EXPECT_TRUE(runner_.commands.empty());
}

TEST(DesktopFrom, ReadsTheColonSeparatedList) {
    EXPECT_EQ(desktopFrom("ubuntu:GNOME"), Desktop::Gnome);
    EXPECT_EQ(desktopFrom("KDE"), Desktop::Kde);
    EXPECT_EQ(desktopFrom("XFCE"), Desktop::Xfce);
    EXPECT_EQ(desktopFrom("xfce"), Desktop::Xfce);
    EXPECT_EQ(desktopFrom("GNOMEISH"), Desktop::Unsupported);
    EXPECT_EQ(desktopFrom(""), Desktop::Unsupported);
}

TEST(FileUri, EncodesBlanksAndWideCharacters) {
    EXPECT_EQ(fileUri("/home/a b/壁.bmp"), "file:///home/a%20b/%E5%A3%81.bmp");
}

} // namespace
} // namespace lumiran
