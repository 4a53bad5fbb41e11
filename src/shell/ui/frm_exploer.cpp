#include "shell/ui/frm_exploer.h"

#include "shell/ui/ui_text.h"
#include "shell/ui_string_ids.h"
#include "tools/colour_values.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace lumiran {

namespace {

QString swatchStyle(Rgb8 c) {
    return QString("background-color: rgb(%1,%2,%3); border: 1px solid black;")
        .arg(c.red)
        .arg(c.green)
        .arg(c.blue);
}

QString describe(Rgb8 c) {
    const ColourValues v = colourValues(c);
    return QString("RGB    %1, %2, %3  (%4)\n"
                   "HSV    %5°, %6%, %7%\n"
                   "HLS    %5°, %8%, %9%\n"
                   "YCbCr  %10, %11, %12\n"
                   "CMYK   %13%, %14%, %15%, %16%")
        .arg(c.red)
        .arg(c.green)
        .arg(c.blue)
        .arg(qs(hexText(c)))
        .arg(v.hue)
        .arg(v.hsvSaturation)
        .arg(v.hsvValue)
        .arg(v.hlsLightness)
        .arg(v.hlsSaturation)
        .arg(v.y)
        .arg(v.cb)
        .arg(v.cr)
        .arg(v.cyan)
        .arg(v.magenta)
        .arg(v.yellow)
        .arg(v.black);
}

QLabel* fixedFont(QLabel* label) {
    QFont font("Monospace");
    font.setStyleHint(QFont::TypeWriter);
    label->setFont(font);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

// Magnified neighbourhood: 11 x 11 pixels, 12 screen pixels each.
constexpr int LoupeRadius = 5;
constexpr int LoupeCell = 12;

} // namespace

frm_Exploer::frm_Exploer(Rgb8 start, QWidget* parent) : QDialog(parent), colour_(start) {
    setObjectName("frm_Exploer");
    setWindowTitle(res(ids::ExplorerTitle).remove("(&X)...").trimmed());
    swatch_ = new QLabel;
    swatch_->setObjectName("Swatch");
    swatch_->setFixedSize(64, 64);
    values_ = fixedFont(new QLabel);
    values_->setObjectName("Values");
    PickButton = new QPushButton(res(ids::PickColour));
    PickButton->setObjectName("PickButton");
    PickButton->setCheckable(true);
    pickState_ = new QLabel;
    pickState_->setObjectName("PickState");
    DrawingButton = new QPushButton(res(ids::SetAsDrawingColour));
    DrawingButton->setObjectName("DrawingButton");
    BackButton = new QPushButton(res(ids::SetAsBackColour));
    BackButton->setObjectName("BackButton");

    auto* top = new QHBoxLayout;
    top->addWidget(swatch_, 0, Qt::AlignTop);
    top->addWidget(values_, 1);
    auto* pick = new QHBoxLayout;
    pick->addWidget(PickButton);
    pick->addWidget(pickState_, 1);
    auto* set = new QHBoxLayout;
    set->addWidget(DrawingButton);
    set->addWidget(BackButton);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addLayout(pick);
    layout->addLayout(set);

    connect(PickButton, &QPushButton::toggled, this, &frm_Exploer::pickingChanged);
    connect(DrawingButton, &QPushButton::clicked, this,
            [this] { emit drawingColourChosen(colour_); });
    connect(BackButton, &QPushButton::clicked, this, [this] { emit backColourChosen(colour_); });
    showPicked(start);
}

void frm_Exploer::showPicked(Rgb8 colour) {
    colour_ = colour;
    swatch_->setStyleSheet(swatchStyle(colour));
    values_->setText(describe(colour));
}

void frm_Exploer::setPickState(std::uint8_t mode) {
    const QSignalBlocker quiet(PickButton);
    PickButton->setChecked(mode == 2 || mode == 3);
    pickState_->setText(mode == 2   ? res(ids::PickRunning)
                        : mode == 3 ? res(ids::PickStopped)
                                    : QString());
}

QString frm_Exploer::valuesText() const {
    return values_->text();
}

frm_Pixel::frm_Pixel(QWidget* parent) : QDialog(parent) {
    setObjectName("frm_Pixel");
    setWindowTitle(res(ids::PixelTitle).remove("(&P)...").trimmed());
    place_ = fixedFont(new QLabel);
    place_->setObjectName("Place");
    values_ = fixedFont(new QLabel);
    values_->setObjectName("Values");
    loupe_ = new QLabel;
    loupe_->setObjectName("Loupe");
    const int side = (2 * LoupeRadius + 1) * LoupeCell;
    loupe_->setFixedSize(side, side);
    auto* text = new QVBoxLayout;
    text->addWidget(place_);
    text->addWidget(values_);
    text->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->addWidget(loupe_);
    layout->addLayout(text, 1);
    showOutside();
}

void frm_Pixel::showPixel(const QImage& picture, QPoint pixel) {
    if (!picture.rect().contains(pixel)) {
        showOutside();
        return;
    }
    const QRgb c = picture.pixel(pixel);
    const Rgb8 colour{static_cast<std::uint8_t>(qRed(c)), static_cast<std::uint8_t>(qGreen(c)),
                      static_cast<std::uint8_t>(qBlue(c))};
    place_->setText(QString("X %1  Y %2").arg(pixel.x()).arg(pixel.y()));
    values_->setText(describe(colour));
    const int cells = 2 * LoupeRadius + 1;
    QPixmap view(cells * LoupeCell, cells * LoupeCell);
    view.fill(palette().window().color());
    QPainter painter(&view);
    for (int dy = -LoupeRadius; dy <= LoupeRadius; ++dy) {
        for (int dx = -LoupeRadius; dx <= LoupeRadius; ++dx) {
            const QPoint p = pixel + QPoint(dx, dy);
            if (!picture.rect().contains(p)) continue;
            painter.fillRect((dx + LoupeRadius) * LoupeCell, (dy + LoupeRadius) * LoupeCell,
                             LoupeCell, LoupeCell, QColor(picture.pixel(p)));
        }
    }
    // The pixel itself, framed in black and white so it shows on any colour.
    const QRect centre(LoupeRadius * LoupeCell, LoupeRadius * LoupeCell, LoupeCell - 1,
                       LoupeCell - 1);
    painter.setPen(Qt::black);
    painter.drawRect(centre);
    painter.setPen(Qt::white);
    painter.drawRect(centre.adjusted(1, 1, -1, -1));
    painter.end();
    loupe_->setPixmap(view);
}

void frm_Pixel::showOutside() {
    place_->setText(res(ids::PixelOutside));
    values_->clear();
    QPixmap blank(loupe_->size());
    blank.fill(palette().window().color());
    loupe_->setPixmap(blank);
}

QString frm_Pixel::valuesText() const {
    return values_->text();
}

} // namespace lumiran
