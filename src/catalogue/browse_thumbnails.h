#pragma once

#include "catalogue/effect_table.h"
#include "catalogue/preview.h"
#include "engine/pixel.h"
#include "engine/surface.h"
#include "shell/key_value_store.h"
#include "shell/program_state.h"
#include "shell/settings.h"

#include <optional>

namespace lumiran {

// The effect browser's settings, section "Effect Browser".
struct BrowseSettings {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int imageWidth = 0; // the thumbnail box
    int imageHeight = 0;
    Rgb8 background{48, 48, 48};
    Rgb8 caption{255, 255, 255};
    friend bool operator==(const BrowseSettings&, const BrowseSettings&) = default;
};

inline constexpr int BrowsePageSize = 24;

[[nodiscard]] BrowseSettings defaultBrowseSettings(ScreenSize screen);
// A key missing or unreadable takes its default; sizes below 1 too.
[[nodiscard]] BrowseSettings readBrowseSettings(const KeyValueStore& store, ScreenSize screen);
void writeBrowseSettings(KeyValueStore& store, const BrowseSettings& settings);

// The work copy's size and place in the thumbnail box: the preview's fit,
// then a side whose centring offset came out negative loses twice that
// offset and sits at 0.
[[nodiscard]] PreviewPlacement thumbnailPlacement(int boxWidth, int boxHeight, int w, int h);

// One thumbnail: the effect at the table's defaults (the colour swatch at
// the drawing colour, as the dialog opens) on the work copy, with
// the state's calculation and raster choices, through the same dispatch as
// the menus. Empty when the effect cannot run yet, failed or was stopped.
[[nodiscard]] std::optional<Surface> browseThumbnail(ProgramState& state, const EffectEntry& effect,
                                                     const Surface& work);

// The catalogue entry behind a menu row's object name ("ColorNo3").
[[nodiscard]] const EffectEntry* effectOfMenuRow(std::string_view objectName);

} // namespace lumiran
