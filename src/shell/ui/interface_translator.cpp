#include "shell/ui/interface_translator.h"

#include "catalogue/english_texts.h"
#include "shell/string_table.h"
#include "shell/ui/qt_translations.h"

#include <QCoreApplication>
#include <algorithm>
#include <charconv>
#include <cstring>

namespace lumiran {
namespace {

QString english(std::string_view text) {
    if (text.empty()) return {};
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString englishOfWhole(std::string_view japanese) {
    if (const std::string_view text = englishFor(japanese); !text.empty()) return english(text);
    // Texts the core takes from the string table come back as their Japanese.
    if (const int id = japaneseStringId(japanese); id != 0) {
        return english(LoadResString(id, InterfaceLanguage::English));
    }
    return {};
}

// A Japanese text the core extended by plain ASCII (a rectangle's corners
// after a tool's status, a percentage after a load's caption): the English
// of the text, the ASCII as it is.
QString englishOfHead(std::string_view japanese) {
    const auto last = std::find_if(japanese.rbegin(), japanese.rend(),
                                   [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    if (last == japanese.rbegin() || last == japanese.rend()) return {};
    const auto headLength = static_cast<std::size_t>(japanese.rend() - last);
    const QString head = englishOfWhole(japanese.substr(0, headLength));
    if (head.isNull()) return {};
    return head + QString::fromLatin1(japanese.substr(headLength));
}

} // namespace

QString InterfaceTranslator::translate(const char* context, const char* sourceText,
                                       const char* disambiguation, int /*n*/) const {
    if (context == nullptr || sourceText == nullptr) return {};
    if (std::strcmp(context, StringTableContext) == 0) {
        if (disambiguation == nullptr) return {};
        int id = 0;
        const char* end = disambiguation + std::strlen(disambiguation);
        if (std::from_chars(disambiguation, end, id).ptr != end) return {};
        return english(LoadResString(id, InterfaceLanguage::English));
    }
    if (std::strcmp(context, JapaneseTextContext) == 0) {
        const std::string_view japanese(sourceText);
        if (QString whole = englishOfWhole(japanese); !whole.isNull()) return whole;
        return englishOfHead(japanese);
    }
    return {};
}

InterfaceTranslation::InterfaceTranslation(InterfaceLanguage language) : language_(language) {
    if (language == InterfaceLanguage::English) {
        translator_ = std::make_unique<InterfaceTranslator>();
    } else {
        translator_ = loadQtJapanese();
    }
    if (translator_) QCoreApplication::installTranslator(translator_.get());
}

InterfaceTranslation::~InterfaceTranslation() {
    if (translator_) QCoreApplication::removeTranslator(translator_.get());
}

} // namespace lumiran
