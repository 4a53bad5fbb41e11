// The text lookup of the editor in each language: string-table ids, the
// core's Japanese texts, and what the core appends to them.
#include "catalogue/effect_table.h"
#include "catalogue/ui/effect_texts.h"
#include "imagefiles/load_dispatch.h"
#include "shell/string_table.h"
#include "shell/ui/interface_translator.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QKeySequence>
#include <QtTest>
#include <optional>

using namespace lumiran;

class InterfaceLanguageTest : public QObject {
    Q_OBJECT
  private slots:
    void textsFollowTheInstalledLanguage() {
        struct Case {
            QString japanese; // what the core hands over
            QString english;  // what an English editor shows
        };
        const Case cases[] = {
            // A tool's status is a string-table text; the corners stay.
            {qs(LoadResString(ids::ToolAreaFixed)) + "(1,2)  -  (30,40)",
             "Tool: Area Fixed(1,2)  -  (30,40)"},
            {qs(loadProgressCaption(37)), "Please wait.  37%"},
            {qs(LoadResString(ids::StatusTool)), "Tool:"},
            // No English known: the Japanese shows, whole.
            {QStringLiteral("知らない文"), QStringLiteral("知らない文")},
            {QStringLiteral("知らない文 (3)"), QStringLiteral("知らない文 (3)")},
            {QStringLiteral("plain ASCII"), QStringLiteral("plain ASCII")},
        };
        for (const std::optional<InterfaceLanguage> language :
             {std::optional<InterfaceLanguage>{}, std::optional{InterfaceLanguage::Japanese},
              std::optional{InterfaceLanguage::English}}) {
            std::optional<InterfaceTranslation> translation;
            if (language) translation.emplace(*language);
            const bool english = language == InterfaceLanguage::English;
            for (const Case& c : cases) {
                QCOMPARE(shown(c.japanese.toStdString()), english ? c.english : c.japanese);
            }
            QCOMPARE(res(ids::ButtonCancel), english ? QString("Cancel") : qs(LoadResString(2125)));
            QCOMPARE(res(2250), QString("?")); // the placeholder beside OK
            QCOMPARE(res(1), QString());       // no such id
            QCOMPARE(errorTitleText(6), english ? QString("Error 6") : qs(errorTitle(6)));
        }
        // The English translator goes with its owner.
        QCOMPARE(res(ids::ExitTitle), qs(LoadResString(ids::ExitTitle)));
    }

    void effectMenuRowsShowEveryAmpersandOfTheirName() {
        struct Case {
            const char* caption;
            InterfaceLanguage language;
            QString text; // as the menu takes it: "&&" shows one '&'
        };
        const Case cases[] = {
            {"Sine & Cosine Warp", InterfaceLanguage::Japanese, "ｻｲﾝ&&ｺｻｲﾝ･ﾜｰﾌﾟ"},
            {"Division And Multiplication(&V)", InterfaceLanguage::Japanese, "合成　乗算&&商算"},
            {"Sobel & Rosenfeld Filter", InterfaceLanguage::Japanese, "Sobel && Rosenfeld･ﾌｨﾙﾀ"},
            {"Bring Right & Under", InterfaceLanguage::Japanese, "Bring Right && Under"},
            {"Sobel & Rosenfeld Filter", InterfaceLanguage::English, "Sobel && Rosenfeld Filter"},
            {"Division And Multiplication(&V)", InterfaceLanguage::English,
             "Division And Multiplication(&V)"},
        };
        for (const Case& c : cases) {
            const EffectEntry* entry = findEffect(c.caption);
            QVERIFY2(entry != nullptr, c.caption);
            QCOMPARE(effectMenuText(*entry, c.language), c.text);
        }
        // The captions' "(&X)" are the only accelerators of the effect menus.
        for (const EffectEntry& entry : effectCatalogue()) {
            const std::string_view caption = entry.caption;
            const auto open = caption.find("(&");
            const QKeySequence english =
                open == std::string_view::npos
                    ? QKeySequence()
                    : QKeySequence(QKeySequence::mnemonic("&" + qs(caption.substr(open + 2, 1))));
            QCOMPARE(QKeySequence::mnemonic(effectMenuText(entry, InterfaceLanguage::English)),
                     english);
            QCOMPARE(QKeySequence::mnemonic(effectMenuText(entry, InterfaceLanguage::Japanese)),
                     QKeySequence());
        }
    }
};

QTEST_MAIN(InterfaceLanguageTest)
#include "interface_language_test.moc"
