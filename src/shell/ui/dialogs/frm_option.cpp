#include "shell/ui/dialogs/frm_option.h"

#include "engine/calculation.h"
#include "engine/raster_step.h"
#include "shell/ui/dialogs/colour_chooser.h"
#include "shell/ui/dialogs/dialog_parts.h"
#include "shell/ui/dialogs/dialog_string_ids.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace lumiran {
namespace {

constexpr int FlagCount = 11; // calculation types and raster flags alike

// Rows of the arrangement choice, in the order of AutoRegulation.
constexpr std::array ArrangementTexts{dialog_ids::ArrangeNone, dialog_ids::ArrangeCascade,
                                      dialog_ids::ArrangeTileHorizontal,
                                      dialog_ids::ArrangeTileVertical};

QWidget* page(const char* name) {
    auto* widget = new QWidget;
    widget->setObjectName(name);
    return widget;
}

QListWidget* flagList(const char* name, int selected, QString (*text)(int)) {
    auto* list = new QListWidget;
    list->setObjectName(name);
    for (int flag = 0; flag < FlagCount; ++flag)
        list->addItem(text(flag));
    if (selected < FlagCount) list->setCurrentRow(selected);
    return list;
}

QString calculationListText(int flag) {
    return qs(calculationTypeLabel(static_cast<std::uint8_t>(flag)));
}

// A selected row as a flag, or the old value when none is selected.
std::uint8_t rowOr(int row, std::uint8_t old) {
    return row >= 0 ? static_cast<std::uint8_t>(row) : old;
}

} // namespace

QString rasterListText(int flag) {
    if (flag == 0) return QStringLiteral("0,   ") + res(dialog_ids::RasterPlainCopy);
    QString text = qs(rasterOpLabel(static_cast<std::uint8_t>(flag)));
    const qsizetype comma = text.indexOf(',');
    if (comma >= 0) text.insert(comma + 1, QStringLiteral("   "));
    return text;
}

frm_Option::frm_Option(const Settings& settings, QWidget* parent)
    : QDialog(parent), SSTab1(new QTabWidget) {
    setObjectName("frm_Option");
    setWindowTitle(res(dialog_ids::OptionTitle));
    SSTab1->setObjectName("SSTab1");
    SSTab1->setUsesScrollButtons(false); // all seven tabs in sight
    // The tab captions are the form's design captions, kept in English.
    SSTab1->addTab(makeUndoTab(settings), QStringLiteral("Undo"));
    SSTab1->addTab(makeCalculationTab(settings), QStringLiteral("Calculation"));
    SSTab1->addTab(makeRasterTab(settings), QStringLiteral(" Raster Operation"));
    SSTab1->addTab(makeWindowTab(settings), QStringLiteral("Window"));
    SSTab1->addTab(makeLoadingTab(settings), QStringLiteral("Loading Amount"));
    SSTab1->addTab(makeInterfaceTab(settings), QStringLiteral("Interface"));
    SSTab1->addTab(makeColourTab(settings), QStringLiteral("Color Settings"));

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(SSTab1);
    layout->addWidget(makeOkCancelButtons(*this));
    ApplyFontSize(*this, settings.FontSize);
}

QWidget* frm_Option::makeUndoTab(const Settings& settings) {
    QWidget* tab = page("UndoTab");
    MaxUndoCount = new QSpinBox;
    MaxUndoCount->setObjectName("MaxUndoCount");
    MaxUndoCount->setRange(1, 99);
    MaxUndoCount->setValue(settings.MaxUndoCount);
    auto* form = new QFormLayout(tab);
    form->addRow(res(dialog_ids::MaxUndoCount), MaxUndoCount);
    return tab;
}

QWidget* frm_Option::makeCalculationTab(const Settings& settings) {
    QWidget* tab = page("CalculationTab");
    CalculationList = flagList("CalculationList", settings.CalculationFlag, calculationListText);
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(new QLabel(res(ids::StatusCalculation)));
    layout->addWidget(CalculationList);
    return tab;
}

QWidget* frm_Option::makeRasterTab(const Settings& settings) {
    QWidget* tab = page("RasterTab");
    RasterOpList = flagList("RasterOpList", settings.RasterOpFlag, rasterListText);
    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(new QLabel(res(ids::StatusRaster)));
    layout->addWidget(RasterOpList);
    return tab;
}

QWidget* frm_Option::makeWindowTab(const Settings& settings) {
    QWidget* tab = page("WindowTab");
    AutoRegulation = new QComboBox;
    AutoRegulation->setObjectName("AutoRegulation");
    for (const int id : ArrangementTexts)
        AutoRegulation->addItem(res(id));
    // A value beyond the rows shows no row and is kept on OK.
    const int arrangement = settings.AutoRegulation;
    AutoRegulation->setCurrentIndex(arrangement < std::ssize(ArrangementTexts) ? arrangement : -1);
    ProcessBarType = new QComboBox;
    ProcessBarType->setObjectName("ProcessBarType");
    ProcessBarType->addItem(res(dialog_ids::ProgressBarStandard));
    ProcessBarType->addItem(res(dialog_ids::ProgressBarSmooth));
    ProcessBarType->setCurrentIndex(settings.ProcessBarType ? 1 : 0);
    auto* form = new QFormLayout(tab);
    form->addRow(res(dialog_ids::Arrangement), AutoRegulation);
    form->addRow(res(dialog_ids::ProgressBar), ProcessBarType);
    return tab;
}

QWidget* frm_Option::makeLoadingTab(const Settings& settings) {
    QWidget* tab = page("LoadingTab");
    LoadingAmountLimitation = new QSpinBox;
    LoadingAmountLimitation->setObjectName("LoadingAmountLimitation");
    LoadingAmountLimitation->setRange(0, 255);
    LoadingAmountLimitation->setSpecialValueText(res(dialog_ids::NoLimit)); // shown for 0
    LoadingAmountLimitation->setValue(settings.LoadingAmountLimitation);
    MaxLoadSide = new QSpinBox;
    MaxLoadSide->setObjectName("MaxLoadSide");
    MaxLoadSide->setRange(1, LoadLimits::MaxDimension);
    shownLoadSide_ = static_cast<int>(
        std::min<double>(LoadLimits::MaxDimension,
                         std::round(std::sqrt(static_cast<double>(settings.MaxLoadPixels)))));
    MaxLoadSide->setValue(shownLoadSide_);
    auto* form = new QFormLayout(tab);
    form->addRow(res(dialog_ids::LoadingLimit), LoadingAmountLimitation);
    form->addRow(res(dialog_ids::MaxLoadSide), MaxLoadSide);
    return tab;
}

QWidget* frm_Option::makeInterfaceTab(const Settings& settings) {
    QWidget* tab = page("InterfaceTab");
    FontSize = new QSpinBox;
    FontSize->setObjectName("FontSize");
    FontSize->setRange(6, 72);
    FontSize->setValue(settings.FontSize);
    AutoPreview = new QCheckBox(res(dialog_ids::AutoPreview));
    AutoPreview->setObjectName("AutoPreview");
    AutoPreview->setChecked(settings.AutoPreview == 1);
    // Rows in the order of InterfaceLanguage.
    InterfaceLanguageList = new QComboBox;
    InterfaceLanguageList->setObjectName("InterfaceLanguage");
    InterfaceLanguageList->addItem(res(ids::LanguageJapanese));
    InterfaceLanguageList->addItem(res(ids::LanguageEnglish));
    InterfaceLanguageList->setCurrentIndex(static_cast<int>(settings.interfaceLanguage));
    // Every window takes its texts when it is made, so a new language waits
    // for the next start rather than leave half the windows in the old one.
    QString note = res(ids::LanguageNextStart);
    if (const char* environment = std::getenv("LUMIRAN_LANG");
        environment != nullptr && parseInterfaceLanguage(environment)) {
        note += "\n" + res(ids::LanguageFromEnvironment);
    }
    auto* languageNote = new QLabel(note);
    languageNote->setObjectName("InterfaceLanguageNote");
    languageNote->setWordWrap(true);
    auto* form = new QFormLayout(tab);
    form->addRow(res(dialog_ids::FontSize), FontSize);
    form->addRow(AutoPreview);
    form->addRow(res(ids::InterfaceLanguageLabel), InterfaceLanguageList);
    form->addRow(languageNote);
    return tab;
}

QWidget* frm_Option::makeColourTab(const Settings& settings) {
    QWidget* tab = page("ColorTab");
    BackColor = new ColourChooser(res(ids::StatusBackColor), settings.backColor);
    BackColor->setObjectName("BackColor");
    DrawingColor = new ColourChooser(res(ids::StatusDrawingColor), settings.drawingColor);
    DrawingColor->setObjectName("DrawingColor");
    auto* form = new QFormLayout(tab);
    form->addRow(res(ids::StatusBackColor), BackColor);
    form->addRow(res(ids::StatusDrawingColor), DrawingColor);
    return tab;
}

void frm_Option::storeInto(Settings& settings) const {
    settings.MaxUndoCount = static_cast<std::uint8_t>(MaxUndoCount->value());
    settings.CalculationFlag = rowOr(CalculationList->currentRow(), settings.CalculationFlag);
    settings.RasterOpFlag = rowOr(RasterOpList->currentRow(), settings.RasterOpFlag);
    settings.AutoRegulation = rowOr(AutoRegulation->currentIndex(), settings.AutoRegulation);
    settings.ProcessBarType = ProcessBarType->currentIndex() == 1;
    settings.LoadingAmountLimitation = static_cast<std::uint8_t>(LoadingAmountLimitation->value());
    if (MaxLoadSide->value() != shownLoadSide_) {
        settings.MaxLoadPixels = std::int64_t{MaxLoadSide->value()} * MaxLoadSide->value();
    }
    settings.FontSize = static_cast<std::uint8_t>(FontSize->value());
    settings.AutoPreview = AutoPreview->isChecked() ? 1 : 0;
    settings.interfaceLanguage = InterfaceLanguageList->currentIndex() == 1
                                     ? InterfaceLanguage::English
                                     : InterfaceLanguage::Japanese;
    settings.backColor = BackColor->colour();
    settings.drawingColor = DrawingColor->colour();
}

bool showOptionDialog(Settings& settings, QWidget* parent) {
    frm_Option dialog(settings, parent);
    if (dialog.exec() != QDialog::Accepted) return false;
    dialog.storeInto(settings);
    return true;
}

} // namespace lumiran
