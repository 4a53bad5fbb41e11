#pragma once

#include "engine/pixel.h"
#include "imagefiles/load_limits.h"
#include "shell/interface_language.h"
#include "shell/key_value_store.h"
#include "shell/load_history.h"

#include <cstdint>
#include <string>
#include <vector>

namespace lumiran {

// The settings the main frame reads at start and writes at exit.
struct Settings {
    static constexpr float CurrentVersion = 0.49f;

    float Vasion = 0; // 0 when no stored version matches: a first start
    float MainLeft = 48;
    float MainTop = 48;
    float MainWidth = 0;
    float MainHeight = 0;
    LoadHistory history;
    std::string OpenFolder = "Nothing";
    std::uint8_t AutoPreview = 1;
    std::uint8_t MaxUndoCount = 5;
    Rgb8 backColor{0, 0, 0};
    Rgb8 drawingColor{128, 128, 255};
    std::uint8_t FontSize = 10;
    bool ProcessBarType = false;
    // Read under these names, written under others: they start at 0 at
    // every start of the program.
    std::uint8_t AutoRegulation = 0;
    std::uint8_t CalculationFlag = 0;
    std::uint8_t RasterOpFlag = 0;
    std::uint8_t LoadingAmountLimitation = 0;
    // The most pixels a picture read may have; kept across starts.
    std::int64_t MaxLoadPixels = LoadLimits::DefaultMaxPixels;
    // The language chosen in the options, under a key of its own: "Language"
    // keeps the value it has always been written with. A value that names no
    // language reads as Japanese and is not a problem of the store.
    InterfaceLanguage interfaceLanguage = InterfaceLanguage::Japanese;

    [[nodiscard]] bool firstStart() const { return Vasion == 0; }
};

struct ScreenSize {
    int width = 1280;
    int height = 1024;
};

// A value the store held that could not be turned into its type.
struct SettingsProblem {
    std::string section;
    std::string key;
    std::string value;
};

struct SettingsReadResult {
    Settings settings;
    // Any problem means the settings are the defaults: a corrupt store is
    // not half taken over.
    std::vector<SettingsProblem> problems;
};

// Reads in the order of the frame's start-up.
[[nodiscard]] SettingsReadResult readSettings(const KeyValueStore& store, ScreenSize screen);

// Writes in the order of the frame's exit, numbers as decimal text.
void writeSettings(KeyValueStore& store, const Settings& settings);

// The defaults of a first start on a screen of this size.
[[nodiscard]] Settings defaultSettings(ScreenSize screen);

} // namespace lumiran
