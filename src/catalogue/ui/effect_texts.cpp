#include "catalogue/ui/effect_texts.h"

#include "shell/ui/ui_text.h"

#include <string>
#include <string_view>

namespace lumiran {

namespace {

// A menu reads '&' as the accelerator mark. The catalogue's only
// accelerators are the captions' "(&X)"; every other '&' is part of the
// name ("Sobel & Rosenfeld", "ｻｲﾝ&ｺｻｲﾝ･ﾜｰﾌﾟ", "合成　乗算&商算") and is doubled
// so that it shows.
QString withLiteralAmpersands(std::string_view text) {
    QString shown = qs(text);
    for (qsizetype i = shown.size() - 1; i >= 0; --i) {
        if (shown[i] != u'&') continue;
        const bool accelerator = i > 0 && shown[i - 1] == u'(' && i + 2 < shown.size() &&
                                 shown[i + 2] == u')' && shown[i + 1] != u'&';
        if (!accelerator) shown.insert(i, u'&');
    }
    return shown;
}

} // namespace

QString effectMenuText(const EffectEntry& entry, InterfaceLanguage language) {
    if (language == InterfaceLanguage::English) {
        // An entry without a caption (two composition rows) reads as its key's English.
        return withLiteralAmpersands(entry.caption.empty() ? englishEffectName(entry)
                                                           : std::string(entry.caption));
    }
    const std::string_view text =
        entry.stringId != 0 ? LoadResString(entry.stringId) : entry.caption;
    return withLiteralAmpersands(text.empty() ? entry.key : text);
}

QString effectTitleText(const EffectEntry& entry, InterfaceLanguage language) {
    return language == InterfaceLanguage::English ? qs(englishEffectName(entry))
                                                  : qs(entry.windowTitle());
}

} // namespace lumiran
