#include "catalogue/browse_thumbnails.h"

#include "catalogue/effect_dispatch.h"
#include "engine/numeric.h"

#include <algorithm>
#include <charconv>
#include <string>

namespace lumiran {

namespace {

constexpr const char* Section = "Effect Browser";

std::optional<long long> readNumber(const KeyValueStore& store, const char* key) {
    const std::optional<std::string> text = store.get(Section, key);
    if (!text) return std::nullopt;
    long long value = 0;
    const char* end = text->data() + text->size();
    const auto [ptr, ec] = std::from_chars(text->data(), end, value);
    if (ec != std::errc{} || ptr != end) return std::nullopt;
    return value;
}

int readSize(const KeyValueStore& store, const char* key, int fallback) {
    const auto value = readNumber(store, key);
    return value && *value >= 1 && *value <= 32767 ? static_cast<int>(*value) : fallback;
}

int readPlace(const KeyValueStore& store, const char* key, int fallback) {
    const auto value = readNumber(store, key);
    return value && *value >= -32768 && *value <= 32767 ? static_cast<int>(*value) : fallback;
}

// Colours are kept as the platform's colour numbers: red + green * 256 + blue * 65536.
long long colourNumber(Rgb8 c) {
    return c.red + c.green * 256LL + c.blue * 65536LL;
}

Rgb8 readColour(const KeyValueStore& store, const char* key, Rgb8 fallback) {
    const auto value = readNumber(store, key);
    if (!value || *value < 0 || *value > 0xFFFFFF) return fallback;
    return {static_cast<std::uint8_t>(*value & 0xFF),
            static_cast<std::uint8_t>((*value >> 8) & 0xFF),
            static_cast<std::uint8_t>((*value >> 16) & 0xFF)};
}

} // namespace

BrowseSettings defaultBrowseSettings(ScreenSize screen) {
    BrowseSettings s;
    // Divided as fractions, rounded once into whole pixels.
    s.width = roundTo<int>(screen.width / 6.0 * 5);
    s.height = roundTo<int>(screen.height / 5.0 * 4);
    s.left = (screen.width - s.width) / 2;
    s.top = (screen.height - s.height) / 2;
    // Five thumbnail boxes across and down the window.
    s.imageWidth = std::max(1, s.width / 5);
    s.imageHeight = std::max(1, s.height / 5);
    return s;
}

BrowseSettings readBrowseSettings(const KeyValueStore& store, ScreenSize screen) {
    const BrowseSettings d = defaultBrowseSettings(screen);
    BrowseSettings s;
    s.left = readPlace(store, "BrowseLeft", d.left);
    s.top = readPlace(store, "BrowseTop", d.top);
    s.width = readSize(store, "BrowseWidth", d.width);
    s.height = readSize(store, "BrowseHeight", d.height);
    s.imageWidth = readSize(store, "BrowseImageWidth", d.imageWidth);
    s.imageHeight = readSize(store, "BrowseImageHeight", d.imageHeight);
    s.background = readColour(store, "BrowseBackGroundColor", d.background);
    s.caption = readColour(store, "BrowseCaptionColor", d.caption);
    return s;
}

void writeBrowseSettings(KeyValueStore& store, const BrowseSettings& s) {
    store.set(Section, "BrowseLeft", std::to_string(s.left));
    store.set(Section, "BrowseTop", std::to_string(s.top));
    store.set(Section, "BrowseWidth", std::to_string(s.width));
    store.set(Section, "BrowseHeight", std::to_string(s.height));
    store.set(Section, "BrowseImageWidth", std::to_string(s.imageWidth));
    store.set(Section, "BrowseImageHeight", std::to_string(s.imageHeight));
    store.set(Section, "BrowseBackGroundColor", std::to_string(colourNumber(s.background)));
    store.set(Section, "BrowseCaptionColor", std::to_string(colourNumber(s.caption)));
}

PreviewPlacement thumbnailPlacement(int boxWidth, int boxHeight, int w, int h) {
    PreviewPlacement p = SetPreviewPicture(boxWidth, boxHeight, w, h);
    if (p.left < 0) {
        p.width += 2 * p.left;
        p.left = 0;
    }
    if (p.top < 0) {
        p.height += 2 * p.top;
        p.top = 0;
    }
    return p;
}

std::optional<Surface> browseThumbnail(ProgramState& state, const EffectEntry& effect,
                                       const Surface& work) {
    if (work.empty()) return std::nullopt;
    // The colour swatch as a freshly opened dialog shows it: the drawing colour.
    ControlValues values = defaultControlValues(effect);
    values.processColor = state.flags.drawingColor;
    const EffectPlan plan = planEffect(effect.dialog, effect.code, values);
    if (plan.status != EffectPlan::Status::Ready) return std::nullopt;
    PreviewResult result = runPreview(state, plan.body, work);
    if (result.cancelled || !result.failures.empty() || result.picture.empty()) return std::nullopt;
    return std::move(result.picture);
}

const EffectEntry* effectOfMenuRow(std::string_view objectName) {
    for (const EffectEntry& e : effectCatalogue()) {
        if (objectName.size() > e.menu.size() && objectName.starts_with(e.menu) &&
            objectName.substr(e.menu.size()) == std::to_string(e.index))
            return &e;
    }
    return nullptr;
}

} // namespace lumiran
