#include "catalogue/effect_table.h"
#include "catalogue/english_texts.h"
#include "engine/effect_error.h"
#include "imagefiles/image_load_error.h"
#include "imagefiles/image_readers.h"
#include "imagefiles/load_dispatch.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace lumiran {
namespace {

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// Every text of an entry a dialog or the browser shows.
std::vector<std::string_view> shownTexts(const EffectEntry& e) {
    std::vector<std::string_view> texts{e.key, e.windowTitle()};
    for (const SliderSpec& s : e.sliders)
        texts.push_back(s.label);
    for (const ListSpec& l : e.lists) {
        texts.push_back(l.caption);
        texts.insert(texts.end(), l.rows.begin(), l.rows.end());
    }
    return texts;
}

// The name the English browser and command line give an effect: its caption,
// or for the two composition entries without one the English of the key.
std::string englishName(const EffectEntry& e) {
    return e.caption.empty() ? std::string(englishFor(e.key)) : effectName(e);
}

std::string lowered(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

TEST(EnglishTexts, EveryJapaneseTextOfTheCatalogueHasEnglish) {
    std::string missing;
    for (const EffectEntry& e : effectCatalogue()) {
        for (std::string_view text : shownTexts(e)) {
            if (!isAscii(text) && englishFor(text).empty())
                missing += std::string(e.key) + ": " + std::string(text) + "\n";
        }
    }
    EXPECT_EQ(missing, "");
}

TEST(EnglishTexts, TheEnglishIsPlainTrimmedAscii) {
    // Plain ASCII, so no Japanese (full-width or half-width) is left in it.
    for (const TextPair& pair : allEnglishTexts()) {
        const std::string_view english = pair.english;
        EXPECT_FALSE(english.empty()) << pair.japanese;
        EXPECT_TRUE(std::ranges::all_of(english, [](char c) { return c >= 0x20 && c < 0x7F; }))
            << pair.japanese << " -> " << english;
        EXPECT_FALSE(english.starts_with(' ') || english.ends_with(' ')) << english;
    }
}

// The messages effects and readers carry beside the numbered texts: made
// through the code where it is public, as written where it is not.
TEST(EnglishTexts, EveryMessageOfEffectsAndReadersHasEnglish) {
    const auto loadFailure = [](const std::function<void()>& load) -> std::string {
        try {
            load();
        } catch (const ImageLoadError& e) {
            return e.description();
        }
        return "(loaded)";
    };
    const std::vector<std::uint8_t> badPpm = {'P', '1', '\n', '3', ' ', '1', '\n', '1', '0', '1'};
    const std::vector<std::uint8_t> pcdWithoutWidth(294'912, 0);
    const std::vector<std::string> messages = {
        EffectError::overflow().description(),
        EffectError::outOfMemory().description(),
        EffectError::subscriptOutOfRange().description(),
        EffectError::divisionByZero().description(),
        loadFailure([&] { (void)Class_PPMImageOp{}.PPMImageGet(badPpm, nullptr, {}); }),
        loadFailure([&] { (void)Class_PCDImageOp{}.PCDImageGet(pcdWithoutWidth, nullptr); }),
        loadFailure([] { (void)LoadImageFile("/nonexistent/none.pcx", nullptr, nullptr); }),
        // The platform decoder's and the file reading's own.
        "ピクチャが不正です。",
        "ファイルが見つかりません。",
        "パス名が無効です。",
        // The browser's tree menu.
        "ﾂﾘｰ",
    };
    for (const std::string& m : messages) {
        EXPECT_FALSE(isAscii(m)) << "no Japanese message: " << m;
        EXPECT_FALSE(englishFor(m).empty()) << m;
    }
}

TEST(EnglishTexts, EnglishNamesAndTitlesTellEffectsApart) {
    std::map<std::string, std::string_view> names, titles;
    for (const EffectEntry& e : effectCatalogue()) {
        const std::string name = lowered(englishName(e));
        EXPECT_FALSE(name.empty()) << e.key;
        const auto [n, newName] = names.emplace(name, e.key);
        EXPECT_TRUE(newName) << e.key << " and " << n->second << " are both " << name;

        const std::string_view title = e.windowTitle();
        const std::string english =
            isAscii(title) ? std::string(title) : std::string(englishFor(title));
        const auto [t, newTitle] = titles.emplace(lowered(english), e.key);
        EXPECT_TRUE(newTitle) << e.key << " and " << t->second << " are both titled " << english;
    }
}

} // namespace
} // namespace lumiran
