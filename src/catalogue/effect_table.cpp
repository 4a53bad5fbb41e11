#include "catalogue/effect_table.h"

#include <algorithm>
#include <cctype>

namespace lumiran {
namespace {

std::vector<EffectEntry> buildCatalogue() {
    std::vector<EffectEntry> table;
    table.push_back(EffectEntry{
        .family = "Color",
        .menu = "ColorNo",
        .index = 0,
        .caption = "Monotone",
        .stringId = 2301,
        .key = "ﾓﾉﾄｰﾝ",
        .title = "ﾓﾉﾄｰﾝ",
        .routine = PreviewRoutine::PreviewStart,
        .dialog = DialogKind::Monotone,
        .code = 0,
        .sliders = {},
        .lists = {ListSpec{ListKind::C,
                           "ﾓﾉﾄｰﾝ･ﾀｲﾌﾟ",
                           {"RGB:RGB", "RGB:赤", "RGB:緑", "RGB:青", "CMY:ｲｴﾛｰ", "CMY:ｼｱﾝ",
                            "CMY:ﾏｾﾞﾝﾀ", "RGB:最大値", "RGB:中間値", "RGB:最小値", "光度",
                            "YCbCr:輝度", "YCbCr:色差青+128", "YCbCr:色差赤+128", "色相",
                            "ﾋｽﾄｸﾞﾗﾑ均等化"}}},
    });
    return table;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) {
        return std::tolower(x) == std::tolower(y);
    });
}

} // namespace

const ListSpec* EffectEntry::list(ListKind kind) const {
    const auto it = std::ranges::find(lists, kind, &ListSpec::kind);
    return it == lists.end() ? nullptr : &*it;
}

const SliderSpec* EffectEntry::slider(int number) const {
    const auto it = std::ranges::find(sliders, number, &SliderSpec::number);
    return it == sliders.end() ? nullptr : &*it;
}

std::span<const EffectEntry> effectCatalogue() {
    static const std::vector<EffectEntry> table = buildCatalogue();
    return table;
}

ControlValues defaultControlValues(const EffectEntry& effect) {
    ControlValues values;
    for (const SliderSpec& s : effect.sliders) values.sliders[s.number - 1] = s.defaultValue;
    return values;
}

const EffectEntry* findEffect(std::string_view name) {
    const auto table = effectCatalogue();
    for (const EffectEntry& e : table) {
        if (e.key == name) return &e;
    }
    for (const EffectEntry& e : table) {
        if (equalsIgnoringCase(e.caption, name)) return &e;
    }
    return nullptr;
}

} // namespace lumiran
