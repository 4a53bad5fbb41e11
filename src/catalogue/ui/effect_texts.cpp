#include "catalogue/ui/effect_texts.h"

#include "shell/ui/ui_text.h"

namespace lumiran {

QString effectMenuText(const EffectEntry& entry, InterfaceLanguage language) {
    if (language == InterfaceLanguage::English) {
        // "Sobel & Rosenfeld Filter": an ampersand before a blank is the
        // word, not an accelerator ("Mean(&M)" keeps its own).
        // An entry without a caption (two composition rows) reads as its key's English.
        QString text = entry.caption.empty() ? qs(englishEffectName(entry)) : qs(entry.caption);
        return text.replace(QStringLiteral("& "), QStringLiteral("&& "));
    }
    const QString text =
        entry.stringId != 0 ? qs(LoadResString(entry.stringId)) : qs(entry.caption);
    return text.isEmpty() ? qs(entry.key) : text;
}

QString effectTitleText(const EffectEntry& entry, InterfaceLanguage language) {
    return language == InterfaceLanguage::English ? qs(englishEffectName(entry))
                                                  : qs(entry.windowTitle());
}

} // namespace lumiran
