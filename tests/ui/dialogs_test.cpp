#include "engine/pixel.h"
#include "engine/surface.h"
#include "shell/settings.h"
#include "shell/ui/dialogs/colour_chooser.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/dialogs/frm_create.h"
#include "shell/ui/dialogs/frm_option.h"
#include "shell/ui/dialogs/frm_pictureinfo.h"
#include "shell/ui/dialogs/frm_splash.h"
#include "shell/ui/dialogs/frm_vasion.h"
#include "shell/ui/qt_translations.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLibraryInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>
#include <functional>

namespace lumiran {
namespace {

// Acts on the named modal dialog once its event loop runs. Should the dialog
// not be found, the modal one is closed so that the test fails and ends.
void onDialog(const QString& name, std::function<void(QDialog&)> action) {
    QTimer::singleShot(0, [name, action = std::move(action)] {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* dialog = qobject_cast<QDialog*>(widget);
            if (dialog && dialog->objectName() == name && dialog->isVisible()) {
                action(*dialog);
                return;
            }
        }
        if (QWidget* modal = QApplication::activeModalWidget()) modal->close();
        QFAIL(qPrintable(QStringLiteral("no dialog named ") + name));
    });
}

template <class T>
T& child(QWidget& parent, const char* name) {
    T* found = parent.findChild<T*>(QString::fromLatin1(name));
    if (!found) qFatal("no control named %s", name);
    return *found;
}

void click(QDialog& dialog, const char* button) {
    child<QPushButton>(dialog, button).click();
}

// Settings different from the defaults in every field the options edit.
Settings unusualSettings() {
    Settings s;
    s.MaxUndoCount = 17;
    s.CalculationFlag = 3;
    s.RasterOpFlag = 9;
    s.AutoRegulation = 2;
    s.ProcessBarType = true;
    s.LoadingAmountLimitation = 4;
    s.MaxLoadPixels = 1000 * 1000;
    s.FontSize = 11;
    s.AutoPreview = 0;
    s.backColor = {1, 2, 3};
    s.drawingColor = {250, 251, 252};
    return s;
}

void compareEdited(const Settings& actual, const Settings& expected) {
    QCOMPARE(actual.MaxUndoCount, expected.MaxUndoCount);
    QCOMPARE(actual.CalculationFlag, expected.CalculationFlag);
    QCOMPARE(actual.RasterOpFlag, expected.RasterOpFlag);
    QCOMPARE(actual.AutoRegulation, expected.AutoRegulation);
    QCOMPARE(actual.ProcessBarType, expected.ProcessBarType);
    QCOMPARE(actual.LoadingAmountLimitation, expected.LoadingAmountLimitation);
    QCOMPARE(actual.MaxLoadPixels, expected.MaxLoadPixels);
    QCOMPARE(actual.FontSize, expected.FontSize);
    QCOMPARE(actual.AutoPreview, expected.AutoPreview);
    QVERIFY(actual.backColor == expected.backColor);
    QVERIFY(actual.drawingColor == expected.drawingColor);
    QVERIFY(actual.interfaceLanguage == expected.interfaceLanguage);
}

// Sets every control of the options to values unlike unusualSettings().
void editEveryTab(QDialog& dialog) {
    child<QSpinBox>(dialog, "MaxUndoCount").setValue(99);
    child<QListWidget>(dialog, "CalculationList").setCurrentRow(10);
    child<QListWidget>(dialog, "RasterOpList").setCurrentRow(0);
    child<QComboBox>(dialog, "AutoRegulation").setCurrentIndex(3);
    child<QComboBox>(dialog, "ProcessBarType").setCurrentIndex(0);
    child<QSpinBox>(dialog, "LoadingAmountLimitation").setValue(255);
    child<QSpinBox>(dialog, "MaxLoadSide").setValue(2000);
    child<QSpinBox>(dialog, "FontSize").setValue(72);
    child<QCheckBox>(dialog, "AutoPreview").setChecked(true);
    child<QComboBox>(dialog, "InterfaceLanguage").setCurrentIndex(1);
    child<ColourChooser>(dialog, "BackColor").setColour({10, 20, 30});
    child<ColourChooser>(dialog, "DrawingColor").setColour({40, 50, 60});
}

} // namespace

class DialogsTest : public QObject {
    Q_OBJECT
  private slots:
    void optionOkStoresEveryTab() {
        Settings settings = unusualSettings();
        onDialog("frm_Option", [](QDialog& dialog) {
            editEveryTab(dialog);
            click(dialog, "OKButton");
        });
        QVERIFY(showOptionDialog(settings, nullptr));
        Settings expected;
        expected.MaxUndoCount = 99;
        expected.CalculationFlag = 10;
        expected.RasterOpFlag = 0;
        expected.AutoRegulation = 3;
        expected.ProcessBarType = false;
        expected.LoadingAmountLimitation = 255;
        expected.MaxLoadPixels = 2000 * 2000;
        expected.FontSize = 72;
        expected.AutoPreview = 1;
        expected.backColor = {10, 20, 30};
        expected.drawingColor = {40, 50, 60};
        expected.interfaceLanguage = InterfaceLanguage::English;
        compareEdited(settings, expected);
    }

    void optionCancelStoresNothing() {
        const Settings original = unusualSettings();
        Settings settings = original;
        onDialog("frm_Option", [](QDialog& dialog) {
            editEveryTab(dialog);
            click(dialog, "CancelButton");
        });
        QVERIFY(!showOptionDialog(settings, nullptr));
        compareEdited(settings, original);
    }

    void optionKeepsStoredValuesBeyondItsRows() {
        // A damaged store can hold flags no row shows: OK leaves them alone,
        // and counts out of range come back inside it.
        Settings settings;
        settings.CalculationFlag = 12;
        settings.RasterOpFlag = 200;
        settings.AutoRegulation = 7;
        settings.MaxUndoCount = 0;
        settings.MaxLoadPixels = 1000 * 999; // no square: shown rounded, kept unless edited
        frm_Option dialog(settings);
        QCOMPARE(child<QSpinBox>(dialog, "MaxLoadSide").value(), 999);
        QCOMPARE(child<QListWidget>(dialog, "CalculationList").currentRow(), -1);
        QCOMPARE(child<QSpinBox>(dialog, "LoadingAmountLimitation").text(),
                 child<QSpinBox>(dialog, "LoadingAmountLimitation").specialValueText());
        dialog.storeInto(settings);
        QCOMPARE(settings.MaxLoadPixels, 1000 * 999);
        QCOMPARE(settings.CalculationFlag, 12);
        QCOMPARE(settings.RasterOpFlag, 200);
        QCOMPARE(settings.AutoRegulation, 7);
        QCOMPARE(settings.MaxUndoCount, 1);
    }

    void applyFontSizeReachesNestedChildren() {
        QWidget form;
        auto* group = new QGroupBox(&form);
        auto* inner = new QWidget(group);
        auto* label = new QLabel(QStringLiteral("x"), inner);
        auto* layout = new QVBoxLayout(inner);
        auto* spin = new QSpinBox;
        layout->addWidget(spin);
        // A control with a font of its own does not inherit the form's.
        QFont own = label->font();
        own.setPointSize(30);
        label->setFont(own);
        ApplyFontSize(form, 17);
        QCOMPARE(label->font().pointSize(), 17);
        // Four levels down: the spin box's own edit field.
        QCOMPARE(spin->findChild<QLineEdit*>()->font().pointSize(), 17);
        // A damaged size stays readable instead of being refused.
        ApplyFontSize(form, 0);
        QCOMPARE(label->font().pointSize(), 6);
        ApplyFontSize(form, 255);
        QCOMPARE(label->font().pointSize(), 72);
    }

    void distinctColoursIgnoreTheSpareByte() {
        Surface picture(3, 2);
        picture.at(0, 0) = makePixel(0, 0, 0);
        picture.at(1, 0) = makePixel(0, 0, 0, 0xFF); // same colour
        picture.at(2, 0) = makePixel(255, 255, 255);
        picture.at(0, 1) = makePixel(255, 255, 255, 7);
        picture.at(1, 1) = makePixel(0, 0, 64); // 64 starts the second word of bits
        picture.at(2, 1) = makePixel(0, 0, 63);
        QCOMPARE(countDistinctColours(picture), std::size_t{4});
        QCOMPARE(countDistinctColours(Surface{}), std::size_t{0});
    }

    void pictureInfoShowsFileAndCounts() {
        const Surface picture(3, 1, makePixel(9, 9, 9));
        PictureInfo info;
        info.path = QStringLiteral("/tmp/some folder/pic.bmp");
        info.width = 32767;
        info.height = 32767;
        info.fileSize = 1234567;
        frm_PictureInfo dialog(info, picture, Settings{});
        QCOMPARE(child<QLabel>(dialog, "NameValue").text(), QStringLiteral("pic.bmp"));
        QCOMPARE(child<QLabel>(dialog, "FolderValue").text(), QStringLiteral("/tmp/some folder"));
        QCOMPARE(child<QLabel>(dialog, "PixelCountValue").text(), QStringLiteral("1,073,676,289"));
        QVERIFY(child<QLabel>(dialog, "FileSizeValue").text().startsWith("1,234,567"));
        QCOMPARE(child<QLabel>(dialog, "ColorCountValue").text(), QStringLiteral("1"));
    }

    void createReturnsTheRequestOnOkOnly() {
        onDialog("frm_Create", [](QDialog& dialog) {
            QCOMPARE(child<QSpinBox>(dialog, "WidthBox").value(), 320);
            QCOMPARE(child<QSpinBox>(dialog, "HeightBox").value(), 240);
            child<QSpinBox>(dialog, "WidthBox").setValue(0);
            child<QSpinBox>(dialog, "HeightBox").setValue(40000);
            child<QLineEdit>(dialog, "NameBox").setText(QStringLiteral("  x  "));
            click(dialog, "OKButton");
        });
        const auto request = showCreateDialog(Settings{}, nullptr);
        QVERIFY(request.has_value());
        QCOMPARE(request->width, 1);
        QCOMPARE(request->height, 32767);
        QCOMPARE(request->name, QStringLiteral("x"));

        onDialog("frm_Create", [](QDialog& dialog) { click(dialog, "CancelButton"); });
        QVERIFY(!showCreateDialog(Settings{}, nullptr).has_value());
    }

    void colorSetStoresOnOkOnly() {
        Settings settings;
        onDialog("frm_ColorSet", [](QDialog& dialog) {
            child<ColourChooser>(dialog, "BackColor").setColour({5, 6, 7});
            child<ColourChooser>(dialog, "DrawingColor").setColour({8, 9, 10});
            click(dialog, "OKButton");
        });
        QVERIFY(showColorSetDialog(settings, nullptr));
        QVERIFY((settings.backColor == Rgb8{5, 6, 7}));
        QVERIFY((settings.drawingColor == Rgb8{8, 9, 10}));

        onDialog("frm_ColorSet", [](QDialog& dialog) {
            child<ColourChooser>(dialog, "BackColor").setColour({1, 1, 1});
            click(dialog, "CancelButton");
        });
        QVERIFY(!showColorSetDialog(settings, nullptr));
        QVERIFY((settings.backColor == Rgb8{5, 6, 7}));
    }

    void splashIsCentredAndClosesItself() {
        QPointer<QWidget> splash = showSplash(Settings{});
        QVERIFY(splash);
        QCOMPARE(splash->objectName(), QStringLiteral("Frm_Splash"));
        QVERIFY(splash->isVisible());
        QVERIFY(child<QLabel>(*splash, "VersionLabel").text().contains("0.49"));
        QTRY_VERIFY_WITH_TIMEOUT(splash.isNull(), 5000);
    }

    void versionFormTellsTheVersionAndCloses() {
        onDialog("frm_Vasion", [](QDialog& dialog) {
            QCOMPARE(child<QLabel>(dialog, "ProgramName").text(), QStringLiteral("Lumiran"));
            QVERIFY(child<QLabel>(dialog, "VersionLabel").text().contains("0.49"));
            QVERIFY(!child<QLabel>(dialog, "MessageLabel").text().isEmpty());
            click(dialog, "OKButton");
        });
        showVersionDialog(Settings{}, nullptr);
    }

    // Qt's own buttons speak the program's language: the exit question's
    // yes and no, and the details button of a failed load or save.
    void qtTextsAreJapanese() {
        if (!QFile::exists(QLibraryInfo::path(QLibraryInfo::TranslationsPath) + "/qtbase_ja.qm")) {
            QSKIP("Qt's translations (qt6-translations-l10n) are not installed");
        }
        QVERIFY(installQtTranslations(*QCoreApplication::instance()));
        QMessageBox box(QMessageBox::Question, "t", "?", QMessageBox::Yes | QMessageBox::No);
        box.setDetailedText("why");
        box.show();
        QStringList texts;
        for (QAbstractButton* button : box.buttons())
            texts << button->text();
        QVERIFY(texts.filter(QStringLiteral("はい")).size() == 1);
        QVERIFY(texts.filter(QStringLiteral("いいえ")).size() == 1);
        QVERIFY(texts.filter(QStringLiteral("詳細")).size() == 1);
        QVERIFY(texts.filter(QRegularExpression("[A-Za-z]{2,}")).isEmpty());
    }
};

} // namespace lumiran

QTEST_MAIN(lumiran::DialogsTest)
#include "dialogs_test.moc"
