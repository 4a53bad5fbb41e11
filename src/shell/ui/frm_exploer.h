#pragma once

#include "engine/pixel.h"

#include <QDialog>
#include <cstdint>

class QLabel;
class QPushButton;

namespace lumiran {

// The colour explorer: a colour picked from a picture (or the drawing
// colour it starts with) in RGB, HSV, HLS, YCbCr and CMYK, which can become
// the drawing or the background colour. Modeless, so pictures stay usable.
class frm_Exploer : public QDialog {
    Q_OBJECT
  public:
    frm_Exploer(Rgb8 start, QWidget* parent);

    void showPicked(Rgb8 colour);
    // ColorPickMode: 2 "実行中", 3 "停止中", 0 not picking.
    void setPickState(std::uint8_t mode);
    [[nodiscard]] Rgb8 colour() const { return colour_; }
    [[nodiscard]] QString valuesText() const;

    QPushButton* PickButton = nullptr;
    QPushButton* DrawingButton = nullptr;
    QPushButton* BackButton = nullptr;

  signals:
    void pickingChanged(bool on);
    void drawingColourChosen(Rgb8 colour);
    void backColourChosen(Rgb8 colour);

  private:
    Rgb8 colour_;
    QLabel* swatch_ = nullptr;
    QLabel* values_ = nullptr;
    QLabel* pickState_ = nullptr;
};

// The pixel under the pointer: its place, its values and a magnified view of
// its neighbourhood.
class frm_Pixel : public QDialog {
    Q_OBJECT
  public:
    explicit frm_Pixel(QWidget* parent);

    // `picture` is the screen's copy of the document's picture.
    void showPixel(const QImage& picture, QPoint pixel);
    void showOutside();
    [[nodiscard]] QString valuesText() const;

  private:
    QLabel* place_ = nullptr;
    QLabel* values_ = nullptr;
    QLabel* loupe_ = nullptr;
};

} // namespace lumiran
