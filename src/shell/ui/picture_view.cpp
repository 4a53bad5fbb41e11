#include "shell/ui/picture_view.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <array>
#include <cmath>

namespace lumiran {
namespace {

constexpr std::array ZoomSteps{1.0 / 16, 1.0 / 8, 1.0 / 4, 1.0 / 3, 1.0 / 2, 2.0 / 3, 1.0,
                               1.5,      2.0,     3.0,     4.0,     6.0,     8.0,     16.0};

} // namespace

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setObjectName("Picture2");
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
}

std::span<const double> PictureView::zoomSteps() {
    return ZoomSteps;
}

double PictureView::nextZoom(double zoom, int direction) {
    // A zoom between two steps (after fitting) goes to the neighbouring step.
    constexpr double tolerance = 1e-6;
    if (direction > 0) {
        const auto it =
            std::ranges::find_if(ZoomSteps, [&](double z) { return z > zoom + tolerance; });
        return it != ZoomSteps.end() ? *it : ZoomSteps.back();
    }
    const auto it = std::ranges::find_if(ZoomSteps.rbegin(), ZoomSteps.rend(),
                                         [&](double z) { return z < zoom - tolerance; });
    return it != ZoomSteps.rend() ? *it : ZoomSteps.front();
}

void PictureView::setImage(QImage image) {
    image_ = std::move(image);
    reduced_ = QImage();
    resizeToZoom();
    update();
}

void PictureView::setZoom(double zoom) {
    zoom = std::clamp(zoom, ZoomSteps.front(), ZoomSteps.back());
    if (zoom == zoom_) return;
    zoom_ = zoom;
    reduced_ = QImage();
    resizeToZoom();
    update();
}

void PictureView::resizeToZoom() {
    const auto scaled = [this](int length) {
        return std::max(1, static_cast<int>(std::lround(length * zoom_)));
    };
    if (image_.isNull()) {
        setFixedSize(0, 0);
        return;
    }
    setFixedSize(scaled(image_.width()), scaled(image_.height()));
}

QPoint PictureView::pictureAt(QPointF widgetPoint) const {
    return {static_cast<int>(std::floor(widgetPoint.x() / zoom_)),
            static_cast<int>(std::floor(widgetPoint.y() / zoom_))};
}

void PictureView::setOverlay(Overlay overlay) {
    overlay_ = std::move(overlay);
    update();
}

void PictureView::stepOutline() {
    if (!overlay_.outline) return;
    dashOffset_ = (dashOffset_ + 1) % 8;
    update();
}

QRect PictureView::onWidget(const QRect& r) const {
    const auto at = [this](int v) { return static_cast<int>(std::lround(v * zoom_)); };
    return QRect(QPoint(at(r.left()), at(r.top())),
                 QPoint(at(r.left() + r.width()) - 1, at(r.top() + r.height()) - 1));
}

void PictureView::paintOverlay(QPainter& painter) const {
    painter.resetTransform();
    if (!overlay_.lifted.isNull()) {
        const QRect place = onWidget(QRect(overlay_.liftedAt, overlay_.lifted.size()));
        painter.drawImage(place, overlay_.lifted);
    }
    if (overlay_.rubberBand) {
        // Inverting, so the band shows on any picture.
        painter.setCompositionMode(QPainter::CompositionMode_Difference);
        painter.setPen(QPen(Qt::white, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(onWidget(overlay_.rubberBand->normalized()));
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    }
    if (overlay_.outline) {
        // Black and white dashes that run: visible on any colour.
        const QRect r = onWidget(*overlay_.outline);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Qt::white, 1));
        painter.drawRect(r);
        QPen dots(Qt::black, 1, Qt::CustomDashLine);
        dots.setDashPattern({4, 4});
        dots.setDashOffset(dashOffset_);
        painter.setPen(dots);
        painter.drawRect(r);
    }
}

void PictureView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    const QRect exposed = event->rect();
    if (zoom_ == 1.0) {
        painter.drawImage(exposed, image_, exposed);
        paintOverlay(painter);
        return;
    }
    if (zoom_ < 1.0) {
        // Reduced once, smoothly, so that a large picture scrolls without rescaling.
        if (reduced_.isNull() && !image_.isNull()) {
            reduced_ = image_.scaled(size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        }
        painter.drawImage(exposed, reduced_, exposed);
        paintOverlay(painter);
        return;
    }
    // Enlarged: each picture pixel a square, only the exposed part drawn.
    const QRect source = QRect(pictureAt(exposed.topLeft()), pictureAt(exposed.bottomRight()))
                             .adjusted(0, 0, 1, 1)
                             .intersected(image_.rect());
    painter.scale(zoom_, zoom_);
    painter.drawImage(source.topLeft(), image_, source);
    paintOverlay(painter);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
    const QPoint pixel = pictureAt(event->position());
    if (image_.rect().contains(pixel)) {
        emit pointerMoved(pixel);
    } else {
        emit pointerLeft();
    }
    if (event->buttons() != Qt::NoButton) emit dragged(pixel);
    QWidget::mouseMoveEvent(event);
}

void PictureView::mousePressEvent(QMouseEvent* event) {
    emit pressed(pictureAt(event->position()), event->button());
    QWidget::mousePressEvent(event);
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
    emit released(pictureAt(event->position()), event->button());
    QWidget::mouseReleaseEvent(event);
}

void PictureView::leaveEvent(QEvent* event) {
    emit pointerLeft();
    QWidget::leaveEvent(event);
}

} // namespace lumiran
