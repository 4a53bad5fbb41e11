#pragma once

#include <QImage>
#include <QWidget>
#include <span>

namespace lumiran {

// Picture2: the document's picture, shown at a zoom of the view only. The
// picture itself, and every coordinate handed out, stays in picture pixels.
class PictureView : public QWidget {
    Q_OBJECT
  public:
    explicit PictureView(QWidget* parent = nullptr);

    void setImage(QImage image);
    [[nodiscard]] const QImage& image() const { return image_; }
    [[nodiscard]] QSize sizeHint() const override { return size(); }

    // 1.0 is 100 %, the default.
    void setZoom(double zoom);
    [[nodiscard]] double zoom() const { return zoom_; }
    // The picture pixel under a point of this widget; it may lie outside the picture.
    [[nodiscard]] QPoint pictureAt(QPointF widgetPoint) const;

    // The steps of zoom in and zoom out, smallest first.
    [[nodiscard]] static std::span<const double> zoomSteps();
    [[nodiscard]] static double nextZoom(double zoom, int direction);

  signals:
    // The pointer moved over a pixel of the picture, or left the picture.
    void pointerMoved(QPoint picturePixel);
    void pointerLeft();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void resizeToZoom();

    QImage image_;
    QImage reduced_; // the picture at a zoom below 100 %, made once per zoom
    double zoom_ = 1.0;
};

} // namespace lumiran
