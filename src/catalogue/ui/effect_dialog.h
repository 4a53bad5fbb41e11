#pragma once

#include "catalogue/control_values.h"
#include "catalogue/dialog_kind.h"
#include "catalogue/effect_table.h"
#include "engine/surface.h"

#include <QDialog>
#include <array>

class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QListWidget;
class QPushButton;
class QScrollBar;
class QSpinBox;

namespace lumiran {

class FrmDocument;
class FrmMain;

// One of the seven generic parameter forms. It knows nothing of what its
// controls mean: configure() gives it title, code, captions, ranges and rows
// from the table, and OK hands the raw values to the frame, whose dispatch
// gives them their meaning.
class EffectDialog : public QDialog {
    Q_OBJECT
  public:
    EffectDialog(DialogKind kind, FrmMain& frame, FrmDocument& document);
    ~EffectDialog() override;

    // Class_Preview's configuring routine: everything from the table, the
    // scaled copy of the document, and DefaultValueSet last.
    void configure(const EffectEntry& entry);
    // Keeps the controls' values as the effect's defaults.
    void DefaultValueSet();

    [[nodiscard]] DialogKind kind() const { return kind_; }
    [[nodiscard]] const FrmDocument& document() const { return document_; }
    [[nodiscard]] int code() const { return code_; }
    [[nodiscard]] ControlValues values() const;
    // How many previews ran since the dialog was configured (for tests).
    [[nodiscard]] int previewCount() const { return previewCount_; }
    [[nodiscard]] const Surface& previewSource() const { return source_; }
    [[nodiscard]] const Surface& previewResult() const { return shown_; }

    void PreviewButton_Click();
    void OKButton_Click();
    void DefaultButton_Click();

    [[nodiscard]] QScrollBar* slider(int number) const { return sliders_.at(number - 1); }
    // The box beside a slider where its value can be typed.
    [[nodiscard]] QSpinBox* sliderBox(int number) const { return sliderBoxes_.at(number - 1); }
    [[nodiscard]] QListWidget* typeList() const { return ETypeList; }
    [[nodiscard]] QListWidget* colorList() const { return ColorList; }
    [[nodiscard]] QComboBox* distanceCombo() const { return DistanceCombo; }
    [[nodiscard]] QPushButton* previewButton() const { return PreviewButton; }

  protected:
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void buildControls();
    void controlChanged();
    void sliderChanged(int number);
    // The slider's value into its box, and into the label where it is shown in tenths.
    void showSliderValue(int number);
    void colorListClicked();
    void showPicture(const Surface& picture);
    void commonEnd();
    void setValues(const ControlValues& values);
    [[nodiscard]] bool hasSlider(int number) const;

    DialogKind kind_;
    FrmMain& frame_;
    FrmDocument& document_;
    const EffectEntry* entry_ = nullptr;
    int code_ = 0;
    int previewCount_ = 0;
    bool ended_ = false;
    // frm_ColorScale: a colour row other than 4 hides Slider2 and hands on 0 for it.
    bool slider2Off_ = false;
    ControlValues defaults_;
    std::array<QScrollBar*, 8> sliders_{};
    std::array<QSpinBox*, 8> sliderBoxes_{};
    std::array<QLabel*, 8> valueLabels_{};
    std::array<QLabel*, 8> nameLabels_{};
    QGroupBox* sliderFrame_ = nullptr;
    QGroupBox* typeFrame_ = nullptr;
    QGroupBox* colorFrame_ = nullptr;
    QGroupBox* distanceFrame_ = nullptr;
    QListWidget* ETypeList = nullptr;
    QListWidget* ColorList = nullptr;
    QComboBox* DistanceCombo = nullptr;
    QCheckBox* Check1 = nullptr;
    QLabel* ProcessColor = nullptr;
    QPushButton* ColorCommand = nullptr;
    QWidget* Picture3 = nullptr;
    QLabel* Picture1 = nullptr;
    QLabel* codeLabel_ = nullptr; // Label1(1), hidden
    QPushButton* OKButton = nullptr;
    QPushButton* CancelButton = nullptr;
    QPushButton* PreviewButton = nullptr;
    QPushButton* DefaultButton = nullptr;
    Rgb8 processColor_{};
    Surface source_; // Picture2: the unchanged scaled copy
    Surface shown_;  // Picture1: what the preview shows
};

// The forms' names, as their windows are known.
[[nodiscard]] QString dialogObjectName(DialogKind kind);

} // namespace lumiran
