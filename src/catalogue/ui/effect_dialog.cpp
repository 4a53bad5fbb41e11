#include "catalogue/ui/effect_dialog.h"

#include "catalogue/effect_dispatch.h"
#include "catalogue/preview.h"
#include "catalogue/ui/effect_texts.h"
#include "shell/string_table.h"
#include "shell/ui/dialogs/dialogs.h"
#include "shell/ui/frm_document.h"
#include "shell/ui/frm_main.h"
#include "shell/ui/surface_image.h"
#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QColorDialog>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>

namespace lumiran {
namespace {

constexpr int PreviewBox = 140;     // the preview box of most forms, in pixels
constexpr int LevelBoxHeight = 136; // frm_Level's box is 2112 by 2040 twips

int sliderCount(DialogKind kind) {
    switch (kind) {
    case DialogKind::Monotone:
        return 0;
    case DialogKind::Sepia:
    case DialogKind::Negative:
    case DialogKind::Emboss:
        return 1;
    case DialogKind::Level:
    case DialogKind::ColorScale:
        return 2;
    case DialogKind::Mani:
        return 8;
    }
    return 0;
}

bool hasTypeList(DialogKind k) {
    return k == DialogKind::Emboss || k == DialogKind::Level || k == DialogKind::ColorScale ||
           k == DialogKind::Mani;
}
bool hasColorList(DialogKind k) {
    return k != DialogKind::Sepia;
}

// frm_ColorScale shows Slider2 only for row 4 of these effects.
bool rowFourShowsSlider2(int code) {
    constexpr int codes[] = {2, 3, 6, 7, 8, 9, 11, 13};
    return std::ranges::find(codes, code) != std::end(codes);
}

// The composition effects that need the kept image cannot preview.
bool previewForbidden(std::string_view key) {
    constexpr std::string_view keys[] = {"ﾗｽﾀ演算による合成", "波紋座標",    "合成　比較",
                                         "範囲濃度切り替え",  "合成　ｴﾝﾎﾞｽ", "同一色入れ換え"};
    return std::ranges::find(keys, key) != std::end(keys);
}

// Whether the effect's call passes this control's value (K, Rc and so on):
// controls no call reads stay hidden.
bool callUses(std::string_view call, std::string_view symbol) {
    for (std::size_t at = call.find(symbol); at != std::string_view::npos;
         at = call.find(symbol, at + 1)) {
        const char before = at == 0 ? '(' : call[at - 1];
        const std::size_t endAt = at + symbol.size();
        const char after = endAt < call.size() ? call[endAt] : ')';
        if ((before == '(' || before == ',') && (after == ',' || after == ')')) return true;
    }
    return false;
}

QString colourSwatch(Rgb8 c) {
    return QString("background-color: rgb(%1,%2,%3); border: 1px solid gray;")
        .arg(c.red)
        .arg(c.green)
        .arg(c.blue);
}

} // namespace

QString dialogObjectName(DialogKind kind) {
    return qs(dialogName(kind));
}

EffectDialog::EffectDialog(DialogKind kind, FrmMain& frame, FrmDocument& document)
    : QDialog(&frame), kind_(kind), frame_(frame), document_(document) {
    setObjectName(dialogObjectName(kind));
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    buildControls();
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        move(screen->geometry().width() / 10, screen->geometry().height() / 10);
    }
    ApplyFontSize(*this, frame_.settings().FontSize);
}

EffectDialog::~EffectDialog() {
    commonEnd();
}

void EffectDialog::buildControls() {
    auto* controls = new QVBoxLayout;
    const int count = sliderCount(kind_);
    for (int n = 1; n <= 8; ++n) {
        auto* bar = new QScrollBar(Qt::Horizontal);
        bar->setObjectName(QString("Slider%1").arg(n));
        // The change event fires at the end of a movement, not while dragging.
        bar->setTracking(false);
        bar->setMinimumWidth(160);
        // Arrow and page keys step the slider as its arrows and trough do;
        // right, up and page up raise the value, as on any value slider
        // (a scroll bar would invert them).
        bar->setFocusPolicy(Qt::StrongFocus);
        bar->setInvertedControls(false);
        sliders_[n - 1] = bar;
        // A typed value moves the slider, whose change event does the rest;
        // it counts once the typing is done, not at each digit.
        auto* box = new QSpinBox;
        box->setObjectName(QString("SliderBox%1").arg(n));
        box->setKeyboardTracking(false);
        box->setAccelerated(true);
        sliderBoxes_[n - 1] = box;
        valueLabels_[n - 1] = new QLabel;
        valueLabels_[n - 1]->setMinimumWidth(36);
        nameLabels_[n - 1] = new QLabel;
        connect(bar, &QScrollBar::valueChanged, this, [this, n] { sliderChanged(n); });
        connect(box, &QSpinBox::valueChanged, bar, &QScrollBar::setValue);
        box->installEventFilter(this);
    }
    if (count > 0) {
        sliderFrame_ = new QGroupBox;
        sliderFrame_->setObjectName("Frame2");
        auto* grid = new QGridLayout(sliderFrame_);
        for (int n = 1; n <= count; ++n) {
            grid->addWidget(nameLabels_[n - 1], n - 1, 0);
            grid->addWidget(sliders_[n - 1], n - 1, 1);
            grid->addWidget(sliderBoxes_[n - 1], n - 1, 2);
            grid->addWidget(valueLabels_[n - 1], n - 1, 3);
        }
        controls->addWidget(sliderFrame_);
    }
    for (int n = count + 1; n <= 8; ++n) {
        sliders_[n - 1]->setParent(this);
        sliders_[n - 1]->hide();
        sliderBoxes_[n - 1]->setParent(this);
        sliderBoxes_[n - 1]->hide();
    }
    auto listFrame = [&](const char* frameName, const char* listName) {
        auto* box = new QGroupBox;
        box->setObjectName(frameName);
        auto* list = new QListWidget;
        list->setObjectName(listName);
        list->setMinimumHeight(90);
        auto* layout = new QVBoxLayout(box);
        layout->addWidget(list);
        controls->addWidget(box);
        // The colour list's own rule first, so a preview sees what it shows.
        connect(list, &QListWidget::currentRowChanged, this, [this, list] {
            if (list == ColorList) colorListClicked();
            controlChanged();
        });
        return std::pair{box, list};
    };
    if (hasTypeList(kind_)) std::tie(typeFrame_, ETypeList) = listFrame("Frame3", "ETypeList");
    if (hasColorList(kind_)) {
        std::tie(colorFrame_, ColorList) =
            listFrame("Frame1", kind_ == DialogKind::Monotone ? "MonoList" : "ColorList");
    }
    if (kind_ == DialogKind::Level) {
        distanceFrame_ = new QGroupBox;
        distanceFrame_->setObjectName("Frame4");
        DistanceCombo = new QComboBox;
        DistanceCombo->setObjectName("DistanceCombo");
        (new QVBoxLayout(distanceFrame_))->addWidget(DistanceCombo);
        controls->addWidget(distanceFrame_);
        connect(DistanceCombo, &QComboBox::currentIndexChanged, this, [this] { controlChanged(); });
    }
    if (kind_ == DialogKind::Level || kind_ == DialogKind::ColorScale) {
        Check1 = new QCheckBox;
        Check1->setObjectName("Check1");
        controls->addWidget(Check1);
        connect(Check1, &QCheckBox::toggled, this, [this] { controlChanged(); });
    }
    if (kind_ == DialogKind::ColorScale) {
        auto* row = new QHBoxLayout;
        ProcessColor = new QLabel;
        ProcessColor->setObjectName("ProcessColor");
        ProcessColor->setFixedSize(48, 20);
        ColorCommand = new QPushButton("...");
        ColorCommand->setObjectName("ColorCommand");
        row->addWidget(ProcessColor);
        row->addWidget(ColorCommand);
        row->addStretch();
        controls->addLayout(row);
        connect(ColorCommand, &QPushButton::clicked, this, [this] {
            const QColor chosen = QColorDialog::getColor(
                QColor(processColor_.red, processColor_.green, processColor_.blue), this);
            if (!chosen.isValid()) return;
            processColor_ = Rgb8{static_cast<std::uint8_t>(chosen.red()),
                                 static_cast<std::uint8_t>(chosen.green()),
                                 static_cast<std::uint8_t>(chosen.blue())};
            ProcessColor->setStyleSheet(colourSwatch(processColor_));
            controlChanged();
        });
    }
    controls->addStretch();

    Picture3 = new QWidget;
    Picture3->setObjectName("Picture3");
    Picture3->setFixedSize(PreviewBox, kind_ == DialogKind::Level ? LevelBoxHeight : PreviewBox);
    Picture3->setAutoFillBackground(true);
    QPalette black = Picture3->palette();
    black.setColor(QPalette::Window, Qt::black);
    Picture3->setPalette(black);
    Picture1 = new QLabel(Picture3);
    Picture1->setObjectName("Picture1");
    codeLabel_ = new QLabel(this);
    codeLabel_->setObjectName("Label1_1");
    codeLabel_->hide();

    OKButton = new QPushButton(res(2251));
    OKButton->setObjectName("OKButton");
    CancelButton = new QPushButton(res(2125));
    CancelButton->setObjectName("CancelButton");
    PreviewButton = new QPushButton(res(2255));
    PreviewButton->setObjectName("PreviewButton");
    DefaultButton = new QPushButton(res(4121));
    DefaultButton->setObjectName("DefaultButton");
    connect(OKButton, &QPushButton::clicked, this, &EffectDialog::OKButton_Click);
    connect(CancelButton, &QPushButton::clicked, this, &QWidget::close);
    connect(PreviewButton, &QPushButton::clicked, this, &EffectDialog::PreviewButton_Click);
    connect(DefaultButton, &QPushButton::clicked, this, &EffectDialog::DefaultButton_Click);

    auto* right = new QVBoxLayout;
    right->addWidget(Picture3);
    for (QPushButton* b : {OKButton, CancelButton, PreviewButton, DefaultButton})
        right->addWidget(b);
    right->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(controls);
    layout->addLayout(right);
}

bool EffectDialog::hasSlider(int number) const {
    return entry_ != nullptr && entry_->slider(number) != nullptr;
}

void EffectDialog::configure(const EffectEntry& entry) {
    entry_ = &entry;
    code_ = entry.code;
    setWindowTitle(effectTitleText(entry, frame_.state().language));
    codeLabel_->setText(QString::number(code_));

    // Sliders: ranges and value labels; a slider the effect has no use for stays hidden.
    for (int n = 1; n <= sliderCount(kind_); ++n) {
        const SliderSpec* spec = entry.slider(n);
        QScrollBar* bar = sliders_[n - 1];
        QSpinBox* box = sliderBoxes_[n - 1];
        bar->setVisible(spec != nullptr);
        box->setVisible(spec != nullptr);
        nameLabels_[n - 1]->setVisible(spec != nullptr);
        valueLabels_[n - 1]->setVisible(false);
        if (spec == nullptr) continue;
        const QSignalBlocker quiet(bar);
        const QSignalBlocker quietBox(box);
        bar->setRange(spec->min, spec->max);
        bar->setValue(spec->defaultValue);
        bar->setPageStep(spec->largeChange);
        bar->setSingleStep(spec->smallChange);
        box->setRange(spec->min, spec->max);
        box->setSingleStep(std::max(1, spec->smallChange));
        box->setValue(spec->defaultValue);
        showSliderValue(n);
        nameLabels_[n - 1]->setText(shown(spec->label));
    }
    if (sliderFrame_ != nullptr) {
        const SliderSpec* first = entry.slider(1);
        sliderFrame_->setVisible(!entry.sliders.empty());
        // The single-slider forms carry the name as the frame's caption.
        if (sliderCount(kind_) == 1 && first != nullptr) {
            sliderFrame_->setTitle(shown(first->label));
            nameLabels_[0]->hide();
        }
    }
    auto fill = [](QGroupBox* frame, QListWidget* list, const ListSpec* spec) {
        if (frame == nullptr) return;
        frame->setVisible(spec != nullptr && !spec->rows.empty());
        if (spec == nullptr) return;
        frame->setTitle(shown(spec->caption));
        const QSignalBlocker quiet(list);
        list->clear();
        for (std::string_view row : spec->rows)
            list->addItem(shown(row));
        list->setCurrentRow(0);
        // Every row whole, without a sideways scroll: English rows run longer.
        list->setMinimumWidth(list->sizeHintForColumn(0) + 2 * list->frameWidth() +
                              list->verticalScrollBar()->sizeHint().width() + 4);
    };
    fill(typeFrame_, ETypeList, entry.list(ListKind::E));
    fill(colorFrame_, ColorList, entry.list(ListKind::C));
    if (distanceFrame_ != nullptr) {
        const ListSpec* spec = entry.list(ListKind::G);
        distanceFrame_->setVisible(spec != nullptr);
        if (spec != nullptr) {
            distanceFrame_->setTitle(shown(spec->caption));
            const QSignalBlocker quiet(DistanceCombo);
            DistanceCombo->clear();
            for (std::string_view row : spec->rows)
                DistanceCombo->addItem(shown(row));
            DistanceCombo->setCurrentIndex(0);
        }
    }
    if (Check1 != nullptr) Check1->setVisible(callUses(entry.call, "K"));
    if (kind_ == DialogKind::ColorScale) {
        const bool colour = callUses(entry.call, "Rc");
        ProcessColor->setVisible(colour);
        ColorCommand->setVisible(colour);
        processColor_ = frame_.state().flags.drawingColor;
        ProcessColor->setStyleSheet(colourSwatch(processColor_));
        colorListClicked();
    }
    PreviewButton->setEnabled(!previewForbidden(entry.key));

    // SetPreviewPicture: the document scaled into the black box.
    const Surface& picture = document_.document().picture;
    const PreviewPlacement place =
        SetPreviewPicture(Picture3->width(), Picture3->height(), picture.width(), picture.height());
    source_ = scalePicture(picture, place.width, place.height);
    Picture1->setGeometry(place.left, place.top, place.width, place.height);
    showPicture(source_);
    DefaultValueSet();
}

ControlValues EffectDialog::values() const {
    ControlValues v;
    for (int n = 1; n <= 8; ++n)
        v.sliders[n - 1] = sliders_[n - 1]->value();
    // A slider the effect does not show hands on 0.
    for (int n = 1; n <= 8; ++n) {
        if (!hasSlider(n)) v.sliders[n - 1] = 0;
    }
    if (slider2Off_) v.sliders[1] = 0;
    if (ETypeList != nullptr) v.eType = std::max(0, ETypeList->currentRow());
    if (ColorList != nullptr) v.color = std::max(0, ColorList->currentRow());
    if (DistanceCombo != nullptr) v.distance = std::max(0, DistanceCombo->currentIndex());
    if (Check1 != nullptr) v.check = Check1->isChecked() ? 1 : 0;
    v.processColor = processColor_;
    return v;
}

void EffectDialog::DefaultValueSet() {
    defaults_ = values();
    // The slider's own value, even while a colour row keeps it hidden.
    if (hasSlider(2)) defaults_.sliders[1] = sliders_[1]->value();
}

void EffectDialog::setValues(const ControlValues& v) {
    for (int n = 1; n <= sliderCount(kind_); ++n) {
        if (hasSlider(n)) sliders_[n - 1]->setValue(static_cast<int>(v.sliders[n - 1]));
    }
    if (ETypeList != nullptr) ETypeList->setCurrentRow(v.eType);
    if (ColorList != nullptr) ColorList->setCurrentRow(v.color);
    if (DistanceCombo != nullptr) DistanceCombo->setCurrentIndex(v.distance);
    if (Check1 != nullptr) Check1->setChecked(v.check == 1);
    processColor_ = v.processColor;
    if (ProcessColor != nullptr) ProcessColor->setStyleSheet(colourSwatch(processColor_));
}

void EffectDialog::showSliderValue(int number) {
    const int value = sliders_[number - 1]->value();
    {
        const QSignalBlocker quiet(sliderBoxes_[number - 1]);
        sliderBoxes_[number - 1]->setValue(value);
    }
    // frm_Mani shows sliders 3 and 4 in tenths for code 6: the label beside
    // the box gives the value the effect sees.
    const bool tenths = kind_ == DialogKind::Mani && code_ == 6 && (number == 3 || number == 4);
    valueLabels_[number - 1]->setVisible(tenths && !sliders_[number - 1]->isHidden());
    valueLabels_[number - 1]->setText(tenths ? QString::number(value / 10.0)
                                             : QString::number(value));
}

void EffectDialog::sliderChanged(int number) {
    showSliderValue(number);
    controlChanged();
}

void EffectDialog::colorListClicked() {
    // Only a list with rows can be clicked: an effect of these codes without
    // colour rows keeps its Slider2 as configured.
    if (kind_ != DialogKind::ColorScale || !rowFourShowsSlider2(code_) || !hasSlider(2) ||
        ColorList->count() == 0)
        return;
    const bool rowFour = ColorList->currentRow() == 4;
    slider2Off_ = !rowFour;
    sliders_[1]->setVisible(rowFour);
    sliderBoxes_[1]->setVisible(rowFour);
    nameLabels_[1]->setVisible(rowFour);
}

void EffectDialog::controlChanged() {
    ProgramState& state = frame_.state();
    if (state.PreviewReady == 1 && PreviewButton->isEnabled() &&
        frame_.settings().AutoPreview == 1) {
        PreviewButton_Click();
    }
}

void EffectDialog::PreviewButton_Click() {
    if (entry_ == nullptr || source_.empty()) return;
    const EffectPlan plan = planEffect(kind_, code_, values());
    if (plan.status != EffectPlan::Status::Ready) return;
    ++previewCount_;
    QApplication::setOverrideCursor(Qt::WaitCursor);
    PreviewResult result = runPreview(frame_.state(), plan.body, source_);
    QApplication::restoreOverrideCursor();
    for (const EffectError& failure : result.failures) {
        QMessageBox::warning(this, errorTitleText(failure.number()), shown(failure.description()));
    }
    if (result.picture.empty()) return; // a failed preview leaves Picture1 as it was
    shown_ = std::move(result.picture);
    showPicture(shown_);
}

void EffectDialog::showPicture(const Surface& picture) {
    if (picture.empty()) return;
    Picture1->setPixmap(QPixmap::fromImage(toQImage(picture)));
}

void EffectDialog::DefaultButton_Click() {
    if (PreviewButton->isEnabled()) {
        // With the button off, the change events of the restored controls run no preview.
        PreviewButton->setEnabled(false);
        setValues(defaults_);
        PreviewButton->setEnabled(true);
    } else {
        setValues(defaults_);
    }
    shown_ = source_;
    showPicture(source_);
}

void EffectDialog::OKButton_Click() {
    const ControlValues chosen = values();
    const EffectPlan plan = planEffect(kind_, code_, chosen);
    if (plan.status == EffectPlan::Status::NotAvailable) {
        QMessageBox::information(this, windowTitle(), res(ids::NotAvailableYet));
        return;
    }
    FrmMain& frame = frame_;
    FrmDocument& document = document_;
    close();
    if (plan.status == EffectPlan::Status::Ready) frame.runEffect(document, plan.body);
}

bool EffectDialog::eventFilter(QObject* watched, QEvent* event) {
    // Enter in a slider's box takes the typed value (and its preview); it
    // does not press OK as it would elsewhere in the form.
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        auto* box = qobject_cast<QSpinBox*>(watched);
        if (box != nullptr && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
            box->interpretText();
            box->selectAll();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void EffectDialog::closeEvent(QCloseEvent* event) {
    commonEnd();
    event->accept();
}

void EffectDialog::commonEnd() {
    if (ended_) return;
    ended_ = true;
    frame_.state().PreviewReady = 0;
}

} // namespace lumiran
