#pragma once

#include "shell/settings.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QListWidget;
class QSpinBox;
class QTabWidget;

namespace lumiran {

class ColourChooser;

// The options: one tab for each group of settings. The dialog edits copies;
// only storeInto, called on OK, changes the settings.
class frm_Option : public QDialog {
    Q_OBJECT
  public:
    explicit frm_Option(const Settings& settings, QWidget* parent = nullptr);

    // Writes what the controls show. A list or choice with no row selected
    // (a stored value beyond the rows) keeps the setting as it was.
    void storeInto(Settings& settings) const;

  private:
    QWidget* makeUndoTab(const Settings& settings);
    QWidget* makeCalculationTab(const Settings& settings);
    QWidget* makeRasterTab(const Settings& settings);
    QWidget* makeWindowTab(const Settings& settings);
    QWidget* makeLoadingTab(const Settings& settings);
    QWidget* makeInterfaceTab(const Settings& settings);
    QWidget* makeColourTab(const Settings& settings);

    QTabWidget* SSTab1;
    QSpinBox* MaxUndoCount = nullptr;
    QListWidget* CalculationList = nullptr;
    QListWidget* RasterOpList = nullptr;
    QComboBox* AutoRegulation = nullptr;
    QComboBox* ProcessBarType = nullptr;
    QSpinBox* LoadingAmountLimitation = nullptr;
    // The pixel limit as the side of a square; the setting is kept as it
    // was unless this is changed.
    QSpinBox* MaxLoadSide = nullptr;
    int shownLoadSide_ = 0;
    QSpinBox* FontSize = nullptr;
    QCheckBox* AutoPreview = nullptr;
    QComboBox* InterfaceLanguageList = nullptr;
    ColourChooser* BackColor = nullptr;
    ColourChooser* DrawingColor = nullptr;
};

// The text of a raster flag in the options list: the status bar's form with
// three blanks behind the comma; row 0 is the plain copy.
[[nodiscard]] QString rasterListText(int flag);

} // namespace lumiran
