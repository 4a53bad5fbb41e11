#pragma once

#include <QImage>
#include <QWidget>
#include <optional>
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

    // What is drawn over the picture and never into it: the rubber band of a
    // drag, the area's running outline and a lifted area on its way. All in
    // picture pixels; right and bottom exclusive.
    struct Overlay {
        std::optional<QRect> rubberBand;
        std::optional<QRect> outline;
        QImage lifted;
        QPoint liftedAt;
    };
    void setOverlay(Overlay overlay);
    [[nodiscard]] const Overlay& overlay() const { return overlay_; }
    // One step of the outline's dots (the document's Timer1).
    void stepOutline();

    // The steps of zoom in and zoom out, smallest first.
    [[nodiscard]] static std::span<const double> zoomSteps();
    [[nodiscard]] static double nextZoom(double zoom, int direction);

  signals:
    // The pointer moved over a pixel of the picture, or left the picture.
    void pointerMoved(QPoint picturePixel);
    void pointerLeft();
    // Mouse buttons on the picture, in picture pixels (anywhere while held).
    void pressed(QPoint picturePixel, Qt::MouseButton button);
    void dragged(QPoint picturePixel);
    void released(QPoint picturePixel, Qt::MouseButton button);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

  private:
    void resizeToZoom();
    void paintOverlay(QPainter& painter) const;
    // The widget rectangle that covers a rectangle of picture pixels.
    [[nodiscard]] QRect onWidget(const QRect& pictureRect) const;

    QImage image_;
    QImage reduced_; // the picture at a zoom below 100 %, made once per zoom
    double zoom_ = 1.0;
    Overlay overlay_;
    int dashOffset_ = 0;
};

} // namespace lumiran
