#pragma once

#include "shell/interface_language.h"

#include <QTranslator>
#include <memory>

namespace lumiran {

// The contexts `res` and `shown` ask Qt's translators under.
inline constexpr const char* StringTableContext = "LumiranStringTable";
inline constexpr const char* JapaneseTextContext = "LumiranJapaneseText";

// The English of the program's texts: string-table ids (the id as the
// disambiguation) and the Japanese texts outside the table, for the texts
// `res` and `shown` look up. Gives a null text where it has no English, so
// the Japanese shows.
class InterfaceTranslator : public QTranslator {
  public:
    using QTranslator::QTranslator;
    [[nodiscard]] QString translate(const char* context, const char* sourceText,
                                    const char* disambiguation, int n) const override;
    [[nodiscard]] bool isEmpty() const override { return false; }
};

// The translators of one interface language, installed on the application
// while this lives: for Japanese Qt's own Japanese texts (when installed),
// for English the program's English (Qt's texts are English already).
class InterfaceTranslation {
  public:
    explicit InterfaceTranslation(InterfaceLanguage language);
    ~InterfaceTranslation();
    InterfaceTranslation(const InterfaceTranslation&) = delete;
    InterfaceTranslation& operator=(const InterfaceTranslation&) = delete;

    [[nodiscard]] InterfaceLanguage language() const { return language_; }

  private:
    InterfaceLanguage language_;
    std::unique_ptr<QTranslator> translator_;
};

} // namespace lumiran
