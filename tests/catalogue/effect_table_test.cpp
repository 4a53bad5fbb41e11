#include "catalogue/effect_table.h"
#include "shell/string_table.h"

#include <algorithm>
#include <cctype>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <string>

namespace lumiran {
namespace {

const EffectEntry& entry(std::string_view name) {
    const EffectEntry* e = findEffect(name);
    if (e == nullptr) throw std::runtime_error("no effect " + std::string(name));
    return *e;
}

// The words of a call text, without the "Other list rows (E,C):" lead-in
// whose letters name no argument.
std::set<std::string> callWords(std::string_view call) {
    std::string text(call);
    for (const std::string lead = "Other list rows (E,C):";;) {
        const auto at = text.find(lead);
        if (at == std::string::npos) break;
        text.erase(at, lead.size());
    }
    std::set<std::string> words;
    std::string word;
    for (const char c : text + ' ') {
        if (std::isalnum(static_cast<unsigned char>(c)) || c == '_') {
            word += c;
        } else if (!word.empty()) {
            words.insert(word);
            word.clear();
        }
    }
    return words;
}

TEST(EffectTable, MenusHoldTheirEffectsInMenuOrder) {
    const std::vector<std::pair<std::string_view, int>> expected = {
        {"ColorNo", 23},        {"ColorTableNo", 18},   {"GradationNo", 6},
        {"PseudoColorNo", 12},  {"PatternNo", 17},      {"ColorBalanceNo", 6},
        {"DitherNo", 11},       {"BinarizationNo", 10}, {"NoiseEffectNo", 11},
        {"EdgeDetectionNo", 8}, {"OutlineNo", 4},       {"MosaicNo", 15},
        {"EmbossingNo", 11},    {"FilterNo", 23},       {"DistortionNo", 13},
        {"PixelMoveNo", 21},    {"TransformNo", 6},     {"InvasionEffectNo", 7},
        {"TileWallNo", 6},      {"WarpChangeNo", 5},    {"BringNo", 3},
        {"FunNo", 11},          {"GiftNo", 1},          {"mnueditanding", 12},
        {"suteganono", 2}};
    const auto families = effectFamilies();
    const auto effects = effectCatalogue();
    ASSERT_EQ(effects.size(), 262u);
    ASSERT_EQ(families.size(), expected.size());

    // The entries come family by family, in the menus' order, with rising indexes.
    auto next = effects.begin();
    for (std::size_t f = 0; f < expected.size(); ++f) {
        EXPECT_EQ(families[f].menu, expected[f].first);
        int previousIndex = -1;
        for (int n = 0; n < expected[f].second; ++n, ++next) {
            ASSERT_NE(next, effects.end());
            EXPECT_EQ(next->menu, expected[f].first) << next->caption;
            EXPECT_EQ(next->family, families[f].caption);
            EXPECT_GT(next->index, previousIndex) << next->caption;
            previousIndex = next->index;
        }
    }
    EXPECT_EQ(next, effects.end());

    EXPECT_EQ(effects[18].caption, "Hue And Gray");
    EXPECT_EQ(entry("Gradation Blend (Mean)").index, 2); // row 1 is a separator
    EXPECT_EQ(entry("同一色入れ換え").index, 14);
}

TEST(EffectTable, FamiliesHangWhereTheMenusPutThem) {
    const auto families = effectFamilies();
    for (int f = 0; f < 22; ++f) {
        EXPECT_EQ(families[f].parentMenu, "Effect1No");
        EXPECT_EQ(families[f].parentIndex, f);
        // The browser category is the family's own text.
        EXPECT_FALSE(LoadResString(families[f].browseCategoryId).empty());
    }
    EXPECT_EQ(findFamily("ColorNo")->browseCategoryId, 4019);
    EXPECT_EQ(findFamily("FunNo")->browseCategoryId, 4061);
    EXPECT_EQ(findFamily("WarpChangeNo")->browseCategoryId, 4067);
    EXPECT_EQ(findFamily("GiftNo")->parentIndex, 24);
    EXPECT_EQ(findFamily("suteganono")->parentMenu, "mnueditanding");
    EXPECT_EQ(findFamily("suteganono")->parentIndex, 8);
    EXPECT_TRUE(findFamily("mnueditanding")->parentMenu.empty());
    for (const char* menu : {"GiftNo", "mnueditanding", "suteganono"}) {
        EXPECT_EQ(findFamily(menu)->browseCategoryId, 0) << menu;
    }
    EXPECT_EQ(findFamily("Effect1No"), nullptr);
}

TEST(EffectTable, EachDialogCodeNamesOneEffect) {
    std::map<std::pair<DialogKind, int>, std::string_view> seen;
    for (const EffectEntry& e : effectCatalogue()) {
        const auto [it, fresh] = seen.emplace(std::pair{e.dialog, e.code}, e.key);
        EXPECT_TRUE(fresh) << e.key << " shares " << dialogName(e.dialog) << " " << e.code
                           << " with " << it->second;
    }
}

TEST(EffectTable, RoutinesConfigureTheirShareOfEffects) {
    std::map<PreviewRoutine, int> count;
    for (const EffectEntry& e : effectCatalogue())
        ++count[e.routine];
    using enum PreviewRoutine;
    EXPECT_EQ(count[PreviewStart], 41);
    EXPECT_EQ(count[PreviewStartKai], 48);
    EXPECT_EQ(count[PreviewStart2], 31);
    EXPECT_EQ(count[PreviewStart2Kai], 60);
    EXPECT_EQ(count[PreviewStart3], 14);
    EXPECT_EQ(count[PreviewStart3Kai], 50);
    EXPECT_EQ(count[PreviewStartAnother], 18);
}

TEST(EffectTable, KeysAreTheStringsOfTheirIdsOrTheKnownLiterals) {
    const std::set<std::string_view> literals = {
        "Black Widow",       "Silver M",       "Mount Marilyn",
        "Cold Seed",         "Snow White",     "Dast and Sway",
        "Bring Right Under", "Bring Left Top", "Gather 3x3",
        "Ellipse",           "Smoke 1",        "Invasion Red",
        "Invasion Green",    "Invasion Blue",  "Invasion Max",
        "Invasion Middle",   "Invasion Min",   "Invasion Blightness"};
    std::set<std::string_view> foundLiterals;
    std::set<std::string_view> keys;
    for (const EffectEntry& e : effectCatalogue()) {
        EXPECT_TRUE(keys.insert(e.key).second) << "duplicate key " << e.key;
        if (e.stringId == 0) {
            foundLiterals.insert(e.key);
        } else {
            EXPECT_EQ(LoadResString(e.stringId), e.key) << e.stringId;
        }
    }
    EXPECT_EQ(foundLiterals, literals);
}

TEST(EffectTable, SpellingsTheMenusRelyOn) {
    EXPECT_EQ(entry("Silver Mountain").key, "Silver M");
    EXPECT_EQ(entry("Silver Mountain").windowTitle(), "白銀の山");
    EXPECT_EQ(entry("Sway 1").key, "Dast and Sway");
    EXPECT_EQ(entry("Sway 1").windowTitle(), "揺れ 1");
    EXPECT_EQ(entry("Sway 2").stringId, 3317);
    EXPECT_EQ(entry("Sway 2").windowTitle(), "揺れ 2");
    EXPECT_EQ(entry("Invasion Effect Brightness").key, "Invasion Blightness");
    EXPECT_EQ(entry("Invasion Effect Brightness").windowTitle(), "RGB複写 光度");
    EXPECT_EQ(entry("Hue And Gray").stringId, 4175);
    EXPECT_EQ(entry("Snowwhite").key, "Snow White");
    EXPECT_EQ(entry("Moving Average").windowTitle(), "移動平均");
    // These read as English but are strings of the table.
    for (const auto& [caption, id] : std::map<std::string_view, int>{{"Bleeding Filter", 3623},
                                                                     {"Force Fields", 3455},
                                                                     {"Glowing Pixel 1", 4211},
                                                                     {"Glowing Pixel 2", 4213}}) {
        EXPECT_EQ(entry(caption).stringId, id);
        EXPECT_EQ(entry(caption).key, caption);
    }
}

TEST(EffectTable, ControlsAreOnesTheDialogHas) {
    struct Controls {
        int sliders;
        std::set<ListKind> lists;
    };
    using enum ListKind;
    const std::map<DialogKind, Controls> forms = {
        {DialogKind::Monotone, {0, {C}}},    {DialogKind::Sepia, {1, {}}},
        {DialogKind::Negative, {1, {C}}},    {DialogKind::Emboss, {1, {E, C}}},
        {DialogKind::Level, {2, {E, C, G}}}, {DialogKind::ColorScale, {2, {E, C}}},
        {DialogKind::Mani, {8, {E, C}}}};
    for (const EffectEntry& e : effectCatalogue()) {
        const Controls& form = forms.at(e.dialog);
        int expectedNumber = 1;
        for (const SliderSpec& s : e.sliders) {
            EXPECT_EQ(s.number, expectedNumber++) << e.key;
            EXPECT_LE(s.number, form.sliders) << e.key;
            EXPECT_LT(s.min, s.max) << e.key << " S" << s.number;
            EXPECT_GE(s.defaultValue, s.min) << e.key << " S" << s.number;
            EXPECT_LE(s.defaultValue, s.max) << e.key << " S" << s.number;
        }
        std::set<ListKind> kinds;
        for (const ListSpec& l : e.lists) {
            EXPECT_TRUE(form.lists.contains(l.kind)) << e.key << " " << listLetter(l.kind);
            EXPECT_TRUE(kinds.insert(l.kind).second) << e.key;
            EXPECT_FALSE(l.rows.empty()) << e.key;
        }
    }
}

TEST(EffectTable, CallsFindTheControlsTheyRead) {
    // Calls that pass a slider the effect never configures: it stays hidden
    // at its design value.
    const std::set<std::pair<std::string_view, std::string>> hiddenSliders = {
        {"RGB", "S4"}, {"YCbCr", "S4"},  {"HSV", "S4"},   {"HLS", "S4"},
        {"YUV", "S4"}, {"Jiggle", "S3"}, {"Jiggle", "S4"}};
    std::set<std::pair<std::string_view, std::string>> found;
    for (const EffectEntry& e : effectCatalogue()) {
        const auto words = callWords(e.call);
        for (const ListKind kind : {ListKind::E, ListKind::C, ListKind::G}) {
            if (words.contains(std::string(1, listLetter(kind)))) {
                EXPECT_NE(e.list(kind), nullptr) << e.key << " reads " << listLetter(kind);
            }
        }
        for (int n = 1; n <= 8; ++n) {
            const std::string name = "S" + std::to_string(n);
            if (words.contains(name) && e.slider(n) == nullptr) found.insert({e.caption, name});
        }
    }
    EXPECT_EQ(found, hiddenSliders);
    EXPECT_TRUE(entry("Raster(&R)").call.empty());
}

TEST(EffectTable, SliderNamesStepsAndDefaults) {
    // On frm_Level the minimum is Slider1 although OK hands S2 first.
    const EffectEntry& range = entry("範囲濃度調整");
    EXPECT_EQ(range.slider(1)->label, "最小値");
    EXPECT_EQ(range.slider(1)->defaultValue, 64);
    EXPECT_EQ(range.slider(2)->label, "最大値");
    EXPECT_EQ(range.slider(2)->defaultValue, 192);
    const ControlValues values = defaultControlValues(range);
    EXPECT_EQ(values.sliders[0], 64);
    EXPECT_EQ(values.sliders[1], 192);
    EXPECT_EQ(values.sliders[2], 0);
    EXPECT_EQ(values.eType, 0);
    EXPECT_EQ(values.color, 0);

    EXPECT_EQ(defaultControlValues(entry("HSV Invert")).sliders[2], -20);
    EXPECT_EQ(entry("Ripploid").slider(3)->defaultValue, 12);

    const SliderSpec& kirsch = *entry("Kirsch Filter").slider(1);
    EXPECT_EQ(kirsch.largeChange, 45);
    EXPECT_EQ(kirsch.smallChange, 45);
    EXPECT_EQ(entry("Sway 2").slider(2)->largeChange, 50);
    EXPECT_EQ(entry("Sway 2").slider(1)->largeChange, 1);
    EXPECT_EQ(entry("Wall Emboss").slider(1)->largeChange, 2);
    EXPECT_EQ(entry("Wall Emboss").slider(2)->largeChange, 1);
    EXPECT_EQ(entry("Special Soften").slider(1)->largeChange, 2);
    EXPECT_EQ(entry("Normal Mosaic").slider(1)->largeChange, 4);
    EXPECT_EQ(entry("Binarization").slider(1)->largeChange, 1);
    for (const EffectEntry& e : effectCatalogue()) {
        for (const SliderSpec& s : e.sliders) {
            if (e.caption != "Kirsch Filter") {
                EXPECT_EQ(s.smallChange, 1) << e.key;
            }
        }
    }
}

TEST(EffectTable, ListsKeepTheirRowsAndFrames) {
    const ListSpec* distance = entry("Sway 1").list(ListKind::G);
    ASSERT_NE(distance, nullptr);
    EXPECT_TRUE(distance->caption.empty());
    EXPECT_EQ(distance->rows, (std::vector<std::string_view>{"1", "2", "3", "4"}));
    EXPECT_EQ(entry("Monotone").list(ListKind::C)->rows.size(), 16u);
    EXPECT_EQ(entry("Cyan Adjust").list(ListKind::C)->rows.size(), 1u);
    // frm_Mani hides a list it is given no rows for.
    EXPECT_EQ(entry("HSV Cycle").list(ListKind::E), nullptr);
    EXPECT_EQ(entry("Lighting").lists.size(), 0u);
    EXPECT_EQ(entry("Nico Block").list(ListKind::C), nullptr);
    EXPECT_EQ(entry("Border Featuring RGB").list(ListKind::E)->rows.back(), "青");
}

TEST(EffectTable, FindEffectTakesTheKeyThenTheCaption) {
    EXPECT_EQ(findEffect("ﾓﾉﾄｰﾝ"), findEffect("monotone"));
    EXPECT_EQ(findEffect("Silver M"), findEffect("SILVER MOUNTAIN"));
    EXPECT_EQ(findEffect("合成　平均"), findEffect("mean(&m)"));
    EXPECT_EQ(findEffect("範囲濃度切り替え")->caption, "");
    EXPECT_EQ(findEffect(""), nullptr);
    EXPECT_EQ(findEffect("Silver"), nullptr);
    EXPECT_EQ(findEffect("Monotone "), nullptr);

    // No caption is shared and no key reads as another effect's caption, so
    // neither lookup can shadow an effect.
    std::map<std::string, std::string_view> captions;
    for (const EffectEntry& e : effectCatalogue()) {
        if (e.caption.empty()) continue;
        std::string lower(e.caption);
        for (char& c : lower)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        EXPECT_TRUE(captions.emplace(lower, e.key).second) << e.caption;
    }
    for (const EffectEntry& e : effectCatalogue()) {
        EXPECT_EQ(findEffect(e.key), &e) << e.key;
        if (!e.caption.empty()) {
            EXPECT_EQ(findEffect(e.caption), &e) << e.caption;
        }
    }
}

} // namespace
} // namespace lumiran

namespace lumiran {
namespace {

TEST(FindEffect, ACaptionIsFoundWithoutItsAccelerator) {
    const EffectEntry* mean = findEffect("Mean");
    ASSERT_NE(mean, nullptr);
    EXPECT_EQ(mean->caption, "Mean(&M)");
}

} // namespace
} // namespace lumiran
