#include "shell/settings.h"

#include <gtest/gtest.h>
#include <optional>
#include <string>

namespace lumiran {
namespace {

constexpr ScreenSize Screen{1000, 800};

TEST(Settings, AFirstStartFindsNoKeysAndTakesTheDefaults) {
    const MemoryStore empty;
    const SettingsReadResult read = readSettings(empty, Screen);
    EXPECT_TRUE(read.problems.empty());
    const Settings& s = read.settings;
    EXPECT_TRUE(s.firstStart());
    EXPECT_EQ(s.MainLeft, 48);
    EXPECT_EQ(s.MainTop, 48);
    EXPECT_EQ(s.MainWidth, 800);
    EXPECT_EQ(s.MainHeight, 640);
    EXPECT_EQ(s.AutoPreview, 1);
    EXPECT_EQ(s.MaxUndoCount, 5);
    EXPECT_EQ(s.drawingColor, (Rgb8{128, 128, 255}));
    EXPECT_EQ(s.FontSize, 10);
    EXPECT_EQ(s.OpenFolder, "Nothing");
    EXPECT_EQ(s.history.visibleCount(), 0u);
}

TEST(Settings, RoundTripKeepsAllButTheFourRenamedKeys) {
    Settings s = defaultSettings(Screen);
    s.MainLeft = 10;
    s.MainTop = 20;
    s.MainWidth = 640.5f;
    s.MainHeight = 480;
    s.history.add("/p/a.bmp");
    s.OpenFolder = "/p";
    s.AutoPreview = 0;
    s.MaxUndoCount = 9;
    s.MaxLoadPixels = 4096 * 2048;
    s.backColor = {1, 2, 3};
    s.drawingColor = {4, 5, 6};
    s.FontSize = 12;
    s.ProcessBarType = true;
    s.AutoRegulation = 2;
    s.CalculationFlag = 3;
    s.RasterOpFlag = 7;
    s.LoadingAmountLimitation = 4;
    MemoryStore store;
    writeSettings(store, s);

    const SettingsReadResult read = readSettings(store, Screen);
    ASSERT_TRUE(read.problems.empty());
    const Settings& back = read.settings;
    EXPECT_FALSE(back.firstStart());
    EXPECT_EQ(back.MainLeft, 10);
    EXPECT_EQ(back.MainWidth, 640.5f);
    EXPECT_EQ(back.history.entry(0), "/p/a.bmp");
    EXPECT_EQ(back.OpenFolder, "/p");
    EXPECT_EQ(back.AutoPreview, 0);
    EXPECT_EQ(back.MaxUndoCount, 9);
    EXPECT_EQ(back.MaxLoadPixels, 4096 * 2048);
    EXPECT_EQ(back.backColor, (Rgb8{1, 2, 3}));
    EXPECT_EQ(back.drawingColor, (Rgb8{4, 5, 6}));
    EXPECT_EQ(back.FontSize, 12);
    EXPECT_TRUE(back.ProcessBarType);
    // Written as AutoFlag, CaculateFlag, ComposeFlag, LoadCountControlFlag, never read back.
    EXPECT_EQ(back.AutoRegulation, 0);
    EXPECT_EQ(back.CalculationFlag, 0);
    EXPECT_EQ(back.RasterOpFlag, 0);
    EXPECT_EQ(back.LoadingAmountLimitation, 0);
    EXPECT_EQ(store.get("Settings", "CaculateFlag"), "3");
    EXPECT_EQ(store.get("Settings", "Language"), "1");
}

TEST(Settings, ExitWritesInTheFixedOrder) {
    MemoryStore store;
    writeSettings(store, defaultSettings(Screen));
    const auto& order = store.writeOrder();
    ASSERT_EQ(order.size(), 4u + 11u + 6u + 1u + 5u + 4u + 1u + 1u);
    EXPECT_EQ(order.front(), "MainLeft");
    EXPECT_EQ(order[4], "LoadImage1");
    EXPECT_EQ(order[14], "OpenFolder");
    EXPECT_EQ(order[15], "BackColorR");
    EXPECT_EQ(order[21], "ProcessBarType");
    EXPECT_EQ(order[22], "AutoFlag");
    EXPECT_EQ(order[26], "Language");
    EXPECT_EQ(order[order.size() - 3], "Vasion");
    EXPECT_EQ(order[order.size() - 2], "MaxLoadPixels");
    EXPECT_EQ(order.back(), "InterfaceLanguage");
}

TEST(Settings, AnotherStoredVersionCountsAsAFirstStart) {
    MemoryStore store;
    store.set("Settings", "Vasion", "0.48");
    store.set("Settings", "MainLeft", "300");
    const Settings s = readSettings(store, Screen).settings;
    EXPECT_TRUE(s.firstStart());
    EXPECT_EQ(s.MainLeft, 48);
}

TEST(Settings, ACorruptValueFallsBackToAllDefaultsAndIsReported) {
    MemoryStore store;
    store.set("Settings", "Vasion", "0.49");
    store.set("Settings", "MaxUndoCount", "9");
    store.set("Settings", "Font Size", "huge");
    store.set("Settings", "BackColorR", "300"); // does not fit a byte
    const SettingsReadResult read = readSettings(store, Screen);
    ASSERT_EQ(read.problems.size(), 2u);
    EXPECT_EQ(read.problems[0].key, "BackColorR");
    EXPECT_EQ(read.problems[1].key, "Font Size");
    EXPECT_EQ(read.settings.MaxUndoCount, 5);
    EXPECT_TRUE(read.settings.firstStart());
}

// The language keeps a key of its own: "Language" stays "1" whatever is
// chosen, and a stored value that names no language reads as Japanese
// without spoiling the other settings.
TEST(Settings, InterfaceLanguageRoundTripsAndABadValueIsJapanese) {
    struct Case {
        std::optional<std::string> stored; // nothing: the key is missing
        InterfaceLanguage read;
    };
    const Case cases[] = {
        {std::nullopt, InterfaceLanguage::Japanese}, {"ja", InterfaceLanguage::Japanese},
        {"en", InterfaceLanguage::English},          {" EN ", InterfaceLanguage::English},
        {"english", InterfaceLanguage::Japanese},    {"", InterfaceLanguage::Japanese},
        {"1", InterfaceLanguage::Japanese},          {"fr", InterfaceLanguage::Japanese},
    };
    for (const Case& c : cases) {
        MemoryStore store;
        store.set("Settings", "Vasion", "0.49");
        store.set("Settings", "MaxUndoCount", "9");
        if (c.stored) store.set("Settings", "InterfaceLanguage", *c.stored);
        const SettingsReadResult read = readSettings(store, Screen);
        const std::string label = c.stored.value_or("(missing)");
        EXPECT_TRUE(read.problems.empty()) << label;
        EXPECT_EQ(read.settings.interfaceLanguage, c.read) << label;
        EXPECT_EQ(read.settings.MaxUndoCount, 9) << label;

        writeSettings(store, read.settings);
        EXPECT_EQ(store.get("Settings", "Language"), "1") << label;
        EXPECT_EQ(store.get("Settings", "InterfaceLanguage"),
                  c.read == InterfaceLanguage::English ? "en" : "ja")
            << label;
    }
}

// LUMIRAN_LANG wins over the stored choice when it names a language.
TEST(InterfaceLanguage, TheEnvironmentWinsWhenItNamesALanguage) {
    using enum InterfaceLanguage;
    struct Case {
        InterfaceLanguage stored;
        const char* environment;
        InterfaceLanguage chosen;
    };
    const Case cases[] = {{Japanese, nullptr, Japanese}, {English, nullptr, English},
                          {Japanese, "en", English},     {English, "ja", Japanese},
                          {English, "JA", Japanese},     {English, "", English},
                          {Japanese, "de", Japanese},    {English, "en_US.UTF-8", English}};
    for (const Case& c : cases) {
        EXPECT_EQ(chooseInterfaceLanguage(c.stored, c.environment), c.chosen)
            << (c.environment ? c.environment : "(unset)");
    }
}

TEST(LoadHistory, NewPathsGoFirstAndKnownOnesStay) {
    LoadHistory h;
    EXPECT_FALSE(h.separatorVisible());
    h.add("a");
    h.add("b");
    h.add("a"); // already listed: nothing moves
    EXPECT_EQ(h.entry(0), "b");
    EXPECT_EQ(h.entry(1), "a");
    EXPECT_EQ(h.visibleCount(), 2u);
    EXPECT_TRUE(h.separatorVisible());
    for (int i = 0; i < 12; ++i)
        h.add("p" + std::to_string(i));
    EXPECT_EQ(h.entry(0), "p11");
    EXPECT_EQ(h.entry(9), "p2"); // the oldest fall off the end
    EXPECT_EQ(h.visibleCount(), 10u);
}

TEST(LoadHistory, EntriesMoveOnlyDownToTheFirstEmptySlot) {
    LoadHistory h;
    h.setEntry(0, "x");
    h.setEntry(2, "kept behind a gap");
    h.add("new");
    EXPECT_EQ(h.entry(0), "new");
    EXPECT_EQ(h.entry(1), "x");
    EXPECT_EQ(h.entry(2), "kept behind a gap");
    h.clear();
    EXPECT_EQ(h.visibleCount(), 0u);
}

} // namespace
} // namespace lumiran
