#include "shell/ui/picture_view.h"

#include <QPaintEvent>
#include <QPainter>

namespace lumiran {

PictureView::PictureView(QWidget* parent) : QWidget(parent) {
    setObjectName("Picture2");
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PictureView::setImage(QImage image) {
    image_ = std::move(image);
    setFixedSize(image_.size());
    update();
}

void PictureView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.drawImage(event->rect(), image_, event->rect());
}

} // namespace lumiran
