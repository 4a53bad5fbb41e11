#include "catalogue/effect_table.h"
#include "shell/string_table.h"

#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <utility>

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
    static const std::regex lead(R"(Other list rows \(E,C\):)"), word(R"(\w+)");
    const std::string text = std::regex_replace(std::string(call), lead, " ");
    return {std::sregex_token_iterator(text.begin(), text.end(), word), {}};
}

TEST(EffectTable, MenusHoldTheirFamiliesAndEffectsInMenuOrder) {
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
    // Family by family, in the menus' order, with rising indexes.
    auto next = effects.begin();
    for (std::size_t f = 0; f < expected.size(); ++f) {
        EXPECT_EQ(families[f].menu, expected[f].first);
        for (int n = 0, previous = -1; n < expected[f].second; ++n, ++next) {
            ASSERT_NE(next, effects.end());
            EXPECT_EQ(next->menu, expected[f].first) << next->caption;
            EXPECT_EQ(next->family, families[f].caption);
            EXPECT_GT(next->index, std::exchange(previous, next->index)) << next->caption;
        }
    }
    EXPECT_EQ(next, effects.end());
    EXPECT_EQ(effects[18].caption, "Hue And Gray");
    EXPECT_EQ(entry("Gradation Blend (Mean)").index, 2); // row 1 is a separator

    // Families hang where the menus put them.
    for (int f = 0; f < 22; ++f) {
        EXPECT_EQ(std::pair(families[f].parentMenu, families[f].parentIndex),
                  std::pair(std::string_view("Effect1No"), f));
        EXPECT_FALSE(LoadResString(families[f].browseCategoryId).empty()) << f;
    }
    EXPECT_EQ(findFamily("ColorNo")->browseCategoryId, 4019);
    EXPECT_EQ(findFamily("GiftNo")->parentIndex, 24);
    EXPECT_EQ(findFamily("suteganono")->parentMenu, "mnueditanding");
    EXPECT_TRUE(findFamily("mnueditanding")->parentMenu.empty());
    for (const char* menu : {"GiftNo", "mnueditanding", "suteganono"})
        EXPECT_EQ(findFamily(menu)->browseCategoryId, 0) << menu; // no browser category
    EXPECT_EQ(findFamily("Effect1No"), nullptr);
}

TEST(EffectTable, EachDialogCodeNamesOneEffectAndRoutinesTakeTheirShare) {
    std::map<std::pair<DialogKind, int>, std::string_view> seen;
    std::vector<int> perRoutine(7); // in the order PreviewStart, ...Kai, 2, 2Kai, 3, 3Kai, Another
    for (const EffectEntry& e : effectCatalogue()) {
        const auto [it, fresh] = seen.emplace(std::pair{e.dialog, e.code}, e.key);
        EXPECT_TRUE(fresh) << e.key << " shares " << dialogName(e.dialog) << " " << e.code
                           << " with " << it->second;
        ++perRoutine.at(static_cast<std::size_t>(e.routine));
    }
    EXPECT_EQ(perRoutine, (std::vector<int>{41, 48, 31, 60, 14, 50, 18}));
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
    for (const EffectEntry& e : effectCatalogue()) {
        if (e.stringId == 0) {
            foundLiterals.insert(e.key);
        } else {
            EXPECT_EQ(LoadResString(e.stringId), e.key) << e.stringId;
        }
    }
    EXPECT_EQ(foundLiterals, literals);
}

TEST(EffectTable, ControlsAreOnesTheDialogHas) {
    using Controls = std::pair<int, std::set<ListKind>>; // sliders, lists
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
            EXPECT_TRUE(s.number == expectedNumber++ && s.number <= form.first) << e.key;
            EXPECT_TRUE(s.min < s.max && s.min <= s.defaultValue && s.defaultValue <= s.max)
                << e.key << " S" << s.number;
            EXPECT_EQ(s.smallChange, e.caption == "Kirsch Filter" ? 45 : 1) << e.key;
        }
        std::set<ListKind> kinds;
        for (const ListSpec& l : e.lists) {
            EXPECT_TRUE(form.second.contains(l.kind) && kinds.insert(l.kind).second &&
                        !l.rows.empty())
                << e.key << " " << listLetter(l.kind);
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
            const bool reads = words.contains(std::string(1, listLetter(kind)));
            EXPECT_TRUE(!reads || e.list(kind) != nullptr)
                << e.key << " reads " << listLetter(kind);
        }
        for (int n = 1; n <= 8; ++n) {
            const std::string name = "S" + std::to_string(n);
            if (words.contains(name) && e.slider(n) == nullptr) found.insert({e.caption, name});
        }
    }
    EXPECT_EQ(found, hiddenSliders);
    EXPECT_TRUE(entry("Raster(&R)").call.empty());
}

// The pairs (E, C) an entry names calls for: rows the dialog shows, E = 0
// where the dialog has no type list. The dispatch keys its special cases on
// exactly these pairs.
TEST(EffectTable, NamedListPairsAreRowsOfTheEntrysLists) {
    static const std::regex pair(R"((?:: |; )(\d+),(\d+):)");
    const auto rowsOf = [](const EffectEntry& e, ListKind kind) {
        const ListSpec* list = e.list(kind);
        return list == nullptr ? 1 : static_cast<int>(list->rows.size());
    };
    std::map<std::string_view, int> pairsByEntry;
    for (const EffectEntry& e : effectCatalogue()) {
        const std::string call(e.call);
        const auto others = call.find("Other list rows (E,C):");
        if (others == std::string::npos) continue;
        const std::string tail = call.substr(others);
        for (auto it = std::sregex_iterator(tail.begin(), tail.end(), pair);
             it != std::sregex_iterator(); ++it) {
            const int eRow = std::stoi((*it)[1]), cRow = std::stoi((*it)[2]);
            EXPECT_LT(eRow, rowsOf(e, ListKind::E)) << e.caption;
            EXPECT_LT(cRow, rowsOf(e, ListKind::C)) << e.caption;
            ++pairsByEntry[e.caption];
        }
    }
    EXPECT_EQ(pairsByEntry, (std::map<std::string_view, int>{{"Monotone", 2},
                                                             {"Checked Pattern", 1},
                                                             {"Water Noise", 1},
                                                             {"Diffuse Outline", 1},
                                                             {"Moving Average", 3},
                                                             {"Slope", 1},
                                                             {"Jagged", 2},
                                                             {"Blur", 8},
                                                             {"Gaussian Blur", 8}}));
}

TEST(EffectTable, FindEffectTakesTheKeyThenTheCaption) {
    EXPECT_EQ(findEffect("ﾓﾉﾄｰﾝ"), findEffect("monotone"));
    EXPECT_EQ(findEffect("Silver M"), findEffect("SILVER MOUNTAIN"));
    EXPECT_EQ(findEffect("合成　平均"), findEffect("mean(&m)"));
    EXPECT_EQ(findEffect("Mean"), findEffect("mean(&m)")); // without its accelerator
    EXPECT_EQ(findEffect("範囲濃度切り替え")->caption, "");
    for (const char* miss : {"", "Silver", "Monotone "})
        EXPECT_EQ(findEffect(miss), nullptr) << miss;
    // Keys are unique and neither lookup shadows an effect.
    for (const EffectEntry& e : effectCatalogue()) {
        EXPECT_EQ(findEffect(e.key), &e) << e.key;
        if (!e.caption.empty()) {
            EXPECT_EQ(findEffect(e.caption), &e) << e.caption;
        }
    }
}

} // namespace
} // namespace lumiran
